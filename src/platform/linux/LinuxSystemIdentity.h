#pragma once

#include "platform/hostctl/SystemIdentity.h"
#include "platform/linux/HostFiles.h"

namespace LinuxHost {

// Who a Linux host is: the distribution (os-release, and Debian's point release where there is one) and
// the running kernel. Such a host has no audit mode and no record of a network boot.
class LinuxSystemIdentity : public HostCtl::Util::SystemIdentity {
  public:
    explicit LinuxSystemIdentity(HostFiles files);

    HostCtl::Util::SysinfoVersionRecord GetVersionRecord() override;
    HostCtl::Util::SysinfoBootOptions GetBootOptions() override;
    HostCtl::Util::ProductNames GetProductNames() override;

  private:
    HostFiles _files;
};

}  // namespace LinuxHost

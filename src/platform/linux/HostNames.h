#pragma once

#include <string>

#include "platform/linux/HostFiles.h"

namespace LinuxHost {

// The host's name through the host-name service (the name kept for the next boot, and the one the kernel
// has now), and its static name table. Failures are HostCtl::Lib::HostCtlException.
class HostNames {
  public:
    explicit HostNames(HostFiles files);

    std::string Static();
    // Kept for the next boot and taken by the kernel at once.
    void Set(const std::string& name);

    // The name table's whole text ("" when there is none), and the text put back whole.
    std::string HostsText() const;
    void SetHostsText(const std::string& text) const;

  private:
    HostFiles _files;
};

}  // namespace LinuxHost

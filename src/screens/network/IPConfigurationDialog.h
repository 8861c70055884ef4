#pragma once

#include "network/ModeFieldsDialog.h"
#include "platform/hostctl/IpConfig.h"

namespace Kovo {

// How the management network obtains IPv4: not at all, by DHCP, or from the static address, subnet
// mask and default gateway typed here (shown empty while 0.0.0.0). Enter checks the static values,
// first failure only, and keeps the dialog open on one; without static values nothing is checked and
// the gateway is cleared. The dialog edits its own copy of the configuration: Enter (1) leaves the
// result in Config(), Esc (0) leaves the caller's record as it was.
class IPConfigurationDialog : public ModeFieldsDialog {
  public:
    IPConfigurationDialog(Frame* parent, const HostCtl::Network::IpConfig& config);

    const HostCtl::Network::IpConfig& Config() const { return _config; }

    // The radio items and fields, by ordinal.
    enum Ordinal : int { kNone, kDynamic, kStatic, kAddress, kMask, kGateway };

  protected:
    bool Accept() override;

  private:
    HostCtl::Network::IpConfig _config;
};

}  // namespace Kovo

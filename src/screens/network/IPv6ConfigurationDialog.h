#pragma once

#include <vector>

#include "network/ModeFieldsDialog.h"
#include "platform/hostctl/IpConfig.h"

namespace Kovo {

// Whether the management network uses IPv6 and how it obtains its addresses: by router advertisement,
// by DHCPv6, or as up to three static networks ("address/prefix") with a default gateway typed here.
// Enter with a dynamic choice takes nothing from the fields; with static it checks every address's
// form, then that none is link-local, then the gateway, and keeps the dialog open on the first failure.
// The dialog edits its own copy of the configuration: Enter (1) leaves the result in the accessors, Esc
// (0) leaves them as given.
class IPv6ConfigurationDialog : public ModeFieldsDialog {
  public:
    IPv6ConfigurationDialog(Frame* parent, bool enabled, const HostCtl::Network::IpConfig& config,
                            const HostCtl::Network::Ipv6Address& gateway);

    bool Enabled() const { return _enabled; }
    const HostCtl::Network::IpConfig& Config() const { return _config; }
    // The static choice's gateway once taken, otherwise the one given.
    const HostCtl::Network::Ipv6Address& Gateway() const { return _gateway; }

    // The radio items and fields, by ordinal.
    enum Ordinal : int { kDisable, kDynamic, kDhcpv6, kStatic, kAddress1, kAddress2, kAddress3, kGateway };

  protected:
    bool Accept() override;

  private:
    bool AcceptStatic();

    bool _enabled;
    HostCtl::Network::IpConfig _config;
    HostCtl::Network::Ipv6Address _gateway;
    Ordinal _initialMode;
    // The static networks the address fields started with, in field order.
    std::vector<HostCtl::Network::Ipv6Network> _shown;
};

}  // namespace Kovo

#pragma once

#include <memory>
#include <string>

#include "network/ModeFieldsDialog.h"
#include "platform/hostctl/IpAddress.h"

namespace Kovo {

// Where the name servers and the host name come from: DHCP, or the two servers (IPv4 or IPv6, either
// may be empty) and the host name typed here. Enter with DHCP chosen takes nothing from the fields;
// otherwise each server must be a valid address, the primary checked first, and the dialog stays open
// on the first that is not. Enter closes with 1, Esc with 0; the accessors hold what was given until
// Enter stores new values.
class DNSConfigurationDialog : public ModeFieldsDialog {
  public:
    DNSConfigurationDialog(Frame* parent, bool automatic, const HostCtl::Network::IpAddress* primary,
                           const HostCtl::Network::IpAddress* alternate, const std::string& hostname);

    bool Automatic() const { return _automatic; }
    // Null when there is no such server.
    const HostCtl::Network::IpAddress* Primary() const { return _primary.get(); }
    const HostCtl::Network::IpAddress* Alternate() const { return _alternate.get(); }
    const std::string& Hostname() const { return _hostname; }

    // The radio items and fields, by ordinal.
    enum Ordinal : int { kAutomatic, kManual, kPrimary, kAlternate, kHostname };

  protected:
    bool Accept() override;

  private:
    bool _automatic;
    std::unique_ptr<HostCtl::Network::IpAddress> _primary;
    std::unique_ptr<HostCtl::Network::IpAddress> _alternate;
    std::string _hostname;
};

}  // namespace Kovo

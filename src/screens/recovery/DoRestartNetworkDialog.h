#pragma once

#include <string>

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace HostCtl::Network {
class IpConfig;
class ZenkNic;
}  // namespace HostCtl::Network

namespace Kovo {

class TextArea;

// "Restart Management Network": takes the management interface down and up again as soon as it is
// shown, with a line per step and the addresses the interface has afterwards, then waits for Enter (1).
// Nothing is caught here: a failing step leaves the interface as that step left it, and the opener
// reports it.
class DoRestartNetworkDialog : public Dialog {
  public:
    DoRestartNetworkDialog(Frame* parent, HostCtl::Network::ZenkNic& nic, HostAccess& host);

    int HandleKey() override;

    // What follows "Starting management network. " once the interface is up again: the IPv4 address
    // unless it came from DHCP, then the static, non-link-local IPv6 addresses: at most two and
    // "   ..." when more entries follow, except that a list of exactly three entries is shown whole.
    static std::string AddressLines(const HostCtl::Network::IpConfig& config, bool dhcp);

  private:
    void Show(const std::string& text);

    HostCtl::Network::ZenkNic& _nic;
    HostAccess& _host;
    TextArea& _progress;
};

}  // namespace Kovo

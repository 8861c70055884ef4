#include "recovery/DoRestartNetworkDialog.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "platform/hostctl/IpConfig.h"
#include "platform/hostctl/ZenkNic.h"
#include "terminal/Colors.h"
#include "terminal/HostEvent.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

constexpr const char* kIndent = "   ";

std::string Text(unsigned id) {
    return GetStringFactory("en_US")->GetString(id);
}

std::string AddressLine(const std::string& address) {
    return kIndent + Text(StringId::IpAddressIs) + " " + address + "\n";
}

}  // namespace

DoRestartNetworkDialog::DoRestartNetworkDialog(Frame* parent, HostCtl::Network::ZenkNic& nic,
                                               HostAccess& host)
    : Dialog(parent, {70, 16, 5, StringId::RestartNetworkTitle, StringId::RestartNetworkWait, ""}),
      _nic(nic),
      _host(host),
      _progress(AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)) {}

std::string DoRestartNetworkDialog::AddressLines(const HostCtl::Network::IpConfig& config, bool dhcp) {
    std::string text;
    if (!dhcp) text += "\n" + AddressLine(config.GetIpv4Address().GetStringAddress());
    const auto& networks = config.GetIpv6Network();
    if (networks.empty()) return text;
    if (dhcp) text += "\n";
    // A list of exactly three is walked to its end; any other stops at the second address shown.
    const bool walkAll = networks.size() == 3;
    int shown = 0;
    for (std::size_t i = 0; i < networks.size(); ++i) {
        const auto& network = networks[i];
        if (network.GetIpv6AddressType() == HostCtl::Network::IPV6_ADDRESS_STATIC &&
            network.GetIpv6Scope() != HostCtl::Network::IPV6_SCOPE_LINK) {
            text += AddressLine(network.GetStringAddress());
            ++shown;
        }
        if (!walkAll && shown == 2) {
            if (i + 1 < networks.size()) text += std::string(kIndent) + "...\n";
            break;
        }
    }
    return text;
}

void DoRestartNetworkDialog::Show(const std::string& text) {
    _progress.SetText(text);
    Refresh();
}

int DoRestartNetworkDialog::HandleKey() {
    const bool dhcp = _nic.GetIpConfig().GetUseDhcp();
    const std::string what = "Restarting " + _nic.GetName();
    LogInfo(what);
    _host.PostEvent(HostEvent::Text("obs.user.kovo.network.restart", what));

    std::string text = Text(StringId::StoppingNetwork) + " ";
    Show(text);
    _nic.Disable();
    _nic.Commit();
    text += Text(StringId::Done) + "\n";
    Show(text);
    _nic.Enable();
    text += Text(StringId::StartingNetwork) + " ";
    Show(text);
    text += AddressLines(_nic.GetIpConfig(), dhcp) + Text(StringId::Done);
    Show(text);

    SetFooter(Footer::kOkAfterRestart);
    // The result stays until it has been read: Esc does not close it either.
    for (int key = 0; !IsEnter(key);) key = GetKey(this, true);
    return 1;
}

}  // namespace Kovo

#include "network/ChangeConfirmation.h"

#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "network/KeepNetworkDialog.h"
#include "network/TestDialog.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

ChangeConfirmation::ChangeConfirmation(Frame& owner, HostAccess& host,
                                       HostCtl::Network::NetworkChange& change)
    : _owner(owner), _host(host), _change(change) {}

bool ChangeConfirmation::PutInPlaceAndAsk(HostCtl::Network::NetworkInfo& network,
                                          const std::function<void()>& placed) {
    std::string interface;
    try {
        _change.Apply();
        interface = network.GetManagementInterfaceName();
    } catch (const std::exception& e) {
        const std::string line =
            std::string("Putting the network configuration in place failed: ") + e.what();
        LogError(line);
        MessageDialog(&_owner, StringId::EnableNetworkErrorTitle, line).RunModal();
        Restore();
        return false;
    }
    if (placed) placed();
    if (KeepNetworkDialog(&_owner, _change, TestDialog::Prefill(_host), interface, _host).RunModal() == 1)
        return true;
    Restore();
    return false;
}

void ChangeConfirmation::Restore() {
    std::vector<std::string> interfaces;
    try {
        interfaces = _change.RollBack();
    } catch (const std::exception& e) {
        const std::string line =
            std::string("Restoring the previous network configuration failed: ") + e.what();
        LogError(line);
        MessageDialog(&_owner, StringId::EnableNetworkErrorTitle, line).RunModal();
        return;
    }
    const StringFactory& strings = *_owner.Strings();
    std::string text = strings.GetString(StringId::NetworkRestoredText);
    if (!interfaces.empty()) {
        text += std::string("\n\n") + strings.GetString(StringId::InterfacesPutBack);
        for (std::size_t i = 0; i < interfaces.size(); ++i) text += (i ? ", " : " ") + interfaces[i];
    }
    LogInfo("Restored the previous network configuration");
    MessageDialog(&_owner, StringId::NetworkRestoredTitle, text).RunModal();
}

}  // namespace Kovo

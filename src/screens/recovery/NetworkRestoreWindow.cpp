#include "recovery/NetworkRestoreWindow.h"

#include <algorithm>
#include <exception>
#include <string>

#include "frames/Footers.h"
#include "frames/MessageDialog.h"
#include "network/NetworkLog.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/ZenkNic.h"
#include "recovery/RestoreDvsDialog.h"
#include "recovery/RestoreNetworkDialog.h"
#include "recovery/SafeModeNetworkDialog.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

constexpr unsigned kTitle = 62;

unsigned DetailOf(unsigned entry) {
    switch (entry) {
        case NetworkRestoreWindow::kRestoreStandardSwitch:
            return 67;
        case NetworkRestoreWindow::kRestoreDvs:
            return 68;
        default:
            return 66;
    }
}

}  // namespace

NetworkRestoreWindow::NetworkRestoreWindow(Frame* parent, HostAccess& host)
    : RootWindow(parent), _host(host) {
    _entries.push_back(kRestoreNetwork);
    if (ManagementOnDistributedSwitch()) {
        _entries.push_back(kRestoreStandardSwitch);
        _entries.push_back(kRestoreDvs);
    }
    ShowEntries(kRestoreNetwork);
    LeftTitle()->SetText(Strings()->GetString(kTitle));
    LeftFooter()->SetText(Footer::kMenuSelect);
}

// The list keeps pointers to the items; it goes with the window tree, after them, drawing nothing.
NetworkRestoreWindow::~NetworkRestoreWindow() = default;

bool NetworkRestoreWindow::ManagementOnDistributedSwitch() {
    try {
        auto network = _host.Network();
        network->UpdateManagementInterface();
        _nic = network->GetManagementInterface();
        if (!_nic) {
            LogError("Could not locate the management interface");
            return false;
        }
        return _nic->GetConnectionPoint().connecteeType == HostCtl::Network::CONNECTEE_DVPORT;
    } catch (const std::exception& e) {
        LogFailure("Could not determine if a DVS was in use: ", e);
        return false;
    }
}

void NetworkRestoreWindow::ShowEntries(unsigned selected) {
    _items.clear();
    std::vector<Item*> items;
    for (unsigned entry : _entries) {
        _items.push_back(std::make_unique<LabelItem>(Strings()->GetString(entry), true));
        items.push_back(_items.back().get());
    }
    List()->SetItems(items);
    const auto at = std::find(_entries.begin(), _entries.end(), selected);
    List()->Select(at == _entries.end() ? 0 : static_cast<int>(at - _entries.begin()));
}

unsigned NetworkRestoreWindow::SelectedEntry() const {
    const auto index = static_cast<std::size_t>(List()->Row() + List()->Top());
    return index < _entries.size() ? _entries[index] : 0;
}

void NetworkRestoreWindow::RemoveEntry(unsigned entry) {
    const auto at = std::find(_entries.begin(), _entries.end(), entry);
    if (at == _entries.end()) return;
    // The cursor goes on to the entry that followed the removed one, or the last when none did.
    const auto next = at + 1 == _entries.end() ? (at == _entries.begin() ? 0u : *(at - 1)) : *(at + 1);
    _entries.erase(at);
    ShowEntries(next);
}

void NetworkRestoreWindow::UpdateDetails() {
    const unsigned entry = SelectedEntry();
    RightTitle()->SetText(Strings()->GetString(entry));
    Details()->SetText(std::string("{/color}{color:light-grey}") + Strings()->GetString(DetailOf(entry)));
    RightFooter()->SetText(Footer::kDetailChangeExit);
}

void NetworkRestoreWindow::Choose(unsigned entry) {
    try {
        switch (entry) {
            case kRestoreNetwork:
                RestoreNetworkDialog(this, _host).RunModal();
                break;
            case kRestoreStandardSwitch:
                if (_nic && SafeModeNetworkDialog(this, *_nic, _host).RunModal() == 1)
                    RemoveEntry(kRestoreStandardSwitch);
                break;
            case kRestoreDvs:
                if (_nic) RestoreDvsDialog(this, *_nic, _host).RunModal();
                break;
            default:
                break;
        }
    } catch (const std::exception& e) {
        // The host refused a step the dialog does not answer itself: say so and keep the menu.
        LogFailure(std::string(Strings()->GetString(entry)) + " failed: ", e);
        MessageDialog(this, entry, e.what()).RunModal();
    }
    List()->Draw();
    UpdateDetails();
}

int NetworkRestoreWindow::HandleKey() {
    LeftTitle()->SetText(Strings()->GetString(kTitle));
    List()->Draw();
    UpdateDetails();
    for (;;) {
        const int key = GetKey(this, true);
        if (MoveSelection(key)) continue;
        if (key == kEsc) return 1;
        if (IsEnter(key)) Choose(SelectedEntry());
    }
}

}  // namespace Kovo

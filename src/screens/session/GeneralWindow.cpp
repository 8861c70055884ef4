#include "session/GeneralWindow.h"

#include <curses.h>
#include <syslog.h>

#include <algorithm>
#include <exception>

#include "access/ChangePasswordDialog.h"
#include "frames/Footers.h"
#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "network/NetworkWindow.h"
#include "network/TestDialog.h"
#include "platform/hostctl/AdvancedOption.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/ZenkNic.h"
#include "recovery/NetworkRestoreWindow.h"
#include "recovery/RestartNetworkDialog.h"
#include "system/KeyboardDialog.h"
#include "system/LockdownDialog.h"
#include "system/LogPager.h"
#include "system/MenuCodes.h"
#include "system/RestoreDialog.h"
#include "system/TroubleShootingWindow.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "terminal/Session.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

enum StringId : unsigned {
    kVersionLine = 2,
    kMenuTitle = 4,
    kRestartNetworkError = 16,
    kNoManagementInterface = 19,
    kOperationFailed = 20,
    kPasswordHelp = 21,
    kLockdownHelp = 22,
    kNetworkHelp = 23,
    kRestartNetworkHelp = 24,
    kTestNetworkHelp = 25,
    kRestoreHelp = 26,
    kTroubleshootingHelp = 28,
    kResetHelp = 29,
    kKeyboardHelp = 32,
    kEmptyPasswordHelp = 33,
    kIpv4AddressLabel = 35,
    kHostnameLabel = 40,
    kEnabled = 113,
    kDisabled = 114,
};

// A host value for the detail pane; a host that cannot tell it leaves the line out.
std::string Guarded(std::string (*read)()) {
    try {
        return read();
    } catch (const HostCtl::Lib::HostCtlException& e) {
        syslog(LOG_ERR, "Unable to read the management network settings: %s", e.what());
        return {};
    }
}

bool LookUpManagementInterface(HostAccess& host) {
    try {
        auto network = host.Network();
        network->UpdateManagementInterface();
        auto nic = network->GetManagementInterface();
        const bool valid = nic && nic->IsValid();
        GeneralWindow::_mgmtIntf = valid ? std::move(nic) : nullptr;
        return valid;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        syslog(LOG_ERR, "Unable to look up the management network interface: %s", e.what());
        GeneralWindow::_mgmtIntf = nullptr;
        return false;
    }
}

}  // namespace

std::unique_ptr<HostCtl::Network::ZenkNic> GeneralWindow::_mgmtIntf;

MenuFacts GeneralWindow::ReadHostFacts(HostAccess& host) {
    MenuFacts facts;
    facts.lockdownEnabled = host.Query("hclsvc/auth/lockdown_is_enabled");
    facts.lockdownPossible = facts.lockdownEnabled || host.Query("hclsvc/auth/lockdown_is_possible");
    facts.managementInterface = LookUpManagementInterface(host);
    try {
        facts.pxeBoot = host.UserOptions()->FindOption("PXEBootEnabled") != nullptr;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        syslog(LOG_ERR, "Unable to read the host's boot options: %s", e.what());
    }
    facts.keyboard = usingKeyboard;
    return facts;
}

GeneralWindow::GeneralWindow(Frame* parent, HostAccess& host)
    : GeneralWindow(parent, ReadHostFacts(host), host) {}

GeneralWindow::GeneralWindow(Frame* parent, const MenuFacts& facts, HostAccess& host)
    : RootWindow(parent), _host(host), _lockdownEnabled(facts.lockdownEnabled) {
    std::vector<Item*> items;
    for (const MenuEntry& entry : facts.Entries()) {
        auto item = std::make_unique<LabelItem>(Strings()->GetString(entry.code), entry.selectable);
        item->SetEnabled(entry.enabled);
        items.push_back(item.get());
        _items.push_back(std::move(item));
        _codes.push_back(entry.code);
    }
    List()->SetItems(items);
    LeftTitle()->SetText(Strings()->GetString(kMenuTitle));
    LeftFooter()->SetText(Footer::kMenuSelectLogOut);
    List()->Draw();
    DrawDetails();
    DrawStatusLine();
}

// The list keeps pointers to the items; it goes with the window tree, after them here, but draws
// nothing on the way.
GeneralWindow::~GeneralWindow() = default;

unsigned GeneralWindow::SelectedCode() const {
    const Item* selected = List()->GetSelectedItem();
    for (std::size_t i = 0; i < _items.size(); ++i)
        if (_items[i].get() == selected) return _codes[i];
    return kBlankLine;
}

void GeneralWindow::DrawStatusLine() {
    // Kept as the area's text (not printed over it) so that every repaint of the area shows it again.
    const std::string version = Strings()->GetString(kVersionLine);
    const int column = std::max(0, COLS / 2 - static_cast<int>(version.size()) / 2);
    StatusLine()->SetText(std::string(static_cast<std::size_t>(column), ' ') + version);
}

std::string GeneralWindow::NetworkDetails() const {
    std::string text;
    if (_mgmtIntf) {
        const std::string address = Guarded(&TextArea::GetIpValue);
        const std::string hostname = Guarded(&TextArea::GetHostnameValue);
        if (!address.empty())
            text += std::string("{color:white}") + Strings()->GetString(kIpv4AddressLabel) + ":{/color}\n  " +
                    address + "\n\n";
        if (!hostname.empty())
            text += std::string("{color:white}") + Strings()->GetString(kHostnameLabel) + ":{/color}\n  " +
                    hostname + "\n\n";
    }
    return text + Strings()->GetString(kNetworkHelp);
}

void GeneralWindow::DrawDetails() {
    const unsigned code = SelectedCode();
    StringFactory& strings = *Strings();
    std::string text;
    std::string footer = Footer::kDetailChange;
    switch (code) {
        case kConfigurePassword:
            text = strings.GetString(Frame::_isUserPasswordEmpty ? kEmptyPasswordHelp : kPasswordHelp);
            break;
        case kConfigureLockdown:
            text = std::string("{color:white}") + strings.GetString(_lockdownEnabled ? kEnabled : kDisabled) +
                   "{/color}\n\n" + strings.GetString(kLockdownHelp);
            break;
        case kConfigureNetwork:
            text = NetworkDetails();
            break;
        case kRestartNetwork:
            text = strings.GetString(kRestartNetworkHelp);
            break;
        case kTestNetwork:
            text = strings.GetString(kTestNetworkHelp);
            break;
        case kNetworkRestore:
            text = strings.GetString(kRestoreHelp);
            break;
        case kTroubleshooting:
            text = strings.GetString(kTroubleshootingHelp);
            break;
        case kResetConfiguration:
            text = strings.GetString(kResetHelp);
            break;
        case kConfigureKeyboard:
            text = strings.GetString(kKeyboardHelp);
            break;
        case kViewSystemLogs:
            _logs.Refresh([this](const std::string& path) {
                try {
                    return _host.SystemInfo()->IsLogKept(path);
                } catch (const HostCtl::Lib::HostCtlException&) {
                    return false;  // a host that cannot say offers no log rather than a broken one
                }
            });
            text = _logs.Details(strings);
            footer.clear();
            break;
        case kViewSupportInfo:
            text = _support.Compose(_supportPage, strings);
            footer = _support.Footer(_supportPage);
            break;
        default:
            footer.clear();
            break;
    }
    RightTitle()->SetText(strings.GetString(code));
    Details()->SetText(text);
    RightFooter()->SetText(footer);
}

void GeneralWindow::UpdateDetails() {
    DrawDetails();
}

void GeneralWindow::Notification() {
    DrawDetails();
}

void GeneralWindow::Choose(unsigned code) {
    switch (code) {
        case kConfigurePassword:
            ChangePasswordDialog(this, _host).RunModal();
            // A password set where there was none changes what the pane asks for.
            DrawDetails();
            break;
        case kConfigureLockdown:
            if (LockdownDialog(this, _host).RunModal() != 0) {
                _lockdownEnabled = _host.Query("hclsvc/auth/lockdown_is_enabled");
                DrawDetails();
            }
            break;
        case kConfigureNetwork:
            NetworkWindow(this, _host).RunModal();
            // The pane shows the management address, which the window may just have changed.
            DrawDetails();
            break;
        case kRestartNetwork:
            if (!LookUpManagementInterface(_host)) {
                MessageDialog(this, kRestartNetworkError, kNoManagementInterface).RunModal();
                break;
            }
            try {
                RestartNetworkDialog(this, *_mgmtIntf, _host).RunModal();
            } catch (const std::exception& e) {
                // The restart reports nothing itself; whatever step failed, the operator learns it here
                // and the console stays.
                LogFailure("Restarting the management network failed: ", e);
                MessageDialog(this, kRestartNetworkError, kOperationFailed).RunModal();
            }
            break;
        case kTestNetwork:
            TestDialog(this, _host).RunModal();
            break;
        case kNetworkRestore:
            NetworkRestoreWindow(this, _host).RunModal();
            // A restore may have given the management interface another address.
            DrawDetails();
            break;
        case kTroubleshooting:
            TroubleShootingWindow(this, _host).RunModal();
            break;
        case kResetConfiguration:
            RestoreDialog(this, _host).RunModal();
            break;
        case kConfigureKeyboard:
            try {
                KeyboardDialog(this, _host).RunModal();
            } catch (const HostCtl::Lib::HostCtlException& e) {
                // The keyboard dialog passes the host's failures to its caller: report, stay in the menu.
                syslog(LOG_ERR, "%s", e.what());
                MessageDialog(this, kConfigureKeyboard, e.what()).RunModal();
            }
            break;
        default:
            break;
    }
}

void GeneralWindow::OpenLog(int row) {
    Frame::fgFrame = nullptr;
    LogPager().Show(SystemLogs::Table()[static_cast<std::size_t>(row)].path);
    SetActive(false);
    SetActive(true);
    Frame::fgFrame = this;
    clearok(curscr, TRUE);
    refresh();
}

bool GeneralWindow::OnKey(int key) {
    const unsigned code = SelectedCode();
    switch (key) {
        case kEsc:
            return false;
        case KEY_DOWN:
        case KEY_UP:
            // Support information always opens on its first page.
            _supportPage = 0;
            key == KEY_DOWN ? List()->Down() : List()->Up();
            DrawDetails();
            return true;
        case kEnter:
            Choose(code);
            DrawStatusLine();
            return true;
        case KEY_NPAGE:
            if (code == kViewSupportInfo && _supportPage + 1 < _support.Count()) {
                ++_supportPage;
                DrawDetails();
            }
            return true;
        case KEY_PPAGE:
            if (code == kViewSupportInfo && _supportPage > 0) {
                --_supportPage;
                DrawDetails();
            }
            return true;
        default:
            break;
    }
    if (code == kViewSystemLogs && key >= '0' && key <= '9') {
        if (auto row = SystemLogs::RowForDigit(key - '0', _logs.Available())) OpenLog(*row);
    }
    return true;
}

int GeneralWindow::HandleKey() {
    List()->Draw();
    DrawStatusLine();
    while (OnKey(GetKey(this, true))) {
    }
    return 1;
}

}  // namespace Kovo

#include "session/GeneralWindow.h"

#include <curses.h>

#include <algorithm>

#include "access/ChangePasswordDialog.h"
#include "frames/Footers.h"
#include "frames/Log.h"
#include "network/NetworkWindow.h"
#include "network/TestDialog.h"
#include "platform/hostctl/HostCtlException.h"
#include "recovery/NetworkRestoreWindow.h"
#include "recovery/RestartNetworkDialog.h"
#include "system/KeyboardDialog.h"
#include "system/LockdownDialog.h"
#include "system/MenuCodes.h"
#include "system/RestoreDialog.h"
#include "system/TroubleShootingWindow.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

constexpr unsigned kVersionLine = 2, kMenuTitle = 4, kIpv4AddressLabel = 35, kHostnameLabel = 40,
                   kEnabled = 113, kDisabled = 114;
constexpr unsigned kPasswordHelp = 21, kLockdownHelp = 22, kNetworkHelp = 23, kRestartNetworkHelp = 24,
                   kTestNetworkHelp = 25, kRestoreHelp = 26, kTroubleshootingHelp = 28, kResetHelp = 29,
                   kKeyboardHelp = 32, kEmptyPasswordHelp = 33;

// A host value for the detail pane; a host that cannot tell it leaves the line out.
std::string Guarded(std::string (*read)()) {
    try {
        return read();
    } catch (const HostCtl::Lib::HostCtlException& e) {
        LogFailure("Unable to read the management network settings: ", e);
        return {};
    }
}

}  // namespace

GeneralWindow::GeneralWindow(Frame* parent, HostAccess& host)
    : GeneralWindow(parent, MenuFacts::Read(host), host) {}

GeneralWindow::GeneralWindow(Frame* parent, const MenuFacts& facts, HostAccess& host)
    : MenuWindow(parent, kMenuTitle, Footer::kMenuSelectLogOut),
      _host(host),
      _entries(facts.Entries()),
      _managementInterface(facts.managementInterface),
      _lockdownEnabled(facts.lockdownEnabled) {
    ShowRows();
}

std::vector<MenuWindow::Row> GeneralWindow::Rows() {
    std::vector<Row> rows;
    for (const MenuEntry& entry : _entries) rows.push_back(RowFor(entry));
    return rows;
}

MenuWindow::Row GeneralWindow::RowFor(const MenuEntry& entry) {
    Row row{.id = entry.code,
            .caption = String(entry.code),
            .title = String(entry.code),
            .footer = Footer::kDetailChange,
            .selectable = entry.selectable,
            .enabled = entry.enabled};
    // Most entries say what they are for and open a screen over the menu.
    auto opens = [this, &row](unsigned help, std::function<void()> open) {
        row.detail = [this, help] { return String(help); };
        row.open = std::move(open);
    };
    switch (entry.code) {
        case kConfigurePassword:
            row.detail = [this] {
                return String(Frame::_isUserPasswordEmpty ? kEmptyPasswordHelp : kPasswordHelp);
            };
            row.open = [this] { ChangePasswordDialog(this, _host).RunModal(); };
            break;
        case kConfigureLockdown:
            row.detail = [this] {
                return "{color:white}" + String(_lockdownEnabled ? kEnabled : kDisabled) + "{/color}\n\n" +
                       String(kLockdownHelp);
            };
            row.open = [this] {
                if (LockdownDialog(this, _host).RunModal() != 0)
                    _lockdownEnabled = _host.Query("hclsvc/auth/lockdown_is_enabled");
            };
            break;
        case kConfigureNetwork:
            row.detail = [this] { return NetworkDetails(); };
            row.open = [this] { NetworkWindow(this, _host).RunModal(); };
            break;
        case kRestartNetwork:
            opens(kRestartNetworkHelp,
                  [this] { _managementInterface = RestartNetworkDialog::Offer(this, _host); });
            break;
        case kTestNetwork:
            opens(kTestNetworkHelp, [this] { TestDialog(this, _host).RunModal(); });
            break;
        case kNetworkRestore:
            opens(kRestoreHelp, [this] { NetworkRestoreWindow(this, _host).RunModal(); });
            break;
        case kTroubleshooting:
            opens(kTroubleshootingHelp, [this] { TroubleShootingWindow(this, _host).RunModal(); });
            break;
        case kResetConfiguration:
            opens(kResetHelp, [this] { RestoreDialog(this, _host).RunModal(); });
            break;
        case kConfigureKeyboard:
            opens(kKeyboardHelp, [this] { KeyboardDialog(this, _host).RunModal(); });
            // The keyboard dialog passes the host's failures on: the reason alone is logged and shown.
            row.failure = "";
            break;
        case kViewSystemLogs:
            row.footer.clear();
            row.detail = [this] {
                _logs.Refresh(_host);
                return _logs.Details(*Strings());
            };
            row.keys = [this](int key) { _logs.Open(key, *this); };
            break;
        case kViewSupportInfo:
            row.footer = _support.Footer(_supportPage);
            row.detail = [this] { return _support.Compose(_supportPage, *Strings()); };
            row.keys = [this](int key) {
                if (_support.Turn(_supportPage, key)) UpdateDetails();
            };
            break;
        default:
            row.footer.clear();
            break;
    }
    return row;
}

void GeneralWindow::DrawStatusLine() {
    // Kept as the area's text (not printed over it) so that every repaint of the area shows it again.
    const std::string version = String(kVersionLine);
    const int column = std::max(0, COLS / 2 - static_cast<int>(version.size()) / 2);
    StatusLine()->SetText(std::string(static_cast<std::size_t>(column), ' ') + version);
}

std::string GeneralWindow::NetworkDetails() const {
    std::string text;
    if (_managementInterface) {
        const std::string address = Guarded(&TextArea::GetIpValue);
        const std::string hostname = Guarded(&TextArea::GetHostnameValue);
        if (!address.empty())
            text += "{color:white}" + String(kIpv4AddressLabel) + ":{/color}\n  " + address + "\n\n";
        if (!hostname.empty())
            text += "{color:white}" + String(kHostnameLabel) + ":{/color}\n  " + hostname + "\n\n";
    }
    return text + String(kNetworkHelp);
}

void GeneralWindow::Notification() {
    UpdateDetails();
}

bool GeneralWindow::Opens() {
    DrawStatusLine();
    return true;
}

bool GeneralWindow::OnKey(int key) {
    // The main menu takes the line feed alone as Enter.
    if (key == KEY_ENTER) return true;
    // Support information always opens on its first page.
    if (key == KEY_UP || key == KEY_DOWN) _supportPage = 0;
    const bool stays = MenuWindow::OnKey(key);
    // The host's version line may have been unreadable until now.
    if (key == kEnter) DrawStatusLine();
    return stays;
}

}  // namespace Kovo

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
#include "system/RestoreDialog.h"
#include "system/TroubleShootingWindow.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

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
    : MenuWindow(parent, StringId::SystemCustomizationTitle, Footer::kMenuSelectLogOut),
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
        case StringId::MenuConfigurePassword:
            row.detail = [this] {
                return String(Frame::_isUserPasswordEmpty ? StringId::EmptyPasswordHelp
                                                          : StringId::ConfigurePasswordHelp);
            };
            row.open = [this] { ChangePasswordDialog(this, _host).RunModal(); };
            break;
        case StringId::MenuConfigureLockdown:
            row.detail = [this] {
                return "{color:white}" + String(_lockdownEnabled ? StringId::Enabled : StringId::Disabled) +
                       "{/color}\n\n" + String(StringId::ConfigureLockdownHelp);
            };
            row.open = [this] {
                if (LockdownDialog(this, _host).RunModal() != 0)
                    _lockdownEnabled = _host.Query("hclsvc/auth/lockdown_is_enabled");
            };
            break;
        case StringId::MenuConfigureNetwork:
            row.detail = [this] { return NetworkDetails(); };
            row.open = [this] { NetworkWindow(this, _host).RunModal(); };
            break;
        case StringId::MenuRestartNetwork:
            opens(StringId::RestartNetworkHelp,
                  [this] { _managementInterface = RestartNetworkDialog::Offer(this, _host); });
            break;
        case StringId::MenuTestNetwork:
            opens(StringId::TestNetworkHelp, [this] { TestDialog(this, _host).RunModal(); });
            break;
        case StringId::MenuNetworkRestore:
            opens(StringId::NetworkRestoreHelp, [this] { NetworkRestoreWindow(this, _host).RunModal(); });
            break;
        case StringId::MenuTroubleshooting:
            opens(StringId::TroubleshootingHelp, [this] { TroubleShootingWindow(this, _host).RunModal(); });
            break;
        case StringId::MenuResetConfiguration:
            opens(StringId::ResetConfigurationHelp, [this] { RestoreDialog(this, _host).RunModal(); });
            break;
        case StringId::ConfigureKeyboard:
            opens(StringId::ConfigureKeyboardHelp, [this] { KeyboardDialog(this, _host).RunModal(); });
            // The keyboard dialog passes the host's failures on: the reason alone is logged and shown.
            row.failure = "";
            break;
        case StringId::MenuViewSystemLogs:
            row.footer.clear();
            row.detail = [this] {
                _logs.Refresh(_host);
                return _logs.Details(*Strings());
            };
            row.keys = [this](int key) { _logs.Open(key, *this); };
            break;
        case StringId::MenuViewSupportInfo:
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
    const std::string version = String(StringId::HostVersionLine);
    const int column = std::max(0, COLS / 2 - static_cast<int>(version.size()) / 2);
    StatusLine()->SetText(std::string(static_cast<std::size_t>(column), ' ') + version);
}

std::string GeneralWindow::NetworkDetails() const {
    std::string text;
    if (_managementInterface) {
        const std::string address = Guarded(&TextArea::GetIpValue);
        const std::string hostname = Guarded(&TextArea::GetHostnameValue);
        if (!address.empty())
            text += "{color:white}" + String(StringId::Ipv4AddressLabel) + ":{/color}\n  " + address + "\n\n";
        if (!hostname.empty())
            text += "{color:white}" + String(StringId::HostnameLabel) + ":{/color}\n  " + hostname + "\n\n";
    }
    return text + String(StringId::ConfigureNetworkHelp);
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

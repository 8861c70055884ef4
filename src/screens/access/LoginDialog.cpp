#include "access/LoginDialog.h"

#include <curses.h>

#include "access/ChangePasswordDialog.h"
#include "access/LoginAudit.h"
#include "access/SmartCardLogin.h"
#include "frames/Footers.h"
#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "platform/hostctl/DnsConfig.h"
#include "platform/hostctl/HardwareInfo.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/SystemInfo.h"
#include "system/KeyboardDialog.h"
#include "terminal/Keys.h"
#include "terminal/Session.h"
#include "text/InputItem.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

constexpr const char* kLoginFailedEvent = "@&!*@*@(obs.user.kovo.login.failed)";

// The login fields take printable characters and these editing keys.
bool IsFieldKey(int key) {
    return AcceptsKey(FieldKeys::Printable, key) ||
           IsOneOf(key, {KEY_BACKSPACE, kCtrlH, KEY_DC, KEY_LEFT, KEY_RIGHT, KEY_HOME, KEY_END});
}

}  // namespace

std::string LoginDialog::KeyboardText() {
    std::string layout;
    try {
        layout = _host.SystemInfo()->GetKeyboardLayout();
    } catch (const HostCtl::Lib::HostCtlException& e) {
        LogFailure("Unable to read the keyboard layout: ", e);
    }
    return "Configured Keyboard (" + layout + ")";
}

LoginKey RouteLoginKey(int key, int focused, int itemCount, bool hasKeyboardItem) {
    const bool onLast = focused >= itemCount - 1;
    const bool onKeyboard = hasKeyboardItem && focused == 0;
    switch (key) {
        case kEsc:
            return LoginKey::Cancel;
        case KEY_UP:
            return LoginKey::Previous;
        case KEY_DOWN:
            return LoginKey::Next;
        case KEY_F(3):
            return LoginKey::ToggleMode;
        case kTab:
            return onLast ? LoginKey::First : LoginKey::Next;
        case kEnter:
        case KEY_ENTER:
            if (onKeyboard) return LoginKey::Keyboard;
            return onLast ? LoginKey::Submit : LoginKey::Next;
        default:
            return IsFieldKey(key) && !onKeyboard ? LoginKey::Edit : LoginKey::Ignore;
    }
}

std::string HostNameAndDomain(HostAccess& host) {
    try {
        auto dns = host.Dns();
        std::string name = dns->GetHostname();
        const std::string domain = dns->GetDomain();
        if (!domain.empty()) name += "." + domain;
        return name;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        LogFailure("Unable to read the host name: ", e);
        return {};
    }
}

LoginDialog::LoginDialog(Frame* parent, HostAccess& host) : LoginDialog(parent, PamOps{}, host) {}

LoginDialog::LoginDialog(Frame* parent, PamOps pam, HostAccess& host)
    : Dialog(parent, {60, 13, 6, StringId::AuthenticationRequiredTitle, kNoTextId,
                      _smartCardLoginId.empty() ? Footer::kOkCancel : Footer::kSwitchLoginOkCancel}),
      _pam(pam),
      _host(host),
      _hasKeyboard(usingKeyboard),
      _pinMode(!_smartCardLoginId.empty()) {
    SetMode(_pinMode);
}

LoginDialog::~LoginDialog() = default;

void LoginDialog::SetMode(bool pinMode) {
    _pinMode = pinMode;
    SetText(std::string(Strings()->GetString(pinMode ? StringId::PinPrompt : StringId::PasswordPrompt)) +
            HostNameAndDomain(_host));
    ClearItems();
    if (_hasKeyboard) _keyboard = &AddLabel(KeyboardText(), true);
    _name = &AddField(Strings()->GetString(pinMode ? StringId::LoginIdLabel : StringId::LoginNameLabel),
                      pinMode ? _smartCardLoginId : std::string("root"), -1, FieldKeys::Printable);
    _secret = &AddField(Strings()->GetString(pinMode ? StringId::PinLabel : StringId::PasswordLabel), "", -1,
                        FieldKeys::Printable);
    _secret->SetMasked(true);
    ShowItems();
    Items().Draw();
}

int LoginDialog::HandleKey() {
    return RunWithCursor(0);
}

bool LoginDialog::OnKey(int key) {
    const int itemCount = _hasKeyboard ? 3 : 2;
    switch (RouteLoginKey(key, Items().GetSelected(), itemCount, _hasKeyboard)) {
        case LoginKey::Cancel:
            Close(0);
            break;
        case LoginKey::Previous:
            Items().Up();
            break;
        case LoginKey::Next:
            Items().Down();
            break;
        case LoginKey::First:
            Focus(0);
            break;
        case LoginKey::ToggleMode:
            SetMode(!_pinMode);
            break;
        case LoginKey::Edit:
            FocusedField()->EditKey(key);
            Items().Draw();
            break;
        case LoginKey::Keyboard:
            ChangeKeyboard();
            break;
        case LoginKey::Submit:
            if (TryLogin()) {
                Close(1);
                break;
            }
            _secret->SetValue("");
            Items().Draw();
            break;
        case LoginKey::Ignore:
            break;
    }
    return true;
}

void LoginDialog::ChangeKeyboard() {
    try {
        KeyboardDialog keyboard(this, _host);
        keyboard.RunModal();
    } catch (const HostCtl::Lib::HostCtlException& e) {
        LogFailure("Unable to change the keyboard layout: ", e);
        // The operator asked for a layout; the host's answer is theirs to see, not only the log's.
        MessageDialog(this, StringId::ConfigureKeyboard, e.what()).RunModal();
    }
    // Show the layout the host uses now, whatever the dialog managed to do.
    _keyboard->SetText(KeyboardText());
    Items().Draw();
}

void LoginDialog::SetSessionUser() {
    _loginName = _userName;
    _isLoggedWithSmartCard = HasSmartCardForUser(*_host.SmartCards(), _userName);
}

bool LoginDialog::TryLogin() {
    _userName = _name->GetValue();
    const int status = _pam.authenticate(_userName, _secret->GetValue());
    const char* user = _userName.c_str();
    switch (status) {
        case PAM_SUCCESS:
            SetSessionUser();
            _isUserPasswordEmpty = _secret->GetValue().empty();
            LogAuth(LOG_EMERG, std::string("Authentication of user ") + user + " succeeded");
            LogInfo(std::string("User ") + user + " logged in");
            AuditLogin("login.connect", _userName, true);
            return true;
        case PAM_PERM_DENIED:
            Fail("Access denied for user " + _userName, "No permission",
                 "Access denied for user " + _userName, StringId::NoLoginPermission);
            return false;
        case PAM_NEW_AUTHTOK_REQD: {
            SetSessionUser();
            // The host event deliberately carries the access-denied text.
            Fail("Password has expired for user " + _userName, "Password expired",
                 "Access denied for user " + _userName, StringId::PasswordExpired);
            ChangePasswordDialog change(this, _pam, _host);
            change.RunModal();
            return false;
        }
        default: {
            const std::string line = "Authentication of user " + _userName + " failed";
            Fail(line, "Invalid Login", line, StringId::InvalidLogin);
            return false;
        }
    }
}

void LoginDialog::Fail(const std::string& logLine, const char* reason, const std::string& eventMessage,
                       unsigned messageId) {
    LogAuth(LOG_ERR, logLine);
    AuditLogin("login.connect", _userName, false, reason);
    _host.PostEvent(kLoginFailedEvent + eventMessage);
    MessageDialog message(this, StringId::AuthenticationFailedTitle, messageId);
    message.RunModal();
}

}  // namespace Kovo

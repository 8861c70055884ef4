#include "access/LoginDialog.h"

#include <curses.h>
#include <syslog.h>

#include <cctype>

#include "access/ChangePasswordDialog.h"
#include "access/LoginAudit.h"
#include "access/SmartCardLogin.h"
#include "app/CommandRunner.h"
#include "app/HostEvent.h"
#include "app/KeyReader.h"
#include "app/MessageDialog.h"
#include "app/Startup.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/zenkctl/DnsConfigImpl.h"
#include "platform/zenkctl/SystemInfoImpl.h"
#include "system/KeyboardDialog.h"
#include "text/InputItem.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {

constexpr int kWidth = 60, kHeight = 13, kHeaderHeight = 6;
constexpr int kEsc = 27, kTab = 9, kEnter = 10, kCtrlH = 8;

enum StringId : unsigned {
    kTitle = 136,
    kPasswordPrompt = 137,
    kPinPrompt = 138,
    kLoginName = 141,
    kLoginId = 142,
    kPassword = 143,
    kPin = 144,
    kFailedTitle = 145,
    kInvalidLogin = 146,
    kNoPermission = 147,
    kExpired = 148,
};

constexpr const char* kFooter =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  {color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";
// Kept as the operator has always seen it: "{align:left}" and the colour "black>" are not markup tags,
// so "<F3>" keeps the footer's own colours.
constexpr const char* kCardFooter =
    "{align:left}{color:black>}<F3>{/color} {color:dark-grey}Switch PIN/Password Login{/color}{/align}"
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  {color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";
constexpr const char* kLoginFailedEvent = "@&!*@*@(obs.user.kovo.login.failed)";

bool IsFieldKey(int key) {
    switch (key) {
        case KEY_BACKSPACE:
        case kCtrlH:
        case KEY_DC:
        case KEY_LEFT:
        case KEY_RIGHT:
        case KEY_HOME:
        case KEY_END:
            return true;
        default:
            return key >= 0 && key < 256 && isprint(key);
    }
}

std::string KeyboardText() {
    std::string layout;
    try {
        layout = ZenkCtl::System::SystemInfoImpl().GetKeyboardLayout();
    } catch (const HostCtl::Lib::HostCtlException& e) {
        syslog(LOG_ERR, "Unable to read the keyboard layout: %s", e.what());
    }
    return "Configured Keyboard (" + layout + ")";
}

}  // namespace

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

std::string HostNameAndDomain() {
    try {
        ZenkCtl::Network::DnsConfigImpl dns("defaultNetStack");
        std::string name = dns.GetHostname();
        const std::string domain = dns.GetDomain();
        if (!domain.empty()) name += "." + domain;
        return name;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        syslog(LOG_ERR, "Unable to read the host name: %s", e.what());
        return {};
    }
}

LoginDialog::LoginDialog(Frame* parent) : LoginDialog(parent, PamOps{}) {}

LoginDialog::LoginDialog(Frame* parent, PamOps pam)
    : Dialog(parent, kWidth, kHeight, kHeaderHeight), _pam(pam), _pinMode(!_smartCardLoginId.empty()) {
    Window* content = Content();
    _list = new ItemList(content, 0, 0, content->Width(), content->Height());
    if (usingKeyboard) _keyboard = std::make_unique<LabelItem>(KeyboardText(), true);
    SetTitle(Strings()->GetString(kTitle));
    SetFooter(_smartCardLoginId.empty() ? kFooter : kCardFooter);
    SetMode(_pinMode);
}

LoginDialog::~LoginDialog() = default;

void LoginDialog::SetMode(bool pinMode) {
    _pinMode = pinMode;
    SetText(std::string(Strings()->GetString(pinMode ? kPinPrompt : kPasswordPrompt)) + HostNameAndDomain());
    _name = std::make_unique<InputItem>(Strings()->GetString(pinMode ? kLoginId : kLoginName),
                                        pinMode ? _smartCardLoginId : std::string("root"), -1);
    _secret = std::make_unique<InputItem>(Strings()->GetString(pinMode ? kPin : kPassword), "", -1);
    _secret->SetMasked(true);
    std::vector<Item*> items;
    if (_keyboard) items.push_back(_keyboard.get());
    items.push_back(_name.get());
    items.push_back(_secret.get());
    _list->SetItems(items);
    _list->Draw();
}

void LoginDialog::Focus(int ordinal) {
    _list->Select(ordinal);
    _list->Draw();
}

int LoginDialog::HandleKey() {
    SetActive(true);
    SetCursor(true);
    Focus(0);
    const int itemCount = _keyboard ? 3 : 2;
    for (;;) {
        const int key = GetKey(this, true);
        switch (RouteLoginKey(key, _list->GetSelected(), itemCount, _keyboard != nullptr)) {
            case LoginKey::Cancel:
                SetCursor(false);
                SetActive(false);
                return 0;
            case LoginKey::Previous:
                _list->Up();
                break;
            case LoginKey::Next:
                _list->Down();
                break;
            case LoginKey::First:
                Focus(0);
                break;
            case LoginKey::ToggleMode:
                SetMode(!_pinMode);
                break;
            case LoginKey::Edit:
                static_cast<InputItem*>(_list->GetSelectedItem())->EditKey(key);
                _list->Draw();
                break;
            case LoginKey::Keyboard:
                ChangeKeyboard();
                break;
            case LoginKey::Submit:
                if (TryLogin()) {
                    SetCursor(false);
                    SetActive(false);
                    return 1;
                }
                _secret->SetValue("");
                _list->Draw();
                break;
            case LoginKey::Ignore:
                break;
        }
    }
}

void LoginDialog::ChangeKeyboard() {
    try {
        KeyboardDialog keyboard(this);
        keyboard.RunModal();
    } catch (const HostCtl::Lib::HostCtlException& e) {
        syslog(LOG_ERR, "Unable to change the keyboard layout: %s", e.what());
    }
    // Show the layout the host uses now, whatever the dialog managed to do.
    _keyboard->SetText(KeyboardText());
    _list->Draw();
}

void LoginDialog::SetSessionUser() {
    _loginName = _userName;
    _isLoggedWithSmartCard = HasSmartCardForUser(_userName);
}

bool LoginDialog::TryLogin() {
    _userName = _name->GetValue();
    const int status = _pam.authenticate(_userName, _secret->GetValue());
    const char* user = _userName.c_str();
    switch (status) {
        case PAM_SUCCESS:
            SetSessionUser();
            _isUserPasswordEmpty = _secret->GetValue().empty();
            syslog(LOG_AUTH | LOG_EMERG, "Authentication of user %s succeeded", user);
            syslog(LOG_INFO, "User %s logged in", user);
            AuditLogin("login.connect", _userName, true);
            return true;
        case PAM_PERM_DENIED:
            Fail("Access denied for user " + _userName, "No permission",
                 "Access denied for user " + _userName, kNoPermission);
            return false;
        case PAM_NEW_AUTHTOK_REQD: {
            SetSessionUser();
            // The host event deliberately carries the access-denied text.
            Fail("Password has expired for user " + _userName, "Password expired",
                 "Access denied for user " + _userName, kExpired);
            ChangePasswordDialog change(this, _pam);
            change.RunModal();
            return false;
        }
        default: {
            const std::string line = "Authentication of user " + _userName + " failed";
            Fail(line, "Invalid Login", line, kInvalidLogin);
            return false;
        }
    }
}

void LoginDialog::Fail(const std::string& logLine, const char* reason, const std::string& eventMessage,
                       unsigned messageId) {
    syslog(LOG_AUTH | LOG_ERR, "%s", logLine.c_str());
    AuditLogin("login.connect", _userName, false, reason);
    HostEvent::Post(kLoginFailedEvent + eventMessage);
    MessageDialog message(this, kFailedTitle, messageId);
    message.RunModal();
}

}  // namespace Kovo

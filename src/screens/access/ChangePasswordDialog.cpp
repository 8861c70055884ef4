#include "access/ChangePasswordDialog.h"

#include <curses.h>

#include "access/LoginDialog.h"
#include "access/SamePasswordConfirmDialog.h"
#include "frames/Footers.h"
#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "terminal/HostEvent.h"
#include "terminal/Keys.h"
#include "text/InputItem.h"
#include "text/ItemList.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

// The password fields take printable characters and exactly these editing keys.
bool IsFieldKey(int key) {
    return AcceptsKey(FieldKeys::Printable, key) ||
           IsOneOf(key, {KEY_BACKSPACE, kCtrlH, KEY_DC, KEY_LEFT, KEY_END});
}

}  // namespace

PasswordKey RoutePasswordKey(int key, int focused) {
    if (key == kEsc) return PasswordKey::Cancel;
    if (IsFieldKey(key)) return PasswordKey::Edit;
    if (key == kEnter || key == KEY_ENTER) {
        if (focused == 0) return PasswordKey::VerifyOld;
        return focused == 1 ? PasswordKey::Next : PasswordKey::Submit;
    }
    if (key == kTab) {
        // Focus leaves the old password field only through its check, never by Tab.
        if (focused == 1) return PasswordKey::Next;
        if (focused == 2) return PasswordKey::Previous;
    }
    return PasswordKey::Ignore;
}

NewPasswordCheck CheckNewPassword(const std::string& oldPassword, const std::string& newPassword,
                                  const std::string& confirmed) {
    if (newPassword != confirmed) return NewPasswordCheck::Mismatch;
    if (newPassword.empty()) return NewPasswordCheck::Empty;
    if (newPassword == oldPassword) return NewPasswordCheck::SameAsOld;
    return NewPasswordCheck::Ready;
}

ChangePasswordDialog::ChangePasswordDialog(Frame* parent, HostAccess& host)
    : ChangePasswordDialog(parent, PamOps{}, host) {}

ChangePasswordDialog::ChangePasswordDialog(Frame* parent, PamOps pam, HostAccess& host)
    : Dialog(parent, {60, 13, 6, StringId::ConfigurePasswordTitle, StringId::ConfigurePasswordText,
                      Footer::kOkCancel}),
      _pam(pam),
      _host(host) {
    const unsigned labels[kFieldCount] = {StringId::OldPasswordLabel, StringId::NewPasswordLabel,
                                          StringId::ConfirmPasswordLabel};
    for (int i = 0; i < kFieldCount; ++i) {
        _fields[i] = &AddField(Strings()->GetString(labels[i]), "", -1, FieldKeys::Printable);
        _fields[i]->SetMasked(true);
    }
    ShowItems();
}

ChangePasswordDialog::~ChangePasswordDialog() = default;

void ChangePasswordDialog::Error(unsigned messageId) {
    MessageDialog message(this, StringId::ConfigurePasswordErrorTitle, messageId);
    message.RunModal();
    Items().Draw();
}

int ChangePasswordDialog::HandleKey() {
    return RunWithCursor(kOld);
}

bool ChangePasswordDialog::OnKey(int key) {
    const int focused = Items().GetSelected();
    switch (RoutePasswordKey(key, focused)) {
        case PasswordKey::Cancel:
            Close(0);
            break;
        case PasswordKey::Edit:
            _fields[focused]->EditKey(key);
            Items().Draw();
            break;
        case PasswordKey::VerifyOld:
            if (VerifyOld()) Focus(kNew);
            break;
        case PasswordKey::Next:
            Focus(focused + 1);
            break;
        case PasswordKey::Previous:
            Focus(focused - 1);
            break;
        case PasswordKey::Submit:
            if (Submit()) Close(1);
            break;
        case PasswordKey::Ignore:
            break;
    }
    return true;
}

bool ChangePasswordDialog::VerifyOld() {
    const int status = _pam.authenticate(_loginName, _fields[kOld]->GetValue());
    // The old password of an expired account is right even though the account needs a new one.
    if (status == PAM_SUCCESS || status == PAM_NEW_AUTHTOK_REQD) return true;
    _fields[kOld]->SetValue("");
    Error(StringId::WrongOldPassword);
    Focus(kOld);
    return false;
}

bool ChangePasswordDialog::Submit() {
    const std::string& oldPassword = _fields[kOld]->GetValue();
    const std::string& newPassword = _fields[kNew]->GetValue();
    switch (CheckNewPassword(oldPassword, newPassword, _fields[kConfirm]->GetValue())) {
        case NewPasswordCheck::Mismatch:
            Error(StringId::PasswordMismatch);
            return false;
        case NewPasswordCheck::Empty:
            Error(StringId::EmptyPasswordRefused);
            return false;
        case NewPasswordCheck::SameAsOld: {
            SamePasswordConfirmDialog confirm(this);
            const bool sure = confirm.RunModal() != 0;
            Items().Draw();
            if (!sure) return false;
            break;
        }
        case NewPasswordCheck::Ready:
            break;
    }
    if (!_pam.changePassword(_loginName, oldPassword, newPassword)) {
        Error(StringId::PasswordChangeFailed);
        Focus(kNew);
        return false;
    }
    AfterChange();
    return true;
}

void ChangePasswordDialog::AfterChange() {
    // Saves the host's configuration so that the new password survives a reboot.
    _host.Run("/sbin/backup.sh", {"backup.sh"});
    _host.RefreshAgent();
    LogInfo("Login password for user " + _loginName + " has changed");
    _host.PostEvent(HostEvent::Text("obs.user.kovo.login.passwd.changed",
                                    "Login password for user " + _loginName + " changed"));
    _isUserPasswordEmpty = _fields[kNew]->GetValue().empty();
}

}  // namespace Kovo

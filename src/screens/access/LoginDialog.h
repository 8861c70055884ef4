#pragma once

#include <string>

#include "access/Pam.h"
#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

class InputItem;
class ItemList;
class LabelItem;

// What a key does in the login dialog, given the focused item (its ordinal) and the list's shape.
enum class LoginKey { Ignore, Cancel, Previous, Next, First, ToggleMode, Edit, Keyboard, Submit };
LoginKey RouteLoginKey(int key, int focused, int itemCount, bool hasKeyboardItem);

// "Authentication Required": asks for a login name and password (or a smart card's login id and PIN) and
// checks them through PAM. HandleKey returns 1 after a successful login (the session's user is set), 0 when
// left with Esc.
class LoginDialog : public Dialog {
  public:
    explicit LoginDialog(Frame* parent, HostAccess& host);
    LoginDialog(Frame* parent, PamOps pam, HostAccess& host);
    ~LoginDialog() override;

    int HandleKey() override;

    bool PinMode() const { return _pinMode; }
    const InputItem& NameField() const { return *_name; }
    const InputItem& SecretField() const { return *_secret; }
    ItemList& List() { return Items(); }

  protected:
    bool OnKey(int key) override;

  private:
    void SetMode(bool pinMode);
    // Runs the keyboard layout dialog, then shows the layout the host ended up with.
    void ChangeKeyboard();
    // One attempt with the typed credentials; true when the user is logged in.
    bool TryLogin();
    // Logs, audits and posts a failed attempt, then tells the operator why.
    void Fail(const std::string& logLine, const char* reason, const std::string& eventMessage,
              unsigned messageId);
    void SetSessionUser();

    // The host's keyboard layout as the keyboard line shows it.
    std::string KeyboardText();

    PamOps _pam;
    HostAccess& _host;
    bool _hasKeyboard;
    // Owned by the dialog's items.
    LabelItem* _keyboard = nullptr;
    InputItem* _name = nullptr;
    InputItem* _secret = nullptr;
    bool _pinMode;
    std::string _userName;
};

// The host's name and domain as dialogs address it ("host01.lab.example"); empty when unknown.
std::string HostNameAndDomain(HostAccess& host);

}  // namespace Kovo

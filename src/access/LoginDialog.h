#pragma once

#include <memory>
#include <string>

#include "access/Pam.h"
#include "app/Dialog.h"

namespace Kovo {

class InputItem;
class ItemList;
class LabelItem;

// What a key does in the login dialog, given the focused item (its ordinal) and the list's shape.
enum class LoginKey { Ignore, Cancel, Previous, Next, First, ToggleMode, Edit, Keyboard, Submit };
LoginKey RouteLoginKey(int key, int focused, int itemCount, bool hasKeyboardItem);

// Asks for a login name and password (or a smart card's login id and PIN) and checks them through PAM.
// HandleKey returns 1 after a successful login (the session's user is set), 0 when left with Esc.
class LoginDialog : public Dialog {
  public:
    explicit LoginDialog(Frame* parent);
    LoginDialog(Frame* parent, PamOps pam);
    ~LoginDialog() override;

    int HandleKey() override;

    bool PinMode() const { return _pinMode; }
    const InputItem& NameField() const { return *_name; }
    const InputItem& SecretField() const { return *_secret; }
    ItemList& List() const { return *_list; }

  private:
    void SetMode(bool pinMode);
    void Focus(int ordinal);
    // Runs the keyboard layout dialog, then shows the layout the host ended up with.
    void ChangeKeyboard();
    // One attempt with the typed credentials; true when the user is logged in.
    bool TryLogin();
    // Logs, audits and posts a failed attempt, then tells the operator why.
    void Fail(const std::string& logLine, const char* reason, const std::string& eventMessage,
              unsigned messageId);
    void SetSessionUser();

    PamOps _pam;
    ItemList* _list = nullptr;  // owned by the window tree
    std::unique_ptr<LabelItem> _keyboard;
    std::unique_ptr<InputItem> _name;
    std::unique_ptr<InputItem> _secret;
    bool _pinMode;
    std::string _userName;
};

// The host's name and domain as dialogs address it ("host01.lab.example"); empty when unknown.
std::string HostNameAndDomain();


}  // namespace Kovo

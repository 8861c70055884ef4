#pragma once

#include <string>

#include "access/Pam.h"
#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

class InputItem;
class ItemList;

// What a key does in the password dialog, given the focused field (0 old, 1 new, 2 confirm).
enum class PasswordKey { Ignore, Cancel, Edit, VerifyOld, Next, Previous, Submit };
PasswordKey RoutePasswordKey(int key, int focused);

// The checks of a new password before the host is asked, in the order the operator hears about them.
enum class NewPasswordCheck { Mismatch, Empty, SameAsOld, Ready };
NewPasswordCheck CheckNewPassword(const std::string& oldPassword, const std::string& newPassword,
                                  const std::string& confirmed);

// "Configure Password": sets a new login password for the session's user. HandleKey returns 1 when the
// password was changed, 0 when left with Esc.
class ChangePasswordDialog : public Dialog {
  public:
    explicit ChangePasswordDialog(Frame* parent, HostAccess& host);
    ChangePasswordDialog(Frame* parent, PamOps pam, HostAccess& host);
    ~ChangePasswordDialog() override;

    int HandleKey() override;

    const InputItem& Field(int index) const { return *_fields[index]; }
    ItemList& List() { return Items(); }

  protected:
    bool OnKey(int key) override;

  private:
    enum Field { kOld, kNew, kConfirm, kFieldCount };
    void Error(unsigned messageId);
    bool VerifyOld();
    // The checks, then the change itself; true once the host has the new password.
    bool Submit();
    void AfterChange();

    PamOps _pam;
    HostAccess& _host;
    InputItem* _fields[kFieldCount];  // owned by the dialog's items
};

}  // namespace Kovo

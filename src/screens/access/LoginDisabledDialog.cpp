#include "access/LoginDisabledDialog.h"

#include "access/LoginDialog.h"
#include "frames/Footers.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {
constexpr unsigned kTitle = 139, kDisabled = 140;
}  // namespace

LoginDisabledDialog::LoginDisabledDialog(Frame* parent, HostAccess& host)
    : Dialog(parent, {60, 9, 6, kTitle, 0, Footer::kOk}) {
    SetText(std::string(Strings()->GetString(kDisabled)) + HostNameAndDomain(host));
}

bool LoginDisabledDialog::OnKey(int key) {
    if (IsEnter(key) || key == kEsc) Close(0);
    return true;
}

}  // namespace Kovo

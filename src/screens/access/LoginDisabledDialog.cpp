#include "access/LoginDisabledDialog.h"

#include "access/LoginDialog.h"
#include "frames/Footers.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

// The host's full name can be long: given at construction, the text makes the dialog as tall as it needs.
LoginDisabledDialog::LoginDisabledDialog(Frame* parent, HostAccess& host)
    : Dialog(parent, {60, 9, 6, StringId::AuthenticationDeniedTitle, kNoTextId, Footer::kOk},
             std::string(GetStringFactory("en_US")->GetString(StringId::ConsoleAccessDisabled)) +
                 HostNameAndDomain(host)) {}

bool LoginDisabledDialog::OnKey(int key) {
    if (IsEnter(key) || key == kEsc) Close(0);
    return true;
}

}  // namespace Kovo

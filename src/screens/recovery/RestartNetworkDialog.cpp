#include "recovery/RestartNetworkDialog.h"

#include "frames/Footers.h"
#include "recovery/DoRestartNetworkDialog.h"
#include "terminal/Colors.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {
constexpr unsigned kTitle = 122, kWarning = 123, kQuestion = 124;
}  // namespace

RestartNetworkDialog::RestartNetworkDialog(Frame* parent, HostCtl::Network::ZenkNic& nic, HostAccess& host)
    : Dialog(parent, {70, 12, 7, kTitle, kWarning, Footer::kF11OkCancel}), _nic(nic), _host(host) {
    AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)
        .SetText(Strings()->GetString(kQuestion));
}

bool RestartNetworkDialog::OnKey(int key) {
    if (key == KEY_F(11)) {
        DoRestartNetworkDialog(this, _nic, _host).RunModal();
        Close(1);
        return true;
    }
    // Esc is the only other key that means anything.
    return key != kEsc;
}

}  // namespace Kovo

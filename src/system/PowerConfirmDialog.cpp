#include "system/PowerConfirmDialog.h"

#include "system/ActionHost.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {
constexpr int kWidth = 70, kHeight = 10, kHeaderHeight = 7;
}  // namespace

PowerConfirmDialog::PowerConfirmDialog(Frame* parent, bool keepVms, unsigned titleId, unsigned bodyId,
                                       std::string command, ActionHost& host)
    : Dialog(parent, kWidth, kHeight, kHeaderHeight),
      _keepVms(keepVms),
      _titleId(titleId),
      _bodyId(bodyId),
      _command(std::move(command)),
      _host(host) {}

int PowerConfirmDialog::HandleKey() {
    SetTitle(Strings()->GetString(_titleId));
    SetText(Strings()->GetString(_bodyId));
    // The helpers' own failures do not stop the power command: the operator asked for it.
    _host.PowerOffVms(_keepVms);
    if (_host.Shell(_command) == -1) return 0;
    for (;;) _host.WaitForHostDown(this);
}

}  // namespace Kovo

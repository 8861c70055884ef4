#include "system/PowerConfirmDialog.h"

#include "frames/HostAccess.h"

namespace Kovo {

PowerConfirmDialog::PowerConfirmDialog(Frame* parent, bool keepVms, unsigned titleId, unsigned bodyId,
                                       std::string command, HostAccess& host)
    : Dialog(parent, {70, 10, 7, titleId, bodyId}),
      _keepVms(keepVms),
      _command(std::move(command)),
      _host(host) {}

int PowerConfirmDialog::HandleKey() {
    // The helpers' own failures do not stop the power command: the operator asked for it.
    _host.PowerOffVms(_keepVms);
    if (_host.Shell(_command) == -1) return 0;
    for (;;) _host.WaitForHostDown(this);
}

}  // namespace Kovo

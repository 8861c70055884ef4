#pragma once

#include "frames/ConfirmProgressDialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

// "Reset System Configuration: Confirm": F11 resets the host's configuration to its defaults, then
// Enter alone restarts the host. Returns 0 on Esc and, silently, when the reset fails; after a reset it
// does not return.
class RestoreDialog : public ConfirmProgressDialog {
  public:
    explicit RestoreDialog(Frame* parent, HostAccess& host);

  protected:
    bool Run() override;
    int Finish() override;
    const char* DoneFooter() const override;

  private:
    HostAccess& _host;
};

}  // namespace Kovo

#pragma once

#include <string>

#include "frames/Dialog.h"

namespace Kovo {

class HostAccess;

// Takes the host down: shows what is happening, powers the virtual machines off (forcibly unless they
// are to be kept), then runs the power command. Returns 0 only when that command could not be run at
// all; otherwise it stays, discarding keys, until the host is gone.
class PowerConfirmDialog : public Dialog {
  public:
    int HandleKey() override;

  protected:
    PowerConfirmDialog(Frame* parent, bool keepVms, unsigned titleId, unsigned bodyId, std::string command,
                       HostAccess& host);

  private:
    bool _keepVms;
    std::string _command;
    HostAccess& _host;
};

}  // namespace Kovo

#pragma once

#include <vector>

#include "frames/HostAccess.h"
#include "frames/MenuWindow.h"

namespace Kovo {

// "Troubleshooting Mode Options": switches the host shell and SSH services on and off, and opens the
// shell time-outs, the console idle time-out and the restart of the management agents. The time-outs
// entry can only be chosen while both services are off. Returns 1 when left with Esc.
class TroubleShootingWindow : public MenuWindow {
  public:
    explicit TroubleShootingWindow(Frame* parent, HostAccess& host);

    bool ShellEnabled() const { return _shellEnabled; }
    bool SshEnabled() const { return _sshEnabled; }

  private:
    std::vector<Row> Rows() override;

    HostAccess& _host;
    bool _shellEnabled;
    bool _sshEnabled;
};

}  // namespace Kovo

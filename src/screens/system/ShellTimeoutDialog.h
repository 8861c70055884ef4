#pragma once

#include <cstdint>
#include <string>

#include "frames/HostAccess.h"
#include "system/TimeoutDialog.h"

namespace Kovo {

// The shell's availability time-out and the idle time-out of interactive shell sessions, in minutes.
// Enter sets each changed one through the host's option tools; a new availability time-out restarts
// the shell and SSH services that are running so that it takes effect.
class ShellTimeoutDialog : public TimeoutDialog {
  public:
    explicit ShellTimeoutDialog(Frame* parent, HostAccess& host);

  protected:
    void Apply() override;

  private:
    uint32_t ReadOption(const char* option);
    // True when the host took the value.
    bool WriteOption(const char* option, uint32_t minutes);
    void RestartIfRunning(const char* initScript);

    uint32_t _current[2];
};

}  // namespace Kovo

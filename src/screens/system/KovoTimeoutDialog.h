#pragma once

#include <cstdint>

#include "frames/HostAccess.h"
#include "system/TimeoutDialog.h"

namespace Kovo {

// The console's own idle time-out in minutes. A changed value is stored in seconds and applies at once
// to this session.
class KovoTimeoutDialog : public TimeoutDialog {
  public:
    explicit KovoTimeoutDialog(Frame* parent, HostAccess& host);

    uint32_t CurrentSeconds() const { return _seconds; }

  protected:
    void Apply() override;

  private:
    uint32_t ReadSeconds();

    uint32_t _seconds;
};

}  // namespace Kovo

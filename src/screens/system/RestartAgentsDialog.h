#pragma once

#include "frames/ConfirmProgressDialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

class CheckItem;

// "Restart Management Agents: Confirm": restarts the host's management agents after F11, optionally
// capturing a live core of the host agent at the same time. Each step's line gets " Done." when it
// ends, whatever its outcome; once done only Enter closes the dialog (1). Esc before F11 leaves with 0.
class RestartAgentsDialog : public ConfirmProgressDialog {
  public:
    explicit RestartAgentsDialog(Frame* parent, HostAccess& host);

    bool CollectLiveCore() const;

    // The live-core capture, run on a thread of its own that nobody waits for: it touches no dialog
    // state, only the host.
    static void GenerateAgentLiveCore(HostAccess& host);

  protected:
    bool Run() override;

  private:
    void Step(unsigned lineId, const char* command);

    HostAccess& _host;
    CheckItem& _liveCore;
};

}  // namespace Kovo

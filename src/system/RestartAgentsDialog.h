#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/Dialog.h"
#include "system/ActionHost.h"

namespace Kovo {

class CheckItem;
class ItemList;
class TextArea;

// Restarts the host's management agents after F11, optionally capturing a live core of the host agent
// at the same time. Each step's line gets " Done." when it ends, whatever its outcome; once done only
// Enter closes the dialog (1). Esc before F11 leaves with 0.
class RestartAgentsDialog : public Dialog {
  public:
    explicit RestartAgentsDialog(Frame* parent, ActionHost& host = ActionHost::System());
    ~RestartAgentsDialog() override;

    int HandleKey() override;
    bool CollectLiveCore() const;

    // The live-core capture, run on a thread of its own that nobody waits for: it touches no dialog
    // state, only the host.
    static void* GenerateAgentLiveCore(void*);

  private:
    void Restart();
    // Shows the finished lines and, when given, the step now running.
    void ShowProgress(const std::string& running = "");
    void Step(unsigned lineId, const char* command);

    ActionHost& _host;
    TextArea* _progress;  // owned by the window tree
    ItemList* _list;      // owned by the window tree
    std::unique_ptr<CheckItem> _liveCore;
    std::vector<std::string> _finished;
};

}  // namespace Kovo

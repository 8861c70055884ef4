#pragma once

#include <memory>
#include <vector>

#include "frames/HostAccess.h"
#include "frames/RootWindow.h"

namespace Kovo {

class LabelItem;

// "Troubleshooting Mode Options": switches the host shell and SSH services on and off, and opens the
// shell time-outs, the console idle time-out and the restart of the management agents. The time-outs
// entry can only be chosen while both services are off. Returns 1 when left with Esc.
class TroubleShootingWindow : public RootWindow {
  public:
    enum Entry : int { kShellEntry, kSshEntry, kShellTimeoutsEntry, kKovoTimeoutEntry, kRestartAgentsEntry };

    explicit TroubleShootingWindow(Frame* parent, HostAccess& host);
    ~TroubleShootingWindow() override;

    int HandleKey() override;
    void UpdateDetails() override;

    bool ShellEnabled() const { return _shellEnabled; }
    bool SshEnabled() const { return _sshEnabled; }
    const LabelItem& EntryItem(int entry) const { return *_items.at(static_cast<std::size_t>(entry)); }
    // The entry under the cursor.
    int SelectedEntry() const;

  private:
    // What differs between the two service toggles.
    struct Service;
    static const Service kShell;
    static const Service kSsh;

    bool ServiceRunning(const char* initScript);
    void Toggle(const Service& service, bool& enabled);
    void ShowEntries();
    void Open(Frame& dialog);

    HostAccess& _host;
    std::vector<std::unique_ptr<LabelItem>> _items;
    bool _shellEnabled;
    bool _sshEnabled;
};

}  // namespace Kovo

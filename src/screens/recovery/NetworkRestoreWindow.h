#pragma once

#include <memory>
#include <vector>

#include "frames/HostAccess.h"
#include "frames/RootWindow.h"

namespace HostCtl::Network {
class ZenkNic;
}

namespace Kovo {

class LabelItem;

// "Network Restore Options": the ways back for a host whose management network is broken. The factory
// restore is always offered; the two repairs of a distributed switch only while the management
// interface sits on one. Entries are known by their string ids, so removing one never shifts what
// another does. Returns 1 when left with Esc.
class NetworkRestoreWindow : public RootWindow {
  public:
    enum Entry : unsigned { kRestoreNetwork = 63, kRestoreStandardSwitch = 64, kRestoreDvs = 65 };

    explicit NetworkRestoreWindow(Frame* parent, HostAccess& host);
    ~NetworkRestoreWindow() override;

    int HandleKey() override;
    void UpdateDetails() override;

    // The entries shown, in order.
    const std::vector<unsigned>& Entries() const { return _entries; }
    unsigned SelectedEntry() const;

  private:
    // Whether the management interface is plugged into a port of a distributed switch; false (logged)
    // whenever that cannot be told, so the window always opens.
    bool ManagementOnDistributedSwitch();
    void ShowEntries(unsigned selected);
    void Choose(unsigned entry);
    void RemoveEntry(unsigned entry);

    HostAccess& _host;
    std::unique_ptr<HostCtl::Network::ZenkNic> _nic;
    std::vector<std::unique_ptr<LabelItem>> _items;
    std::vector<unsigned> _entries;
};

}  // namespace Kovo

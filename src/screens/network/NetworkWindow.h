#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "frames/HostAccess.h"
#include "frames/RootWindow.h"
#include "network/PendingNetwork.h"

namespace Kovo {

class LabelItem;

// "Configure Management Network": the management network's settings on the left, the pending value of
// the selected one on the right. Each entry opens the dialog that edits it; the changes are kept in the
// window's pending record and reach the host only when the operator leaves with Esc and answers Y.
// Returns 1 when the window closes.
class NetworkWindow : public RootWindow {
  public:
    enum Entry : int { kAdapters, kVlan, kIpv4, kIpv6, kDns, kSuffixes };

    explicit NetworkWindow(Frame* parent, HostAccess& host);
    ~NetworkWindow() override;

    int HandleKey() override;
    void UpdateDetails() override;

    const PendingNetwork& Pending() const { return _pending; }
    // The entry under the cursor.
    Entry SelectedEntry() const;

  private:
    // Opens the selected entry's dialog and takes what it returns into the pending record.
    void Open(Entry entry);
    void EditAdapters();
    void EditVlan();
    void EditIpv4();
    void EditIpv6();
    void EditDns();
    void EditSuffixes();
    // Takes a dialog's accepted value into the record: marks the record changed and redraws.
    void Changed();
    // Esc: true when the window closes.
    bool Leave();

    std::string DetailText(Entry entry) const;
    std::string String(unsigned id) const;
    // A label in white and its value in light grey ("Not set" when empty), on one line.
    std::string Line(unsigned labelId, const std::string& value) const;
    std::string AdapterLines() const;
    std::string Ipv4Lines() const;
    std::string Ipv6Lines() const;
    // The IPv6 addresses the interface will have: the static ones pending, with what the host obtained by
    // itself at entry in the ways still chosen.
    std::vector<HostCtl::Network::Ipv6Network> PendingIpv6Networks() const;
    // The IPv6 gateway pending: the one typed in the IPv6 dialog, else the host's at entry.
    HostCtl::Network::Ipv6Address PendingIpv6Gateway() const;
    std::string DnsLines() const;

    HostAccess& _host;
    PendingNetwork _pending;
    // What the host ran at entry, shown for settings it obtains by itself (DHCP, router advertisement).
    HostCtl::Network::IpConfig _runningAtEntry;
    HostCtl::Network::IpConfig _configuredAtEntry;
    HostCtl::Network::Ipv6Address _ipv6GatewayAtEntry;
    std::map<std::string, std::string> _adapterLabels;
    bool _readFailed = false;
    std::vector<std::unique_ptr<LabelItem>> _items;
    std::vector<int> _entries;  // per row: its Entry, or -1 for the separator
};

}  // namespace Kovo

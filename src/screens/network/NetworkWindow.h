#pragma once

#include <string>
#include <vector>

#include "frames/HostAccess.h"
#include "frames/MenuWindow.h"
#include "network/NetworkDetails.h"
#include "network/PendingNetwork.h"

namespace Kovo {

// "Configure Management Network": the management network's settings on the left, the pending value of
// the selected one on the right. Each entry opens the dialog that edits it; the changes are kept in the
// window's pending record and reach the host only when the operator leaves with Esc and answers Y.
// Returns 1 when the window closes.
class NetworkWindow : public MenuWindow {
  public:
    explicit NetworkWindow(Frame* parent, HostAccess& host);

    const PendingNetwork& Pending() const { return _pending; }

  private:
    std::vector<Row> Rows() override;
    bool Opens() override;
    bool Leave() override;
    // Each opens its dialog and takes what it accepts into the pending record, when that differs.
    void EditAdapters();
    void EditVlan();
    void EditIpv4();
    void EditIpv6();
    void EditDns();
    void EditSuffixes();

    HostAccess& _host;
    PendingNetwork _pending;
    NetworkDetails _details{_pending, *Strings()};
    bool _readFailed = false;
};

}  // namespace Kovo

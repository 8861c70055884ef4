#pragma once

#include <string>
#include <vector>

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

// One physical NIC as the adapters dialog lists it; an empty value is one the host did not give.
struct Adapter {
    std::string name;
    std::string label;
    std::string mac;
    bool connected = false;
    // The switch (standard or distributed) that holds the NIC: empty when none does.
    std::string usedBy;
    // False when the switches could not be scanned: then nobody can say whether the NIC is free.
    bool usedByKnown = true;

    // How a value the host did not give is shown.
    static std::string OrMissing(const std::string& value) { return value.empty() ? "N/A" : value; }
};

// "Network Adapters": one check box per physical NIC of the host, checked for the management network's
// uplinks. Space adds the NIC at the end of the chosen list or takes it out, so the list keeps the order
// the operator checked them in (the first gives the management interface its MAC address); D shows the
// NIC's details. Enter asks before NICs that another switch holds are taken for the management network.
// Enter (1) leaves the list in Selected(); Esc (0) leaves the caller's list as it was.
class AdaptersDialog : public Dialog {
  public:
    // `selected`: the pending uplinks. `managementSwitch`: the switch that carries the management network;
    // its own NICs are not "used by another connection".
    AdaptersDialog(Frame* parent, HostAccess& host, std::vector<std::string> selected,
                   std::string managementSwitch);

    const std::vector<std::string>& Selected() const { return _selected; }
    const std::vector<Adapter>& Adapters() const { return _adapters; }

    // The row of one NIC: device name, hardware label with the MAC address, link state, in the columns of
    // the header row.
    static std::string RowText(const Adapter& adapter);
    // The hardware column: the label and " (MAC)" in 29 columns, the label cut with "..." so that the
    // MAC address stays whole where it fits; "N/A" for what the host did not give.
    static std::string HardwareText(const Adapter& adapter);

  protected:
    bool OnKey(int key) override;

  private:
    void Scan(HostAccess& host);
    void Toggle();
    // Whether a chosen NIC is held by a switch other than the management network's.
    bool TakesFromOthers() const;

    std::vector<Adapter> _adapters;
    std::vector<std::string> _selected;
    std::string _managementSwitch;
    std::vector<CheckItem*> _rows;  // owned by the dialog's items, one per adapter
};

}  // namespace Kovo

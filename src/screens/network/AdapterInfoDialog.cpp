#include "network/AdapterInfoDialog.h"

#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

std::string AdapterInfoDialog::Text(const Adapter& adapter, const std::string& unknown) {
    const std::string usedBy = !adapter.usedByKnown     ? unknown
                               : adapter.usedBy.empty() ? "None"
                                                        : adapter.usedBy;
    return "Device Name: " + Adapter::OrMissing(adapter.name) +
           "\nHardware Label: " + Adapter::OrMissing(adapter.label) +
           "\nMAC Address: " + Adapter::OrMissing(adapter.mac) +
           "\nConnection Status: " + (adapter.connected ? "Connected" : "Disconnected") +
           "\nUsed By: " + usedBy;
}

AdapterInfoDialog::AdapterInfoDialog(Frame* parent, const Adapter& adapter)
    : MessageDialog(parent, kNoTextId,
                    Text(adapter, GetStringFactory("en_US")->GetString(StringId::Unknown))) {
    SetTitle("Adapter Details");
}

}  // namespace Kovo

#include "network/AdapterInfoDialog.h"

#include "text/StringFactory.h"

namespace Kovo {

namespace {
constexpr unsigned kUnknown = 34;
}  // namespace

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
    : MessageDialog(parent, 0, Text(adapter, GetStringFactory("en_US")->GetString(kUnknown))) {
    SetTitle("Adapter Details");
}

}  // namespace Kovo

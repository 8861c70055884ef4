#include "network/AdaptersDialog.h"

#include <algorithm>
#include <map>

#include "frames/Footers.h"
#include "frames/Log.h"
#include "network/AdapterInfoDialog.h"
#include "network/UsedAdaptersDialog.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/Pnic.h"
#include "platform/hostctl/VirtualSwitchInfo.h"
#include "terminal/Colors.h"
#include "terminal/Keys.h"
#include "text/CheckItem.h"
#include "text/ItemList.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

constexpr const char* kFooter =
    "{color:black}<D>{/color} {color:dark-grey}View Details{/color}  {color:black}<Space>{/color} "
    "{color:dark-grey}Toggle Selected{/color}{align:right}{color:black}<Enter>{/color} "
    "{color:dark-grey}OK{/color}  {color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
// Four blanks stand over the rows' check marks.
constexpr const char* kHeader =
    "    {align:padding:13}Device Name{/align}{align:padding:30}Hardware Label (MAC Address){/align}Status";
constexpr const char* kEllipsis = "...";
// Each column keeps one blank before the next.
constexpr std::size_t kNameColumns = 12, kHardwareColumns = 29;

// Columns taken by UTF-8 text, one per character.
std::size_t Columns(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

// The first `columns` characters of a UTF-8 text.
std::string Head(const std::string& text, std::size_t columns) {
    std::size_t at = 0;
    for (std::size_t taken = 0; at < text.size(); ++at) {
        if ((static_cast<unsigned char>(text[at]) & 0xc0) == 0x80) continue;
        if (taken++ == columns) break;
    }
    return text.substr(0, at);
}

// `text` in at most `columns` columns, cut and ended with "..." when it does not fit.
std::string Fit(const std::string& text, std::size_t columns) {
    if (Columns(text) <= columns) return text;
    std::string head = Head(text, columns - Columns(kEllipsis));
    // "Sample ..." reads as two words; the dots belong to the cut word.
    while (!head.empty() && head.back() == ' ') head.pop_back();
    return head + kEllipsis;
}

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

std::string AdaptersDialog::HardwareText(const Adapter& adapter) {
    const std::string label = Adapter::OrMissing(adapter.label);
    const std::string mac = " (" + Adapter::OrMissing(adapter.mac) + ")";
    if (Columns(label) + Columns(mac) <= kHardwareColumns) return label + mac;
    const std::size_t room = kHardwareColumns - std::min(kHardwareColumns, Columns(mac));
    // Too little room for a piece of the label: cut the whole text instead.
    if (room < Columns(kEllipsis) + 1) return Fit(label + mac, kHardwareColumns);
    return Fit(label, room) + mac;
}

std::string AdaptersDialog::RowText(const Adapter& adapter) {
    return "{align:padding:13}" + Fit(Adapter::OrMissing(adapter.name), kNameColumns) +
           "{/align}{align:padding:30}" + HardwareText(adapter) + "{/align}" +
           (adapter.connected ? "Connected" : "Disconnected");
}

AdaptersDialog::AdaptersDialog(Frame* parent, HostAccess& host, std::vector<std::string> selected,
                               std::string managementSwitch)
    : Dialog(parent, {72, 20, 6, StringId::NetworkAdaptersTitle, StringId::NetworkAdaptersText, kFooter}),
      _selected(std::move(selected)),
      _managementSwitch(std::move(managementSwitch)) {
    Scan(host);
    // The header stays in place while the rows scroll under it.
    AddTextArea(0, 0, Content()->Width(), 1, kDarkGrey).SetText(kHeader);
    PlaceItems(0, 1, Content()->Width(), Content()->Height() - 1);
    for (const Adapter& adapter : _adapters)
        _rows.push_back(&AddCheck(RowText(adapter), Contains(_selected, adapter.name)));
    ShowItems();
}

void AdaptersDialog::Scan(HostAccess& host) {
    try {
        for (const auto& pnic : host.Network()->GetPnics())
            _adapters.push_back(
                {pnic->GetName(), pnic->GetLabel(), pnic->GetMacAddress(), pnic->IsLinkUp(), "", true});
    } catch (const std::exception& e) {
        LogFailure("Getting physical nics failed: ", e);
    }
    std::map<std::string, std::string> owners;
    bool ownersKnown = true;
    // Standard and distributed switches alike: each uplink is owned by the switch that lists it.
    auto scan = [&](const char* failure, const auto& switches) {
        try {
            for (const auto& owner : switches())
                for (const std::string& uplink : owner.uplinks) owners[uplink] = owner.name;
        } catch (const std::exception& e) {
            LogFailure(failure, e);
            ownersKnown = false;
        }
    };
    scan("Scanning virtual switches failed: ", [&] { return host.Switches()->GetVirtualSwitches(); });
    scan("Scanning dxswitches failed: ", [&] { return host.Switches()->GetDvSwitches(); });
    for (Adapter& adapter : _adapters) {
        const auto owner = owners.find(adapter.name);
        if (owner != owners.end()) adapter.usedBy = owner->second;
        // A NIC found on a switch is known to be used even when another scan failed.
        adapter.usedByKnown = ownersKnown || owner != owners.end();
    }
}

void AdaptersDialog::Toggle() {
    const auto row = static_cast<std::size_t>(Items().GetSelected());
    if (row >= _rows.size()) return;
    const std::string& name = _adapters[row].name;
    const auto chosen = std::find(_selected.begin(), _selected.end(), name);
    if (chosen == _selected.end())
        _selected.push_back(name);
    else
        _selected.erase(chosen);
    _rows[row]->SetChecked(Contains(_selected, name));
    Items().Draw();
}

bool AdaptersDialog::TakesFromOthers() const {
    return std::any_of(_adapters.begin(), _adapters.end(), [this](const Adapter& adapter) {
        return Contains(_selected, adapter.name) && !adapter.usedBy.empty() &&
               adapter.usedBy != _managementSwitch;
    });
}

bool AdaptersDialog::OnKey(int key) {
    if (key == kSpace) {
        Toggle();
        return true;
    }
    if (key == 'D' || key == 'd') {
        const auto row = static_cast<std::size_t>(Items().GetSelected());
        if (row < _adapters.size()) {
            AdapterInfoDialog(this, _adapters[row]).RunModal();
            Items().Draw();
        }
        return true;
    }
    if (IsEnter(key)) {
        if (!TakesFromOthers() || UsedAdaptersDialog(this).RunModal() == 1) {
            Close(1);
        } else {
            Items().Draw();
        }
        return true;
    }
    return false;
}

}  // namespace Kovo

#include "recovery/RestoreDvsDialog.h"

#include <algorithm>
#include <boost/regex.hpp>

#include "frames/Footers.h"
#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/Pnic.h"
#include "platform/hostctl/VirtualSwitchInfo.h"
#include "platform/hostctl/ZenkNic.h"
#include "recovery/DvsUplinksDialog.h"
#include "recovery/DvsUplinksWarningDialog.h"
#include "terminal/HostEvent.h"
#include "terminal/Keys.h"
#include "text/CheckItem.h"
#include "text/InputItem.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

// The network window's VLAN caption; its range is not a distributed port's, so it is left out.
constexpr int kMaxVlan = 4094;
constexpr int kFieldWidth = 4, kMaxLength = 4;
constexpr const char* kInvalidVlan = "Invalid DVPort vlan specified. Valid range is 0-4094.";
constexpr const char* kRestoredEvent = "obs.user.kovo.dvs.port.restored";

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// "VLAN ID (1-4094, or 4095 to access all VLANs):" becomes "VLAN ID:".
std::string VlanCaption(const StringFactory& strings) {
    std::string caption = strings.GetString(StringId::VlanIdLabel);
    const auto open = caption.find(" (");
    const auto close = open == std::string::npos ? open : caption.find(')', open);
    if (close != std::string::npos) caption.erase(open, close - open + 1);
    return caption;
}

// One more than a decimal number's text ("" counts as 0).
std::string Next(std::string number) {
    for (auto digit = number.rbegin(); digit != number.rend(); ++digit) {
        if (*digit != '9') {
            ++*digit;
            return number;
        }
        *digit = '0';
    }
    return "1" + number;
}

}  // namespace

bool RestoreDvsDialog::ReadVlan(const std::string& text, int& vlanId) {
    if (text.empty() || text.size() > 4) return false;
    int value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + (c - '0');
    }
    if (value > kMaxVlan) return false;
    vlanId = value;
    return true;
}

std::string RestoreDvsDialog::HostLocalPortName(const std::string& nicName,
                                                const std::vector<std::string>& portNames) {
    // The C library's character classes: the C++ locale machinery would be carried for this one pattern.
    static const boost::basic_regex<char, boost::c_regex_traits<char>> kHostLocal("^hlp\\-.*\\#[0-9]*$");
    // Numbers are compared as texts without leading zeros, so no number is too long to count.
    std::string highest;
    for (const std::string& name : portNames) {
        if (!boost::regex_match(name, kHostLocal)) continue;
        std::string number = name.substr(name.rfind('#') + 1);
        number.erase(0, number.find_first_not_of('0'));
        if (number.size() > highest.size() || (number.size() == highest.size() && number > highest))
            highest = number;
    }
    return "hlp-" + nicName + "#" + Next(highest);
}

RestoreDvsDialog::RestoreDvsDialog(Frame* parent, HostCtl::Network::ZenkNic& nic, HostAccess& host)
    : Dialog(parent,
             {70, 15, 7, StringId::RestoreDvsTitle, StringId::RestoreDvsText, Footer::kToggleOkCancel}),
      _nic(nic),
      _host(host) {
    _refusal = ReadPort();
    if (_refusal != kNoTextId) return;
    _vlan = &AddField(VlanCaption(*Strings()), std::to_string(_port.vlanId), kFieldWidth, FieldKeys::Digits,
                      kMaxLength);
    // Checked: a port blocked by mistake is the usual way a distributed management port breaks.
    _unblock = &AddCheck(Strings()->GetString(StringId::UnblockPortCaption), true);
    AddLabel("", false);
    _uplinksEntry = &AddLabel(Strings()->GetString(StringId::SelectDvsUplinksEntry), true);
    ShowItems();
}

unsigned RestoreDvsDialog::ReadPort() {
    try {
        const HostCtl::Network::ConnectionPoint point = _nic.GetConnectionPoint();
        if (point.connecteeType != HostCtl::Network::CONNECTEE_DVPORT)
            throw HostCtl::Lib::HostCtlException(_nic.GetName() + " is not on a distributed switch");
        _dvsName = point.dvsName;
        const auto switches = _host.Switches()->GetDvSwitches();
        const auto dvs = std::find_if(switches.begin(), switches.end(),
                                      [&](const auto& candidate) { return candidate.name == _dvsName; });
        if (dvs == switches.end())
            throw HostCtl::Lib::HostCtlException("Distributed switch " + _dvsName + " does not exist");
        if (!dvs->IsOwnKind()) {
            LogError("Restore xDS refused: " + _dvsName + " is a 3rd party xDS (" + dvs->vendor + ")");
            return StringId::RestoreDvsThirdParty;
        }
        _port = _host.DvPort(_dvsName, point.portKey)->GetProperties();
        _portNames = dvs->portNames;
        std::vector<std::string> pnics;
        for (const auto& pnic : _host.Network()->GetPnics()) pnics.push_back(pnic->GetName());
        for (const std::string& uplink : dvs->uplinks)
            if (Contains(pnics, uplink)) _available.push_back(uplink);
        for (const std::string& uplink : _available)
            if (Contains(_port.uplinks, uplink)) _chosen.push_back(uplink);
        // A port left without any uplink this host has starts from all of them.
        if (_chosen.empty()) _chosen = _available;
        return kNoTextId;
    } catch (const std::exception& e) {
        LogFailure("Reading the xDS management port failed: ", e);
        return StringId::RestoreDvsFailed;
    }
}

int RestoreDvsDialog::HandleKey() {
    if (_refusal != kNoTextId) {
        MessageDialog(this, StringId::RestoreDvsErrorTitle, _refusal).RunModal();
        return 0;
    }
    return RunWithCursorOnFields(0);
}

bool RestoreDvsDialog::OnKey(int key) {
    if (key == KEY_UP || key == KEY_DOWN) {
        HandleCommonKey(key);
        ShowCursorOnField();
        return true;
    }
    if (!IsEnter(key)) return false;
    if (Items().GetSelectedItem() == _uplinksEntry)
        ChooseUplinks();
    else
        Accept();
    return true;
}

void RestoreDvsDialog::ChooseUplinks() {
    if (_available.empty()) {
        MessageDialog(this, StringId::NoDvsUplinksTitle, StringId::NoDvsUplinksText).RunModal();
    } else {
        DvsUplinksDialog chooser(this, _available, _chosen);
        if (chooser.RunModal() == 1) _chosen = chooser.Chosen();
    }
    Items().Draw();
}

void RestoreDvsDialog::Accept() {
    int vlanId = 0;
    if (!ReadVlan(_vlan->GetValue(), vlanId)) {
        LogError(kInvalidVlan);
        // Focused anew, the field keeps the value shown and takes the next digits in its place.
        Focus(0);
        ShowCursorOnField();
        // The log line's words, which give the range a port takes, and nothing about a failed restore:
        // nothing was tried.
        MessageDialog(this, StringId::InvalidVlanTitle, kInvalidVlan).RunModal();
        Items().Draw();
        return;
    }
    // A port with no uplink on this host cannot bring the management network back.
    if (_available.empty()) {
        MessageDialog(this, StringId::NoDvsUplinksTitle, StringId::NoDvsUplinksText).RunModal();
        Items().Draw();
        return;
    }
    if (_chosen.empty() && DvsUplinksWarningDialog(this).RunModal() != 1) {
        Items().Draw();
        return;
    }
    Restore(vlanId);
}

void RestoreDvsDialog::Restore(int vlanId) {
    HostCtl::Network::DvPortProperties properties = _port;
    properties.name = HostLocalPortName(_nic.GetName(), _portNames);
    properties.vlanId = vlanId;
    if (_unblock->IsChecked()) properties.blocked = false;
    // Made whole in one step, so a refusal never leaves a half-made port behind.
    properties.uplinks = _chosen;
    std::string key;
    try {
        key = _host.Switches()->AddDvsHostLocalPort(_dvsName, properties);
    } catch (const std::exception& e) {
        Fail("Unable to create Host Local Port: ", e);
        return;
    }
    // The interface moves last, onto a port that is complete: until then it stays where it was.
    try {
        _nic.ConnectToDvPort(_dvsName, key);
    } catch (const std::exception& e) {
        Fail("Moving " + _nic.GetName() + " to host local port " + properties.name + " failed: ", e);
        return;
    }
    const std::string what = "Restoring xDS management port on host local port " + properties.name;
    LogInfo(what);
    _host.PostEvent(HostEvent::Text(kRestoredEvent, what));
    Close(1);
}

void RestoreDvsDialog::Fail(const std::string& line, const std::exception& e) {
    LogFailure(line, e);
    MessageDialog(this, StringId::RestoreDvsErrorTitle, StringId::RestoreDvsFailed).RunModal();
    Close(0);
}

}  // namespace Kovo

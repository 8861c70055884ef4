#include "network/NetworkWindow.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "frames/MessageDialog.h"
#include "network/AdaptersDialog.h"
#include "network/ApplyChangesDialog.h"
#include "network/ChangeApplication.h"
#include "network/DNSConfigurationDialog.h"
#include "network/IPConfigurationDialog.h"
#include "network/IPv6ConfigurationDialog.h"
#include "network/ManagementSwitch.h"
#include "network/SuffixesDialog.h"
#include "network/VlanDialog.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/Pnic.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

using HostCtl::Network::IpAddress;
using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv6Address;
using HostCtl::Network::Ipv6Network;

namespace {

constexpr unsigned kTitle = 44, kErrorTitle = 17, kNoInterface = 19, kOperationFailed = 20;
constexpr unsigned kIpv4AddressLabel = 35, kIpv6AddressesLabel = 36, kGatewayLabel = 38, kMaskLabel = 39,
                   kHostnameLabel = 40, kPrimaryLabel = 41, kAlternateLabel = 42;
constexpr unsigned kIpv6On = 49, kIpv6Off = 50;
constexpr unsigned kUnknown = 34, kNoAdapter = 107, kAutomatic = 108, kNone = 109, kManual = 110,
                   kNotSet = 112;

// Caption and description of each entry, in entry order.
constexpr unsigned kCaptions[] = {45, 46, 47, 48, 51, 52};
constexpr unsigned kHelp[] = {53, 54, 55, 56, 59, 60};
constexpr unsigned kIpv6Switched = 58, kIpv6OffHelp = 57;

constexpr const char* kDetailFooter =
    "{color:white}<Enter>{/color}{color:light-grey} Change{/color}{align:right}{color:white}<Esc> {/color}"
    "{color:light-grey}Exit{/color}{/align}";

std::string Value(const std::string& value) {
    return "{color:light-grey}" + value + "{/color}\n";
}

std::string Address(const HostCtl::Network::Ipv4Address& address) {
    return address.IsUnspecified() ? std::string() : address.GetStringAddress();
}

}  // namespace

std::string NetworkWindow::String(unsigned id) const {
    return Strings()->GetString(id);
}

std::string NetworkWindow::Line(unsigned labelId, const std::string& value) const {
    return "{color:white}" + String(labelId) + ": {/color}{color:light-grey}" +
           (value.empty() ? String(kNotSet) : value) + "{/color}\n";
}

NetworkWindow::NetworkWindow(Frame* parent, HostAccess& host) : RootWindow(parent), _host(host) {
    try {
        _pending = PendingNetwork::Read(host);
        if (_pending.managementInterface) {
            _runningAtEntry = _pending.managementInterface->GetIpConfig();
            _configuredAtEntry = _pending.applied;
            _ipv6GatewayAtEntry = _pending.routing->GetIpv6ZenKernelDefaultGateway();
        }
    } catch (const std::exception& e) {
        // Half a record would show, and could write, values the host does not have: the window says so
        // and closes instead.
        LogFailure("Reading the management network failed: ", e);
        _readFailed = true;
    }
    try {
        for (const auto& pnic : host.Network()->GetPnics())
            _adapterLabels[pnic->GetName()] = pnic->GetLabel();
    } catch (const std::exception& e) {
        LogFailure("Getting physical nics failed: ", e);
    }

    std::vector<Item*> items;
    for (int entry = kAdapters; entry <= kSuffixes; ++entry) {
        // The IPv4 settings start a group of their own.
        if (entry == kIpv4) {
            _items.push_back(std::make_unique<LabelItem>("", false));
            _entries.push_back(-1);
        }
        _items.push_back(std::make_unique<LabelItem>(String(kCaptions[entry]), true));
        _entries.push_back(entry);
    }
    for (const auto& item : _items) items.push_back(item.get());
    List()->SetItems(items);
    LeftTitle()->SetText(String(kTitle));
    LeftFooter()->SetText(Footer::kMenuSelect);
    RightFooter()->SetText(kDetailFooter);
}

// The list keeps pointers to the items; it goes with the window tree, after them here, but draws
// nothing on the way.
NetworkWindow::~NetworkWindow() = default;

NetworkWindow::Entry NetworkWindow::SelectedEntry() const {
    const Item* selected = List()->GetSelectedItem();
    for (std::size_t i = 0; i < _items.size(); ++i)
        if (_items[i].get() == selected && _entries[i] >= 0) return static_cast<Entry>(_entries[i]);
    return kAdapters;
}

std::string NetworkWindow::AdapterLines() const {
    if (!_pending.adaptersKnown) return Value(String(kUnknown));
    if (_pending.adapters.empty()) return Value(String(kNoAdapter));
    std::string text;
    for (const std::string& name : _pending.adapters) {
        const auto label = _adapterLabels.find(name);
        text += "{color:white}" + name + "{/color}{color:light-grey}" +
                (label == _adapterLabels.end() ? std::string() : " (" + label->second + ")") + "{/color}\n";
    }
    return text;
}

std::string NetworkWindow::Ipv4Lines() const {
    const IpConfig& applied = _pending.applied;
    // Under DHCP the values are the lease's: known only while the host already ran DHCP at entry.
    const bool leased = applied.GetUseDhcp() && _configuredAtEntry.GetUseDhcp();
    const IpConfig& shown = leased ? _runningAtEntry : applied;
    const bool dhcpPending = applied.GetUseDhcp() && !leased;
    std::string text = Value(String(applied.GetUseDhcp()       ? kAutomatic
                                    : applied.GetIpv4UseNone() ? kNone
                                                               : kManual)) +
                       "\n";
    text += Line(kIpv4AddressLabel, dhcpPending ? "" : Address(shown.GetIpv4Address()));
    text += Line(kMaskLabel, dhcpPending ? "" : Address(shown.GetIpv4Netmask()));
    text += Line(kGatewayLabel, dhcpPending ? "" : Address(shown.GetIpv4Gateway()));
    return text;
}

std::vector<Ipv6Network> NetworkWindow::PendingIpv6Networks() const {
    const IpConfig& applied = _pending.applied;
    std::vector<Ipv6Network> networks;
    // What the host obtains by itself stays while the way it obtains it stays chosen.
    for (const auto& network : _runningAtEntry.GetIpv6Network()) {
        switch (network.GetIpv6AddressType()) {
            case HostCtl::Network::IPV6_ADDRESS_STATIC:
                break;
            case HostCtl::Network::IPV6_ADDRESS_AUTOCONF:
                if (applied.GetUseIpv6RouterAdvertised()) networks.push_back(network);
                break;
            case HostCtl::Network::IPV6_ADDRESS_DHCP:
                if (applied.GetUseIpv6Dhcp()) networks.push_back(network);
                break;
            default:
                networks.push_back(network);
                break;
        }
    }
    for (const auto& network : applied.GetIpv6Network())
        if (network.GetIpv6AddressType() == HostCtl::Network::IPV6_ADDRESS_STATIC)
            networks.push_back(network);
    return networks;
}

Ipv6Address NetworkWindow::PendingIpv6Gateway() const {
    return _pending.ipv6GatewayChanged ? _pending.applied.GetIpv6Gateway() : _ipv6GatewayAtEntry;
}

std::string NetworkWindow::Ipv6Lines() const {
    if (!_pending.ipv6Enabled) return Value(String(kIpv6Off));
    std::string text =
        Value(String(kIpv6On)) + "\n{color:white}" + String(kIpv6AddressesLabel) + ":{/color}\n";
    const auto networks = PendingIpv6Networks();
    if (networks.empty()) text += Value("  " + String(kNotSet));
    for (const auto& network : networks) text += Value("  " + network.GetStringAddress());
    const Ipv6Address gateway = PendingIpv6Gateway();
    text += Line(kGatewayLabel, gateway.IsUnspecified() ? "" : gateway.GetScopedStringAddress());
    return text;
}

std::string NetworkWindow::DnsLines() const {
    auto text = [](const std::unique_ptr<IpAddress>& server) {
        return server ? server->GetStringAddress() : std::string();
    };
    return Line(kPrimaryLabel, text(_pending.primaryDns)) +
           Line(kAlternateLabel, text(_pending.alternateDns)) + Line(kHostnameLabel, _pending.hostname);
}

std::string NetworkWindow::DetailText(Entry entry) const {
    switch (entry) {
        case kAdapters:
            return AdapterLines() + "\n" + String(kHelp[entry]);
        case kVlan:
            return Value(!_pending.vlanKnown  ? String(kUnknown)
                         : _pending.vlan == 0 ? String(kNotSet)
                                              : std::to_string(_pending.vlan)) +
                   "\n" + String(kHelp[entry]);
        case kIpv4:
            return Ipv4Lines() + "\n" + String(kHelp[entry]);
        case kIpv6:
            if (_pending.Ipv6StateChanges()) return String(kIpv6Switched);
            return Ipv6Lines() + "\n" + String(_pending.ipv6Enabled ? kHelp[entry] : kIpv6OffHelp);
        case kDns:
            return DnsLines() + "\n" + String(kHelp[entry]);
        case kSuffixes:
            return Value(_pending.suffixes.empty() ? String(kNotSet) : _pending.suffixes) + "\n" +
                   String(kHelp[entry]);
    }
    return "";
}

void NetworkWindow::UpdateDetails() {
    const Entry entry = SelectedEntry();
    RightTitle()->SetText(String(kCaptions[entry]));
    Details()->SetText(DetailText(entry));
}

void NetworkWindow::Changed() {
    _pending.changed = true;
    UpdateDetails();
}

void NetworkWindow::EditIpv4() {
    IPConfigurationDialog dialog(this, _pending.applied);
    if (dialog.RunModal() != 1 || dialog.Config() == _pending.applied) return;
    _pending.applied = dialog.Config();
    _pending.modes.SetUseDhcp(_pending.applied.GetUseDhcp(), _pending.applied.GetIpv4UseNone());
    Changed();
}

void NetworkWindow::EditDns() {
    DNSConfigurationDialog dialog(this, _pending.modes.GetDnsFromDhcp(), _pending.primaryDns.get(),
                                  _pending.alternateDns.get(), _pending.hostname);
    if (dialog.RunModal() != 1) return;
    auto same = [](const IpAddress* a, const std::unique_ptr<IpAddress>& b) {
        return (!a && !b) || (a && b && a->GetStringAddress() == b->GetStringAddress());
    };
    if (dialog.Automatic() == _pending.modes.GetDnsFromDhcp() &&
        same(dialog.Primary(), _pending.primaryDns) && same(dialog.Alternate(), _pending.alternateDns) &&
        dialog.Hostname() == _pending.hostname)
        return;
    _pending.modes.SetDnsFromDhcp(dialog.Automatic());
    _pending.primaryDns = dialog.Primary() ? dialog.Primary()->Clone() : nullptr;
    _pending.alternateDns = dialog.Alternate() ? dialog.Alternate()->Clone() : nullptr;
    _pending.hostname = dialog.Hostname();
    Changed();
}

void NetworkWindow::EditSuffixes() {
    SuffixesDialog dialog(this, _pending.suffixes);
    if (dialog.RunModal() != 1 || dialog.Suffixes() == _pending.suffixes) return;
    _pending.suffixes = dialog.Suffixes();
    Changed();
}

void NetworkWindow::EditAdapters() {
    // Without the switch the uplinks belong to, nobody can tell which NICs another connection holds.
    std::string switchName;
    if (!ManagementSwitch(_host, *_pending.managementInterface).Name(switchName)) return;
    AdaptersDialog dialog(this, _host, _pending.adapters, switchName);
    if (dialog.RunModal() != 1 || dialog.Selected() == _pending.adapters) return;
    _pending.adapters = dialog.Selected();
    _pending.adaptersKnown = true;
    Changed();
}

void NetworkWindow::EditVlan() {
    VlanDialog dialog(this, _pending.vlan);
    if (dialog.RunModal() != 1 || dialog.Vlan() == _pending.vlan) return;
    _pending.vlan = static_cast<int16_t>(dialog.Vlan());
    _pending.vlanKnown = true;
    Changed();
}

void NetworkWindow::EditIpv6() {
    const Ipv6Address gateway = PendingIpv6Gateway();
    IPv6ConfigurationDialog dialog(this, _pending.ipv6Enabled, _pending.applied, gateway);
    if (dialog.RunModal() != 1) return;
    IpConfig& applied = _pending.applied;
    const IpConfig& edited = dialog.Config();
    const bool gatewayChanged = dialog.Gateway() != gateway;
    if (dialog.Enabled() == _pending.ipv6Enabled && edited.GetUseIpv6Dhcp() == applied.GetUseIpv6Dhcp() &&
        edited.GetUseIpv6RouterAdvertised() == applied.GetUseIpv6RouterAdvertised() &&
        edited.GetIpv6Network() == applied.GetIpv6Network() && !gatewayChanged)
        return;
    _pending.ipv6Enabled = dialog.Enabled();
    for (IpConfig* config : {&applied, &_pending.modes}) {
        config->SetUseIpv6Dhcp(edited.GetUseIpv6Dhcp());
        config->SetUseIpv6RouterAdvertised(edited.GetUseIpv6RouterAdvertised());
    }
    applied.ClearIpv6Networks();
    for (const auto& network : edited.GetIpv6Network()) applied.AddIpv6Network(network);
    if (gatewayChanged) {
        _pending.ipv6GatewayChanged = true;
        applied.SetIpv6Gateway(dialog.Gateway());
    }
    Changed();
}

void NetworkWindow::Open(Entry entry) {
    switch (entry) {
        case kAdapters:
            EditAdapters();
            break;
        case kVlan:
            EditVlan();
            break;
        case kIpv4:
            EditIpv4();
            break;
        case kIpv6:
            EditIpv6();
            break;
        case kDns:
            EditDns();
            break;
        case kSuffixes:
            EditSuffixes();
            break;
    }
    List()->Draw();
    UpdateDetails();
}

bool NetworkWindow::Leave() {
    if (!_pending.HasChanges()) return true;
    std::string takeOver;
    try {
        takeOver = _pending.networkInfo->TakeOverNotice();
    } catch (const std::exception& e) {
        // Not knowing what would be taken over is no reason to keep the operator from applying.
        LogFailure("Reading how the host's network is set up failed: ", e);
    }
    switch (ApplyChangesDialog(this, _pending.Ipv6StateChanges(), takeOver).RunModal()) {
        case ApplyChangesDialog::kYes:
            ChangeApplication(_host, _pending, *this, [this] {
                UpdateDetails();
                refresh();
            }).Run();
            LogInfo("Network settings changed.");
            return true;
        case ApplyChangesDialog::kNo:
            return true;
        default:
            return false;
    }
}

int NetworkWindow::HandleKey() {
    if (_readFailed) {
        MessageDialog(this, kErrorTitle, kOperationFailed).RunModal();
        return 1;
    }
    if (!_pending.managementInterface) {
        LogError("Could not get a suitable management interface");
        MessageDialog(this, kErrorTitle, kNoInterface).RunModal();
        return 1;
    }
    List()->Draw();
    UpdateDetails();
    for (;;) {
        const int key = GetKey(this, true);
        if (MoveSelection(key)) continue;
        if (key == kEsc && Leave()) return 1;
        if (IsEnter(key)) Open(SelectedEntry());
    }
}

}  // namespace Kovo

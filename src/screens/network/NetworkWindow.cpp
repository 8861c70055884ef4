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
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

using HostCtl::Network::IpAddress;
using HostCtl::Network::IpConfig;
using HostCtl::Network::Ipv6Address;

namespace {

// Each entry's caption, which is also its detail pane's title.

constexpr const char* kDetailFooter =
    "{color:white}<Enter>{/color}{color:light-grey} Change{/color}{align:right}{color:white}<Esc> {/color}"
    "{color:light-grey}Exit{/color}{/align}";

}  // namespace

NetworkWindow::NetworkWindow(Frame* parent, HostAccess& host)
    : MenuWindow(parent, StringId::ConfigureNetworkTitle, Footer::kMenuSelect), _host(host) {
    try {
        _pending = PendingNetwork::Read(host);
        if (_pending.managementInterface) _details.ReadAtEntry();
    } catch (const std::exception& e) {
        // Half a record would show, and could write, values the host does not have: the window says so
        // and closes instead.
        LogFailure("Reading the management network failed: ", e);
        _readFailed = true;
    }
    _details.ReadLabels(host);
    ShowRows();
}

std::vector<MenuWindow::Row> NetworkWindow::Rows() {
    // A setting's pending values, then what it is for; Enter opens the dialog that edits it.
    auto setting = [this](unsigned caption, std::string (NetworkDetails::*detail)() const,
                          void (NetworkWindow::*edit)()) {
        return Row{.id = caption,
                   .caption = String(caption),
                   .title = String(caption),
                   .detail = [this, detail] { return (_details.*detail)(); },
                   .footer = kDetailFooter,
                   .open = [this, edit] { (this->*edit)(); }};
    };
    return {
        setting(StringId::NetworkAdaptersEntry, &NetworkDetails::Adapters, &NetworkWindow::EditAdapters),
        setting(StringId::VlanOptional, &NetworkDetails::Vlan, &NetworkWindow::EditVlan),
        // The IPv4 settings start a group of their own.
        Row{.selectable = false},
        setting(StringId::Ipv4ConfigurationEntry, &NetworkDetails::Ipv4, &NetworkWindow::EditIpv4),
        setting(StringId::Ipv6ConfigurationEntry, &NetworkDetails::Ipv6, &NetworkWindow::EditIpv6),
        setting(StringId::DnsConfigurationEntry, &NetworkDetails::Dns, &NetworkWindow::EditDns),
        setting(StringId::CustomDnsSuffixes, &NetworkDetails::Suffixes, &NetworkWindow::EditSuffixes),
    };
}

void NetworkWindow::EditIpv4() {
    IPConfigurationDialog dialog(this, _pending.applied);
    if (dialog.RunModal() != 1 || dialog.Config() == _pending.applied) return;
    _pending.applied = dialog.Config();
    _pending.modes.SetUseDhcp(_pending.applied.GetUseDhcp(), _pending.applied.GetIpv4UseNone());
    _pending.changed = true;
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
    _pending.changed = true;
}

void NetworkWindow::EditSuffixes() {
    SuffixesDialog dialog(this, _pending.suffixes);
    if (dialog.RunModal() != 1 || dialog.Suffixes() == _pending.suffixes) return;
    _pending.suffixes = dialog.Suffixes();
    _pending.changed = true;
}

void NetworkWindow::EditAdapters() {
    // Without the switch the uplinks belong to, nobody can tell which NICs another connection holds.
    std::string switchName;
    if (!ManagementSwitch(_host, *_pending.managementInterface).Name(switchName)) return;
    AdaptersDialog dialog(this, _host, _pending.adapters, switchName);
    if (dialog.RunModal() != 1 || dialog.Selected() == _pending.adapters) return;
    _pending.adapters = dialog.Selected();
    _pending.adaptersKnown = true;
    _pending.changed = true;
}

void NetworkWindow::EditVlan() {
    VlanDialog dialog(this, _pending.vlan);
    if (dialog.RunModal() != 1 || dialog.Vlan() == _pending.vlan) return;
    _pending.vlan = static_cast<int16_t>(dialog.Vlan());
    _pending.vlanKnown = true;
    _pending.changed = true;
}

void NetworkWindow::EditIpv6() {
    const Ipv6Address gateway = _details.Ipv6Gateway();
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
    _pending.changed = true;
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

bool NetworkWindow::Opens() {
    // Behind a failure's message too, as the window has always shown it.
    RightFooter()->SetText(kDetailFooter);
    if (_readFailed) {
        MessageDialog(this, StringId::EnableNetworkErrorTitle, StringId::ManagementInterfaceFailed)
            .RunModal();
        return false;
    }
    if (!_pending.managementInterface) {
        ReportFailure(this, "Could not get a suitable management interface",
                      StringId::EnableNetworkErrorTitle, StringId::ManagementInterfaceNotFound);
        return false;
    }
    return true;
}

}  // namespace Kovo

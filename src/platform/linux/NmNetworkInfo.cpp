#include "platform/linux/NmNetworkInfo.h"

#include <sys/socket.h>

#include <algorithm>
#include <system_error>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/TextFields.h"
#include "platform/hostctl/WholeFile.h"
#include "platform/linux/IfupdownHandover.h"
#include "platform/linux/NmNic.h"

namespace LinuxHost {

namespace {

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// A change of the service's, rolled back when it goes unkept.
class NmChange : public HostCtl::Network::NetworkChange {
  public:
    NmChange(std::shared_ptr<NmNetwork> network, int rollbackSeconds) : _network(std::move(network)) {
        _network->OpenChange(rollbackSeconds);
    }
    ~NmChange() override {
        try {
            if (_network->ChangeOpen()) _network->RollBack();
        } catch (const std::exception&) {
            // The service rolls the change back by itself when its time is up.
        }
    }
    void Apply() override { _network->Activate(); }
    int SecondsLeft() override { return _network->SecondsLeft(); }
    void Keep() override { _network->Keep(); }
    std::vector<std::string> RollBack() override { return _network->RollBack(); }

  private:
    std::shared_ptr<NmNetwork> _network;
};

void WriteHostFile(const HostFiles& files, const std::string& path, const std::string& text) {
    try {
        HostCtl::WriteWholeFile(files.Under(path).string(), text);
    } catch (const std::system_error& e) {
        throw HostCtl::Lib::HostCtlException(e.what());
    }
}

}  // namespace

NmNetworkInfo::NmNetworkInfo(HostFiles files, std::shared_ptr<const KernelNetwork> kernel,
                             std::shared_ptr<NmNetwork> network)
    : LinuxNetworkInfo(files, kernel),
      _files(std::move(files)),
      _kernel(std::move(kernel)),
      _network(std::move(network)) {}

std::vector<std::unique_ptr<HostCtl::Network::Pnic>> NmNetworkInfo::GetPnics() {
    std::vector<std::unique_ptr<HostCtl::Network::Pnic>> pnics;
    for (const NmDevice& nic : _network->Nics()) pnics.push_back(std::make_unique<NmPnic>(nic, _files));
    return pnics;
}

std::string NmNetworkInfo::GetManagementInterfaceName() {
    // The console's interface even while it waits for its lease; on a host set up otherwise, the one
    // that holds the management address.
    if (_network->ConsoleMade()) return ManagementProfiles::Interface(_network->Management());
    return _network->ManagementInterface();
}

std::unique_ptr<HostCtl::Network::ZenkNic> NmNetworkInfo::GetManagementInterface() {
    std::string name = GetManagementInterfaceName();
    if (name.empty()) return nullptr;
    return std::make_unique<NmZenkNic>(std::move(name), _files, _kernel, _network);
}

bool NmNetworkInfo::GetPendingZenkIpv6Enabled() {
    const std::optional<std::string> text = _files.Read(NmNetwork::kIpv6Switch);
    if (!text) return IsZenkIpv6Enabled();
    for (const std::string& line : HostCtl::Lines(*text)) {
        const std::vector<std::string> words = HostCtl::Words(line);
        if (words.size() == 3 && words[0] == "net.ipv6.conf.all.disable_ipv6" && words[1] == "=")
            return words[2] != "1";
    }
    return true;
}

void NmNetworkInfo::SetZenkIpv6Enabled(bool enabled) {
    if (enabled == GetPendingZenkIpv6Enabled()) return;
    const char* value = enabled ? "0" : "1";
    WriteHostFile(_files, NmNetwork::kIpv6Switch,
                  std::string("# Written by the host console: IPv6 ") + (enabled ? "on" : "off") +
                      " for the whole host from the next boot.\nnet.ipv6.conf.all.disable_ipv6 = " + value +
                      "\nnet.ipv6.conf.default.disable_ipv6 = " + value + "\n");
}

void NmNetworkInfo::ClearNetworkConfig() {
    _network->Clear();
}

void NmNetworkInfo::AutoConfigNetwork() {
    // The factory network: a bridge on the first NIC with a link (else the first NIC), from DHCP.
    ManagementNetwork network;
    const std::vector<NmDevice> nics = _network->Nics();
    const auto linked =
        std::find_if(nics.begin(), nics.end(), [](const NmDevice& nic) { return nic.carrier; });
    if (linked != nics.end())
        network.uplinks = {linked->interface};
    else if (!nics.empty())
        network.uplinks = {nics.front().interface};
    network.ip.SetUseDhcp(true);
    network.ip.SetDnsFromDhcp(true);
    network.ip.SetUseIpv6RouterAdvertised(true);
    network.ip.SetUseIpv6Dhcp(true);
    _network->Store(network);
}

std::unique_ptr<HostCtl::Network::NetworkChange> NmNetworkInfo::BeginChange(int rollbackSeconds) {
    return std::make_unique<NmChange>(_network, rollbackSeconds);
}

std::string NmNetworkInfo::TakeOverNotice() {
    const std::string nic = _network->IfupdownNic();
    if (!nic.empty())
        return "The management network runs on " + nic + ", which ifupdown configures in " +
               IfupdownHandover::kInterfaces + ". Applying takes " + nic +
               " out of that file and restarts the network service, which moves it to the console's bridge " +
               ManagementProfiles::kBridge + "; a change not kept puts both back.";
    const std::optional<NmProfile> holder = _network->ForeignHolder();
    if (!holder) return {};
    std::string nics;
    for (const std::string& nic : _network->Management().uplinks) nics += (nics.empty() ? "" : ", ") + nic;
    return "The management network runs on the profile \"" + holder->Id() +
           "\", which this console did not make. " + "Applying moves it to the console's bridge " +
           ManagementProfiles::kBridge + (nics.empty() ? std::string() : " on " + nics) +
           "; the old profile is kept but no longer starts by itself.";
}

NmRoutingInfo::NmRoutingInfo(std::shared_ptr<const KernelNetwork> kernel, std::shared_ptr<NmNetwork> network)
    : LinuxRoutingInfo(std::move(kernel)), _network(std::move(network)) {}

void NmRoutingInfo::SetZenKernelDefaultGateway(const HostCtl::Network::Ipv4Address& gateway, bool) {
    ManagementNetwork network = _network->Management();
    network.ip.SetIpv4Gateway(gateway);
    _network->Store(network);
}

void NmRoutingInfo::SetIpv6ZenKernelDefaultGateway(const HostCtl::Network::Ipv6Address& gateway) {
    ManagementNetwork network = _network->Management();
    network.ip.SetIpv6Gateway(gateway);
    _network->Store(network);
}

NmDnsConfig::NmDnsConfig(HostFiles files, std::shared_ptr<NmNetwork> network)
    : LinuxDnsConfig(files), _files(std::move(files)), _network(std::move(network)) {}

ManagementNetwork NmDnsConfig::Current() {
    // Read afresh, so settings made through the other objects since are never written back stale.
    ManagementNetwork network = _network->Management();
    if (_servers) network.nameServers = *_servers;
    if (_domains) network.searchDomains = *_domains;
    return network;
}

void NmDnsConfig::SetHostname(const std::string& name, bool) {
    // Both the name kept for the next boot and the running one: the host answers to it at once.
    if (!HostCtl::Network::IsValidHostname(name))
        throw HostCtl::Lib::HostCtlException("Invalid host name: " + name);
    _network->Names().Set(name);
    SetOwnEntry(name, GetDomain());
}

void NmDnsConfig::SetFqdn(const std::string& fqdn, bool, const std::string& domain) {
    const std::string name = fqdn.substr(0, fqdn.find('.'));
    const std::string rest = fqdn.size() > name.size() ? fqdn.substr(name.size() + 1) : domain;
    if (!HostCtl::Network::IsValidHostname(name) || !HostCtl::Network::IsValidDomain(rest))
        throw HostCtl::Lib::HostCtlException("Invalid host name: " + fqdn);
    _network->Names().Set(name);
    SetOwnEntry(name, rest);
}

void NmDnsConfig::SetDomain(const std::string& domain) {
    if (!HostCtl::Network::IsValidDomain(domain))
        throw HostCtl::Lib::HostCtlException("Invalid domain: " + domain);
    SetOwnEntry(GetHostname(), domain);
}

void NmDnsConfig::SetOwnEntry(const std::string& name, const std::string& domain) {
    const std::string entry = "127.0.1.1\t" + (domain.empty() ? name : name + "." + domain + " " + name);
    std::string text;
    bool replaced = false;
    for (const std::string& line : HostCtl::Lines(_network->Names().HostsText())) {
        const std::vector<std::string> words = HostCtl::Words(line);
        if (!words.empty() && words[0] == "127.0.1.1") {
            if (!replaced) text += entry + "\n";
            replaced = true;
            continue;
        }
        text += line + "\n";
    }
    if (!replaced) text += entry + "\n";
    _network->Names().SetHostsText(text);
}

std::vector<std::string> NmDnsConfig::NameServers() {
    const ManagementNetwork network = Current();
    if (!network.ip.GetDnsFromDhcp()) return network.nameServers;
    std::vector<std::string> servers;
    for (const int family : {AF_INET, AF_INET6})
        for (const std::string& server : _network->RunningIp(family).nameServers)
            if (!Contains(servers, server)) servers.push_back(server);
    return servers;
}

std::vector<std::string> NmDnsConfig::GetNameServers() {
    std::vector<std::string> servers;
    for (const std::string& server : NameServers())
        if (server.find(':') == std::string::npos) servers.push_back(server);
    return servers;
}

std::vector<std::string> NmDnsConfig::GetIpv6NameServers(bool includeIpv4) {
    std::vector<std::string> servers;
    for (const std::string& server : NameServers())
        if (includeIpv4 || server.find(':') != std::string::npos) servers.push_back(server);
    return servers;
}

void NmDnsConfig::RemoveNameServers() {
    _servers = std::vector<std::string>();
}

void NmDnsConfig::AddNameServer(const HostCtl::Network::IpAddress& server) {
    if (!_servers) _servers = Current().nameServers;
    const std::string text = server.GetStringAddress();
    if (!Contains(*_servers, text)) _servers->push_back(text);
}

std::vector<std::string> NmDnsConfig::GetSearchDomains() {
    const ManagementNetwork network = Current();
    std::vector<std::string> domains = network.searchDomains;
    if (network.ip.GetDnsFromDhcp())
        for (const std::string& domain : _network->RunningIp(AF_INET).searches)
            if (!Contains(domains, domain)) domains.push_back(domain);
    return domains;
}

void NmDnsConfig::SetSearchDomainsString(const std::string& text) {
    std::vector<std::string> domains;
    for (const std::string& domain : HostCtl::Network::SplitNames(text)) {
        if (!HostCtl::Network::IsValidDomain(domain))
            throw HostCtl::Lib::HostCtlException("Invalid search domain: " + domain);
        if (!Contains(domains, domain)) domains.push_back(domain);
    }
    _domains = domains;
}

void NmDnsConfig::AddSearchDomain(const std::string& domain) {
    if (!HostCtl::Network::IsValidDomain(domain))
        throw HostCtl::Lib::HostCtlException("Invalid search domain: " + domain);
    if (!_domains) _domains = Current().searchDomains;
    if (!domain.empty() && !Contains(*_domains, domain)) _domains->push_back(domain);
}

void NmDnsConfig::SaveConfig() {
    if (!_servers && !_domains) return;
    const ManagementNetwork network = Current();
    _servers.reset();
    _domains.reset();
    _network->Store(network);
}

}  // namespace LinuxHost

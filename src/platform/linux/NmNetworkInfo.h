#pragma once

#include <memory>

#include "platform/hostctl/DnsConfig.h"
#include "platform/linux/LinuxDnsConfig.h"
#include "platform/linux/LinuxNetworkInfo.h"
#include "platform/linux/NmNetwork.h"

namespace LinuxHost {

// The network of a host whose network service runs it: NICs and the management network from the
// service, what runs from the kernel. IPv6 is switched on or off for the whole host at the next boot.
class NmNetworkInfo : public LinuxNetworkInfo {
  public:
    NmNetworkInfo(HostFiles files, std::shared_ptr<const KernelNetwork> kernel,
                  std::shared_ptr<NmNetwork> network);

    std::vector<std::unique_ptr<HostCtl::Network::Pnic>> GetPnics() override;
    std::unique_ptr<HostCtl::Network::ZenkNic> GetManagementInterface() override;
    std::string GetManagementInterfaceName() override;
    void SetZenkIpv6Enabled(bool enabled) override;
    bool GetPendingZenkIpv6Enabled() override;
    void ClearNetworkConfig() override;
    void AutoConfigNetwork() override;
    std::unique_ptr<HostCtl::Network::NetworkChange> BeginChange(int rollbackSeconds) override;
    std::string TakeOverNotice() override;

  private:
    HostFiles _files;
    std::shared_ptr<const KernelNetwork> _kernel;
    std::shared_ptr<NmNetwork> _network;
};

// The default gateways run as the kernel has them and are set in the management network's profile.
class NmRoutingInfo : public LinuxRoutingInfo {
  public:
    NmRoutingInfo(std::shared_ptr<const KernelNetwork> kernel, std::shared_ptr<NmNetwork> network);
    void SetZenKernelDefaultGateway(const HostCtl::Network::Ipv4Address& gateway,
                                    bool persistentOnly) override;
    void SetIpv6ZenKernelDefaultGateway(const HostCtl::Network::Ipv6Address& gateway) override;

  private:
    std::shared_ptr<NmNetwork> _network;
};

// The host's name through the host-name service (its domain in the name table's line for it), and the
// management network's name servers and search domains: the operator's, or with DHCP those its leases
// brought beside them. Name servers and domains are gathered and go into the profile together at SaveConfig.
class NmDnsConfig : public LinuxDnsConfig {
  public:
    NmDnsConfig(HostFiles files, std::shared_ptr<NmNetwork> network);

    void SetHostname(const std::string& name, bool persistentOnly) override;
    void SetFqdn(const std::string& fqdn, bool persistentOnly, const std::string& domain) override;
    void SetDomain(const std::string& domain) override;
    std::vector<std::string> GetNameServers() override;
    std::vector<std::string> GetIpv6NameServers(bool includeIpv4) override;
    void RemoveNameServers() override;
    void AddNameServer(const HostCtl::Network::IpAddress& server) override;
    std::vector<std::string> GetSearchDomains() override;
    void SetSearchDomainsString(const std::string& text) override;
    void AddSearchDomain(const std::string& domain) override;
    void SaveConfig() override;

  private:
    // The management network with the name servers and domains gathered so far.
    ManagementNetwork Current();
    // The name servers the management interface has: the operator's, or those its leases brought.
    std::vector<std::string> NameServers();
    // The name table's line for this host ("127.0.1.1 fqdn name", as Debian keeps it).
    void SetOwnEntry(const std::string& name, const std::string& domain);
    HostFiles _files;
    std::shared_ptr<NmNetwork> _network;
    std::optional<std::vector<std::string>> _servers, _domains;
};

}  // namespace LinuxHost

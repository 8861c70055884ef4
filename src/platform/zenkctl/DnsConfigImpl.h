#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/DnsConfig.h"
#include "platform/hostctl/IpAddress.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// The DNS configuration of a network stack ("/network/dns"): host name, domain, name servers, search
// domains. Every setter writes the store at once; SaveConfig marks the configuration saved, which the
// host takes as the signal to rewrite its resolver files.
class DnsConfigImpl : public HostCtl::Network::DnsConfig {
  public:
    DnsConfigImpl(const std::string& netstack, std::shared_ptr<Store::HostStore> store);
    ~DnsConfigImpl() override = default;

    std::string GetHostname() override;
    std::string GetDomain() override;
    // A host name is one DNS label: 1 to 63 letters, digits and hyphens, not starting or ending with a
    // hyphen. Invalid names are a HostCtlException. persistentOnly as for routing.
    void SetHostname(const std::string& name, bool persistentOnly) override;
    // "host.example.com": the first label becomes the host name, the rest the domain. A name without a
    // dot takes domain as its domain.
    void SetFqdn(const std::string& fqdn, bool persistentOnly, const std::string& domain) override;
    void SetDomain(const std::string& domain) override;

    std::vector<std::string> GetNameServers() override;  // IPv4 servers, in order
    // includeIpv4: the IPv4 servers are listed too, after the IPv6 ones.
    std::vector<std::string> GetIpv6NameServers(bool includeIpv4 = false) override;
    void RemoveNameServers() override;
    void AddNameServer(const HostCtl::Network::IpAddress& server) override;

    std::vector<std::string> GetSearchDomains() override;
    // Replaces the search list by the names in text (separated by blanks or commas).
    void SetSearchDomainsString(const std::string& text) override;
    void AddSearchDomain(const std::string& domain) override;

    void SaveConfig() override;

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network

#pragma once

#include "platform/hostctl/DnsConfig.h"
#include "platform/linux/HostFiles.h"

namespace LinuxHost {

// The host's name (the kernel's), its domain (the canonical name /etc/hosts gives it, else the resolver's
// "domain") and the resolver's name servers and search domains (/etc/resolv.conf).
class LinuxDnsConfig : public HostCtl::Network::DnsConfig {
  public:
    explicit LinuxDnsConfig(HostFiles files);

    std::string GetHostname() override;
    std::string GetDomain() override;
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
    // The words after `keyword` on each of the resolver's lines that start with it.
    std::vector<std::string> Resolver(const std::string& keyword) const;
    HostFiles _files;
};

}  // namespace LinuxHost

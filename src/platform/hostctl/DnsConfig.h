#pragma once

#include <string>
#include <vector>

#include "platform/hostctl/IpAddress.h"

namespace HostCtl::Network {

// The host's name, domain, name servers and search domains on one network stack.
class DnsConfig {
  public:
    virtual ~DnsConfig() = default;

    virtual std::string GetHostname() = 0;
    virtual std::string GetDomain() = 0;
    virtual void SetHostname(const std::string& name, bool persistentOnly) = 0;
    virtual void SetFqdn(const std::string& fqdn, bool persistentOnly, const std::string& domain) = 0;
    virtual void SetDomain(const std::string& domain) = 0;

    // IPv4 servers, in order.
    virtual std::vector<std::string> GetNameServers() = 0;
    virtual std::vector<std::string> GetIpv6NameServers(bool includeIpv4 = false) = 0;
    virtual void RemoveNameServers() = 0;
    virtual void AddNameServer(const IpAddress& server) = 0;

    virtual std::vector<std::string> GetSearchDomains() = 0;
    virtual void SetSearchDomainsString(const std::string& text) = 0;
    virtual void AddSearchDomain(const std::string& domain) = 0;
    // Makes the changes the resolver's own.
    virtual void SaveConfig() = 0;
};

// The rules of names, the same on every host.
bool IsValidHostname(const std::string& name);
// Dot-separated labels; may be empty.
bool IsValidDomain(const std::string& domain);
// The names of a list typed with commas, spaces or both between them.
std::vector<std::string> SplitNames(const std::string& text);

}  // namespace HostCtl::Network

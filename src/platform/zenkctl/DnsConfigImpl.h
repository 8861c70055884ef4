#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/hostctl/IpAddress.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Network {

// The DNS configuration of a network stack ("/network/dns"): host name, domain, name servers, search
// domains. Every setter writes the store at once; SaveConfig marks the configuration saved, which the
// host takes as the signal to rewrite its resolver files.
//
// Its operations are virtual so that a caller's tests can record the calls made on it in order.
class DnsConfigImpl {
  public:
    explicit DnsConfigImpl(const std::string& netstack = "defaultNetStack",
                           std::shared_ptr<Store::HostStore> store = Store::HostStore::System());
    virtual ~DnsConfigImpl() = default;

    virtual std::string GetHostname();
    virtual std::string GetDomain();
    // A host name is one DNS label: 1 to 63 letters, digits and hyphens, not starting or ending with a
    // hyphen. Invalid names are a HostCtlException. persistentOnly as for routing.
    virtual void SetHostname(const std::string& name, bool persistentOnly);
    // "host.example.com": the first label becomes the host name, the rest the domain. A name without a
    // dot takes domain as its domain.
    virtual void SetFqdn(const std::string& fqdn, bool persistentOnly, const std::string& domain);
    virtual void SetDomain(const std::string& domain);

    virtual std::vector<std::string> GetNameServers();  // IPv4 servers, in order
    // includeIpv4: the IPv4 servers are listed too, after the IPv6 ones.
    virtual std::vector<std::string> GetIpv6NameServers(bool includeIpv4 = false);
    virtual void RemoveNameServers();
    virtual void AddNameServer(const HostCtl::Network::IpAddress& server);

    virtual std::vector<std::string> GetSearchDomains();
    // Replaces the search list by the names in text (separated by blanks or commas).
    virtual void SetSearchDomainsString(const std::string& text);
    virtual void AddSearchDomain(const std::string& domain);

    virtual void SaveConfig();

    static bool IsValidHostname(const std::string& name);
    static bool IsValidDomain(const std::string& domain);  // dot-separated labels, may be empty
    // The names of a list typed as text: split at every comma and white space, empty pieces dropped.
    static std::vector<std::string> SplitNames(const std::string& text);

  private:
    std::shared_ptr<Store::HostStore> _store;
};

}  // namespace ZenkCtl::Network

#pragma once

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace KovoSim {

// What the host's network is for a store document and its scenario, worked out without touching
// anything: the addresses that answer, what the name server answers, the host's names. Every reader is
// lenient: a missing or ill-typed member reads as empty, so a sparse or damaged store never throws here.
class HostNetwork {
  public:
    // The text at a JSON pointer, or empty; the texts of a list at a JSON pointer (others skipped).
    static std::string Text(const nlohmann::json& node, const char* pointer);
    static std::vector<std::string> Texts(const nlohmann::json& node, const char* pointer);

    static bool IsAddress(const std::string& text);  // IPv4 or IPv6, without a zone
    // An address a host of the network can have: IsAddress, and not 0.0.0.0 or ::.
    static bool IsHostAddress(const std::string& text);
    static bool IsIpv6(const std::string& text);
    // 127.0.0.0/8 and ::1 answer on loopback anyway; the host never adds or removes them.
    static bool IsLoopback(const std::string& address);

    // The management interface's IPv4 address as it runs ("running"; the configured static address
    // when the interface has no running state yet); empty when it has none (0.0.0.0, no lease).
    static std::string ManagementIpv4(const nlohmann::json& store);
    // "host.domain", or the host name alone without a domain.
    static std::string Fqdn(const nlohmann::json& store);

    // The store's silent name servers ("/simulation/silentNameServers"): each text once, in order, bad
    // ones included, so that whoever acts on them can say which it skipped.
    static std::vector<std::string> SilentNameServers(const nlohmann::json& store);
    // The addresses that answer in the host's network: gateways, name servers, the management address,
    // the scenario's extra ones ("simulation": {"answering": [...]}) and the silent name servers; only
    // host addresses.
    static std::vector<std::string> AnsweringAddresses(const nlohmann::json& store,
                                                       const nlohmann::json& scenario);
    // The name servers among them, silent ones aside: where the host's name server listens.
    static std::vector<std::string> NameServerAddresses(const nlohmann::json& store,
                                                        const nlohmann::json& scenario);
    // The names the host's DNS server answers: the host's FQDN with its management address, and the
    // scenario's ("simulation": {"names": {"name": "address" or ["address", ...]}}).
    static std::vector<std::pair<std::string, std::string>> DnsNames(const nlohmann::json& store,
                                                                     const nlohmann::json& scenario);
};

}  // namespace KovoSim

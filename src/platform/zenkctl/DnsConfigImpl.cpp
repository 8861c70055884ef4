#include "platform/zenkctl/DnsConfigImpl.h"

#include <algorithm>
#include <cctype>

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetStack.h"
#include "platform/zenkctl/NetworkJson.h"

using HostCtl::Lib::HostCtlException;
using HostCtl::Network::IsValidDomain;
using HostCtl::Network::IsValidHostname;
using HostCtl::Network::SplitNames;
using nlohmann::json;

namespace ZenkCtl::Network {

DnsConfigImpl::DnsConfigImpl(const std::string& netstack, std::shared_ptr<Store::HostStore> store)
    : _store(std::move(store)) {
    RequireDefaultNetStack(netstack);
}

std::string DnsConfigImpl::GetHostname() {
    return Json::Text(_store->Get(Store::Schema::kDns), "hostname");
}

std::string DnsConfigImpl::GetDomain() {
    return Json::Text(_store->Get(Store::Schema::kDns), "domain");
}

void DnsConfigImpl::SetHostname(const std::string& name, bool) {
    if (!IsValidHostname(name)) throw HostCtlException("Invalid host name: " + name);
    _store->Update([&](json& d) { Json::ObjectAt(d, Store::Schema::kDns)["hostname"] = name; });
}

void DnsConfigImpl::SetFqdn(const std::string& fqdn, bool, const std::string& domain) {
    const auto dot = fqdn.find('.');
    const std::string host = fqdn.substr(0, dot);
    const std::string rest = dot == std::string::npos ? domain : fqdn.substr(dot + 1);
    if (!IsValidHostname(host) || !IsValidDomain(rest) || (dot != std::string::npos && rest.empty())) {
        throw HostCtlException("Invalid fully qualified name: " + fqdn);
    }
    _store->Update([&](json& d) {
        json& dns = Json::ObjectAt(d, Store::Schema::kDns);
        dns["hostname"] = host;
        dns["domain"] = rest;
    });
}

void DnsConfigImpl::SetDomain(const std::string& domain) {
    if (!IsValidDomain(domain)) throw HostCtlException("Invalid domain name: " + domain);
    _store->Update([&](json& d) { Json::ObjectAt(d, Store::Schema::kDns)["domain"] = domain; });
}

std::vector<std::string> DnsConfigImpl::GetNameServers() {
    return Json::TextList(_store->Get(Store::Schema::kDns), "nameServers");
}

std::vector<std::string> DnsConfigImpl::GetIpv6NameServers(bool includeIpv4) {
    const json dns = _store->Get(Store::Schema::kDns);
    auto servers = Json::TextList(dns, "ipv6NameServers");
    if (includeIpv4) {
        for (const auto& s : Json::TextList(dns, "nameServers")) servers.push_back(s);
    }
    return servers;
}

void DnsConfigImpl::RemoveNameServers() {
    _store->Update([](json& d) {
        json& dns = Json::ObjectAt(d, Store::Schema::kDns);
        dns["nameServers"] = json::array();
        dns["ipv6NameServers"] = json::array();
    });
}

void DnsConfigImpl::AddNameServer(const HostCtl::Network::IpAddress& server) {
    if (server.IsUnspecified()) throw HostCtlException("Refusing the unspecified address as a name server");
    const char* key = server.IsIpv6() ? "ipv6NameServers" : "nameServers";
    const std::string text = server.GetStringAddress();
    _store->Update([&](json& d) {
        json& list = Json::ObjectAt(d, Store::Schema::kDns)[key];
        if (!list.is_array()) list = json::array();
        if (std::find(list.begin(), list.end(), text) == list.end()) list.push_back(text);
    });
}

std::vector<std::string> DnsConfigImpl::GetSearchDomains() {
    return Json::TextList(_store->Get(Store::Schema::kDns), "searchDomains");
}

void DnsConfigImpl::SetSearchDomainsString(const std::string& text) {
    const auto domains = SplitNames(text);
    for (const auto& d : domains) {
        if (!IsValidDomain(d)) throw HostCtlException("Invalid search domain: " + d);
    }
    _store->Update([&](json& d) { Json::ObjectAt(d, Store::Schema::kDns)["searchDomains"] = domains; });
}

void DnsConfigImpl::AddSearchDomain(const std::string& domain) {
    if (domain.empty() || !IsValidDomain(domain)) throw HostCtlException("Invalid search domain: " + domain);
    _store->Update([&](json& d) {
        json& list = Json::ObjectAt(d, Store::Schema::kDns)["searchDomains"];
        if (!list.is_array()) list = json::array();
        if (std::find(list.begin(), list.end(), domain) == list.end()) list.push_back(domain);
    });
}

void DnsConfigImpl::SaveConfig() {
    _store->Update([](json& d) {
        json& dns = Json::ObjectAt(d, Store::Schema::kDns);
        dns["saved"] = Json::Integer(dns, "saved") + 1;
    });
}

}  // namespace ZenkCtl::Network

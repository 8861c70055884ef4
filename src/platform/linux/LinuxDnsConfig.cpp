#include "platform/linux/LinuxDnsConfig.h"

#include <algorithm>

#include "platform/hostctl/TextFields.h"
#include "platform/linux/NotAvailable.h"

namespace LinuxHost {

LinuxDnsConfig::LinuxDnsConfig(HostFiles files) : _files(std::move(files)) {}

std::vector<std::string> LinuxDnsConfig::Resolver(const std::string& keyword) const {
    std::vector<std::string> words;
    for (const std::string& line : HostCtl::Lines(_files.Read("/etc/resolv.conf").value_or(""))) {
        const std::vector<std::string> fields = HostCtl::Words(line);
        if (fields.empty() || fields[0] != keyword) continue;
        for (size_t i = 1; i < fields.size() && fields[i][0] != '#' && fields[i][0] != ';'; ++i)
            words.push_back(fields[i]);
    }
    return words;
}

std::string LinuxDnsConfig::GetHostname() {
    std::string name = _files.FirstLine("/proc/sys/kernel/hostname");
    // The kernel may hold the full name; the host name is its first label.
    return name.substr(0, name.find('.'));
}

std::string LinuxDnsConfig::GetDomain() {
    const std::string kernelName = _files.FirstLine("/proc/sys/kernel/hostname");
    const std::string host = kernelName.substr(0, kernelName.find('.'));
    if (kernelName.size() > host.size() + 1) return kernelName.substr(host.size() + 1);
    for (const std::string& line : HostCtl::Lines(_files.Read("/etc/hosts").value_or(""))) {
        // The address, the canonical name, then its aliases.
        const std::vector<std::string> fields = HostCtl::Words(line.substr(0, line.find('#')));
        if (fields.size() < 2) continue;
        const std::string& canonical = fields[1];
        const bool names = std::find(fields.begin() + 1, fields.end(), host) != fields.end();
        if (names && canonical.rfind(host + ".", 0) == 0) return canonical.substr(host.size() + 1);
    }
    const std::vector<std::string> domain = Resolver("domain");
    return domain.empty() ? std::string() : domain.front();
}

std::vector<std::string> LinuxDnsConfig::GetNameServers() {
    std::vector<std::string> servers;
    for (std::string& server : Resolver("nameserver"))
        if (server.find(':') == std::string::npos) servers.push_back(std::move(server));
    return servers;
}

std::vector<std::string> LinuxDnsConfig::GetIpv6NameServers(bool includeIpv4) {
    std::vector<std::string> servers;
    for (std::string& server : Resolver("nameserver"))
        if (includeIpv4 || server.find(':') != std::string::npos) servers.push_back(std::move(server));
    return servers;
}

std::vector<std::string> LinuxDnsConfig::GetSearchDomains() {
    return Resolver("search");
}

void LinuxDnsConfig::SetHostname(const std::string&, bool) {
    NetworkChangeNotAvailable();
}
void LinuxDnsConfig::SetFqdn(const std::string&, bool, const std::string&) {
    NetworkChangeNotAvailable();
}
void LinuxDnsConfig::SetDomain(const std::string&) {
    NetworkChangeNotAvailable();
}
void LinuxDnsConfig::RemoveNameServers() {
    NetworkChangeNotAvailable();
}
void LinuxDnsConfig::AddNameServer(const HostCtl::Network::IpAddress&) {
    NetworkChangeNotAvailable();
}
void LinuxDnsConfig::SetSearchDomainsString(const std::string&) {
    NetworkChangeNotAvailable();
}
void LinuxDnsConfig::AddSearchDomain(const std::string&) {
    NetworkChangeNotAvailable();
}
void LinuxDnsConfig::SaveConfig() {
    NetworkChangeNotAvailable();
}

}  // namespace LinuxHost

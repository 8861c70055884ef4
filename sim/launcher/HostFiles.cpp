#include "HostFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "HostNetwork.h"
#include "platform/store/StoreSchema.h"

namespace KovoSim {

namespace Schema = ZenkCtl::Store::Schema;
namespace fs = std::filesystem;
using nlohmann::json;

void HostFiles::Write(const std::string& path, const std::string& text, mode_t mode) {
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    ::unlink(path.c_str());
    {
        std::ofstream file(path, std::ios::trunc);
        file << text;
        if (!file.flush()) throw std::system_error(errno, std::generic_category(), "write " + path);
    }
    ::chmod(path.c_str(), mode);
}

std::string HostFiles::Hostname(const json& store) {
    const std::string host = HostNetwork::Text(store, Schema::kHostname);
    return (host.empty() ? "localhost" : host) + "\n";
}

std::string HostFiles::Hosts(const json& store) {
    std::string hosts = "127.0.0.1\tlocalhost\n::1\tlocalhost ip6-localhost ip6-loopback\n";
    const std::string host = HostNetwork::Text(store, Schema::kHostname);
    const std::string fqdn = HostNetwork::Fqdn(store);
    const std::string address = HostNetwork::ManagementIpv4(store);
    if (!address.empty() && !host.empty())
        hosts += address + "\t" + fqdn + (fqdn != host ? "\t" + host : std::string()) + "\n";
    return hosts;
}

std::string HostFiles::ResolvConf(const json& store) {
    std::string resolv;
    const auto search = HostNetwork::Texts(store, Schema::kSearchDomains);
    if (!search.empty()) {
        resolv += "search";
        for (const auto& domain : search) resolv += " " + domain;
        resolv += "\n";
    }
    auto servers = HostNetwork::Texts(store, Schema::kNameServers);
    for (const auto& server : HostNetwork::Texts(store, Schema::kIpv6NameServers)) servers.push_back(server);
    for (size_t i = 0; i < servers.size() && i < 3; ++i) resolv += "nameserver " + servers[i] + "\n";
    resolv += "options timeout:1 attempts:1\n";
    return resolv;
}

void HostFiles::WriteNameFiles(const json& store) {
    Write("/etc/hostname", Hostname(store));
    Write("/etc/hosts", Hosts(store));
    Write("/etc/resolv.conf", ResolvConf(store));
}

}  // namespace KovoSim

#include "HostBoot.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <arpa/inet.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <system_error>
#include <thread>

#include "RecordReceiver.h"
#include "host/HostPrograms.h"
#include "platform/events/EventPaths.h"
#include "platform/store/HostStore.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/ZenkNicRuntime.h"

namespace KovoSim {

namespace Schema = ZenkCtl::Store::Schema;
namespace fs = std::filesystem;
using nlohmann::json;

namespace {

// The host's kernel interfaces come up at boot: each one's running state (addresses, leases) is worked
// out from its configuration, as the network stack of a real host would.
void StartInterfaces() {
    ZenkCtl::Store::HostStore store(ZenkCtl::Store::HostStore::kHostPath);
    store.Update([](json& document) {
        const json::json_pointer where(Schema::kZenkNics);
        // contains() first: operator[] would add an empty member to a host without interfaces.
        const json* nics = document.contains(where) ? &document.at(where) : nullptr;
        if (!nics || !nics->is_array()) return;
        std::vector<std::string> names;
        for (const json& nic : *nics)
            if (nic.is_object() && nic.contains("name") && nic["name"].is_string())
                names.push_back(nic["name"]);
        for (const std::string& name : names) ZenkCtl::Network::ZenkNicRuntime::Apply(document, name);
    });
}

const char* const kPowerNames[] = {"poweroff", "reboot", "halt", "shutdown"};

std::string Text(const json& node, const char* pointer) {
    const json::json_pointer where(pointer);
    if (!node.is_object() || !node.contains(where)) return {};
    const json& value = node.at(where);
    return value.is_string() ? value.get<std::string>() : std::string();
}

std::vector<std::string> Texts(const json& node, const char* pointer) {
    std::vector<std::string> texts;
    const json::json_pointer where(pointer);
    if (!node.is_object() || !node.contains(where) || !node.at(where).is_array()) return texts;
    for (const auto& value : node.at(where))
        if (value.is_string()) texts.push_back(value.get<std::string>());
    return texts;
}

bool IsAddress(const std::string& text) {
    unsigned char buffer[16];
    return ::inet_pton(AF_INET, text.c_str(), buffer) == 1 ||
           ::inet_pton(AF_INET6, text.c_str(), buffer) == 1;
}

bool IsIpv6(const std::string& text) {
    unsigned char buffer[16];
    return ::inet_pton(AF_INET6, text.c_str(), buffer) == 1;
}

// Replaces a host file. A file of the machine below may be a symbolic link into /run; removing it
// first keeps the new file on the host's disk.
void WriteHostFile(const std::string& path, const std::string& text, mode_t mode = 0644) {
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

void Link(const std::string& target, const std::string& path) {
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    ::unlink(path.c_str());
    if (::symlink(target.c_str(), path.c_str()) != 0)
        throw std::system_error(errno, std::generic_category(), "symlink " + path);
}

pid_t Spawn(const std::vector<std::string>& argv, bool background) {
    const pid_t pid = ::fork();
    if (pid < 0) return -1;
    if (pid == 0) {
        const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
        ::dup2(null, 0);
        ::dup2(null, 1);
        ::dup2(null, 2);
        sigset_t none;
        sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        if (background) ::setsid();  // a daemon of the host: no terminal, no Ctrl-C
        std::vector<char*> args;
        for (const auto& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
        args.push_back(nullptr);
        ::execvp(args[0], args.data());
        _exit(127);
    }
    return pid;
}

int Wait(pid_t pid) {
    if (pid < 0) return -1;
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Runs a program of the machine, its output discarded: to its end (returning its exit status), or in
// the background as a daemon of the host.
int RunQuietly(const std::vector<std::string>& argv, bool background = false) {
    const pid_t pid = Spawn(argv, background);
    return background ? (pid < 0 ? -1 : 0) : Wait(pid);
}

// Runs programs side by side and waits for all of them.
void RunAll(const std::vector<std::vector<std::string>>& commands) {
    std::vector<pid_t> pids;
    for (const auto& argv : commands) pids.push_back(Spawn(argv, false));
    for (pid_t pid : pids) Wait(pid);
}

// Whether anything in this network namespace listens on UDP port 53 (as the kernel lists its sockets).
bool ListensOnDnsPort() {
    for (const char* table : {"/proc/net/udp", "/proc/net/udp6"}) {
        std::ifstream file(table);
        std::string line;
        std::getline(file, line);  // header
        while (std::getline(file, line)) {
            std::istringstream fields(line);
            std::string slot, local;
            fields >> slot >> local;
            if (local.size() > 5 && local.compare(local.size() - 5, 5, ":0035") == 0) return true;
        }
    }
    return false;
}

std::string Fqdn(const json& store) {
    const std::string host = Text(store, Schema::kHostname);
    const std::string domain = Text(store, Schema::kDomain);
    return domain.empty() ? host : host + "." + domain;
}

std::string ManagementIpv4(const json& store) {
    const json::json_pointer nics(Schema::kZenkNics);
    if (!store.contains(nics) || !store.at(nics).is_array()) return {};
    for (const auto& nic : store.at(nics)) {
        if (!nic.is_object() || !nic.value("management", false)) continue;
        const std::string address = Text(nic, "/ipConfig/ipv4/address");
        if (IsAddress(address)) return address;
    }
    return {};
}

}  // namespace

json HostBoot::StoreOf(const json& scenario) {
    json store = scenario;
    store.erase("simulation");
    return store;
}

std::vector<std::string> HostBoot::AnsweringAddresses(const json& store, const json& scenario) {
    std::vector<std::string> candidates = {Text(store, Schema::kIpv4DefaultGateway),
                                           Text(store, Schema::kIpv6DefaultGateway), ManagementIpv4(store)};
    for (const auto& list : {Texts(store, Schema::kNameServers), Texts(store, Schema::kIpv6NameServers),
                             Texts(scenario, Schema::kSimulationAnswering)})
        candidates.insert(candidates.end(), list.begin(), list.end());
    std::vector<std::string> addresses;
    std::set<std::string> seen;
    for (const auto& address : candidates) {
        if (address.empty() || address == "0.0.0.0" || address == "::" || !IsAddress(address)) continue;
        if (seen.insert(address).second) addresses.push_back(address);
    }
    return addresses;
}

std::vector<std::pair<std::string, std::string>> HostBoot::DnsNames(const json& store, const json& scenario) {
    std::vector<std::pair<std::string, std::string>> names;
    const std::string fqdn = Fqdn(store);
    const std::string address = ManagementIpv4(store);
    if (!fqdn.empty() && !address.empty()) names.emplace_back(fqdn, address);
    const json::json_pointer where(Schema::kSimulationNames);
    if (scenario.is_object() && scenario.contains(where) && scenario.at(where).is_object()) {
        for (const auto& [name, value] : scenario.at(where).items()) {
            if (value.is_string() && IsAddress(value.get<std::string>()))
                names.emplace_back(name, value.get<std::string>());
            if (!value.is_array()) continue;
            for (const auto& one : value)
                if (one.is_string() && IsAddress(one.get<std::string>()))
                    names.emplace_back(name, one.get<std::string>());
        }
    }
    return names;
}

void HostBoot::Provision(const json& scenario) {
    const json store = StoreOf(scenario);
    std::error_code error;
    fs::create_directories("/etc/halvor", error);
    ZenkCtl::Store::HostStore(ZenkCtl::Store::HostStore::kHostPath).Replace(store);

    const std::string host = Text(store, Schema::kHostname);
    const std::string fqdn = Fqdn(store);
    WriteHostFile("/etc/hostname", (host.empty() ? "localhost" : host) + "\n");

    std::string hosts = "127.0.0.1\tlocalhost\n::1\tlocalhost ip6-localhost ip6-loopback\n";
    const std::string address = ManagementIpv4(store);
    if (!address.empty() && !host.empty())
        hosts += address + "\t" + fqdn + (fqdn != host ? "\t" + host : std::string()) + "\n";
    WriteHostFile("/etc/hosts", hosts);

    std::string resolv;
    const auto search = Texts(store, Schema::kSearchDomains);
    if (!search.empty()) {
        resolv += "search";
        for (const auto& domain : search) resolv += " " + domain;
        resolv += "\n";
    }
    auto servers = Texts(store, Schema::kNameServers);
    for (const auto& server : Texts(store, Schema::kIpv6NameServers)) servers.push_back(server);
    for (size_t i = 0; i < servers.size() && i < 3; ++i) resolv += "nameserver " + servers[i] + "\n";
    resolv += "options timeout:1 attempts:1\n";
    WriteHostFile("/etc/resolv.conf", resolv);
    WriteHostFile("/etc/nsswitch.conf",
                  "passwd: files\ngroup: files\nshadow: files\nhosts: files dns\nnetworks: files\n"
                  "protocols: files\nservices: files\n");

    // A certificate and host keys made for this host, so their fingerprints are its own. Made side by
    // side: key generation is most of the time a new host takes.
    fs::create_directories("/etc/halvor/ssl", error);
    fs::create_directories("/etc/ssh", error);
    const std::string subject = "/CN=" + (fqdn.empty() ? std::string("localhost") : fqdn);
    for (const char* file :
         {"/etc/halvor/ssl/host.crt", "/etc/halvor/ssl/host.key", "/etc/ssh/ssh_host_rsa_key",
          "/etc/ssh/ssh_host_rsa_key.pub", "/etc/ssh/ssh_host_dsa_key", "/etc/ssh/ssh_host_dsa_key.pub"})
        ::unlink(file);
    // This OpenSSH may refuse DSA; the host then simply has no DSA key.
    RunAll({{"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "3650", "-subj", subject,
             "-keyout", "/etc/halvor/ssl/host.key", "-out", "/etc/halvor/ssl/host.crt"},
            {"ssh-keygen", "-q", "-t", "rsa", "-b", "2048", "-N", "", "-C", "root@" + fqdn, "-f",
             "/etc/ssh/ssh_host_rsa_key"},
            {"ssh-keygen", "-q", "-t", "dsa", "-N", "", "-C", "root@" + fqdn, "-f",
             "/etc/ssh/ssh_host_dsa_key"}});
}

void HostBoot::ApplyPendingChanges(const json& scenario, bool firstBoot) {
    ZenkCtl::Store::HostStore store(ZenkCtl::Store::HostStore::kHostPath);
    const json pending = store.Get(Schema::kPendingBoot);
    const bool auditMode = store.Get(Schema::kAuditMode) == json(true);
    if (auditMode && !firstBoot) {
        store.Replace(StoreOf(scenario));
        return;
    }
    if (!pending.is_object() || pending.empty()) return;
    if (pending.value("resetConfiguration", false)) {
        // The configuration the host was made with; its disk's other files stay.
        store.Replace(StoreOf(scenario));
        return;
    }
    store.Update([&](json& document) {
        if (pending.contains("ipv6Enabled") && pending["ipv6Enabled"].is_boolean())
            document["network"]["ipv6Enabled"] = pending["ipv6Enabled"];
        document["boot"]["pending"] = json::object();
    });
}

void HostBoot::InstallPrograms(const Products& products) {
    const std::string programs = std::string(kProgramDir) + "/kovo-sim-host";
    Link(products.hostPrograms, programs);
    Link(products.pamModule, std::string(kProgramDir) + "/pam_kovo_sim.so");
    for (const auto& install : Host::HostPrograms::Installs()) {
        if (install.script) {
            WriteHostFile(install.hostPath,
                          "#!/bin/sh\nexec " + programs + " " + install.name + " \"$0\" \"$@\"\n", 0755);
        } else {
            Link(programs, install.hostPath);
        }
    }
    Link("/usr/bin/ssh-keygen", "/usr/lib/halvor/openssh/bin/ssh-keygen");
    const std::string module = std::string(kProgramDir) + "/pam_kovo_sim.so";
    WriteHostFile("/etc/pam.d/kovo",
                  "# The console's PAM service on the simulated host.\n"
                  "auth     required " +
                      module +
                      "\n"
                      "account  required " +
                      module +
                      "\n"
                      "password required " +
                      module +
                      "\n"
                      "session  required " +
                      module + "\n");

    // A shell without PATH searches /usr/local first: nothing of the machine's may answer there.
    for (const char* dir : {"/usr/local/sbin", "/usr/local/bin"}) {
        for (const char* name : kPowerNames) {
            const std::string path = std::string(dir) + "/" + name;
            struct stat info {};
            if (::lstat(path.c_str(), &info) == 0)
                ::mount(programs.c_str(), path.c_str(), nullptr, MS_BIND, nullptr);
        }
    }
}

void HostBoot::FillRun(const json& store) {
    for (const char* dir : {"/run/lock", "/run/halvor", "/run/kovo-sim"}) ::mkdir(dir, 0755);
    ::chmod("/run/lock", 01777);
    const json::json_pointer marker(Schema::kShowKovoLogin);
    if (store.contains(marker) && store.at(marker).is_boolean() && store.at(marker).get<bool>())
        WriteHostFile(kLoginMarker, "");
    else
        ::unlink(kLoginMarker);
}

void HostBoot::StartNetwork(const json& store, const json& scenario) {
    RunQuietly({"ip", "addr", "flush", "dev", "lo", "scope", "global"});
    std::vector<std::string> listen;
    const auto servers = [&] {
        auto list = Texts(store, Schema::kNameServers);
        for (const auto& s : Texts(store, Schema::kIpv6NameServers)) list.push_back(s);
        return list;
    }();
    for (const auto& address : AnsweringAddresses(store, scenario)) {
        const bool v6 = IsIpv6(address);
        RunQuietly({"ip", v6 ? "-6" : "-4", "addr", "add", address + (v6 ? "/128" : "/32"), "dev", "lo"});
        for (const auto& server : servers)
            if (server == address) listen.push_back(address);
    }
    if (listen.empty()) return;
    // --no-daemon keeps it in the foreground and, unlike --keep-in-foreground, leaves user and groups alone:
    // in an unprivileged user namespace there is no other group to change to.
    std::vector<std::string> dnsmasq = {"dnsmasq",    "--no-daemon", "--conf-file=/dev/null", "--no-resolv",
                                        "--no-hosts", "--no-poll",   "--bind-interfaces"};
    for (const auto& address : listen) dnsmasq.push_back("--listen-address=" + address);
    for (const auto& [name, address] : DnsNames(store, scenario))
        dnsmasq.push_back("--host-record=" + name + "," + address);
    RunQuietly(dnsmasq, true);
    // The console and the host's programs may resolve names at once: wait until it listens.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!ListensOnDnsPort() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

std::vector<std::unique_ptr<DatagramSink>> HostBoot::Start(const json& scenario, const Products& products,
                                                           bool firstBoot) {
    ApplyPendingChanges(scenario, firstBoot);
    StartInterfaces();
    InstallPrograms(products);
    const json store = ZenkCtl::Store::HostStore(ZenkCtl::Store::HostStore::kHostPath).Read();
    FillRun(store);
    const std::string host = Text(store, Schema::kHostname);
    const std::string name = host.empty() ? "localhost" : host;
    ::sethostname(name.data(), name.size());
    StartNetwork(store, scenario);

    std::error_code error;
    fs::create_directories("/var/log/kovo-sim", error);
    std::vector<std::unique_ptr<DatagramSink>> daemons;
    daemons.push_back(
        std::make_unique<RecordReceiver>(ZenkCtl::Events::kEventSocket, "/var/log/kovo-sim/events.log"));
    daemons.push_back(
        std::make_unique<RecordReceiver>(ZenkCtl::Events::kAuditSocket, "/var/log/kovo-sim/audit.log"));
    return daemons;
}

}  // namespace KovoSim

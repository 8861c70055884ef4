#include "HostBoot.h"

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "ChildProcess.h"
#include "HostFiles.h"
#include "HostNetwork.h"
#include "NetworkFollower.h"
#include "RecordReceiver.h"
#include "host/HostPrograms.h"
#include "host/SimulationSchema.h"
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

void Link(const std::string& target, const std::string& path) {
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);
    ::unlink(path.c_str());
    if (::symlink(target.c_str(), path.c_str()) != 0)
        throw std::system_error(errno, std::generic_category(), "symlink " + path);
}

}  // namespace

json HostBoot::StoreOf(const json& scenario) {
    json store = scenario;
    store.erase("simulation");
    // A scenario may carry failing platform operations and silent name servers; they live in the store,
    // where the platform and the network follower look for them, so a running host can switch them. What
    // else the simulation holds is for the simulated host alone. The faults member is always there: it
    // is how the console's platform knows, once at its start, that this host can be made to fail.
    const json::json_pointer faults(Simulation::kFaults);
    store[faults] = json::object();
    if (scenario.is_object() && scenario.contains(faults) && scenario.at(faults).is_object())
        store[faults] = scenario.at(faults);
    const json::json_pointer silent(Simulation::kSilentNameServers);
    if (scenario.is_object() && scenario.contains(silent) && scenario.at(silent).is_array())
        store[silent] = scenario.at(silent);
    return store;
}

void HostBoot::Provision(const json& scenario) {
    const json store = StoreOf(scenario);
    std::error_code error;
    fs::create_directories("/etc/halvor", error);
    ZenkCtl::Store::HostStore(ZenkCtl::Store::HostStore::kHostPath).Replace(store);

    HostFiles::WriteNameFiles(store);
    const std::string fqdn = HostNetwork::Fqdn(store);
    HostFiles::Write("/etc/nsswitch.conf",
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
    ChildProcess::RunAll(
        {{"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "3650", "-subj", subject,
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
            HostFiles::Write(install.hostPath,
                             "#!/bin/sh\nexec " + programs + " " + install.name + " \"$0\" \"$@\"\n", 0755);
        } else {
            Link(programs, install.hostPath);
        }
    }
    Link("/usr/bin/ssh-keygen", "/usr/lib/halvor/openssh/bin/ssh-keygen");
    const std::string module = std::string(kProgramDir) + "/pam_kovo_sim.so";
    HostFiles::Write("/etc/pam.d/kovo",
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
        HostFiles::Write(kLoginMarker, "");
    else
        ::unlink(kLoginMarker);
}

std::vector<std::unique_ptr<DatagramSink>> HostBoot::Start(const json& scenario, const Products& products,
                                                           bool firstBoot) {
    ApplyPendingChanges(scenario, firstBoot);
    StartInterfaces();
    InstallPrograms(products);
    const json store = ZenkCtl::Store::HostStore(ZenkCtl::Store::HostStore::kHostPath).Read();
    FillRun(store);
    const std::string host = HostNetwork::Text(store, Schema::kHostname);
    const std::string name = host.empty() ? "localhost" : host;
    ::sethostname(name.data(), name.size());
    NetworkFollower::Start(scenario);

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

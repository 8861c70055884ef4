#include "platform/linux/NmNetwork.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <system_error>
#include <thread>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/WholeFile.h"
#include "platform/linux/HostFiles.h"
#include "platform/linux/RunningAddresses.h"
#include "platform/linux/SystemServices.h"

namespace LinuxHost {

namespace {

using Value = Bus::Value;
using namespace std::chrono_literals;

// How long the management interface may take to come up (a DHCP lease included).
constexpr auto kActivationTime = 45s;
constexpr uint32_t kActiveActivated = 2, kActiveDeactivated = 4;
// The checkpoint of the change a console has open, locked by that console while it lives.
constexpr const char* kChangeRecord = "/run/kovo/network-change";

std::string NewUuid() {
    return HostFiles("/").FirstLine("/proc/sys/kernel/random/uuid");
}

const NmProfile* ProfileAt(const std::vector<NmProfile>& profiles, const std::string& path) {
    for (const NmProfile& profile : profiles)
        if (profile.path == path) return &profile;
    return nullptr;
}

const NmProfile* ProfileWithRole(const std::vector<NmProfile>& profiles, const char* role) {
    for (const NmProfile& profile : profiles)
        if (ManagementProfiles::RoleOf(profile) == role) return &profile;
    return nullptr;
}

}  // namespace

NmNetwork::NmNetwork(NetworkManagerClient client, std::shared_ptr<const KernelNetwork> kernel,
                     HostFiles files)
    : _client(std::move(client)),
      _files(files),
      _kernel(std::move(kernel)),
      _names(files),
      _ifupdown(std::move(files)) {}

std::shared_ptr<NmNetwork> NmNetwork::IfRunning(std::shared_ptr<const KernelNetwork> kernel,
                                                HostFiles files) {
    try {
        NetworkManagerClient client = NetworkManagerClient::Connect();
        if (!client.Running()) return nullptr;
        auto network = std::make_shared<NmNetwork>(std::move(client), std::move(kernel), std::move(files));
        network->FinishAbandonedChange();
        return network;
    } catch (const HostCtl::Lib::HostCtlException&) {
        return nullptr;  // no bus: nothing runs the network but the kernel's own settings
    }
}

std::vector<NmDevice> NmNetwork::Devices() {
    return _client.Devices();
}

std::vector<NmProfile> NmNetwork::Profiles() {
    return _client.Profiles();
}

std::vector<NmDevice> NmNetwork::Nics() {
    std::vector<NmDevice> devices = _client.Devices();
    const std::string fromIfupdown = IfupdownNic(devices);
    std::vector<NmDevice> nics;
    for (NmDevice& device : devices)
        if (device.wired && (device.Managed() || device.interface == fromIfupdown))
            nics.push_back(std::move(device));
    std::sort(nics.begin(), nics.end(),
              [](const NmDevice& a, const NmDevice& b) { return a.interface < b.interface; });
    return nics;
}

std::string NmNetwork::ManagementInterface() {
    return ManagementInterface(_client.Devices());
}

std::string NmNetwork::ManagementInterface(const std::vector<NmDevice>& devices) {
    std::vector<std::string> interfaces;
    for (const NmDevice& device : devices)
        if (device.interface != "lo") interfaces.push_back(device.interface);
    // Without a default route, only what stands on the host's NICs: the hypervisor's own bridge for its
    // machines has an address reachable from elsewhere too, and is no way to manage the host.
    const std::vector<std::string> onNics = OnNics(devices);
    const std::string chosen =
        ChooseManagementInterface(interfaces, onNics, _kernel->Addresses(), _kernel->DefaultRoutes());
    if (!chosen.empty()) return chosen;
    // No address at all (its DHCP server down, say): the first NIC with a link, or the bridge or bond it
    // is a port of. The network can still be changed there, which is what an operator then needs. The
    // NIC ifupdown configures (the service leaves it alone) goes before those the service manages.
    for (bool ifupdown : {true, false})
        for (const NmDevice& device : devices)
            if (device.wired && device.carrier &&
                (ifupdown ? !device.Managed() && _ifupdown.Configures(device.interface) : device.Managed())) {
                const std::vector<std::string> above = Controllers(device.interface);
                return above.empty() ? device.interface : above.back();
            }
    return {};
}

std::vector<std::string> NmNetwork::Controllers(const std::string& interface) const {
    std::vector<std::string> chain;
    for (std::string at = interface;;) {
        at = _files.LinkName("/sys/class/net/" + at + "/master");
        // A loop in the links would be a broken host, not a reason to hang.
        if (at.empty() || chain.size() > 4) return chain;
        chain.push_back(at);
    }
}

std::vector<std::string> NmNetwork::OnNics(const std::vector<NmDevice>& devices) const {
    std::vector<std::string> on;
    const auto add = [&on](const std::string& name) {
        if (!name.empty() && std::find(on.begin(), on.end(), name) == on.end()) on.push_back(name);
    };
    for (const NmDevice& device : devices) {
        // The NICs the service manages or ifupdown configures: a container's virtual cable, which the
        // hypervisor's bridge holds, is wired too, but left alone by both.
        if (!device.wired || !(device.Managed() || _ifupdown.Configures(device.interface))) continue;
        add(device.interface);
        for (const std::string& controller : Controllers(device.interface)) add(controller);
    }
    // VLANs on any of those.
    for (const NmDevice& device : devices)
        if (device.type == NmDevice::kVlan)
            for (const std::string& entry : _files.List("/sys/class/net/" + device.interface))
                if (entry.rfind("lower_", 0) == 0 &&
                    std::find(on.begin(), on.end(), entry.substr(6)) != on.end())
                    add(device.interface);
    return on;
}

NmIpConfig NmNetwork::RunningIp(int family) {
    const std::vector<NmDevice> devices = _client.Devices();
    const std::string interface =
        ConsoleMade() ? ManagementProfiles::Interface(Management()) : ManagementInterface(devices);
    for (const NmDevice& device : devices)
        if (device.interface == interface)
            return _client.IpConfig(family == AF_INET ? device.ip4Config : device.ip6Config, family);
    return {};
}

std::optional<NmProfile> NmNetwork::ForeignHolder() {
    return ForeignHolder(_client.Devices());
}

std::optional<NmProfile> NmNetwork::ForeignHolder(const std::vector<NmDevice>& devices) {
    if (ConsoleMade()) return std::nullopt;
    const std::string interface = ManagementInterface(devices);
    if (interface.empty()) return std::nullopt;
    std::string activePath;
    for (const NmDevice& device : devices)
        if (device.interface == interface) activePath = device.activeConnection;
    for (const NmActive& active : _client.ActiveConnections())
        if (active.path == activePath)
            for (NmProfile& profile : _client.Profiles())
                if (profile.path == active.profile) return profile;
    return std::nullopt;
}

std::string NmNetwork::IfupdownNic() {
    return IfupdownNic(_client.Devices());
}

std::string NmNetwork::IfupdownNic(const std::vector<NmDevice>& devices) {
    const auto leftAlone = [](const NmDevice& device) { return device.wired && !device.Managed(); };
    if (std::none_of(devices.begin(), devices.end(), leftAlone)) return {};
    const std::string interface = ManagementInterface(devices);
    for (const NmDevice& device : devices)
        if (device.interface == interface && leftAlone(device) && _ifupdown.Configures(interface))
            return interface;
    return {};
}

bool NmNetwork::ConsoleMade() {
    return ProfileWithRole(_client.Profiles(), "bridge") != nullptr;
}

ManagementNetwork NmNetwork::Management() {
    const std::vector<NmProfile> profiles = _client.Profiles();
    if (std::optional<ManagementNetwork> own = ManagementProfiles::Parse(profiles)) return *own;

    // A network another tool set up: read from the profile active on the interface that holds the
    // management address, and from what that interface sits on.
    ManagementNetwork network;
    network.ip.SetUseDhcp(true);
    const std::vector<NmDevice> devices = _client.Devices();
    const std::string interface = ManagementInterface(devices);
    if (interface.empty()) return network;
    std::map<std::string, const NmDevice*> byName;
    for (const NmDevice& device : devices) byName[device.interface] = &device;
    const NmDevice* holder = byName.count(interface) ? byName[interface] : nullptr;
    if (!holder) return network;
    const std::vector<NmActive> actives = _client.ActiveConnections();
    const NmActive* active = nullptr;
    for (const NmActive& candidate : actives)
        if (candidate.path == holder->activeConnection) active = &candidate;
    const NmProfile* profile = active ? ProfileAt(profiles, active->profile) : nullptr;
    if (!profile) {
        // An address the service does not manage (ifupdown's, say): what the kernel runs is all there is.
        network.ip = RunningIpConfig(interface, _kernel->Addresses(), _kernel->DefaultRoutes());
        if (holder->wired) network.uplinks = {interface};
        return network;
    }
    network = ManagementNetwork();
    ManagementProfiles::ReadIp(*profile, network);

    // The NICs under it: the interface itself, or the ports of the bridge or bond it is (or is a VLAN of).
    std::string carrier = interface;
    if (profile->Type() == "vlan") {
        const Value& id = profile->Get("vlan", "id");
        network.vlan = id.is_number() ? id.get<int>() : 0;
        carrier = profile->Text("vlan", "parent");
    }
    std::vector<std::string> controllers{carrier};
    for (std::size_t i = 0; i < controllers.size(); ++i)
        for (const NmActive& port : actives) {
            const NmProfile* portProfile = ProfileAt(profiles, port.profile);
            if (!portProfile || portProfile->Controller() != controllers[i]) continue;
            const std::string name = portProfile->InterfaceName();
            if (portProfile->Type() == "802-3-ethernet")
                network.uplinks.push_back(name);
            else
                controllers.push_back(name);
        }
    if (network.uplinks.empty() && byName.count(carrier) && byName[carrier]->wired)
        network.uplinks.push_back(carrier);
    return network;
}

void NmNetwork::RefuseUnmanagedManagement() {
    if (ConsoleMade()) return;
    const std::vector<NmDevice> devices = _client.Devices();
    const std::string interface = ManagementInterface(devices);
    for (const NmDevice& device : devices)
        if (device.interface == interface && device.state == NmDevice::kUnmanaged)
            throw HostCtl::Lib::HostCtlException(
                "The network service does not manage " + interface +
                ", which holds the management address. The console takes over only a NIC that "
                "/etc/network/interfaces itself configures: hand " +
                interface + " to the network service, then change the management network here");
}

void NmNetwork::Store(const ManagementNetwork& network) {
    if (!ChangeOpen()) RefuseUnmanagedManagement();
    const std::vector<NmProfile> profiles = _client.Profiles();
    std::map<std::string, const NmProfile*> own;
    for (const NmProfile& profile : profiles)
        if (!ManagementProfiles::RoleOf(profile).empty()) own[ManagementProfiles::Key(profile)] = &profile;

    for (Value& settings : ManagementProfiles::Render(network)) {
        const auto existing = own.find(ManagementProfiles::Key(settings));
        if (existing != own.end()) {
            settings["connection"]["uuid"] = Bus::Variant("s", existing->second->Uuid());
            _client.UpdateProfile(existing->second->path, settings);
            own.erase(existing);
        } else {
            settings["connection"]["uuid"] = Bus::Variant("s", NewUuid());
            _client.AddProfile(settings);
        }
    }
    for (const auto& [key, profile] : own) _client.DeleteProfile(profile->path);

    // The other tools' profiles for these NICs would take them back at the next boot.
    for (const NmProfile& profile : profiles) {
        if (!ManagementProfiles::RoleOf(profile).empty()) continue;
        const std::string nic = profile.InterfaceName();
        const Value& autoconnect = profile.Get("connection", "autoconnect");
        const bool starts = !autoconnect.is_boolean() || autoconnect.get<bool>();
        if (!starts ||
            std::find(network.uplinks.begin(), network.uplinks.end(), nic) == network.uplinks.end())
            continue;
        // One the service made up for a NIC it found running (as after a take-over from ifupdown) ends
        // with the service; changed, it would be written out and stay.
        if (_client.Unsaved(profile.path)) continue;
        Value settings = profile.settings;
        settings["connection"]["autoconnect"] = Bus::Variant("b", false);
        _client.UpdateProfile(profile.path, settings);
        // The checkpoint puts back only the profiles that were up when it was made.
        if (ChangeOpen()) _stoppedProfiles.push_back(profile.path);
    }
    if (!ChangeOpen()) Activate();
}

void NmNetwork::Activate() {
    const std::vector<NmProfile> profiles = _client.Profiles();
    std::string holder;
    if (const NmProfile* bridge = ProfileWithRole(profiles, "bridge")) {
        holder = _client.Activate(bridge->path);
        if (const NmProfile* vlan = ProfileWithRole(profiles, "vlan")) holder = _client.Activate(vlan->path);
    } else if (_takenDown) {
        // A host set up otherwise: the profile that held the management address before it went down.
        holder = _client.Activate(*_takenDown);
    } else if (_ifupdownDown) {
        // ifupdown's NIC that Deactivate took down.
        const std::string nic = *_ifupdownDown;
        _ifupdownDown.reset();
        IfupdownHandover::Run(IfupdownHandover::kIfup, nic);
        return;
    } else if (!IfupdownNic().empty()) {
        return;  // up as ifupdown keeps it
    } else {
        throw HostCtl::Lib::HostCtlException("The host has no management network to bring up");
    }
    _takenDown.reset();

    const auto deadline = std::chrono::steady_clock::now() + kActivationTime;
    for (;;) {
        uint32_t state = kActiveDeactivated;
        for (const NmActive& active : _client.ActiveConnections())
            if (active.path == holder) state = active.state;
        if (state == kActiveActivated) return;
        if (state == kActiveDeactivated)
            throw HostCtl::Lib::HostCtlException(
                "The network service could not bring the management network up");
        // Still activating after the time allowed: what it has by then is what the test will see.
        if (std::chrono::steady_clock::now() > deadline) return;
        std::this_thread::sleep_for(100ms);
    }
}

void NmNetwork::Deactivate() {
    const std::vector<NmDevice> devices = _client.Devices();
    const std::string fromIfupdown = IfupdownNic(devices);
    if (!fromIfupdown.empty()) {
        // Remembered first: once down, nothing tells it is ifupdown's, and a failed ifdown may leave it so.
        _ifupdownDown = fromIfupdown;
        IfupdownHandover::Run(IfupdownHandover::kIfdown, fromIfupdown);
        return;
    }
    const bool own = ConsoleMade();
    const std::string interface =
        own ? ManagementProfiles::Interface(Management()) : ManagementInterface(devices);
    if (!own)
        if (const std::optional<NmProfile> holder = ForeignHolder(devices)) _takenDown = holder->path;
    for (const NmDevice& device : devices)
        if (device.interface == interface && device.activeConnection != "/" &&
            !device.activeConnection.empty())
            _client.Deactivate(device.activeConnection);
}

void NmNetwork::Clear() {
    for (const NmProfile& profile : _client.Profiles())
        if (!ManagementProfiles::RoleOf(profile).empty()) _client.DeleteProfile(profile.path);
}

void NmNetwork::ClaimChangeRecord() {
    const std::filesystem::path path = _files.Under(kChangeRecord);
    std::error_code ignored;
    std::filesystem::create_directories(path.parent_path(), ignored);
    HostCtl::UniqueFd record(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (record.Get() < 0)
        throw HostCtl::Lib::HostCtlException("Cannot record the network change in " + path.string() + ": " +
                                             std::strerror(errno));
    if (::flock(record.Get(), LOCK_EX | LOCK_NB) != 0)
        throw HostCtl::Lib::HostCtlException(
            "Another console is changing the management network: try again when it has finished");

    // Unlocked with a checkpoint in it: the console that opened that change ended before keeping it.
    char left[256] = {};
    const ssize_t length = ::pread(record.Get(), left, sizeof left - 1, 0);
    const std::string leftCheckpoint(left, length > 0 ? static_cast<std::size_t>(length) : 0);
    std::vector<std::string> pending = _client.Checkpoints();
    if (std::find(pending.begin(), pending.end(), leftCheckpoint) != pending.end()) {
        try {
            _client.RollBackCheckpoint(leftCheckpoint);
        } catch (const BusError&) {
            // Its time ran out in between: the service rolled it back by itself.
        }
        pending = _client.Checkpoints();
    }
    if (::ftruncate(record.Get(), 0) != 0)
        throw HostCtl::Lib::HostCtlException("Cannot record the network change in " + path.string() + ": " +
                                             std::strerror(errno));
    if (!pending.empty())
        throw HostCtl::Lib::HostCtlException(
            "Another change of the host's network waits to be kept or undone: try again when it has been");
    _record.Reset(record.Release());
    if (_ifupdown.Pending()) {
        // A take-over from ifupdown that its console never finished: cut off as it kept it (the console's
        // network in place), or before.
        try {
            if (_ifupdown.Read().keeping && ConsoleMade()) {
                _ifupdown.StopClients();
                _ifupdown.Forget();
            } else {
                PutBackIfupdown();
            }
        } catch (...) {
            ReleaseChangeRecord();
            throw;
        }
    }
}

void NmNetwork::PutBackIfupdown() {
    const IfupdownHandover::Record record = _ifupdown.Read();
    try {
        _ifupdown.RestoreFile(record);
    } catch (const HostCtl::Lib::HostCtlException&) {
        _ifupdown.Forget();  // the operator's file now: nothing of the console's is left to put back
        throw;
    }
    RestartService();
    // The service leaves the NICs alone again, so their profiles go without taking them down: those the
    // change made, the console's (a host restarted before the change was kept has them still), and the
    // one the service made up for a NIC it found running, which a rollback writes out.
    for (const NmProfile& profile : _client.Profiles())
        if (!record.profiles.count(profile.Uuid()) && (!ManagementProfiles::RoleOf(profile).empty() ||
                                                       record.interfaces.count(profile.InterfaceName())))
            _client.DeleteProfile(profile.path);
    // The bridge or bond the change made outlives its profiles in the kernel when the service restarted
    // before it was gone; the host had none before.
    for (const NmDevice& device : _client.Devices())
        if (device.interface == ManagementProfiles::kBridge ||
            device.interface == ManagementProfiles::kBond) {
            try {
                _client.DeleteDevice(device.path);
            } catch (const BusError&) {
                // Gone by itself meanwhile.
            }
        }
    // ifupdown's file is back whatever ifup does: nothing is left to put back.
    try {
        _ifupdown.BringUp(record, *_kernel);
    } catch (...) {
        _ifupdown.Forget();
        throw;
    }
    _ifupdown.Forget();
}

void NmNetwork::PutBackUncovered() {
    // Each on its own: one that fails leaves the others to be done, and the first failure is told.
    std::exception_ptr failed;
    const auto step = [&failed](const std::function<void()>& putBack) {
        try {
            putBack();
        } catch (...) {
            if (!failed) failed = std::current_exception();
        }
    };
    step([this] {
        if (_hostnameBefore && _names.Static() != *_hostnameBefore) _names.Set(*_hostnameBefore);
    });
    step([this] {
        if (_hostsBefore && _names.HostsText() != *_hostsBefore) _names.SetHostsText(*_hostsBefore);
    });
    step([this] {
        if (_stoppedProfiles.empty()) return;
        for (const NmProfile& profile : _client.Profiles()) {
            if (std::find(_stoppedProfiles.begin(), _stoppedProfiles.end(), profile.path) ==
                _stoppedProfiles.end())
                continue;
            const Value& autoconnect = profile.Get("connection", "autoconnect");
            if (!autoconnect.is_boolean() || autoconnect.get<bool>()) continue;
            Value settings = profile.settings;
            settings["connection"]["autoconnect"] = Bus::Variant("b", true);
            _client.UpdateProfile(profile.path, settings);
        }
        _stoppedProfiles.clear();
    });
    step([this] {
        if (_files.Read(kIpv6Switch) == _ipv6SwitchBefore) return;
        const std::string path = _files.Under(kIpv6Switch).string();
        try {
            if (_ipv6SwitchBefore)
                HostCtl::WriteWholeFile(path, *_ipv6SwitchBefore);
            else if (::unlink(path.c_str()) != 0 && errno != ENOENT)
                throw std::system_error(errno, std::generic_category(), "Cannot remove " + path);
        } catch (const std::system_error& e) {
            throw HostCtl::Lib::HostCtlException(e.what());
        }
    });
    if (failed) std::rethrow_exception(failed);
}

bool NmNetwork::RolledBackOrWillBe(const std::string& checkpoint) {
    if (std::chrono::steady_clock::now() >= _rollbackAt) return true;
    try {
        const std::vector<std::string> open = _client.Checkpoints();
        return std::find(open.begin(), open.end(), checkpoint) != open.end();
    } catch (const std::exception&) {
        return true;  // the service cannot say: it rolls back when the time is up unless destroyed
    }
}

void NmNetwork::PutBackUncoveredBeside() {
    try {
        PutBackUncovered();
    } catch (const std::exception& failed) {
        syslog(LOG_ERR, "A change not kept left the host's name or files changed: %s", failed.what());
    }
}

void NmNetwork::PutBackAfter(const std::exception& failure) {
    if (!_ifupdown.Pending()) return;
    try {
        PutBackIfupdown();
    } catch (const std::exception& failed) {
        throw HostCtl::Lib::HostCtlException(
            std::string(failure.what()) + ". Giving the NIC back to ifupdown failed too: " + failed.what());
    }
}

void NmNetwork::RestartService() {
    const std::string before = _client.Owner();
    SystemServices().Restart(IfupdownHandover::kService);
    // The service manager may call the unit active before the restart has even begun: the service that
    // answers on the bus has to be a new one.
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::seconds(SystemServices::kSettleSeconds);
    // A new one may answer before its objects are all there, and goes on deciding which devices it
    // manages until it has started.
    for (;;) {
        try {
            const std::string now = _client.Owner();
            if (!now.empty() && now != before && !_client.Starting()) return;
        } catch (const BusError&) {
            // Still coming up.
        }
        if (std::chrono::steady_clock::now() > deadline)
            throw HostCtl::Lib::HostCtlException("The network service did not start again");
        std::this_thread::sleep_for(100ms);
    }
}

void NmNetwork::FinishAbandonedChange() {
    if (ChangeOpen() || !_ifupdown.Pending()) return;
    try {
        ClaimChangeRecord();
        ReleaseChangeRecord();
    } catch (const std::exception& e) {
        // Another console's change is open (it puts back its own), or the put-back failed: it is tried
        // again at the next change, which shows why.
        syslog(LOG_WARNING, "Taking the management network over from ifupdown was left unfinished: %s",
               e.what());
    }
}

void NmNetwork::TakeFromIfupdown(const std::string& nic) {
    std::set<std::string> profiles;
    for (const NmProfile& profile : _client.Profiles()) profiles.insert(profile.Uuid());
    _ifupdown.HandOver({nic}, profiles, *_kernel);
    RestartService();
    // Started, it runs the NIC as it found it, or (its own settings say so) leaves it alone.
    for (const NmDevice& device : _client.Devices())
        if (device.interface == nic && device.state == NmDevice::kActivated) return;
    throw HostCtl::Lib::HostCtlException("The network service did not take " + nic + " over from ifupdown");
}

void NmNetwork::ReleaseChangeRecord() {
    if (_record.Get() < 0) return;
    // Should emptying it fail, the checkpoint it names is gone by the next change, which looks it up.
    const int emptied = ::ftruncate(_record.Get(), 0);
    (void)emptied;
    _record.Close();
}

void NmNetwork::OpenChange(int rollbackSeconds) {
    FinishAbandonedChange();
    ClaimChangeRecord();
    try {
        // Looked at once this console holds the change: another's take-over may have moved the NIC.
        const std::string fromIfupdown = IfupdownNic();
        if (fromIfupdown.empty())
            RefuseUnmanagedManagement();
        else
            TakeFromIfupdown(fromIfupdown);
        // Every device: a change may take NICs from anywhere, and make bridges and bonds that did not exist.
        _checkpoint = _client.CreateCheckpoint({}, static_cast<uint32_t>(rollbackSeconds));
    } catch (const std::exception& e) {
        const ChangeRecordHeld held(*this);
        PutBackAfter(e);
        throw;
    }
    // Unrecorded, the change still undoes itself in time; only a console started after this one ends
    // cannot hurry that.
    const ssize_t recorded = ::pwrite(_record.Get(), _checkpoint->data(), _checkpoint->size(), 0);
    (void)recorded;
    _rollbackAt = std::chrono::steady_clock::now() + std::chrono::seconds(rollbackSeconds);
    _interfaces.clear();
    for (const NmDevice& device : _client.Devices()) _interfaces[device.path] = device.interface;
    _hostsBefore = _names.HostsText();
    _ipv6SwitchBefore = _files.Read(kIpv6Switch);
    _stoppedProfiles.clear();
    try {
        _hostnameBefore = _names.Static();
    } catch (const HostCtl::Lib::HostCtlException&) {
        // No host-name service: the change cannot set the name either, so there is none to put back.
        _hostnameBefore.reset();
    }
}

int NmNetwork::SecondsLeft() const {
    if (!_checkpoint) return 0;
    const auto left =
        std::chrono::duration_cast<std::chrono::seconds>(_rollbackAt - std::chrono::steady_clock::now());
    return std::max(0, static_cast<int>(left.count()));
}

void NmNetwork::Keep() {
    if (!_checkpoint) return;
    // Held to the end: no other console takes what is left for unfinished meanwhile.
    const ChangeRecordHeld held(*this);
    const bool handedOver = _ifupdown.Pending();
    if (handedOver) _ifupdown.MarkKeeping();
    try {
        _client.DestroyCheckpoint(*_checkpoint);
    } catch (const std::exception& e) {
        // Asked as its time ran out: the service has rolled the change back, ifupdown's NIC with it, and
        // the rest goes back with it. So too while the checkpoint is still there: its time will run out.
        // One that is gone before its time was destroyed after all, and the change is kept.
        const std::string checkpoint = *_checkpoint;
        _checkpoint.reset();
        if (RolledBackOrWillBe(checkpoint)) PutBackUncoveredBeside();
        PutBackAfter(e);
        throw;
    }
    _checkpoint.reset();
    if (handedOver) {
        _ifupdown.StopClients();
        _ifupdown.Forget();
    }
}

std::vector<std::string> NmNetwork::RollBack() {
    if (!_checkpoint) return {};
    const std::string checkpoint = *_checkpoint;
    _checkpoint.reset();
    const ChangeRecordHeld held(*this);
    std::map<std::string, bool> results;
    try {
        results = _client.RollBackCheckpoint(checkpoint);
    } catch (const BusError&) {
        // Asked as its time ran out: the service has rolled every device back by itself.
        if (std::chrono::steady_clock::now() < _rollbackAt) {
            // The service still rolls back at the checkpoint's time; the rest goes back now.
            PutBackUncoveredBeside();
            throw;
        }
        for (const auto& [device, name] : _interfaces) results[device] = true;
    }
    std::vector<std::string> restored;
    for (const auto& [device, done] : results) {
        if (!done) continue;
        const auto name = _interfaces.find(device);
        if (name != _interfaces.end()) restored.push_back(name->second);
    }
    std::sort(restored.begin(), restored.end());
    // ifupdown gets its NIC back even when the name cannot be put back; the first failure is told.
    std::exception_ptr failed;
    try {
        PutBackUncovered();
    } catch (...) {
        failed = std::current_exception();
    }
    if (_ifupdown.Pending()) PutBackIfupdown();
    if (failed) std::rethrow_exception(failed);
    return restored;
}

}  // namespace LinuxHost

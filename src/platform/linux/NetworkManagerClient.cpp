#include "platform/linux/NetworkManagerClient.h"

#include <arpa/inet.h>
#include <sys/socket.h>

namespace LinuxHost {

namespace {

using Value = Bus::Value;

constexpr const char* kPath = "/org/freedesktop/NetworkManager";
constexpr const char* kInterface = "org.freedesktop.NetworkManager";
constexpr const char* kSettingsPath = "/org/freedesktop/NetworkManager/Settings";
constexpr const char* kSettings = "org.freedesktop.NetworkManager.Settings";
constexpr const char* kConnection = "org.freedesktop.NetworkManager.Settings.Connection";
constexpr const char* kDevice = "org.freedesktop.NetworkManager.Device";
constexpr const char* kWired = "org.freedesktop.NetworkManager.Device.Wired";
constexpr const char* kActive = "org.freedesktop.NetworkManager.Connection.Active";
constexpr const char* kIp4Config = "org.freedesktop.NetworkManager.IP4Config";
constexpr const char* kIp6Config = "org.freedesktop.NetworkManager.IP6Config";

// Settings.AddConnection2 and Connection.Update2: kept on disk, and not brought up by the service on its
// own as it is saved. A profile saved half-way through a change would otherwise start before the rest of
// it is written, and before the caller activates the whole.
constexpr uint32_t kToDisk = 0x1, kBlockAutoconnect = 0x20;
// CheckpointCreate: the devices' own profiles are deleted on rollback when they were made after it.
constexpr uint32_t kDeleteNewConnections = 0x2, kDisconnectNewDevices = 0x4;

std::string Text(const Value& properties, const char* name) {
    const auto found = properties.find(name);
    return found != properties.end() && found->is_string() ? found->get<std::string>() : std::string();
}

uint32_t Number(const Value& properties, const char* name) {
    const auto found = properties.find(name);
    return found != properties.end() && found->is_number_unsigned() ? found->get<uint32_t>() : 0;
}

std::vector<std::string> Paths(const Value& value) {
    std::vector<std::string> paths;
    if (value.is_array())
        for (const Value& path : value)
            if (path.is_string()) paths.push_back(path.get<std::string>());
    return paths;
}

// An IPv6 address as the service sends name servers: 16 bytes.
std::string Ipv6FromBytes(const Value& bytes) {
    if (!bytes.is_array() || bytes.size() != 16) return {};
    in6_addr address{};
    for (std::size_t i = 0; i < 16; ++i) address.s6_addr[i] = bytes[i].get<uint8_t>();
    char text[INET6_ADDRSTRLEN] = {};
    return inet_ntop(AF_INET6, &address, text, sizeof text) ? text : std::string();
}

}  // namespace

// The service's objects come and go while they are listed and read one by one: one that went in between
// is left out rather than failing the whole list.
bool NetworkManagerClient::Gone(const std::function<void()>& read) {
    try {
        read();
        return false;
    } catch (const BusError& e) {
        if (e.NoSuchObject()) return true;
        throw;
    }
}

const Bus::Value& NmProfile::Get(const char* setting, const char* key) const {
    static const Value kNone;
    const auto group = settings.find(setting);
    if (group == settings.end() || !group->is_object()) return kNone;
    const auto found = group->find(key);
    if (found == group->end() || !found->is_object() || !found->contains("v")) return kNone;
    return (*found)["v"];
}

std::string NmProfile::Text(const char* setting, const char* key) const {
    const Value& value = Get(setting, key);
    return value.is_string() ? value.get<std::string>() : std::string();
}

NetworkManagerClient::NetworkManagerClient(Bus bus) : _bus(std::move(bus)) {}

NetworkManagerClient NetworkManagerClient::Connect() {
    return NetworkManagerClient(Bus::System());
}

Bus::Value NetworkManagerClient::Call(const std::string& path, const char* interface, const char* member,
                                      std::string_view signature, const Value& arguments) {
    return _bus.Call(kService, path, interface, member, signature, arguments);
}

bool NetworkManagerClient::Running() {
    const Value reply = _bus.Call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                  "NameHasOwner", "s", Value::array({kService}));
    return reply.at(0).get<bool>();
}

std::string NetworkManagerClient::Owner() {
    if (!Running()) return {};
    try {
        const Value reply = _bus.Call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                      "GetNameOwner", "s", Value::array({kService}));
        return reply.at(0).get<std::string>();
    } catch (const BusError&) {
        return {};  // gone in between
    }
}

bool NetworkManagerClient::Starting() {
    const Value startup = _bus.Property(kService, kPath, kInterface, "Startup");
    return startup.is_boolean() && startup.get<bool>();
}

std::string NetworkManagerClient::Version() {
    return _bus.Property(kService, kPath, kInterface, "Version").get<std::string>();
}

std::vector<NmDevice> NetworkManagerClient::Devices() {
    std::vector<NmDevice> devices;
    for (const std::string& path : Paths(Call(kPath, kInterface, "GetDevices").at(0))) {
        Value properties;
        if (Gone([&] { properties = _bus.Properties(kService, path, kDevice); })) continue;
        NmDevice device;
        device.path = path;
        device.interface = Text(properties, "Interface");
        device.driver = Text(properties, "Driver");
        device.type = Number(properties, "DeviceType");
        device.state = Number(properties, "State");
        device.activeConnection = Text(properties, "ActiveConnection");
        device.ip4Config = Text(properties, "Ip4Config");
        device.ip6Config = Text(properties, "Ip6Config");
        if (device.type == NmDevice::kEthernet || device.type == NmDevice::kVeth) {
            Value wired;
            if (Gone([&] { wired = _bus.Properties(kService, path, kWired); })) continue;
            device.wired = true;
            device.hwAddress = Text(wired, "HwAddress");
            device.permHwAddress = Text(wired, "PermHwAddress");
            device.speedMbps = Number(wired, "Speed");
            device.carrier = wired.value("Carrier", false);
        } else {
            device.hwAddress = Text(properties, "HwAddress");
        }
        devices.push_back(std::move(device));
    }
    return devices;
}

std::vector<NmProfile> NetworkManagerClient::Profiles() {
    std::vector<NmProfile> profiles;
    for (const std::string& path : Paths(Call(kSettingsPath, kSettings, "ListConnections").at(0))) {
        Value settings;
        if (Gone([&] { settings = Call(path, kConnection, "GetSettings").at(0); })) continue;
        profiles.push_back({path, std::move(settings)});
    }
    return profiles;
}

bool NetworkManagerClient::Unsaved(const std::string& profile) {
    const Value unsaved = _bus.Property(kService, profile, kConnection, "Unsaved");
    return unsaved.is_boolean() && unsaved.get<bool>();
}

std::vector<NmActive> NetworkManagerClient::ActiveConnections() {
    std::vector<NmActive> actives;
    for (const std::string& path : Paths(_bus.Property(kService, kPath, kInterface, "ActiveConnections"))) {
        Value properties;
        if (Gone([&] { properties = _bus.Properties(kService, path, kActive); })) continue;
        actives.push_back({path, Text(properties, "Connection"), Paths(properties.value("Devices", Value())),
                           Number(properties, "State")});
    }
    return actives;
}

NmIpConfig NetworkManagerClient::IpConfig(const std::string& path, int family) {
    NmIpConfig config;
    if (path.empty() || path == "/") return config;
    const Value properties = _bus.Properties(kService, path, family == AF_INET ? kIp4Config : kIp6Config);
    for (const Value& address : properties.value("AddressData", Value::array())) {
        const auto text = address.find("address");
        const auto prefix = address.find("prefix");
        if (text != address.end() && prefix != address.end())
            config.addresses.push_back({text->at("v").get<std::string>(), prefix->at("v").get<uint32_t>()});
    }
    config.gateway = Text(properties, "Gateway");
    if (family == AF_INET) {
        for (const Value& server : properties.value("NameserverData", Value::array()))
            if (const auto address = server.find("address"); address != server.end())
                config.nameServers.push_back(address->at("v").get<std::string>());
    } else {
        for (const Value& bytes : properties.value("Nameservers", Value::array()))
            config.nameServers.push_back(Ipv6FromBytes(bytes));
    }
    for (const Value& search : properties.value("Searches", Value::array()))
        config.searches.push_back(search.get<std::string>());
    return config;
}

std::string NetworkManagerClient::AddProfile(const Value& settings) {
    const Value reply = Call(kSettingsPath, kSettings, "AddConnection2", "a{sa{sv}}ua{sv}",
                             Value::array({settings, kToDisk | kBlockAutoconnect, Value::object()}));
    return reply.at(0).get<std::string>();
}

void NetworkManagerClient::UpdateProfile(const std::string& path, const Value& settings) {
    Call(path, kConnection, "Update2", "a{sa{sv}}ua{sv}",
         Value::array({settings, kToDisk | kBlockAutoconnect, Value::object()}));
}

void NetworkManagerClient::DeleteProfile(const std::string& path) {
    Call(path, kConnection, "Delete");
}

void NetworkManagerClient::DeleteDevice(const std::string& path) {
    Call(path, kDevice, "Delete");
}

std::string NetworkManagerClient::Activate(const std::string& profile, const std::string& device) {
    return Call(kPath, kInterface, "ActivateConnection", "ooo", Value::array({profile, device, "/"}))
        .at(0)
        .get<std::string>();
}

void NetworkManagerClient::Deactivate(const std::string& active) {
    Call(kPath, kInterface, "DeactivateConnection", "o", Value::array({active}));
}

std::string NetworkManagerClient::CreateCheckpoint(const std::vector<std::string>& devices,
                                                   uint32_t rollbackSeconds) {
    // What the change made goes too when it is rolled back: its profiles, and (with every device in the
    // checkpoint, the only way the service allows) the bridges and bonds brought up for them.
    const uint32_t flags = kDeleteNewConnections | (devices.empty() ? kDisconnectNewDevices : 0);
    return Call(kPath, kInterface, "CheckpointCreate", "aouu",
                Value::array({devices, rollbackSeconds, flags}))
        .at(0)
        .get<std::string>();
}

void NetworkManagerClient::DestroyCheckpoint(const std::string& checkpoint) {
    Call(kPath, kInterface, "CheckpointDestroy", "o", Value::array({checkpoint}));
}

std::vector<std::string> NetworkManagerClient::Checkpoints() {
    return Paths(_bus.Property(kService, kPath, kInterface, "Checkpoints"));
}

std::map<std::string, bool> NetworkManagerClient::RollBackCheckpoint(const std::string& checkpoint) {
    std::map<std::string, bool> restored;
    const Value results =
        Call(kPath, kInterface, "CheckpointRollback", "o", Value::array({checkpoint})).at(0);
    for (const auto& [device, result] : results.items()) restored[device] = result.get<uint32_t>() == 0;
    return restored;
}

}  // namespace LinuxHost

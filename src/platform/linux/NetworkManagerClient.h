#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/linux/Bus.h"

namespace LinuxHost {

// A device as the network service sees it.
struct NmDevice {
    // The service's device types and states that matter here.
    static constexpr uint32_t kEthernet = 1, kBond = 10, kVlan = 11, kBridge = 13, kVeth = 20;
    static constexpr uint32_t kUnmanaged = 10, kUnavailable = 20, kActivated = 100;

    std::string path;
    std::string interface;
    std::string driver;
    uint32_t type = 0;
    uint32_t state = 0;
    std::string activeConnection;  // "/" when none
    std::string ip4Config, ip6Config;
    // Wired devices only.
    bool wired = false;
    std::string hwAddress, permHwAddress;
    uint32_t speedMbps = 0;
    bool carrier = false;

    bool Managed() const { return state > kUnmanaged; }
};

// A connection profile: its settings, as the service hands them out (secrets left out), one object per
// setting name ("connection", "ipv4", "bridge-port", ...) of variants by key.
struct NmProfile {
    std::string path;
    Bus::Value settings;

    // A setting's value (unwrapped), or nullptr when the profile does not state it.
    const Bus::Value& Get(const char* setting, const char* key) const;
    std::string Text(const char* setting, const char* key) const;
    std::string Id() const { return Text("connection", "id"); }
    std::string Uuid() const { return Text("connection", "uuid"); }
    std::string Type() const { return Text("connection", "type"); }
    std::string InterfaceName() const { return Text("connection", "interface-name"); }
    // The bridge or bond this profile is a port of (its interface name or profile UUID), and which.
    std::string Controller() const { return Text("connection", "master"); }
    std::string PortType() const { return Text("connection", "slave-type"); }
};

// A profile active on devices.
struct NmActive {
    std::string path;
    std::string profile;  // the profile's object path
    std::vector<std::string> devices;
    uint32_t state = 0;  // 2: activated
};

// An interface's running IP configuration.
struct NmIpConfig {
    struct Address {
        std::string address;
        uint32_t prefix = 0;
    };
    std::vector<Address> addresses;
    std::string gateway;
    std::vector<std::string> nameServers;
    std::vector<std::string> searches;
};

// The host's network service over the system bus. Every call throws HostCtl::Lib::HostCtlException with
// the service's reason when it fails.
class NetworkManagerClient {
  public:
    static constexpr const char* kService = "org.freedesktop.NetworkManager";

    explicit NetworkManagerClient(Bus bus);
    // Over the system bus.
    static NetworkManagerClient Connect();

    // Whether the service is on the bus at all.
    bool Running();
    // The bus name of the service running now ("" for none): a new one after each start.
    std::string Owner();
    // Whether it is still starting: bringing up what it found, and deciding which devices it manages.
    bool Starting();
    std::string Version();

    std::vector<NmDevice> Devices();
    std::vector<NmProfile> Profiles();
    // Whether the profile lives in the service's memory only (one it made up for a device that was set up
    // before it managed it, say): gone at the next start.
    bool Unsaved(const std::string& profile);
    std::vector<NmActive> ActiveConnections();
    // family AF_INET or AF_INET6; an empty configuration for the path "/".
    NmIpConfig IpConfig(const std::string& path, int family);

    // Profiles are kept on disk, so what the console sets survives a restart of the host.
    std::string AddProfile(const Bus::Value& settings);
    void UpdateProfile(const std::string& path, const Bus::Value& settings);
    void DeleteProfile(const std::string& path);
    // Removes a software device (a bridge, a bond) from the kernel.
    void DeleteDevice(const std::string& path);
    // The active connection's path; `device` "/" lets the service choose.
    std::string Activate(const std::string& profile, const std::string& device = "/");
    void Deactivate(const std::string& active);

    // A checkpoint of `devices` (object paths; none means all) that the service rolls back by itself
    // after `rollbackSeconds` unless it is destroyed first.
    std::string CreateCheckpoint(const std::vector<std::string>& devices, uint32_t rollbackSeconds);
    void DestroyCheckpoint(const std::string& checkpoint);
    // The checkpoints that wait to be destroyed or rolled back, whoever made them.
    std::vector<std::string> Checkpoints();
    // Each device's object path with whether it was restored.
    std::map<std::string, bool> RollBackCheckpoint(const std::string& checkpoint);

  private:
    bool Gone(const std::function<void()>& read);
    Bus::Value Call(const std::string& path, const char* interface, const char* member,
                    std::string_view signature = "", const Bus::Value& arguments = Bus::Value::array());
    Bus _bus;
};

}  // namespace LinuxHost

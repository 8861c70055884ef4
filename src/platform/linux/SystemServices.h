#pragma once

#include <memory>
#include <string>

struct sd_bus;

namespace LinuxHost {

// The host's service manager, login manager and locale service over the system bus. Every call throws
// HostCtl::Lib::HostCtlException with the bus's own reason when it fails.
class SystemServices {
  public:
    SystemServices();
    ~SystemServices();
    SystemServices(const SystemServices&) = delete;
    SystemServices& operator=(const SystemServices&) = delete;

    // "active", "inactive", "failed", ...; "inactive" for a unit the host does not have.
    std::string ActiveState(const std::string& unit);
    // False for a unit the host has no file for.
    bool IsInstalled(const std::string& unit);
    // Each returns once the unit has settled (or after `kSettleSeconds`), and fails when it did not end
    // where it was sent.
    void Start(const std::string& unit);
    void Stop(const std::string& unit);
    void Restart(const std::string& unit);
    // Whether the unit starts at boot; enabling and disabling reload the manager so it counts at once.
    bool IsEnabled(const std::string& unit);
    void Enable(const std::string& unit);
    void Disable(const std::string& unit);

    // Through the login manager, which honours the host's inhibitors and shuts its sessions down.
    void PowerOff();
    void Reboot();

    // The host's keyboard as the locale service keeps it: the XKB settings that a Debian host writes to
    // /etc/default/keyboard and builds its consoles' keymap from. Setting it changes no console by itself.
    struct Keyboard {
        std::string layout, model, variant, options;
    };
    Keyboard GetKeyboard();
    void SetKeyboard(const Keyboard& keyboard);

    static constexpr int kSettleSeconds = 90;

  private:
    std::string UnitPath(const std::string& unit);
    std::string UnitProperty(const std::string& unit, const char* property);
    void Reload();
    void Settle(const std::string& unit, const char* method, bool wantActive);
    sd_bus* _bus = nullptr;
};

}  // namespace LinuxHost

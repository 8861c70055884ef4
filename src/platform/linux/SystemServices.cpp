#include "platform/linux/SystemServices.h"

#include <unistd.h>

#include <chrono>
#include <cstring>
#include <thread>

#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/Systemd.h"

namespace LinuxHost {

namespace {

constexpr const char* kSystemd = "org.freedesktop.systemd1";
constexpr const char* kSystemdPath = "/org/freedesktop/systemd1";
constexpr const char* kManager = "org.freedesktop.systemd1.Manager";
constexpr const char* kUnit = "org.freedesktop.systemd1.Unit";

// Frees what sd-bus hands out when the scope ends, on every path out.
struct Call {
    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_message* reply = nullptr;
    ~Call() {
        Systemd::ErrorFree(&error);
        Systemd::MessageUnref(reply);
    }
    [[noreturn]] void Fail(const std::string& what, int result) const {
        const char* reason = error.message ? error.message : strerror(-result);
        throw HostCtl::Lib::HostCtlException(what + ": " + reason);
    }
};

}  // namespace

SystemServices::SystemServices() {
    const int result = Systemd::BusOpenSystem(&_bus);
    if (result < 0)
        throw HostCtl::Lib::HostCtlException(std::string("The host's system bus cannot be reached: ") +
                                             strerror(-result));
}

SystemServices::~SystemServices() {
    Systemd::BusFlushCloseUnref(_bus);
}

std::string SystemServices::UnitPath(const std::string& unit) {
    Call call;
    // LoadUnit answers for units that are not running too, and for names the host does not know (their
    // state then reads "inactive" and their load state "not-found").
    const int result = Systemd::CallMethod(_bus, kSystemd, kSystemdPath, kManager, "LoadUnit", &call.error,
                                           &call.reply, "s", unit.c_str());
    if (result < 0) call.Fail("Cannot look up " + unit, result);
    const char* path = nullptr;
    if (Systemd::Read(call.reply, "o", &path) < 0 || !path) call.Fail("Cannot look up " + unit, -EBADMSG);
    return path;
}

std::string SystemServices::UnitProperty(const std::string& unit, const char* property) {
    Call call;
    char* value = nullptr;
    const int result = Systemd::GetPropertyString(_bus, kSystemd, UnitPath(unit).c_str(), kUnit, property,
                                                  &call.error, &value);
    if (result < 0) call.Fail("Cannot read " + unit, result);
    std::string text = value;
    free(value);
    return text;
}

std::string SystemServices::ActiveState(const std::string& unit) {
    return UnitProperty(unit, "ActiveState");
}

bool SystemServices::IsInstalled(const std::string& unit) {
    return UnitProperty(unit, "LoadState") != "not-found";
}

void SystemServices::Settle(const std::string& unit, const char* method, bool wantActive) {
    {
        Call call;
        const int result = Systemd::CallMethod(_bus, kSystemd, kSystemdPath, kManager, method, &call.error,
                                               &call.reply, "ss", unit.c_str(), "replace");
        if (result < 0) call.Fail(std::string("Cannot ") + (wantActive ? "start " : "stop ") + unit, result);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(kSettleSeconds);
    std::string state;
    for (;;) {
        state = ActiveState(unit);
        if (state == (wantActive ? "active" : "inactive") || state == "failed") break;
        if (std::chrono::steady_clock::now() > deadline) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    if (state != (wantActive ? "active" : "inactive"))
        throw HostCtl::Lib::HostCtlException(unit + " is " + state + " after " + method);
}

void SystemServices::Start(const std::string& unit) {
    Settle(unit, "StartUnit", true);
}
void SystemServices::Stop(const std::string& unit) {
    Settle(unit, "StopUnit", false);
}
void SystemServices::Restart(const std::string& unit) {
    Settle(unit, "RestartUnit", true);
}

bool SystemServices::IsEnabled(const std::string& unit) {
    Call call;
    const int result = Systemd::CallMethod(_bus, kSystemd, kSystemdPath, kManager, "GetUnitFileState",
                                           &call.error, &call.reply, "s", unit.c_str());
    if (result < 0) call.Fail("Cannot read whether " + unit + " starts at boot", result);
    const char* state = nullptr;
    if (Systemd::Read(call.reply, "s", &state) < 0 || !state) call.Fail("Cannot read " + unit, -EBADMSG);
    return strcmp(state, "enabled") == 0 || strcmp(state, "enabled-runtime") == 0 ||
           strcmp(state, "alias") == 0;
}

void SystemServices::Enable(const std::string& unit) {
    {
        Call call;
        const int result = Systemd::CallMethod(_bus, kSystemd, kSystemdPath, kManager, "EnableUnitFiles",
                                               &call.error, &call.reply, "asbb", 1, unit.c_str(), 0, 0);
        if (result < 0) call.Fail("Cannot make " + unit + " start at boot", result);
    }
    Reload();
}

void SystemServices::Disable(const std::string& unit) {
    {
        Call call;
        const int result = Systemd::CallMethod(_bus, kSystemd, kSystemdPath, kManager, "DisableUnitFiles",
                                               &call.error, &call.reply, "asb", 1, unit.c_str(), 0);
        if (result < 0) call.Fail("Cannot stop " + unit + " from starting at boot", result);
    }
    Reload();
}

void SystemServices::Reload() {
    Call call;
    const int result =
        Systemd::CallMethod(_bus, kSystemd, kSystemdPath, kManager, "Reload", &call.error, &call.reply, "");
    if (result < 0) call.Fail("Cannot reload the service manager", result);
}

void SystemServices::PowerOff() {
    Call call;
    const int result =
        Systemd::CallMethod(_bus, "org.freedesktop.login1", "/org/freedesktop/login1",
                            "org.freedesktop.login1.Manager", "PowerOff", &call.error, &call.reply, "b", 0);
    if (result < 0) call.Fail("The host refused to shut down", result);
}

void SystemServices::Reboot() {
    Call call;
    const int result =
        Systemd::CallMethod(_bus, "org.freedesktop.login1", "/org/freedesktop/login1",
                            "org.freedesktop.login1.Manager", "Reboot", &call.error, &call.reply, "b", 0);
    if (result < 0) call.Fail("The host refused to restart", result);
}

SystemServices::Keyboard SystemServices::GetKeyboard() {
    const auto property = [this](const char* name) {
        Call call;
        char* value = nullptr;
        const int result =
            Systemd::GetPropertyString(_bus, "org.freedesktop.locale1", "/org/freedesktop/locale1",
                                       "org.freedesktop.locale1", name, &call.error, &value);
        if (result < 0) call.Fail("Cannot read the keyboard layout", result);
        std::string text = value;
        free(value);
        return text;
    };
    return {property("X11Layout"), property("X11Model"), property("X11Variant"), property("X11Options")};
}

void SystemServices::SetKeyboard(const Keyboard& keyboard) {
    Call call;
    // convert=false: the console keymap is the host's to derive; not interactive: no prompts.
    const int result = Systemd::CallMethod(
        _bus, "org.freedesktop.locale1", "/org/freedesktop/locale1", "org.freedesktop.locale1",
        "SetX11Keyboard", &call.error, &call.reply, "ssssbb", keyboard.layout.c_str(), keyboard.model.c_str(),
        keyboard.variant.c_str(), keyboard.options.c_str(), 0, 0);
    if (result < 0) call.Fail("Cannot set the keyboard layout " + keyboard.layout, result);
}

}  // namespace LinuxHost

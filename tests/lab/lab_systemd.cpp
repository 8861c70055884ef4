// The lab host's stand-in for the service manager on its bus: the few calls the Linux platform makes to
// restart NetworkManager (LoadUnit, RestartUnit, a unit's LoadState and ActiveState). A restart runs
// `NM_LAB _restart DIR ROOT`, which ends the lab's NetworkManager and starts it again. Every other unit
// is one the host does not have.
//
//   lab_systemd NM_LAB DIR ROOT
#include <spawn.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>

#include <cstdio>
#include <cstring>
#include <string>

extern char** environ;

namespace {

constexpr const char* kNetworkManager = "NetworkManager.service";
constexpr const char* kNetworkManagerPath = "/org/freedesktop/systemd1/unit/NetworkManager_2eservice";
constexpr const char* kOtherPath = "/org/freedesktop/systemd1/unit/other";

const char* gRestart[5] = {};
bool gRestarting = false;
bool gFailed = false;

int LoadUnit(sd_bus_message* message, void*, sd_bus_error*) {
    const char* name = nullptr;
    const int result = sd_bus_message_read(message, "s", &name);
    if (result < 0) return result;
    return sd_bus_reply_method_return(
        message, "o", std::strcmp(name, kNetworkManager) == 0 ? kNetworkManagerPath : kOtherPath);
}

int RestartUnit(sd_bus_message* message, void*, sd_bus_error* error) {
    const char *name = nullptr, *mode = nullptr;
    const int result = sd_bus_message_read(message, "ss", &name, &mode);
    if (result < 0) return result;
    if (std::strcmp(name, kNetworkManager) != 0)
        return sd_bus_error_setf(error, "org.freedesktop.systemd1.NoSuchUnit", "Unit %s not found.", name);
    // Done before the answer: the caller's wait for "active" then sees the new service.
    gRestarting = true;
    pid_t child = 0;
    int status = 1;
    if (posix_spawn(&child, gRestart[0], nullptr, nullptr, const_cast<char**>(gRestart), environ) == 0)
        waitpid(child, &status, 0);
    gRestarting = false;
    gFailed = status != 0;
    return sd_bus_reply_method_return(message, "o", "/org/freedesktop/systemd1/job/1");
}

int State(sd_bus*, const char* path, const char*, const char* property, sd_bus_message* reply, void*,
          sd_bus_error*) {
    const bool known = std::strcmp(path, kNetworkManagerPath) == 0;
    if (std::strcmp(property, "LoadState") == 0)
        return sd_bus_message_append(reply, "s", known ? "loaded" : "not-found");
    const char* active = !known ? "inactive" : gRestarting ? "activating" : gFailed ? "failed" : "active";
    return sd_bus_message_append(reply, "s", active);
}

const sd_bus_vtable kManager[] = {
    SD_BUS_VTABLE_START(0), SD_BUS_METHOD("LoadUnit", "s", "o", LoadUnit, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("RestartUnit", "ss", "o", RestartUnit, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};

const sd_bus_vtable kUnit[] = {SD_BUS_VTABLE_START(0), SD_BUS_PROPERTY("LoadState", "s", State, 0, 0),
                               SD_BUS_PROPERTY("ActiveState", "s", State, 0, 0), SD_BUS_VTABLE_END};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: lab_systemd NM_LAB DIR ROOT\n");
        return 2;
    }
    gRestart[0] = argv[1];
    gRestart[1] = "_restart";
    gRestart[2] = argv[2];
    gRestart[3] = argv[3];
    sd_bus* bus = nullptr;
    int result = sd_bus_open_system(&bus);
    for (const char* path : {kNetworkManagerPath, kOtherPath})
        if (result >= 0)
            result =
                sd_bus_add_object_vtable(bus, nullptr, path, "org.freedesktop.systemd1.Unit", kUnit, nullptr);
    if (result >= 0)
        result = sd_bus_add_object_vtable(bus, nullptr, "/org/freedesktop/systemd1",
                                          "org.freedesktop.systemd1.Manager", kManager, nullptr);
    if (result >= 0) result = sd_bus_request_name(bus, "org.freedesktop.systemd1", 0);
    while (result >= 0) {
        result = sd_bus_process(bus, nullptr);
        if (result == 0) result = sd_bus_wait(bus, UINT64_MAX);
    }
    std::fprintf(stderr, "lab_systemd: %s\n", std::strerror(-result));
    sd_bus_unref(bus);
    return 1;
}

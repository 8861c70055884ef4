#include "HclCmd.h"

#include <functional>
#include <map>

#include "StoreNodes.h"
#include "platform/store/StoreSchema.h"

namespace KovoSim::Host {

namespace Schema = ZenkCtl::Store::Schema;
namespace {

using nlohmann::json;

// A service switch: "/services/<service>/<member>" = value.
std::function<int(HostContext&)> SetService(const std::string& service, const std::string& member,
                                            bool value) {
    return [=](HostContext& context) {
        context.store->Update([&](json& document) { document["services"][service][member] = value; });
        return 0;
    };
}

int Lockdown(HostContext& context, bool enter) {
    int status = 0;
    context.store->Update([&](json& document) {
        if (enter && !StoreNodes::Flag(document, Schema::kLockdownPossible, true)) {
            context.err << "Lockdown mode cannot be enabled: the host is not managed by a central server\n";
            status = 1;
            return;
        }
        document["services"]["lockdown"]["enabled"] = enter;
    });
    return status;
}

int Query(HostContext& context, const std::string& pointer, bool fallback) {
    context.out << (StoreNodes::Flag(context.store->Read(), pointer, fallback) ? "true" : "false") << "\n";
    return 0;
}

const std::map<std::string, std::function<int(HostContext&)>>& Commands() {
    static const std::map<std::string, std::function<int(HostContext&)>> commands = {
        {"internalsvc/refresh", [](HostContext&) { return 0; }},
        {"hostsvc/autostartmanager/autostop", [](HostContext&) { return 0; }},
        {"hclsvc/auth/lockdown_is_enabled",
         [](HostContext& c) { return Query(c, Schema::kLockdownEnabled, false); }},
        {"hclsvc/auth/lockdown_is_possible",
         [](HostContext& c) { return Query(c, Schema::kLockdownPossible, true); }},
        {"hclsvc/auth/lockdown_mode_enter", [](HostContext& c) { return Lockdown(c, true); }},
        {"hclsvc/auth/lockdown_mode_exit", [](HostContext& c) { return Lockdown(c, false); }},
        {"hostsvc/start_qor_shell", SetService("QorShell", "running", true)},
        {"hostsvc/stop_qor_shell", SetService("QorShell", "running", false)},
        {"hostsvc/enable_qor_shell", SetService("QorShell", "enabled", true)},
        {"hostsvc/disable_qor_shell", SetService("QorShell", "enabled", false)},
        {"hostsvc/start_ssh", SetService("SSH", "running", true)},
        {"hostsvc/stop_ssh", SetService("SSH", "running", false)},
        {"hostsvc/enable_ssh", SetService("SSH", "enabled", true)},
        {"hostsvc/disable_ssh", SetService("SSH", "enabled", false)},
    };
    return commands;
}

}  // namespace

int HclCmd::Run(HostContext& context) {
    const auto& argv = context.argv;
    if (argv.size() < 4 || argv[1] != "-U") {
        context.err << "Usage: hcl-cmd -U <user> <command path> [arguments]\n";
        return 1;
    }
    const std::string& user = argv[2];
    const std::string& path = argv[3];
    const json document = context.store->Read();
    if (user != kConsoleUser) {
        const json* account = StoreNodes::User(document, user);
        if (!account || !account->value("hclAccess", true)) {
            context.err << "Failed to login as user '" << user << "'\n";
            return kCannotActAsUser;
        }
    }
    if (!StoreNodes::Flag(document, Schema::kHostAgentRunning, true)) {
        context.err << "Failed to connect to the host agent\n";
        return 1;
    }
    const auto command = Commands().find(path);
    if (command == Commands().end()) {
        context.err << "Unknown command '" << path << "'\n";
        return 1;
    }
    return command->second(context);
}

}  // namespace KovoSim::Host

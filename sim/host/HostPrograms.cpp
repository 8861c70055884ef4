#include "HostPrograms.h"

#include <sys/auxv.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <optional>

#include "AdvancedOptionTool.h"
#include "AgentTool.h"
#include "CommandLog.h"
#include "HclCmd.h"
#include "InitScript.h"
#include "MaintenanceTool.h"
#include "PowerCommand.h"
#include "ZenkPing.h"
#include "host/SimulationSchema.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"

namespace KovoSim::Host {
namespace {

using Program = std::function<int(HostContext&)>;

const std::map<std::string, Program>& Programs() {
    static const std::map<std::string, Program> programs = {
        {"hcl-cmd", HclCmd::Run},
        {"powerOffVms", MaintenanceTool::RunPowerOffVms},
        {"backup.sh", MaintenanceTool::RunBackup},
        {"firmwareConfig.py", MaintenanceTool::RunFirmwareConfig},
        {"zenkping", ZenkPing::Run},
        {"QorShell", [](HostContext& c) { return InitScript::Run(c, "QorShell"); }},
        {"SSH", [](HostContext& c) { return InitScript::Run(c, "SSH"); }},
        {"qorcfg-advcfg", AdvancedOptionTool::RunAdvCfg},
        {"qorcli", [](HostContext& c) { return AdvancedOptionTool::RunCli(c, false); }},
        {"qorlocalcli", [](HostContext& c) { return AdvancedOptionTool::RunCli(c, true); }},
        {"services.sh", AgentTool::RunServices},
        {"zenkbacktrace", AgentTool::RunBacktrace},
        {"poweroff", [](HostContext& c) { return PowerCommand::Run(c, "poweroff"); }},
        {"halt", [](HostContext& c) { return PowerCommand::Run(c, "halt"); }},
        {"shutdown", [](HostContext& c) { return PowerCommand::Run(c, "shutdown"); }},
        {"reboot", [](HostContext& c) { return PowerCommand::Run(c, "reboot"); }},
    };
    return programs;
}

// A fault set for the program itself ("/simulation/faults/powerOffVms") makes it fail as a broken tool
// would, read as the platform reads its own faults. A store that cannot be read injects nothing: the
// programs that need it report that themselves.
std::optional<std::string> InjectedFailure(const HostContext& context, const std::string& name) {
    return ZenkCtl::StoreFaultSource(context.store).Injected(name.c_str());
}

std::string BaseName(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

const std::vector<HostPrograms::Install>& HostPrograms::Installs() {
    static const std::vector<Install> installs = {
        {"/usr/bin/hcl-cmd", "hcl-cmd", false},
        {"/usr/bin/powerOffVms", "powerOffVms", false},
        {"/usr/sbin/powerOffVms", "powerOffVms", false},
        {"/usr/bin/zenkping", "zenkping", false},
        {"/usr/sbin/backup.sh", "backup.sh", true},
        {"/etc/init.d/QorShell", "QorShell", true},
        {"/etc/init.d/SSH", "SSH", true},
        {"/usr/sbin/qorcfg-advcfg", "qorcfg-advcfg", false},
        {"/usr/sbin/qorcli", "qorcli", false},
        {"/usr/sbin/qorlocalcli", "qorlocalcli", false},
        {"/usr/sbin/services.sh", "services.sh", true},
        {"/usr/sbin/zenkbacktrace", "zenkbacktrace", false},
        {"/usr/sbin/firmwareConfig.py", "firmwareConfig.py", false},
        {"/usr/sbin/poweroff", "poweroff", false},
        {"/usr/sbin/halt", "halt", false},
        {"/usr/sbin/shutdown", "shutdown", false},
        {"/usr/sbin/reboot", "reboot", false},
    };
    return installs;
}

bool HostPrograms::Known(const std::string& name) {
    return Programs().count(name) != 0;
}

int HostPrograms::Run(const std::string& name, HostContext& context) {
    const auto program = Programs().find(name);
    if (program == Programs().end()) {
        context.err << "kovo-sim-host: no program " << name << "\n";
        return 127;
    }
    CommandLog::Record(name, context.path, context.argv, context.commandLog);
    if (const auto failure = InjectedFailure(context, name)) {
        context.err << name << ": " << *failure << "\n";
        return 1;
    }
    try {
        return program->second(context);
    } catch (const HostCtl::Lib::HostCtlException& e) {
        context.err << name << ": " << e.what() << "\n";
        return 1;
    } catch (const std::exception& e) {
        context.err << name << ": " << e.what() << "\n";
        return 1;
    }
}

std::string HostPrograms::AbsolutePath(const std::string& path, const std::string& cwd) {
    if (path.empty()) return {};
    const std::filesystem::path given(path);
    return (given.is_absolute() ? given : std::filesystem::path(cwd.empty() ? "/" : cwd) / given)
        .lexically_normal()
        .string();
}

int HostPrograms::Main(int argc, char** argv) {
    std::vector<std::string> args(argv, argv + argc);
    std::string name = args.empty() ? std::string() : BaseName(args[0]);
    // What execve was given: "/sbin/powerOffVms", not the file the link leads to.
    const char* execfn = reinterpret_cast<const char*>(::getauxval(AT_EXECFN));
    std::string path = execfn ? execfn : std::string();
    if (name == "kovo-sim-host") {
        if (args.size() < 2) {
            std::cerr << "Usage: kovo-sim-host PROGRAM [ARGUMENTS...]\n";
            return 2;
        }
        name = args[1];
        args.erase(args.begin(), args.begin() + 2);
        if (args.empty()) args.push_back(name);
        // A script of the host calls us with its own "$0": the program run is the script.
        path = args[0];
    }
    // The directory as the caller named it ($PWD when it is this one): "./x" run in /sbin is "/sbin/x",
    // though /sbin leads to /usr/sbin.
    char* cwd = ::get_current_dir_name();
    HostContext context{args, std::cout, std::cerr, ZenkCtl::Store::HostStore::System(),
                        AbsolutePath(path, cwd ? cwd : "")};
    std::free(cwd);
    const int status = Run(name, context);
    std::cout.flush();
    return status;
}

}  // namespace KovoSim::Host

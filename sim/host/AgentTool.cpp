#include "AgentTool.h"

#include <ctime>
#include <fstream>

#include "StoreNodes.h"
#include "platform/store/StoreSchema.h"

namespace KovoSim::Host {

namespace Schema = ZenkCtl::Store::Schema;

int AgentTool::RunServices(HostContext& context) {
    const auto& argv = context.argv;
    if (argv.size() != 2 || (argv[1] != "stop" && argv[1] != "start" && argv[1] != "restart")) {
        context.err << "Usage: services.sh {start|stop|restart}\n";
        return 1;
    }
    const bool running = argv[1] != "stop";
    context.store->Update(
        [&](nlohmann::json& document) { document["services"]["hostAgent"]["running"] = running; });
    context.out << (running ? "Starting" : "Stopping") << " hagentd\n";
    return 0;
}

int AgentTool::RunBacktrace(HostContext& context) {
    const auto& argv = context.argv;
    std::string name, pattern, dir;
    for (size_t i = 1; i < argv.size(); ++i) {
        if (argv[i] == "-w" || argv[i] == "-c") continue;
        if (i + 1 < argv.size() && argv[i] == "-n") {
            name = argv[++i];
        } else if (i + 1 < argv.size() && argv[i] == "-o") {
            pattern = argv[++i];
        } else if (i + 1 < argv.size() && argv[i] == "-d") {
            dir = argv[++i];
        } else {
            context.err << "zenkbacktrace: unknown argument " << argv[i] << "\n";
            return 1;
        }
    }
    if (name.empty() || pattern.empty() || dir.empty()) {
        context.err << "Usage: zenkbacktrace -w -n NAME -o PATTERN -d DIR\n";
        return 1;
    }
    if (name != "hagentd" || !StoreNodes::Flag(context.store->Read(), Schema::kHostAgentRunning, true)) {
        context.err << "zenkbacktrace: no process named " << name << "\n";
        return 1;
    }
    const auto percent = pattern.find('%');
    if (percent != std::string::npos) pattern.replace(percent, 1, std::to_string(std::time(nullptr)));
    const std::string path = dir + (dir.back() == '/' ? "" : "/") + pattern + ".core";
    std::ofstream core(path, std::ios::binary | std::ios::trunc);
    core << "live core of " << name << "\n";
    if (!core.flush()) {
        context.err << "zenkbacktrace: cannot write " << path << "\n";
        return 1;
    }
    context.out << "Wrote " << path << "\n";
    return 0;
}

}  // namespace KovoSim::Host

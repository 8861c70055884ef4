#include "InitScript.h"

#include "StoreNodes.h"

namespace KovoSim::Host {

int InitScript::Run(HostContext& context, const std::string& service) {
    const auto& argv = context.argv;
    const std::string script = argv.empty() ? service : argv[0];
    if (argv.size() != 2) {
        context.err << "Usage: " << script << " {start|stop|restart|status}\n";
        return 2;
    }
    const std::string& action = argv[1];
    if (action == "status") {
        const bool running =
            StoreNodes::Flag(context.store->Read(), "/services/" + service + "/running", false);
        context.out << service << (running ? " is running" : " is not running") << "\n";
        return running ? 0 : 3;
    }
    if (action != "start" && action != "stop" && action != "restart") {
        context.err << "Usage: " << script << " {start|stop|restart|status}\n";
        return 3;
    }
    const bool running = action != "stop";
    context.store->Update(
        [&](nlohmann::json& document) { document["services"][service]["running"] = running; });
    context.out << service << (running ? " started" : " stopped") << "\n";
    return 0;
}

}  // namespace KovoSim::Host

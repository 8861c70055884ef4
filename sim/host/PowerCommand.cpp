#include "PowerCommand.h"

#include <signal.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace KovoSim::Host {

int PowerCommand::Run(HostContext& context, const std::string& name) {
    const std::string request = name == "reboot" ? "reboot" : "poweroff";
    const std::string path = context.runDir + "/" + kRequestFile;
    {
        std::ofstream file(path, std::ios::trunc);
        file << request << "\n";
        if (!file.flush()) {
            context.err << name << ": cannot reach init\n";
            return 1;
        }
    }
    if (::kill(context.initPid, SIGUSR1) != 0) {
        context.err << name << ": cannot reach init: " << std::strerror(errno) << "\n";
        return 1;
    }
    return 0;
}

}  // namespace KovoSim::Host

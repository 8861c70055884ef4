#include "MaintenanceTool.h"

namespace KovoSim::Host {

int MaintenanceTool::RunBackup(HostContext& context) {
    if (context.argv.size() != 1) {
        context.err << "Usage: backup.sh\n";
        return 1;
    }
    context.store->Read();  // a host without a readable configuration has nothing to back up
    return 0;
}

int MaintenanceTool::RunFirmwareConfig(HostContext& context) {
    if (context.argv.size() != 2 || context.argv[1] != "--reset-only") {
        context.err << "Usage: firmwareConfig.py --reset-only\n";
        return 2;
    }
    context.store->Update(
        [](nlohmann::json& document) { document["boot"]["pending"]["resetConfiguration"] = true; });
    return 0;
}

int MaintenanceTool::RunPowerOffVms(HostContext& context) {
    const auto& argv = context.argv;
    const bool terminate = argv.size() == 2 && argv[1] == "--terminate";
    if (argv.size() > 2 || (argv.size() == 2 && !terminate)) {
        context.err << "Usage: powerOffVms [--terminate]\n";
        return 1;
    }
    context.store->Update([&](nlohmann::json& document) {
        auto vms = document.find("vms");
        if (vms == document.end() || !vms->is_array()) return;
        for (auto& vm : *vms) {
            if (!vm.is_object() || vm.value("powerState", std::string()) != "poweredOn") continue;
            context.out << (terminate ? "Terminating " : "Powering off ")
                        << vm.value("name", std::string("?")) << "\n";
            vm["powerState"] = "poweredOff";
        }
    });
    return 0;
}

}  // namespace KovoSim::Host

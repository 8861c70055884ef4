#pragma once

#include "HostContext.h"

namespace KovoSim::Host {

// "backup.sh" (the configuration is already on the host's disk: nothing more to save),
// "firmwareConfig.py --reset-only" (the configuration is reset at the next boot) and
// "powerOffVms [--terminate]" (every running VM is powered off).
class MaintenanceTool {
  public:
    static int RunBackup(HostContext& context);
    static int RunFirmwareConfig(HostContext& context);
    static int RunPowerOffVms(HostContext& context);
};

}  // namespace KovoSim::Host

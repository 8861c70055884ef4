#pragma once

#include "HostContext.h"

namespace KovoSim::Host {

// The host's advanced-option tools over "/advancedOptions":
//   qorcfg-advcfg -q -g OPTION        print the value ("-q": the bare value)
//   qorcfg-advcfg -s VALUE OPTION     set it
//   qorcli|qorlocalcli system settings advanced set -o OPTION -i VALUE
// qorcli talks to the host agent and fails while it is stopped; qorlocalcli works without it.
class AdvancedOptionTool {
  public:
    static int RunAdvCfg(HostContext& context);
    static int RunCli(HostContext& context, bool local);
};

}  // namespace KovoSim::Host

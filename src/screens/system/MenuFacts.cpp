#include "system/MenuFacts.h"

#include "system/MenuCodes.h"

namespace Kovo {

std::vector<MenuEntry> MenuFacts::Entries() const {
    const MenuEntry blank{kBlankLine, false, false};
    const bool lockdown = lockdownEnabled || lockdownPossible;
    std::vector<MenuEntry> entries{
        {kConfigurePassword, true, true},
        {kConfigureLockdown, true, lockdown},
        blank,
        {kConfigureNetwork, true, managementInterface},
        {kRestartNetwork, true, managementInterface},
        {kTestNetwork, true, managementInterface},
        {kNetworkRestore, true, true},
        blank,
    };
    // Over a remote terminal the keyboard of the machine is not the operator's; the blank line stays.
    if (keyboard) entries.push_back({kConfigureKeyboard, true, true});
    entries.insert(entries.end(),
                   {
                       {kTroubleshooting, true, true},
                       blank,
                       {kViewSystemLogs, true, true},
                       blank,
                       {kViewSupportInfo, true, true},
                       blank,
                       // A host booted from the network has no configuration of its own to reset.
                       {kResetConfiguration, true, !pxeBoot},
                   });
    return entries;
}

}  // namespace Kovo

#include "system/MenuFacts.h"

#include "frames/HostAccess.h"
#include "frames/Log.h"
#include "platform/hostctl/AdvancedOption.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/ZenkNic.h"
#include "terminal/Session.h"
#include "text/StringIds.h"

namespace Kovo {

std::unique_ptr<HostCtl::Network::ZenkNic> LookUpManagementInterface(HostAccess& host) {
    try {
        auto network = host.Network();
        network->UpdateManagementInterface();
        auto nic = network->GetManagementInterface();
        return nic && nic->IsValid() ? std::move(nic) : nullptr;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        LogFailure("Unable to look up the management network interface: ", e);
        return nullptr;
    }
}

MenuFacts MenuFacts::Read(HostAccess& host) {
    MenuFacts facts;
    facts.lockdownEnabled = host.Query("hclsvc/auth/lockdown_is_enabled");
    facts.lockdownPossible = facts.lockdownEnabled || host.Query("hclsvc/auth/lockdown_is_possible");
    facts.managementInterface = LookUpManagementInterface(host) != nullptr;
    try {
        facts.pxeBoot = host.UserOptions()->FindOption("PXEBootEnabled") != nullptr;
    } catch (const HostCtl::Lib::HostCtlException& e) {
        LogFailure("Unable to read the host's boot options: ", e);
    }
    facts.keyboard = usingKeyboard;
    return facts;
}

std::vector<MenuEntry> MenuFacts::Entries() const {
    const MenuEntry blank{StringId::MenuBlankLine, false, false};
    const bool lockdown = lockdownEnabled || lockdownPossible;
    std::vector<MenuEntry> entries{
        {StringId::MenuConfigurePassword, true, true},
        {StringId::MenuConfigureLockdown, true, lockdown},
        blank,
        {StringId::MenuConfigureNetwork, true, managementInterface},
        {StringId::MenuRestartNetwork, true, managementInterface},
        {StringId::MenuTestNetwork, true, managementInterface},
        {StringId::MenuNetworkRestore, true, true},
        blank,
    };
    // Over a remote terminal the keyboard of the machine is not the operator's; the blank line stays.
    if (keyboard) entries.push_back({StringId::ConfigureKeyboard, true, true});
    entries.insert(entries.end(),
                   {
                       {StringId::MenuTroubleshooting, true, true},
                       blank,
                       {StringId::MenuViewSystemLogs, true, true},
                       blank,
                       {StringId::MenuViewSupportInfo, true, true},
                       blank,
                       // A host booted from the network has no configuration of its own to reset.
                       {StringId::MenuResetConfiguration, true, !pxeBoot},
                   });
    return entries;
}

}  // namespace Kovo

#pragma once

namespace Kovo {

// Entry codes of the main menu; each is also the string id of the entry's text.
enum MenuCode : unsigned {
    kBlankLine = 3,
    kConfigurePassword = 5,
    kConfigureLockdown = 6,
    kConfigureNetwork = 7,
    kRestartNetwork = 8,
    kTestNetwork = 9,
    kNetworkRestore = 10,
    kViewSupportInfo = 11,
    kViewSystemLogs = 12,
    kTroubleshooting = 13,
    kResetConfiguration = 14,
    kConfigureKeyboard = 15,
};

}  // namespace Kovo

#pragma once

#include <memory>
#include <vector>

namespace HostCtl::Network {
class ZenkNic;
}

namespace Kovo {

class HostAccess;

// One line of the main menu: its code is the string id of its text (StringId::MenuBlankLine, empty, for a
// blank line).
struct MenuEntry {
    unsigned code;
    bool selectable;
    bool enabled;
};

// What the host is like when the main menu is built; it decides which entries exist and which of them
// can be chosen.
struct MenuFacts {
    bool lockdownEnabled = false;
    bool lockdownPossible = false;
    bool managementInterface = false;
    bool pxeBoot = false;
    bool keyboard = false;

    // Reads the host: the lockdown queries, the management interface, the network-boot option and the
    // keyboard.
    static MenuFacts Read(HostAccess& host);

    // The entries in menu order.
    std::vector<MenuEntry> Entries() const;
};

// The host's management interface; null when it has none, or cannot tell (logged).
std::unique_ptr<HostCtl::Network::ZenkNic> LookUpManagementInterface(HostAccess& host);

}  // namespace Kovo

#pragma once

#include <vector>

namespace Kovo {

// One line of the main menu: its code is also the string id of its text; code 3 is a blank line.
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

    // The entries in menu order.
    std::vector<MenuEntry> Entries() const;
};

}  // namespace Kovo

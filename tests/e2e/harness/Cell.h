#pragma once

#include <string>

#include "Color.h"

namespace KovoTerm {

// One screen cell read back from the emulator.
struct Cell {
    std::string text;  // UTF-8, empty for a blank cell
    Color fg;
    Color bg;
    bool bold = false;
    bool reverse = false;  // standout on the terminals we drive

    std::string Describe() const;
};

}  // namespace KovoTerm

#pragma once

#include <cstdint>
#include <string>

namespace KovoTerm {

// One cell colour as the emulator sees it. `index` is the palette slot the program chose (-1 for the
// terminal's default colour or a direct RGB); `red/green/blue` are always filled in from the emulator's
// current palette, so a redefined slot shows its new shade.
struct Color {
    int index = -1;
    bool isDefault = true;
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool IsIndex(int i) const { return !isDefault && index == i; }
    bool IsRgb(std::uint8_t r, std::uint8_t g, std::uint8_t b) const {
        return red == r && green == g && blue == b;
    }
    std::string Describe() const;
};

}  // namespace KovoTerm

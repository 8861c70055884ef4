// Feeds arbitrary key sequences to an input field, drawing it in between. Checks that cursor and
// offset always stay within the text and that the drawn cursor lands inside the field.
#include <curses.h>

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "terminal/Colors.h"
#include "text/InputItem.h"
#include "text/TextArea.h"

namespace {

Kovo::Window* root = nullptr;

const int kSpecialKeys[] = {KEY_HOME, KEY_END, KEY_LEFT, KEY_RIGHT, KEY_DC, KEY_BACKSPACE,
                            8,        127,     KEY_UP,   KEY_F(2),  '\t',   0};

void CheckState(const Kovo::InputItem& field) {
    int length = static_cast<int>(field.GetValue().size());
    if (field.Offset() < 0 || field.Offset() > field.Cursor() || field.Cursor() > length) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::setlocale(LC_ALL, "C.UTF-8");
    SCREEN* screen = newterm("xterm", std::fopen("/dev/null", "w"), std::fopen("/dev/null", "r"));
    if (!screen) std::abort();
    set_term(screen);
    resizeterm(25, 80);
    start_color();
    root = new Kovo::Window(0, 0, 80, 25, Kovo::kYellow, Kovo::kBlack);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3) return 0;
    const int fieldWidth = data[0] % 41 == 0 ? -1 : data[0] % 41;
    const int lineWidth = 10 + data[1] % 70;
    const bool masked = data[2] & 1;
    const int areaX = 80 - lineWidth;

    auto* area = new Kovo::TextArea(root, areaX, 5, lineWidth, 1);
    Kovo::InputItem field("Label", "10.0.0.1", fieldWidth);
    field.SetMasked(masked);
    const int width = fieldWidth == -1 ? lineWidth / 2 - 1 : fieldWidth;

    for (size_t i = 3; i < size; ++i) {
        uint8_t b = data[i];
        if (b >= 0xf0) {
            std::size_t which = b - 0xf0u;
            if (which < std::size(kSpecialKeys)) {
                field.EditKey(kSpecialKeys[which]);
            } else if (which == 12) {
                field.SetSelected(!field.IsSelected());
            } else if (which == 13) {
                field.SetValue(std::string(data + 3, data + i));
            } else {
                field.Draw(*area);
                if (field.IsSelected() && width > 0) {
                    int column = Kovo::Window::_xCursor - areaX;
                    if (column < lineWidth - 2 - width || column > lineWidth - 2) std::abort();
                }
            }
        } else {
            field.EditKey(b);
        }
        CheckState(field);
    }
    field.Draw(*area);
    CheckState(field);
    delete area;
    return 0;
}

// Lays out and draws arbitrary markup into areas of arbitrary size. Besides the sanitizers it checks
// that plain text loses no characters to wrapping and never overfills a line, and that drawing never
// touches a cell outside the area.
#include <curses.h>

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "terminal/Colors.h"
#include "text/MarkupLayout.h"
#include "text/TextArea.h"

namespace {

Kovo::Window* root = nullptr;

std::string WithoutWhitespace(const std::string& text) {
    std::string out;
    for (char c : text)
        if (!std::isspace(static_cast<unsigned char>(c))) out += c;
    return out;
}

void CheckPlainText(const std::string& text, int width) {
    std::string laidOut = Kovo::LayoutMarkup(text, width, {});
    if (WithoutWhitespace(laidOut) != WithoutWhitespace(text)) std::abort();
    std::size_t start = 0;
    while (start <= laidOut.size()) {
        std::size_t end = laidOut.find('\n', start);
        if (end == std::string::npos) end = laidOut.size();
        if (end - start > static_cast<std::size_t>(width)) std::abort();
        start = end + 1;
    }
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
    const int width = 1 + data[0] % 60;
    const int height = 1 + data[1] % 12;
    const bool active = data[2] & 1;
    Kovo::bwColor = data[2] & 2;
    std::string text(reinterpret_cast<const char*>(data + 3), size - 3);

    if (text.find('{') == std::string::npos) CheckPlainText(text, width);

    // Values that hold tags, braces, newlines and more than a line.
    Kovo::MarkupVariables variables = {
        {"v", [] { return std::string("{color:red}x{/color}"); }},
        {"open", [] { return std::string("{color:"); }},
        {"nl", [] { return std::string("a\nb c\td"); }},
        {"long", [] { return std::string(150, 'w'); }},
    };
    std::string laidOut = Kovo::LayoutMarkup(text, width, variables);

    werase(root->Handle());
    auto* area = new Kovo::TextArea(root, 3, 2, width, height);
    wbkgdset(root->Handle(), '#');
    for (int y = 0; y < 25; ++y) mvwhline(root->Handle(), y, 0, '#', 80);
    // The area's own variables read the host (commands, platform calls that may throw); the renderer is
    // what is fuzzed here, so texts that name one only go through the pass with the variables above.
    bool namesHostValue = false;
    for (const auto& [name, value] : area->Variables())
        namesHostValue = namesHostValue || text.find("{" + name + "}") != std::string::npos;
    if (!active) area->SetActive(false);
    if (!namesHostValue) area->SetText(text);
    Kovo::DrawMarkup({area->Handle(), width, height, 3, 0, active}, laidOut, area->Colors());
    for (int y = 0; y < 25; ++y) {
        for (int x = 0; x < 80; ++x) {
            bool inside = y >= 2 && y < 2 + height && x >= 3 && x < 3 + width;
            if (!inside && (mvwinch(root->Handle(), y, x) & A_CHARTEXT) != '#') std::abort();
        }
    }
    delete area;
    return 0;
}

#pragma once

#include <curses.h>

#include <map>
#include <string>
#include <string_view>

namespace Kovo {

// Colour name to curses colour number.
using MarkupColors = std::map<std::string, int, std::less<>>;

// Where and how a laid-out text is painted: the window, its size, its default colours, and whether it
// is active (an inactive area ignores colour tags and keeps the window's own attribute).
struct MarkupCanvas {
    WINDOW* window;
    int width;
    int height;
    int background;
    int foreground;
    bool active;
};

// The draw pass: paints the output of LayoutMarkup row by row from the window's origin, switching the
// colour pair at colour tags and dropping every other tag. Rows beyond the height are not drawn. Does
// not refresh the window.
void DrawMarkup(const MarkupCanvas& canvas, std::string_view laidOut, const MarkupColors& colors);

}  // namespace Kovo

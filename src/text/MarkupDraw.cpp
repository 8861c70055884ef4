#include "text/MarkupDraw.h"

#include <algorithm>
#include <cctype>

#include "terminal/Colors.h"
#include "text/MarkupTag.h"

namespace Kovo {
namespace {

class Painter {
  public:
    Painter(const MarkupCanvas& canvas, const MarkupColors& colors)
        : _c(canvas), _colors(colors), _background(canvas.background), _foreground(canvas.foreground) {
        // Every render starts in the area's own colours, whatever an earlier text left switched on.
        if (_c.active) {
            _inForce = ColorAttr(_background, _foreground);
            wattrset(_c.window, _inForce);
        }
    }

    void Run(std::string_view text) {
        std::size_t i = 0;
        while (i < text.size()) {
            char c = text[i];
            if (c == '{') {
                MarkupTag tag;
                std::size_t after;
                if (!NextTag(text, i, tag, after)) break;
                Flush();
                Tag(tag);
                i = after;
                continue;
            }
            if (c == '\n') {
                Flush();
                ++_row;
                _column = 0;
                if (_row >= _c.height) return;
            } else {
                _run += c;
            }
            ++i;
        }
        Flush();
    }

  private:
    // Writes the gathered run at the current place. A run never spills into the next row: curses would
    // wrap it there and the next line would be drawn over it.
    void Flush() {
        if (_run.empty()) return;
        int left = _c.width - _column;
        if (_row < _c.height && left > 0) {
            std::string shown = _run.substr(0, static_cast<std::size_t>(left));
            // Tabs and other control bytes would move the curses cursor; they show as blanks.
            for (char& ch : shown)
                if (std::iscntrl(static_cast<unsigned char>(ch))) ch = ' ';
            mvwaddnstr(_c.window, _row, _column, shown.c_str(), static_cast<int>(shown.size()));
        }
        _column += static_cast<int>(_run.size());
        _run.clear();
    }

    void Switch(int background, int foreground) {
        wattroff(_c.window, _inForce);
        _inForce = ColorAttr(background, foreground);
        wattron(_c.window, _inForce);
    }

    void Tag(const MarkupTag& tag) {
        if (tag.name == "color" || tag.name == "bgcolor") {
            auto it = _colors.find(tag.value);
            if (it == _colors.end()) return;
            bool foreground = tag.name == "color";
            (foreground ? _foreground : _background) = it->second;
            if (_c.active) Switch(_background, _foreground);
            (foreground ? _colorOpen : _bgcolorOpen) = _c.active;
        } else if (tag.name == "/color" || tag.name == "/bgcolor") {
            bool& open = tag.name == "/color" ? _colorOpen : _bgcolorOpen;
            if (!open) return;
            // Either closing tag restores both defaults, not just the colour it opened.
            _background = _c.background;
            _foreground = _c.foreground;
            if (_c.active) Switch(_background, _foreground);
            open = false;
        }
    }

    const MarkupCanvas& _c;
    const MarkupColors& _colors;
    int _row = 0;
    int _column = 0;
    std::string _run;
    int _background;
    int _foreground;
    bool _colorOpen = false;
    bool _bgcolorOpen = false;
    attr_t _inForce = 0;
};

}  // namespace

void DrawMarkup(const MarkupCanvas& canvas, std::string_view laidOut, const MarkupColors& colors) {
    if (!canvas.window || canvas.height <= 0) return;
    Painter(canvas, colors).Run(laidOut);
}

}  // namespace Kovo

#include "VirtualTerminal.h"

#include <vterm.h>

#include <cstdio>
#include <stdexcept>

namespace KovoTerm {

namespace {

// Parses "rgb:RR/GG/BB" (1 to 4 hex digits per component, scaled to 8 bits as X11 does).
bool ParseRgbText(std::string_view rgbText, std::uint8_t rgb[3]) {
    if (rgbText.substr(0, 4) != "rgb:") return false;
    rgbText.remove_prefix(4);
    for (int i = 0; i < 3; ++i) {
        auto slash = rgbText.find('/');
        std::string_view part = rgbText.substr(0, slash);
        if (part.empty() || part.size() > 4) return false;
        unsigned value = 0;
        for (char c : part) {
            value <<= 4;
            if (c >= '0' && c <= '9')
                value |= unsigned(c - '0');
            else if (c >= 'a' && c <= 'f')
                value |= unsigned(c - 'a' + 10);
            else if (c >= 'A' && c <= 'F')
                value |= unsigned(c - 'A' + 10);
            else
                return false;
        }
        unsigned max = (1u << (4 * part.size())) - 1;
        rgb[i] = std::uint8_t((value * 255 + max / 2) / max);
        if (i < 2) {
            if (slash == std::string_view::npos) return false;
            rgbText.remove_prefix(slash + 1);
        } else if (slash != std::string_view::npos) {
            return false;
        }
    }
    return true;
}

void AppendUtf8(std::string& out, std::uint32_t cp) {
    if (cp < 0x80) {
        out += char(cp);
    } else if (cp < 0x800) {
        out += char(0xC0 | (cp >> 6));
        out += char(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += char(0xE0 | (cp >> 12));
        out += char(0x80 | ((cp >> 6) & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    } else {
        out += char(0xF0 | (cp >> 18));
        out += char(0x80 | ((cp >> 12) & 0x3F));
        out += char(0x80 | ((cp >> 6) & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    }
}

VTermKey ToVTermKey(Key key) {
    switch (key) {
        case Key::Enter:
            return VTERM_KEY_ENTER;
        case Key::Escape:
            return VTERM_KEY_ESCAPE;
        case Key::Tab:
            return VTERM_KEY_TAB;
        case Key::Backspace:
            return VTERM_KEY_BACKSPACE;
        case Key::Up:
            return VTERM_KEY_UP;
        case Key::Down:
            return VTERM_KEY_DOWN;
        case Key::Left:
            return VTERM_KEY_LEFT;
        case Key::Right:
            return VTERM_KEY_RIGHT;
        case Key::Insert:
            return VTERM_KEY_INS;
        case Key::Delete:
            return VTERM_KEY_DEL;
        case Key::Home:
            return VTERM_KEY_HOME;
        case Key::End:
            return VTERM_KEY_END;
        case Key::PageUp:
            return VTERM_KEY_PAGEUP;
        case Key::PageDown:
            return VTERM_KEY_PAGEDOWN;
        default:
            break;
    }
    int n = int(key) - int(Key::F1) + 1;
    return VTermKey(VTERM_KEY_FUNCTION(n));
}

}  // namespace

Key FunctionKey(int n) {
    if (n < 1 || n > 12) throw std::out_of_range("function key number out of range");
    return Key(int(Key::F1) + n - 1);
}

VirtualTerminal::VirtualTerminal(int rows, int columns, Sink sink)
    : _rows(rows), _columns(columns), _sink(std::move(sink)) {
    _vt = vterm_new(rows, columns);
    if (!_vt) throw std::runtime_error("vterm_new failed");
    vterm_set_utf8(_vt, 1);
    vterm_output_set_callback(_vt, &VirtualTerminal::OnOutput, this);
    _screen = vterm_obtain_screen(_vt);
    _state = vterm_obtain_state(_vt);
    vterm_screen_enable_altscreen(_screen, 1);
    vterm_screen_reset(_screen, 1);

    // The emulator ignores palette changes (OSC 4); catch them and apply them ourselves.
    static const VTermParserCallbacks fallbacks = {
        nullptr, nullptr, nullptr, nullptr, &VirtualTerminal::OnUnrecognisedOsc, nullptr, nullptr};
    vterm_screen_set_unrecognised_fallbacks(_screen, &fallbacks, this);
}

VirtualTerminal::~VirtualTerminal() {
    if (_vt) vterm_free(_vt);
}

void VirtualTerminal::Feed(std::string_view bytes) {
    if (bytes.empty()) return;
    vterm_input_write(_vt, bytes.data(), bytes.size());
    vterm_screen_flush_damage(_screen);
}

void VirtualTerminal::Resize(int rows, int columns) {
    _rows = rows;
    _columns = columns;
    vterm_set_size(_vt, rows, columns);
    vterm_screen_flush_damage(_screen);
}

void VirtualTerminal::PressKey(Key key, bool shift, bool alt, bool ctrl) {
    int mod = VTERM_MOD_NONE;
    if (shift) mod |= VTERM_MOD_SHIFT;
    if (alt) mod |= VTERM_MOD_ALT;
    if (ctrl) mod |= VTERM_MOD_CTRL;
    vterm_keyboard_key(_vt, ToVTermKey(key), VTermModifier(mod));
}

void VirtualTerminal::TypeText(std::string_view utf8) {
    std::size_t i = 0;
    while (i < utf8.size()) {
        unsigned char c = static_cast<unsigned char>(utf8[i]);
        std::uint32_t cp = c;
        int extra = 0;
        if (c >= 0xF0)
            cp = c & 0x07, extra = 3;
        else if (c >= 0xE0)
            cp = c & 0x0F, extra = 2;
        else if (c >= 0xC0)
            cp = c & 0x1F, extra = 1;
        ++i;
        for (int k = 0; k < extra && i < utf8.size(); ++k, ++i)
            cp = (cp << 6) | (static_cast<unsigned char>(utf8[i]) & 0x3F);
        if (cp == '\n' || cp == '\r') {
            vterm_keyboard_key(_vt, VTERM_KEY_ENTER, VTERM_MOD_NONE);
        } else if (cp < 0x20) {
            // Control characters: the emulator encodes Ctrl+letter itself.
            vterm_keyboard_unichar(_vt, cp + 0x60, VTERM_MOD_CTRL);
        } else {
            vterm_keyboard_unichar(_vt, cp, VTERM_MOD_NONE);
        }
    }
}

std::string VirtualTerminal::RowText(int row) const {
    std::string text;
    if (row < 0 || row >= _rows) return text;
    for (int col = 0; col < _columns; ++col) {
        VTermScreenCell cell;
        VTermPos pos{row, col};
        if (!vterm_screen_get_cell(_screen, pos, &cell)) break;
        if (cell.chars[0] == 0xFFFFFFFFu) continue;  // right half of a wide character
        if (cell.chars[0] == 0) {
            text += ' ';
            continue;
        }
        for (int k = 0; k < VTERM_MAX_CHARS_PER_CELL && cell.chars[k]; ++k) AppendUtf8(text, cell.chars[k]);
    }
    auto end = text.find_last_not_of(' ');
    text.erase(end == std::string::npos ? 0 : end + 1);
    return text;
}

std::vector<std::string> VirtualTerminal::AllRows() const {
    std::vector<std::string> rows;
    for (int r = 0; r < _rows; ++r) rows.push_back(RowText(r));
    return rows;
}

std::string VirtualTerminal::ScreenText() const {
    std::string all;
    for (int r = 0; r < _rows; ++r) {
        char prefix[16];
        std::snprintf(prefix, sizeof prefix, "%2d|", r);
        all += prefix;
        all += RowText(r);
        all += '\n';
    }
    return all;
}

bool VirtualTerminal::Contains(std::string_view text) const {
    int row, column;
    return Find(text, row, column);
}

bool VirtualTerminal::Find(std::string_view text, int& row, int& column) const {
    for (int r = 0; r < _rows; ++r) {
        std::string line = RowText(r);
        auto at = line.find(text);
        if (at == std::string::npos) continue;
        row = r;
        // Count cells, not bytes, up to the match.
        column = 0;
        for (std::size_t i = 0; i < at; ++i)
            if ((static_cast<unsigned char>(line[i]) & 0xC0) != 0x80) ++column;
        return true;
    }
    return false;
}

Color VirtualTerminal::ToColor(const void* raw) const {
    VTermColor c = *static_cast<const VTermColor*>(raw);
    Color out;
    out.isDefault = VTERM_COLOR_IS_DEFAULT_FG(&c) || VTERM_COLOR_IS_DEFAULT_BG(&c);
    out.index = (VTERM_COLOR_IS_INDEXED(&c) && !out.isDefault) ? c.indexed.idx : -1;
    if (VTERM_COLOR_IS_RGB(&c) && !out.isDefault) out.index = -1;
    VTermColor rgb = c;
    vterm_screen_convert_color_to_rgb(_screen, &rgb);
    out.red = rgb.rgb.red;
    out.green = rgb.rgb.green;
    out.blue = rgb.rgb.blue;
    return out;
}

Cell VirtualTerminal::CellAt(int row, int column) const {
    Cell out;
    VTermScreenCell cell;
    if (!vterm_screen_get_cell(_screen, VTermPos{row, column}, &cell))
        throw std::out_of_range("cell outside the screen");
    for (int k = 0; k < VTERM_MAX_CHARS_PER_CELL && cell.chars[k]; ++k) AppendUtf8(out.text, cell.chars[k]);
    out.fg = ToColor(&cell.fg);
    out.bg = ToColor(&cell.bg);
    out.bold = cell.attrs.bold;
    out.reverse = cell.attrs.reverse;
    return out;
}

Color VirtualTerminal::PaletteColor(int index) const {
    VTermColor c;
    vterm_state_get_palette_color(_state, index, &c);
    Color out;
    out.isDefault = false;
    out.index = index;
    vterm_screen_convert_color_to_rgb(_screen, &c);
    out.red = c.rgb.red;
    out.green = c.rgb.green;
    out.blue = c.rgb.blue;
    return out;
}

void VirtualTerminal::ApplyOsc(std::string_view command) {
    // "4;index;rgb:RR/GG/BB[;index;rgb:...]"
    if (command.substr(0, 2) != "4;") return;
    command.remove_prefix(2);
    while (!command.empty()) {
        auto semi = command.find(';');
        if (semi == std::string_view::npos) return;
        std::string_view indexText = command.substr(0, semi);
        command.remove_prefix(semi + 1);
        auto next = command.find(';');
        std::string_view rgbText = command.substr(0, next);
        command.remove_prefix(next == std::string_view::npos ? command.size() : next + 1);

        int index = 0;
        if (indexText.empty()) return;
        for (char c : indexText) {
            if (c < '0' || c > '9') return;
            index = index * 10 + (c - '0');
        }
        std::uint8_t rgb[3];
        if (index > 255 || !ParseRgbText(rgbText, rgb)) continue;
        VTermColor color;
        vterm_color_rgb(&color, rgb[0], rgb[1], rgb[2]);
        vterm_state_set_palette_color(_state, index, &color);
        ++_paletteSets;
    }
}

int VirtualTerminal::OnUnrecognisedOsc(const char* command, std::size_t length, void* self) {
    static_cast<VirtualTerminal*>(self)->ApplyOsc(std::string_view(command, length));
    return 1;
}

void VirtualTerminal::OnOutput(const char* bytes, std::size_t length, void* self) {
    auto* vt = static_cast<VirtualTerminal*>(self);
    if (vt->_sink) vt->_sink(std::string_view(bytes, length));
}

}  // namespace KovoTerm

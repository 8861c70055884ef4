#include "text/MarkupLayout.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include "text/MarkupTag.h"

namespace Kovo {
namespace {

constexpr std::size_t kNoBlank = std::string::npos;

enum class Align { None, Right, Center, Padding };

// The field width of "padding:N"; anything that is not a non-negative decimal number gives an empty field.
long PaddingWidth(std::string_view digits) {
    std::string text(digits);
    errno = 0;
    char* end = nullptr;
    long n = std::strtol(text.c_str(), &end, 10);
    if (end == text.c_str() || n < 0) return 0;
    if (errno == ERANGE || n > INT_MAX) return INT_MAX;
    return n;
}

// One run of the layout pass. The output position is always the length of `_out`.
class Layout {
  public:
    Layout(int width, const MarkupVariables& variables)
        : _width(std::max(width, 1)), _room(_width), _variables(variables) {}

    std::string Run(std::string_view text) {
        std::size_t i = 0;
        while (i < text.size()) {
            char c = text[i];
            if (c == '{') {
                MarkupTag tag;
                std::size_t after;
                if (!NextTag(text, i, tag, after)) break;
                Tag(tag);
                i = after;
                continue;
            }
            if (c == '\n') {
                TextNewline();
            } else if (std::isspace(static_cast<unsigned char>(c))) {
                Blank(c);
            } else {
                Visible(c);
            }
            ++i;
        }
        return std::move(_out);
    }

  private:
    bool FieldFull() const { return _mode == Align::Padding && _field <= 0; }

    void Take(char c) {
        _out += c;
        --_room;
        if (_mode == Align::Padding) --_field;
        ++_word;
    }

    // A new line has begun at the end of the output. An open alignment continues on it.
    void StartLine() {
        _blank = kNoBlank;
        _word = 0;
        _lineAlign = (_mode == Align::Right || _mode == Align::Center) ? _mode : Align::None;
        if (_mode != Align::None) _alignStart = _out.size();
    }

    void HardBreak() {
        _out += '\n';
        _room = _width;
        StartLine();
    }

    void Insert(std::size_t at, int count) {
        if (count <= 0) return;
        at = std::min(at, _out.size());
        _out.insert(at, static_cast<std::size_t>(count), ' ');
        if (_blank != kNoBlank && _blank >= at) _blank += static_cast<std::size_t>(count);
    }

    // The line is full and the word being typed started after a blank: move the word to a new line.
    void WordWrap() {
        std::size_t blank = _blank;
        int moved = _word;
        _out[blank] = '\n';
        // An aligned line lost `moved` columns; re-align it when its stretch stays on it.
        int pad = _lineAlign == Align::Right ? moved : _lineAlign == Align::Center ? moved / 2 : 0;
        if (pad > 0 && _alignStart <= blank) {
            _out.insert(_alignStart, static_cast<std::size_t>(pad), ' ');
            blank += static_cast<std::size_t>(pad);
        }
        _room = _width + 1 - moved;
        _blank = kNoBlank;
        _lineAlign = (_mode == Align::Right || _mode == Align::Center) ? _mode : Align::None;
        // An open alignment goes on with the moved word, unless it began inside that word.
        if (_mode != Align::None && _alignStart <= blank) _alignStart = blank + 1;
    }

    void Visible(char c) {
        if (FieldFull()) return;
        if (_room <= 0) {
            if (_blank == kNoBlank)
                HardBreak();
            else
                WordWrap();
        }
        Take(c);
    }

    void Blank(char c) {
        if (FieldFull()) return;
        if (_room <= 0) {
            // Never start a line with the blank at which it was broken.
            HardBreak();
            return;
        }
        _blank = _out.size();
        _word = 0;
        Take(c);
    }

    void TextNewline() {
        if (FieldFull()) return;
        _out += '\n';
        _room = _width;
        StartLine();
    }

    // Variable values are hard-wrapped: they may hold anything, and a blank inside one is not a word break.
    void Value(const std::string& value) {
        for (char c : value) {
            if (FieldFull()) return;
            if (c == '\n') {
                TextNewline();
                continue;
            }
            if (_room <= 0) HardBreak();
            Take(c);
        }
    }

    void OpenAlign(std::string_view value) {
        if (_mode != Align::None) return;  // alignments do not nest
        _alignStart = _out.size();
        if (value == "right") {
            _mode = Align::Right;
        } else if (value == "center") {
            _mode = Align::Center;
        } else if (value.starts_with("padding:")) {
            _mode = Align::Padding;
            _field = PaddingWidth(value.substr(8));
            return;
        } else {
            return;
        }
        _lineAlign = _mode;
    }

    void CloseAlign() {
        switch (_mode) {
            case Align::Right:
                Insert(_alignStart, _room);
                _room = 0;
                break;
            case Align::Center:
                Insert(_alignStart, _room / 2);
                _room = 0;
                break;
            case Align::Padding: {
                long field = std::max(_field, 0L);
                long blanks = std::min<long>(field, _room);
                if (blanks > 0) _out.append(static_cast<std::size_t>(blanks), ' ');
                _room = field >= _room ? 0 : _room - static_cast<int>(field);
                break;
            }
            case Align::None:
                break;
        }
        _mode = Align::None;
    }

    void Tag(const MarkupTag& tag) {
        if (tag.whole.empty()) return;
        if (tag.name == "align") {
            OpenAlign(tag.value);
        } else if (tag.name == "/align") {
            CloseAlign();
        } else if (auto it = _variables.find(tag.whole); it != _variables.end()) {
            Value(it->second ? it->second() : std::string());
        } else {
            // Colour tags and anything unknown go through to the draw pass and take no columns.
            _out += '{';
            _out += tag.whole;
            _out += '}';
        }
    }

    const int _width;
    int _room;                       // columns left on the current line
    int _word = 0;                   // characters since the last blank, that blank included
    std::size_t _blank = kNoBlank;   // output position of the last blank on the line
    Align _mode = Align::None;       // the open alignment
    Align _lineAlign = Align::None;  // right or centre alignment applied on the current line
    std::size_t _alignStart = 0;     // where alignment blanks go
    long _field = 0;                 // columns left in a padding field
    std::string _out;
    const MarkupVariables& _variables;
};

}  // namespace

std::string LayoutMarkup(std::string_view text, int width, const MarkupVariables& variables) {
    return Layout(width, variables).Run(text);
}

std::string MarkupSafe(std::string_view text) {
    std::string safe(text);
    for (char& c : safe) {
        if (c == '{') c = '(';
        if (c == '}') c = ')';
    }
    return safe;
}

}  // namespace Kovo

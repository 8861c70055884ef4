#include "text/InputItem.h"

#include <curses.h>
#include <string.h>

#include <algorithm>
#include <cctype>

#include "text/TextArea.h"

namespace Kovo {
namespace {

constexpr std::size_t kSecretRoom = 256;

std::string PadRight(std::string text, int width) {
    if (static_cast<int>(text.size()) < width)
        text.append(static_cast<std::size_t>(width) - text.size(), ' ');
    return text;
}

}  // namespace

InputItem::InputItem(std::string label, std::string text, int fieldWidth)
    : Item(true),
      _label(std::move(label)),
      _text(std::move(text)),
      _fieldWidth(fieldWidth),
      _cursor(static_cast<int>(_text.size())) {}

InputItem::~InputItem() {
    Wipe();
}

void InputItem::SetMasked(bool masked) {
    _masked = masked;
    // Most secrets fit, so typing one never leaves a copy in a buffer that was given up.
    if (_masked) _text.reserve(kSecretRoom);
}

void InputItem::Wipe() {
    if (!_masked) return;
    // The whole buffer, not just the value: an erase leaves nothing behind, but a shorter value does.
    _text.resize(_text.capacity());
    explicit_bzero(_text.data(), _text.size());
    _text.clear();
}

void InputItem::MakeRoom() {
    if (!_masked || _text.size() < _text.capacity()) return;
    std::string larger;
    larger.reserve(_text.capacity() * 2);
    larger = _text;
    Wipe();
    _text.swap(larger);
}

void InputItem::OnSelect() {
    _replace = true;
}

void InputItem::SetValue(std::string text) {
    if (_masked) {
        Wipe();
        // Into the field's own buffer; the caller's copy is the caller's to wipe.
        _text.reserve(text.size());
        _text.assign(text);
        explicit_bzero(text.data(), text.size());
    } else {
        _text = std::move(text);
    }
    _cursor = static_cast<int>(_text.size());
    _offset = 0;
    _replace = true;
}

void InputItem::Clear() {
    Wipe();
    _text.clear();
    _cursor = 0;
    _offset = 0;
    _replace = false;
}

void InputItem::EditKey(int key) {
    const int length = static_cast<int>(_text.size());
    switch (key) {
        case KEY_HOME:
            _cursor = 0;
            _offset = 0;
            _replace = false;
            return;
        case KEY_END:
            _replace = false;
            if (length > 0) _cursor = length;
            return;
        case KEY_LEFT:
            _replace = false;
            if (_cursor >= 1) {
                if (_cursor == _offset) --_offset;
                --_cursor;
            }
            return;
        case KEY_RIGHT:
            _replace = false;
            if (_cursor < length) ++_cursor;
            return;
        case KEY_DC:
            if (_replace) {
                Clear();
            } else if (_cursor < length) {
                _text.erase(static_cast<std::size_t>(_cursor), 1);
            }
            return;
        case KEY_BACKSPACE:
        case 8:
            if (_replace) {
                Clear();
            } else if (_cursor > 0) {
                _text.erase(static_cast<std::size_t>(_cursor - 1), 1);
                --_cursor;
                // Backing over the left edge of a scrolled field shows it from the start again, with
                // the cursor at the end of the text. Operators know this behaviour; it stays.
                if (_cursor < _offset) {
                    _offset = 0;
                    _cursor = static_cast<int>(_text.size());
                }
            }
            return;
        default:
            if (_replace) Clear();
            if (key >= 0 && key <= 255 && std::isprint(key)) {
                MakeRoom();
                _text.insert(_text.begin() + _cursor, static_cast<char>(key));
                ++_cursor;
            }
            return;
    }
}

void InputItem::Draw(TextArea& area) {
    const int lineWidth = area.Width();
    const int width = _fieldWidth == -1 ? lineWidth / 2 - 1 : _fieldWidth;
    const int length = static_cast<int>(_text.size());

    // Keep the cursor inside the visible part of the field.
    if (length < width) _offset = 0;
    if (_cursor - _offset > width) _offset = _cursor - width;

    std::string visible;
    if (_offset < length && width > 0)
        visible = _text.substr(static_cast<std::size_t>(_offset), static_cast<std::size_t>(width));
    if (_masked) visible.assign(visible.size(), '*');

    // The field is blanks in the field's colours; the typed text goes over them as it is, so no tag an
    // operator types takes effect.
    const int column = lineWidth - 2 - width;
    std::string line = PadRight(_label, lineWidth - 5 - width) + " [ ";
    if (IsSelected()) {
        line += _replace ? "{bgcolor:white}{color:black}" : "{bgcolor:black}{color:white}";
        line += std::string(visible.size(), ' ') + "{/color}{/bgcolor}";
        line.append(static_cast<std::size_t>(std::max(0, width - static_cast<int>(visible.size()))), ' ');
    } else {
        line += std::string(static_cast<std::size_t>(std::max(0, width)), ' ');
    }
    line += " ]";
    area.SetText(line, visible, column);

    // After the text is drawn, so that the refresh of the area does not move the cursor away again.
    if (IsSelected()) area.MoveCursor(_cursor - _offset + lineWidth - 2 - width, 0);
}

}  // namespace Kovo

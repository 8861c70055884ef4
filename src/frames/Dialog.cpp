#include "frames/Dialog.h"

#include <algorithm>
#include <cctype>

#include "terminal/Colors.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/CheckItem.h"
#include "text/InputItem.h"
#include "text/Item.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/MarkupLayout.h"
#include "text/RadioItem.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

struct Dialog::Field {
    InputItem* item;
    FieldKeys keys;
    int maxLength;
};

namespace {
bool IsLetter(int key) {
    return (key >= 'a' && key <= 'z') || (key >= 'A' && key <= 'Z');
}
bool IsDigit(int key) {
    return key >= '0' && key <= '9';
}
bool IsHexDigit(int key) {
    return IsDigit(key) || (key >= 'a' && key <= 'f') || (key >= 'A' && key <= 'F');
}
}  // namespace

bool AcceptsKey(FieldKeys keys, int key) {
    if (key < 0 || key > 255) return false;
    switch (keys) {
        case FieldKeys::Digits:
            return std::isdigit(key) != 0;
        case FieldKeys::Ipv4:
            return IsDigit(key) || key == '.';
        case FieldKeys::DnsAddress:
            return IsHexDigit(key) || key == '.' || key == ':';
        case FieldKeys::Ipv6:
            // Letters beyond the hexadecimal ones: the zone after a link-local gateway, as in "%zk0".
            return IsLetter(key) || IsDigit(key) || key == ':' || key == '/' || key == '%';
        case FieldKeys::HostName:
            return IsLetter(key) || IsDigit(key) || key == '-' || key == '.';
        case FieldKeys::Suffixes:
            return IsLetter(key) || IsDigit(key) || key == ' ' || key == ',' || key == '-' || key == '.';
        case FieldKeys::Printable:
            return std::isprint(key) != 0;
    }
    return false;
}

namespace {

// The text a layout names for its body; "" when the dialog sets its own.
std::string BodyOf(const DialogLayout& layout) {
    return layout.bodyId != kNoTextId ? GetStringFactory("en_US")->GetString(layout.bodyId) : std::string();
}

}  // namespace

DialogLayout Dialog::FitToBody(DialogLayout layout, const std::string& body) {
    if (body.empty()) return layout;
    const std::string lines = LayoutMarkup(body, layout.width - 6, {});
    const int rows = static_cast<int>(std::count(lines.begin(), lines.end(), '\n')) + 1;
    const int missing = rows - (layout.headerHeight - 4);
    const int grow = std::min(missing, LINES - layout.height);
    if (grow > 0) {
        layout.headerHeight += grow;
        layout.height += grow;
    }
    return layout;
}

Dialog::Dialog(Frame* parent, const DialogLayout& layout) : Dialog(parent, layout, BodyOf(layout)) {}

Dialog::Dialog(Frame* parent, const DialogLayout& given, const std::string& body)
    : Dialog(parent, FitToBody(given, body), body, 0) {}

Dialog::Dialog(Frame* parent, const DialogLayout& layout, const std::string& body, int)
    : Frame(parent, (COLS - layout.width) / 2, (LINES - layout.height) / 2, layout.width, layout.height,
            kBlack, kWhite) {
    const int width = layout.width;
    const int headerHeight = layout.headerHeight;
    Erase();
    const int bodyHeight = layout.height - headerHeight;
    _header = AddChild(0, 0, width, headerHeight, kDarkGrey, kWhite);
    _body = AddChild(0, headerHeight, width, bodyHeight, kYellow, kWhite);
    if (Handle()) box(Handle(), 0, 0);
    _title = new TextArea(_header, 3, 1, width - 6, 1, -1, kWhite);
    _message = new TextArea(_header, 3, 3, width - 6, headerHeight - 4, -1, kLightGrey);
    _footer = new TextArea(_body, 2, bodyHeight - 2, width - 4, 1, -1, kBlack);
    if (bodyHeight - 4 >= 1) _content = _body->AddChild(2, 1, width - 4, bodyHeight - 4, kYellow, kDarkGrey);
    if (layout.titleId != kNoTextId) SetTitle(Strings()->GetString(layout.titleId));
    if (!body.empty()) SetText(body);
    SetFooter(layout.footer);
}

// The list goes with the window tree after the items here; it draws nothing on the way.
Dialog::~Dialog() = default;

void Dialog::SetActive(bool active) {
    if (active && ParentFrame()) ParentFrame()->Refresh();
    Window::SetActive(active);
}

void Dialog::SetTitle(const std::string& text) {
    _title->SetText(text);
}
void Dialog::SetText(const std::string& text) {
    _message->SetText(text);
}
void Dialog::SetFooter(const std::string& text) {
    _footer->SetText(text);
}

ItemList& Dialog::Items() {
    if (!_list) _list = new ItemList(_content, 0, 0, _content->Width(), _content->Height());
    return *_list;
}

void Dialog::PlaceItems(int x, int y, int width, int height) {
    if (!_list) _list = new ItemList(_content, x, y, width, height);
}

LabelItem& Dialog::AddLabel(const std::string& text, bool selectable) {
    auto item = std::make_unique<LabelItem>(text, selectable);
    LabelItem& label = *item;
    _items.push_back(std::move(item));
    return label;
}

CheckItem& Dialog::AddCheck(const std::string& caption, bool checked) {
    auto item = std::make_unique<CheckItem>(caption, checked);
    CheckItem& check = *item;
    _items.push_back(std::move(item));
    return check;
}

RadioItem& Dialog::AddRadio(const std::string& caption, bool checked) {
    auto item = std::make_unique<RadioItem>(caption, checked);
    RadioItem& radio = *item;
    _radios.push_back(item.get());
    _items.push_back(std::move(item));
    return radio;
}

InputItem& Dialog::AddField(const std::string& label, const std::string& value, int width, FieldKeys keys,
                            int maxLength) {
    auto item = std::make_unique<InputItem>(label, value, width);
    InputItem& field = *item;
    _fields.push_back({item.get(), keys, maxLength});
    _items.push_back(std::move(item));
    return field;
}

TextArea& Dialog::AddTextArea(int x, int y, int width, int height, int foreground) {
    return *new TextArea(_content, x, y, width, height, -1, foreground);
}

void Dialog::ClearItems() {
    if (_list) _list->SetItems({});
    _fields.clear();
    _radios.clear();
    _items.clear();
}

void Dialog::ShowItems() {
    std::vector<Item*> items;
    for (const auto& item : _items) items.push_back(item.get());
    Items().SetItems(items);
}

InputItem* Dialog::FocusedField() const {
    if (!_list) return nullptr;
    const Item* focused = _list->GetSelectedItem();
    for (const Field& field : _fields)
        if (field.item == focused) return field.item;
    return nullptr;
}

void Dialog::Choose(std::size_t index) {
    if (index >= _radios.size()) return;
    for (std::size_t i = 0; i < _radios.size(); ++i) _radios[i]->SetChecked(i == index);
    _list->Draw();
}

void Dialog::Close(int result) {
    _closed = true;
    _result = result;
}

bool Dialog::OnKey(int key) {
    if (!IsEnter(key)) return false;
    Apply();
    Close(1);
    return true;
}

int Dialog::HandleKey() {
    if (_list) _list->Draw();
    return RunKeys();
}

int Dialog::RunKeys() {
    _closed = false;
    while (!_closed) {
        const int key = GetKey(this, true);
        if (!OnKey(key)) HandleCommonKey(key);
    }
    return _result;
}

int Dialog::RunWithCursor(int ordinal) {
    SetActive(true);
    SetCursor(true);
    Focus(ordinal);
    const int result = RunKeys();
    SetCursor(false);
    SetActive(false);
    return result;
}

int Dialog::RunWithCursorOnFields(int ordinal) {
    struct Hider {
        ~Hider() { Window::SetCursor(false); }
    } const hider;
    Focus(ordinal);
    ShowCursorOnField();
    return RunKeys();
}

void Dialog::ShowCursorOnField() {
    SetCursor(FocusedField() != nullptr);
}

void Dialog::Focus(int ordinal) {
    Items().Select(ordinal);
    // Focused anew, a field takes what is typed next in place of its value, also when it had the focus
    // already (the field a refused value is in).
    if (Item* item = Items().GetSelectedItem()) item->OnSelect();
    Items().Draw();
}

bool Dialog::HandleCommonKey(int key) {
    switch (key) {
        case kEsc:
            Close(0);
            return true;
        case KEY_UP:
            if (_list) _list->Up();
            return true;
        case KEY_DOWN:
            if (_list) _list->Down();
            return true;
        case kSpace: {
            Item* focused = _list ? _list->GetSelectedItem() : nullptr;
            if (auto* check = dynamic_cast<CheckItem*>(focused)) {
                check->SetChecked(!check->IsChecked());
                _list->Draw();
                return true;
            }
            for (std::size_t i = 0; i < _radios.size(); ++i)
                if (_radios[i] == focused) Choose(i);
            if (dynamic_cast<RadioItem*>(focused)) return true;
            break;
        }
        default:
            break;
    }
    if (!Edit(key)) return false;
    _list->Draw();
    return true;
}

bool Dialog::Edit(int key) {
    InputItem* focused = FocusedField();
    if (!focused) return false;
    switch (key) {
        case kCtrlH:
        case kDel:
        case KEY_BACKSPACE:
            focused->EditKey(KEY_BACKSPACE);
            return true;
        case KEY_DC:
        case KEY_LEFT:
        case KEY_RIGHT:
        case KEY_HOME:
        case KEY_END:
            focused->EditKey(key);
            return true;
        default:
            break;
    }
    for (const Field& field : _fields) {
        if (field.item != focused) continue;
        if (!AcceptsKey(field.keys, key)) return false;
        // A full field takes no more, unless typing replaces its whole value.
        if (field.maxLength > 0 && !focused->ReplaceMode() &&
            static_cast<int>(focused->GetValue().size()) >= field.maxLength)
            return false;
    }
    focused->EditKey(key);
    return true;
}

}  // namespace Kovo

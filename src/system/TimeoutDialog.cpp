#include "system/TimeoutDialog.h"

#include <curses.h>

#include <charconv>
#include <string>

#include "app/KeyReader.h"
#include "app/MessageDialog.h"
#include "text/InputItem.h"
#include "text/ItemList.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {

constexpr int kEsc = 27, kEnter = 10, kCtrlH = 8, kDel = 127;
constexpr int kFieldWidth = 5;
constexpr unsigned kInvalidTitle = 262, kInvalidText = 263;
constexpr const char* kFooter =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  {color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";

}  // namespace

TimeoutDialog::TimeoutDialog(Frame* parent, int width, int height, int headerHeight, unsigned titleId,
                             unsigned bodyId, ActionHost& host)
    : Dialog(parent, width, height, headerHeight),
      _host(host),
      _titleId(titleId),
      _bodyId(bodyId),
      _list(new ItemList(Content(), 0, 0, Content()->Width(), Content()->Height())) {}

TimeoutDialog::~TimeoutDialog() = default;

void TimeoutDialog::AddField(unsigned labelId, uint32_t minutes) {
    _fields.push_back(
        std::make_unique<InputItem>(Strings()->GetString(labelId), std::to_string(minutes), kFieldWidth));
}

bool TimeoutDialog::Edit(int key) {
    InputItem* field = dynamic_cast<InputItem*>(_list->GetSelectedItem());
    if (!field) return false;
    switch (key) {
        case kCtrlH:
        case kDel:
        case KEY_BACKSPACE:
            field->EditKey(KEY_BACKSPACE);
            return true;
        case KEY_DC:
        case KEY_LEFT:
        case KEY_RIGHT:
        case KEY_HOME:
        case KEY_END:
            field->EditKey(key);
            return true;
        default:
            break;
    }
    if (key < '0' || key > '9') return false;
    // Five digits hold every valid value; a longer number could only wrap around when read.
    if (!field->ReplaceMode() && field->GetValue().size() >= kFieldWidth) return false;
    field->EditKey(key);
    return true;
}

std::optional<uint32_t> TimeoutDialog::ReadMinutes(std::size_t index) {
    const std::string& text = Field(index).GetValue();
    if (text.empty()) return std::nullopt;
    uint64_t minutes = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), minutes);
    if (error != std::errc() || end != text.data() + text.size() || minutes > kMaxMinutes) {
        MessageDialog(this, kInvalidTitle, kInvalidText).RunModal();
        return std::nullopt;
    }
    return static_cast<uint32_t>(minutes);
}

int TimeoutDialog::HandleKey() {
    SetTitle(Strings()->GetString(_titleId));
    SetText(Strings()->GetString(_bodyId));
    SetFooter(kFooter);
    if (_list->GetSelectedItem() == nullptr) {
        std::vector<Item*> items;
        for (const auto& field : _fields) items.push_back(field.get());
        _list->SetItems(items);
    }
    _list->Draw();
    for (;;) {
        switch (const int key = GetKey(this, true)) {
            case kEsc:
                return 0;
            case kEnter:
            case KEY_ENTER:
                Apply();
                return 1;
            case KEY_DOWN:
                _list->Down();
                break;
            case KEY_UP:
                _list->Up();
                break;
            default:
                if (Edit(key)) _list->Draw();
                break;
        }
    }
}

}  // namespace Kovo

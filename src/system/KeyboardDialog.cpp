#include "system/KeyboardDialog.h"

#include <curses.h>
#include <syslog.h>

#include "app/KeyReader.h"
#include "platform/zenkctl/SystemInfoImpl.h"
#include "text/ItemList.h"
#include "text/RadioItem.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {

constexpr int kWidth = 76, kHeight = 18, kHeaderHeight = 6;
constexpr int kEsc = 27, kSpace = ' ', kEnter = 10;
constexpr unsigned kTitle = 15, kBody = 248;
constexpr const char* kFooter =
    "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}  {color:black}<Space>{/color} "
    "{color:dark-grey}Toggle Selected{/color}{align:right}{color:black}<Enter>{/color} "
    "{color:dark-grey}OK{/color}"
    "  {color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";

}  // namespace

KeyboardDialog::KeyboardDialog(Frame* parent, ActionHost& host)
    : Dialog(parent, kWidth, kHeight, kHeaderHeight),
      _system(std::make_unique<ZenkCtl::System::SystemInfoImpl>(host.Store())),
      _list(new ItemList(Content(), 0, 0, Content()->Width(), Content()->Height())) {
    const std::string current = _system->GetKeyboardLayout();
    _layouts = _system->GetKeyboardLayouts();
    std::vector<Item*> items;
    for (std::size_t i = 0; i < _layouts.size(); ++i) {
        if (_layouts[i] == current && _chosen < 0) _chosen = static_cast<int>(i);
        _items.push_back(std::make_unique<RadioItem>(_layouts[i], static_cast<int>(i) == _chosen));
        items.push_back(_items.back().get());
    }
    _list->SetItems(items);
    // The cursor starts on the current layout, scrolled into view.
    for (int i = 0; i < _chosen; ++i) _list->Down();
}

KeyboardDialog::~KeyboardDialog() = default;

void KeyboardDialog::Choose(int index) {
    if (index < 0 || index >= static_cast<int>(_items.size())) return;
    if (_chosen >= 0) _items[static_cast<std::size_t>(_chosen)]->SetChecked(false);
    _items[static_cast<std::size_t>(index)]->SetChecked(true);
    _chosen = index;
    _list->Draw();
}

int KeyboardDialog::HandleKey() {
    SetTitle(Strings()->GetString(kTitle));
    SetText(Strings()->GetString(kBody));
    SetFooter(kFooter);
    _list->Draw();
    for (;;) {
        switch (GetKey(this, true)) {
            case kEsc:
                return 0;
            case KEY_DOWN:
                _list->Down();
                break;
            case KEY_UP:
                _list->Up();
                break;
            case kSpace:
                Choose(_list->GetSelected());
                break;
            case kEnter:
            case KEY_ENTER: {
                // Nothing chosen (the host's layout is unknown to it): there is nothing to apply.
                if (_chosen < 0) return 1;
                const std::string& layout = _layouts[static_cast<std::size_t>(_chosen)];
                _system->LoadKeyboardMappings(layout);
                _system->SetKeyboardLayout(layout);
                syslog(LOG_INFO, "Keyboard Layout changed to %s", layout.c_str());
                return 1;
            }
            default:
                break;
        }
    }
}

}  // namespace Kovo

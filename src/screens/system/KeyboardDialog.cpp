#include "system/KeyboardDialog.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "platform/hostctl/SystemInfo.h"
#include "text/ItemList.h"
#include "text/RadioItem.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

KeyboardDialog::KeyboardDialog(Frame* parent, HostAccess& host)
    : Dialog(parent, {76, 18, 6, StringId::ConfigureKeyboard, StringId::ConfigureKeyboardText,
                      Footer::kSelectToggleOkCancel}),
      _host(host) {
    auto system = _host.SystemInfo();
    const std::string current = system->GetKeyboardLayout();
    _layouts = system->GetKeyboardLayouts();
    int chosen = -1;
    for (std::size_t i = 0; i < _layouts.size(); ++i) {
        const bool isCurrent = _layouts[i] == current && chosen < 0;
        if (isCurrent) chosen = static_cast<int>(i);
        AddRadio(_layouts[i], isCurrent);
    }
    ShowItems();
    // The cursor starts on the current layout, scrolled into view.
    for (int i = 0; i < chosen; ++i) Items().Down();
}

int KeyboardDialog::ChosenIndex() const {
    for (std::size_t i = 0; i < Radios().size(); ++i)
        if (Radios()[i]->IsChecked()) return static_cast<int>(i);
    return -1;
}

void KeyboardDialog::Apply() {
    // Nothing chosen (the host's layout is unknown to it): there is nothing to apply.
    const int chosen = ChosenIndex();
    if (chosen < 0) return;
    const std::string& layout = _layouts[static_cast<std::size_t>(chosen)];
    auto system = _host.SystemInfo();
    system->LoadKeyboardMappings(layout);
    system->SetKeyboardLayout(layout);
    LogInfo("Keyboard Layout changed to " + layout);
}

}  // namespace Kovo

#include "network/VlanDialog.h"

#include "frames/Footers.h"
#include "frames/MessageDialog.h"
#include "terminal/Keys.h"
#include "text/InputItem.h"
#include "text/ItemList.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {
constexpr int kAllVlans = 4095;
// Four digits hold every valid id and are enough to type any refused one (4096, 9999), which is then
// reported rather than silently cut.
constexpr int kMaxLength = 4;
constexpr int kFieldWidth = 4;

}  // namespace

VlanCheck CheckVlan(const std::string& text, int& id) {
    id = 0;
    if (text.empty()) return VlanCheck::Accepted;
    int value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return VlanCheck::Invalid;
        value = value * 10 + (c - '0');
        // Past the range the rest cannot bring it back, and stopping here keeps a long text from
        // overflowing.
        if (value > kAllVlans) return VlanCheck::Invalid;
    }
    if (value == 0) return VlanCheck::Invalid;
    id = value;
    return value == kAllVlans ? VlanCheck::NeedsWarning : VlanCheck::Accepted;
}

// Any id other than 0 shows as it is, also one out of range, so the operator sees it rather than a
// blank field that Enter would turn into "no VLAN".
VlanDialog::VlanDialog(Frame* parent, int vlan)
    : Dialog(parent, {70, 11, 6, StringId::VlanOptional, StringId::VlanText, Footer::kOkCancel}),
      _field(AddField(Strings()->GetString(StringId::VlanIdLabel),
                      vlan == 0 ? std::string() : std::to_string(vlan), kFieldWidth, FieldKeys::Digits,
                      kMaxLength)),
      _vlan(vlan) {
    ShowItems();
}

int VlanDialog::HandleKey() {
    return RunWithCursor(0);
}

bool VlanDialog::OnKey(int key) {
    if (!IsEnter(key)) return false;
    int id = 0;
    switch (CheckVlan(_field.GetValue(), id)) {
        case VlanCheck::Invalid:
            // Focused anew, the field takes the next digits in place of the refused value.
            Focus(0);
            MessageDialog(this, StringId::InvalidVlanTitle, StringId::InvalidVlanText).RunModal();
            Items().Draw();
            return true;
        case VlanCheck::NeedsWarning:
            MessageDialog(this, StringId::WarningTitle, StringId::AllVlansWarningText).RunModal();
            break;
        case VlanCheck::Accepted:
            break;
    }
    _vlan = id;
    Close(1);
    return true;
}

}  // namespace Kovo

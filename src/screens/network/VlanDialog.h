#pragma once

#include <string>

#include "frames/Dialog.h"

namespace Kovo {

// What Enter makes of the VLAN field's text.
enum class VlanCheck {
    Accepted,      // empty (no VLAN, id 0) or 1-4094
    NeedsWarning,  // 4095: every VLAN, taken once the operator has read why that is unusual
    Invalid,       // 0, above 4095, or not a decimal number
};
// Reads `text` as a decimal VLAN id into `id` (0 unless the text is accepted or needs the warning).
VlanCheck CheckVlan(const std::string& text, int& id);

// The VLAN id of the management port, one digits-only field; empty means no VLAN. Enter (1) takes the
// id once it is valid, Esc (0) keeps the one given.
class VlanDialog : public Dialog {
  public:
    // `vlan` 0 shows an empty field.
    VlanDialog(Frame* parent, int vlan);

    // After Enter: 0 for no VLAN, else the id.
    int Vlan() const { return _vlan; }

    int HandleKey() override;

  protected:
    bool OnKey(int key) override;

  private:
    InputItem& _field;
    int _vlan;
};

}  // namespace Kovo

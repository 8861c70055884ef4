#include "network/ModeFieldsDialog.h"

#include "frames/Footers.h"
#include "frames/MessageDialog.h"
#include "terminal/Keys.h"
#include "text/InputItem.h"
#include "text/ItemList.h"
#include "text/RadioItem.h"
#include "text/StringFactory.h"

namespace Kovo {

ModeFieldsDialog::ModeFieldsDialog(Frame* parent, int width, int height, int headerHeight, unsigned titleId,
                                   unsigned bodyId)
    : Dialog(parent, {width, height, headerHeight, titleId, bodyId, Footer::kSelectMarkOkCancel}) {}

std::size_t ModeFieldsDialog::Mode() const {
    const std::vector<RadioItem*>& radios = Radios();
    for (std::size_t i = 0; i < radios.size(); ++i)
        if (radios[i]->IsChecked()) return i;
    return 0;
}

void ModeFieldsDialog::AddModes(std::initializer_list<unsigned> captionIds, std::size_t marked) {
    std::size_t index = 0;
    for (unsigned id : captionIds) AddRadio(Strings()->GetString(id), index++ == marked);
    _initialMode = marked < index ? marked : 0;
    // A blank line sets the fields apart from the choices.
    AddLabel("", false);
}

InputItem& ModeFieldsDialog::AddModeField(unsigned labelId, const std::string& value, int width,
                                          FieldKeys keys, int maxLength) {
    return AddModeField(Strings()->GetString(labelId), value, width, keys, maxLength);
}

InputItem& ModeFieldsDialog::AddModeField(const std::string& label, const std::string& value, int width,
                                          FieldKeys keys, int maxLength) {
    InputItem& field = AddField(label, value, width, keys, maxLength);
    _fields.push_back(&field);
    return field;
}

void ModeFieldsDialog::ShowModes(std::size_t fieldsMode) {
    _fieldsMode = fieldsMode;
    EnableFields();
    ShowItems();
}

void ModeFieldsDialog::EnableFields() {
    const bool enabled = Mode() == _fieldsMode;
    for (InputItem* field : _fields) field->SetEnabled(enabled);
}

int ModeFieldsDialog::HandleKey() {
    // The radio items come first, so the marked one's ordinal is its index.
    return RunWithCursorOnFields(static_cast<int>(_initialMode));
}

void ModeFieldsDialog::Refuse(int ordinal, unsigned titleId, unsigned textId) {
    Focus(ordinal);
    ShowCursorOnField();
    MessageDialog(this, titleId, textId).RunModal();
    Items().Draw();
}

bool ModeFieldsDialog::OnKey(int key) {
    if (IsEnter(key)) {
        if (Accept()) Close(1);
        return true;
    }
    if (key == kSpace && !FocusedField()) {
        HandleCommonKey(key);
        EnableFields();
        Items().Draw();
        return true;
    }
    if (key == KEY_UP || key == KEY_DOWN) {
        HandleCommonKey(key);
        ShowCursorOnField();
        return true;
    }
    return false;
}

}  // namespace Kovo

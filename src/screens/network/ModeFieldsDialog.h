#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "frames/Dialog.h"

namespace Kovo {

// A dialog whose radio items choose how a setting is obtained, followed by fields that count only for
// one of the choices: the fields are greyed and skipped unless that choice is marked, and the text
// cursor shows only while a field is focused. Up/Down select, Space marks, Enter closes with 1 once
// Accept() agrees, Esc closes with 0.
class ModeFieldsDialog : public Dialog {
  public:
    // The field at `index` in the order added.
    InputItem& Field(std::size_t index) const { return *_fields.at(index); }
    // The radio item marked now, by its index in the order added.
    std::size_t Mode() const;

    int HandleKey() override;

  protected:
    ModeFieldsDialog(Frame* parent, int width, int height, int headerHeight, unsigned titleId,
                     unsigned bodyId);

    // The radio items, one per caption id, the one at `marked` marked.
    void AddModes(std::initializer_list<unsigned> captionIds, std::size_t marked);
    InputItem& AddModeField(unsigned labelId, const std::string& value, int width, FieldKeys keys,
                            int maxLength);
    // For a label made up from a string, as with numbered fields.
    InputItem& AddModeField(const std::string& label, const std::string& value, int width, FieldKeys keys,
                            int maxLength);
    // Once every item is added: the fields count while the radio item at `fieldsMode` is marked.
    void ShowModes(std::size_t fieldsMode);

    // What Enter does: true when the values are taken and the dialog may close with 1.
    virtual bool Accept() = 0;
    // Tells the operator why the values were not taken, with the item to correct focused.
    void Refuse(int ordinal, unsigned titleId, unsigned textId);

    bool OnKey(int key) override;

  private:
    void EnableFields();

    std::vector<InputItem*> _fields;  // owned by the dialog's items
    std::size_t _fieldsMode = 0;
    std::size_t _initialMode = 0;
};

}  // namespace Kovo

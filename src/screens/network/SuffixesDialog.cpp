#include "network/SuffixesDialog.h"

#include "frames/Footers.h"
#include "text/InputItem.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {
// The resolver's search list has long been limited to 256 characters.
constexpr int kMaxLength = 256;
constexpr int kFieldWidth = 56;
}  // namespace

SuffixesDialog::SuffixesDialog(Frame* parent, const std::string& suffixes)
    : Dialog(parent,
             {78, 14, 8, StringId::CustomDnsSuffixes, StringId::CustomDnsSuffixesText, Footer::kOkCancel}),
      _field(AddField(Strings()->GetString(StringId::SuffixesLabel), suffixes, kFieldWidth,
                      FieldKeys::Suffixes, kMaxLength)),
      _suffixes(suffixes) {
    ShowItems();
}

int SuffixesDialog::HandleKey() {
    return RunWithCursor(0);
}

void SuffixesDialog::Apply() {
    _suffixes = _field.GetValue();
}

}  // namespace Kovo

#include "recovery/DvsUplinksWarningDialog.h"

#include <string>

#include "frames/Footers.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

DvsUplinksWarningDialog::DvsUplinksWarningDialog(Frame* parent)
    : ConfirmDialog(parent, {60, 10, 7, StringId::DvsUplinksWarningTitle, kNoTextId, Footer::kOkCancel}) {
    SetText(std::string(Strings()->GetString(StringId::NoUplinksSelected)) + "\n" +
            Strings()->GetString(StringId::ContinueQuestion));
}

}  // namespace Kovo

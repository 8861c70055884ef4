#include "access/SamePasswordConfirmDialog.h"

#include "frames/Footers.h"
#include "text/StringIds.h"

namespace Kovo {

SamePasswordConfirmDialog::SamePasswordConfirmDialog(Frame* parent)
    : ConfirmDialog(parent, {60, 10, 7, StringId::ConfigurePasswordWarningTitle,
                             StringId::SamePasswordQuestion, Footer::kConfirmCancel}) {}

}  // namespace Kovo

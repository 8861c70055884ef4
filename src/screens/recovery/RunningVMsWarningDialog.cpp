#include "recovery/RunningVMsWarningDialog.h"

#include "frames/Footers.h"
#include "text/StringIds.h"

namespace Kovo {

RunningVMsWarningDialog::RunningVMsWarningDialog(Frame* parent)
    : ConfirmDialog(parent, {60, 10, 6, StringId::VmsRunningTitle, StringId::VmsRunningWarning,
                             Footer::kConfirmCancel}) {}

}  // namespace Kovo

#include "recovery/RunningVMsWarningDialog.h"

#include "frames/Footers.h"

namespace Kovo {

namespace {
constexpr unsigned kTitle = 166, kWarning = 167;
}  // namespace

RunningVMsWarningDialog::RunningVMsWarningDialog(Frame* parent)
    : ConfirmDialog(parent, {60, 10, 6, kTitle, kWarning, Footer::kConfirmCancel}) {}

}  // namespace Kovo

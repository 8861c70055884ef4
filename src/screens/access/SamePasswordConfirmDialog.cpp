#include "access/SamePasswordConfirmDialog.h"

#include "frames/Footers.h"

namespace Kovo {

namespace {
constexpr unsigned kTitle = 155, kSamePassword = 159;
}  // namespace

SamePasswordConfirmDialog::SamePasswordConfirmDialog(Frame* parent)
    : ConfirmDialog(parent, {60, 10, 7, kTitle, kSamePassword, Footer::kConfirmCancel}) {}

}  // namespace Kovo

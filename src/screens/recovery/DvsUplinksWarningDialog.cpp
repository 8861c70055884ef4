#include "recovery/DvsUplinksWarningDialog.h"

#include <string>

#include "frames/Footers.h"
#include "text/StringFactory.h"

namespace Kovo {

namespace {
constexpr unsigned kTitle = 195, kNoneSelected = 196, kContinue = 197;
}  // namespace

DvsUplinksWarningDialog::DvsUplinksWarningDialog(Frame* parent)
    : ConfirmDialog(parent, {60, 10, 7, kTitle, 0, Footer::kOkCancel}) {
    SetText(std::string(Strings()->GetString(kNoneSelected)) + "\n" + Strings()->GetString(kContinue));
}

}  // namespace Kovo

#include "network/UsedAdaptersDialog.h"

#include "frames/Footers.h"
#include "terminal/Colors.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {
constexpr unsigned kTitle = 71, kBody = 72, kQuestion = 73;
}  // namespace

UsedAdaptersDialog::UsedAdaptersDialog(Frame* parent)
    : Dialog(parent, {60, 12, 6, kTitle, kBody, Footer::kOkCancel}) {
    AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)
        .SetText(Strings()->GetString(kQuestion));
}

}  // namespace Kovo

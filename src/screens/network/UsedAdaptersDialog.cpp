#include "network/UsedAdaptersDialog.h"

#include "frames/Footers.h"
#include "terminal/Colors.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

UsedAdaptersDialog::UsedAdaptersDialog(Frame* parent)
    : Dialog(parent,
             {60, 12, 6, StringId::AdaptersInUseTitle, StringId::AdaptersInUseText, Footer::kOkCancel}) {
    AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)
        .SetText(Strings()->GetString(StringId::RemoveAdaptersQuestion));
}

}  // namespace Kovo

#include "network/ApplyChangesDialog.h"

#include "frames/Footers.h"
#include "terminal/Colors.h"
#include "terminal/Keys.h"
#include "text/MarkupLayout.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

ApplyChangesDialog::ApplyChangesDialog(Frame* parent, bool ipv6Switched, const std::string& takeOver)
    : Dialog(parent,
             {66, 16, 9, StringId::ApplyNetworkChangesTitle, StringId::ApplyNetworkChangesText,
              Footer::kYesNoCancel},
             GetStringFactory("en_US")->GetString(StringId::ApplyNetworkChangesText) +
                 (takeOver.empty() ? std::string() : "\n\n" + MarkupSafe(takeOver))) {
    AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)
        .SetText(Strings()->GetString(ipv6Switched ? StringId::ApplyAndRebootQuestion
                                                   : StringId::ApplyAndRestartNetworkQuestion));
}

bool ApplyChangesDialog::OnKey(int key) {
    switch (key) {
        case 'Y':
        case 'y':
            Close(kYes);
            break;
        case 'N':
        case 'n':
            Close(kNo);
            break;
        case kEsc:
            Close(kCancel);
            break;
        default:
            break;
    }
    return true;
}

}  // namespace Kovo

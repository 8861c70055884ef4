#include "frames/ConfirmDialog.h"

#include "terminal/Keys.h"

namespace Kovo {

bool ConfirmDialog::OnKey(int key) {
    if (IsEnter(key)) Close(1);
    // Only Enter and Esc mean anything here.
    return key != kEsc;
}

}  // namespace Kovo

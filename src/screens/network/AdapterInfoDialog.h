#pragma once

#include "frames/MessageDialog.h"
#include "network/AdaptersDialog.h"

namespace Kovo {

// "Adapter Details": what the host tells of one physical NIC, and which switch uses it; a report, closed
// with Enter.
class AdapterInfoDialog : public MessageDialog {
  public:
    AdapterInfoDialog(Frame* parent, const Adapter& adapter);

    // The five lines shown, one per fact; `unknown` stands for a user the scans could not tell.
    static std::string Text(const Adapter& adapter, const std::string& unknown);
};

}  // namespace Kovo

#pragma once

#include <string>
#include <vector>

#include "frames/Dialog.h"
#include "frames/HostAccess.h"

namespace Kovo {

// "Configure Keyboard": the host's layouts in the host's order, the current one chosen. Space chooses
// the layout under the cursor; Enter loads its mappings and makes it the layout, even when it already
// was. Returns 1 on Enter, 0 on Esc. Failures of the host's keyboard operations pass to the caller as
// HostCtl::Lib::HostCtlException.
class KeyboardDialog : public Dialog {
  public:
    explicit KeyboardDialog(Frame* parent, HostAccess& host);

    // The chosen layout's index; -1 when the host's current layout is not among its layouts.
    int ChosenIndex() const;
    const std::vector<std::string>& Layouts() const { return _layouts; }

  protected:
    void Apply() override;

  private:
    HostAccess& _host;
    std::vector<std::string> _layouts;
};

}  // namespace Kovo

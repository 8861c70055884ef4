#pragma once

#include <string>
#include <vector>

#include "frames/Dialog.h"

namespace Kovo {

// "xDS Uplinks": one check box per uplink of the distributed switch that this host has. Enter (1)
// leaves the checked ones in Chosen(), in the switch's order; Esc (0) leaves the given choice.
class DvsUplinksDialog : public Dialog {
  public:
    DvsUplinksDialog(Frame* parent, std::vector<std::string> uplinks, std::vector<std::string> chosen);

    const std::vector<std::string>& Chosen() const { return _chosen; }

  protected:
    void Apply() override;

  private:
    std::vector<std::string> _uplinks;
    std::vector<std::string> _chosen;
    std::vector<CheckItem*> _rows;  // owned by the dialog's items, one per uplink
};

}  // namespace Kovo

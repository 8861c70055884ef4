#include "recovery/DvsUplinksDialog.h"

#include <algorithm>

#include "frames/Footers.h"
#include "text/CheckItem.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"

namespace Kovo {

DvsUplinksDialog::DvsUplinksDialog(Frame* parent, std::vector<std::string> uplinks,
                                   std::vector<std::string> chosen)
    : Dialog(parent,
             {60, 16, 6, StringId::DvsUplinksTitle, StringId::DvsUplinksText, Footer::kToggleOkCancel}),
      _uplinks(std::move(uplinks)),
      _chosen(std::move(chosen)) {
    for (const std::string& uplink : _uplinks)
        _rows.push_back(
            &AddCheck(uplink, std::find(_chosen.begin(), _chosen.end(), uplink) != _chosen.end()));
    ShowItems();
}

void DvsUplinksDialog::Apply() {
    _chosen.clear();
    for (std::size_t i = 0; i < _uplinks.size(); ++i)
        if (_rows[i]->IsChecked()) _chosen.push_back(_uplinks[i]);
}

}  // namespace Kovo

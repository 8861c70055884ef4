#include "recovery/NetworkRestoreWindow.h"

#include <string>

#include "frames/Footers.h"
#include "frames/Log.h"
#include "network/ManagementSwitch.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/ZenkNic.h"
#include "recovery/RestoreDvsDialog.h"
#include "recovery/RestoreNetworkDialog.h"
#include "recovery/SafeModeNetworkDialog.h"
#include "text/StringIds.h"

namespace Kovo {

NetworkRestoreWindow::NetworkRestoreWindow(Frame* parent, HostAccess& host)
    : MenuWindow(parent, StringId::NetworkRestoreTitle, Footer::kMenuSelect),
      _host(host),
      _onDistributedSwitch(ManagementSwitch::OnDistributedSwitch(
          [this] {
              auto network = _host.Network();
              network->UpdateManagementInterface();
              _nic = network->GetManagementInterface();
              return _nic.get();
          },
          LogError)) {
    ShowRows();
}

NetworkRestoreWindow::~NetworkRestoreWindow() = default;

std::vector<MenuWindow::Row> NetworkRestoreWindow::Rows() {
    auto entry = [this](unsigned id, unsigned detail, std::function<void()> open) {
        return Row{.id = id,
                   .caption = String(id),
                   .title = String(id),
                   .detail = [this, detail] { return "{/color}{color:light-grey}" + String(detail); },
                   .footer = Footer::kDetailChangeExit,
                   .open = std::move(open),
                   .failure = String(id) + " failed: "};
    };
    std::vector<Row> rows{entry(StringId::RestoreNetworkEntry, StringId::RestoreNetworkHelp,
                                [this] { RestoreNetworkDialog(this, _host).RunModal(); })};
    if (!_onDistributedSwitch) return rows;
    if (!_standardSwitchRestored)
        rows.push_back(entry(
            StringId::RestoreStandardSwitchEntry, StringId::RestoreStandardSwitchHelp,
            [this] { _standardSwitchRestored = SafeModeNetworkDialog(this, *_nic, _host).RunModal() == 1; }));
    rows.push_back(entry(StringId::RestoreDvsEntry, StringId::RestoreDvsHelp,
                         [this] { RestoreDvsDialog(this, *_nic, _host).RunModal(); }));
    return rows;
}

}  // namespace Kovo

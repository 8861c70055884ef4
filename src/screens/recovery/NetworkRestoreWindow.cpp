#include "recovery/NetworkRestoreWindow.h"

#include <exception>
#include <string>

#include "frames/Footers.h"
#include "frames/Log.h"
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
      _onDistributedSwitch(ManagementOnDistributedSwitch()) {
    ShowRows();
}

NetworkRestoreWindow::~NetworkRestoreWindow() = default;

bool NetworkRestoreWindow::ManagementOnDistributedSwitch() {
    try {
        auto network = _host.Network();
        network->UpdateManagementInterface();
        _nic = network->GetManagementInterface();
        if (!_nic) {
            LogError("Could not locate the management interface");
            return false;
        }
        return _nic->GetConnectionPoint().connecteeType == HostCtl::Network::CONNECTEE_DVPORT;
    } catch (const std::exception& e) {
        LogFailure("Could not determine if a DVS was in use: ", e);
        return false;
    }
}

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

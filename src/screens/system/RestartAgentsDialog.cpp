#include "system/RestartAgentsDialog.h"

#include <cstring>

#include "frames/Footers.h"
#include "frames/Log.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/SystemInfo.h"
#include "terminal/Colors.h"
#include "terminal/HostEvent.h"
#include "text/CheckItem.h"
#include "text/ItemList.h"
#include "text/MarkupLayout.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {
constexpr int kProgressRows = 4;
}  // namespace

RestartAgentsDialog::RestartAgentsDialog(Frame* parent, HostAccess& host)
    : ConfirmProgressDialog(parent, {71, 20, 9, StringId::RestartAgentsConfirmTitle,
                                     StringId::RestartAgentsWarning, Footer::kF11OkCancel}),
      _host(host),
      _liveCore(AddCheck(Strings()->GetString(StringId::CollectTroubleshootingCaption), false)) {
    SetProgressArea(AddTextArea(0, 0, Content()->Width(), kProgressRows, kBlack));
    Progress().SetText(Strings()->GetString(StringId::RestartAgentsQuestion));
    // The check box sits on the content's last row, under the progress lines.
    PlaceItems(0, Content()->Height() - 1, Content()->Width(), 1);
    ShowItems();
}

bool RestartAgentsDialog::CollectLiveCore() const {
    return _liveCore.IsChecked();
}

void RestartAgentsDialog::GenerateAgentLiveCore(HostAccess& host) {
    LogInfo("Executing zenkbacktrace -c against hagentd");
    if (host.Exec("/sbin/zenkbacktrace -w -n hagentd -o hagentd-restart% -d /var/log/") != 0) {
        LogWarning("zenkbacktrace failed, probably hagentd was down");
        return;
    }
    try {
        host.SystemInfo()->SetSystemAlert("Hagentd core dump completed");
    } catch (const HostCtl::Lib::HostCtlException& e) {
        LogFailure("Unable to raise the core dump alert: ", e);
    }
}

void RestartAgentsDialog::Step(unsigned lineId, const char* command) {
    const std::string line = Strings()->GetString(lineId);
    ShowProgress(line);
    // The other kind of host's agent scripts report nothing useful, so there a step is done whatever
    // they answer; a host that says what went wrong has its words shown in place of "Done.".
    const std::string failure = _host.ExecReportingFailure(command);
    if (!failure.empty()) LogError(line + " " + failure);
    AddFinished(line + " " +
                (failure.empty() ? std::string(Strings()->GetString(StringId::Done)) : MarkupSafe(failure)));
    ShowProgress();
}

bool RestartAgentsDialog::Run() {
    LogInfo("Restarting host agents");
    _host.PostEvent(HostEvent::Text("obs.user.kovo.restarting.hostagents", "Restarting host agents"));
    if (CollectLiveCore()) {
        if (const int error = _host.StartThread([&host = _host] { GenerateAgentLiveCore(host); });
            error != 0) {
            LogError(std::string("failed to create live core generation thread: ") + strerror(error));
        } else {
            AddFinished(std::string(Strings()->GetString(StringId::CollectingLiveCore)) + " " +
                        Strings()->GetString(StringId::Done));
        }
    }
    Step(StringId::StoppingAgents, "/bin/sh /sbin/services.sh stop");
    Step(StringId::StartingAgents, "/bin/sh /sbin/services.sh start");
    return true;
}

}  // namespace Kovo

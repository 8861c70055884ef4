#include "system/RestartAgentsDialog.h"

#include <curses.h>
#include <syslog.h>

#include <cstring>

#include "app/Colors.h"
#include "app/KeyReader.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/zenkctl/SystemInfoImpl.h"
#include "platform/zenkctl/ZenkCtlExec.h"
#include "app/HostEvent.h"
#include "text/CheckItem.h"
#include "text/ItemList.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

constexpr int kWidth = 71, kHeight = 20, kHeaderHeight = 9;
constexpr int kEsc = 27, kSpace = ' ', kEnter = 10;
constexpr int kProgressRows = 4;
constexpr unsigned kTitle = 237, kWarning = 238, kQuestion = 239, kStopping = 240, kStarting = 241,
                   kCollectLabel = 242, kCollecting = 243, kDone = 115;
constexpr const char* kConfirmFooter =
    "{align:right}{color:black}<F11>{/color} {color:dark-grey}OK{/color}  {color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";
constexpr const char* kDoneFooter =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}{/align}";

}  // namespace

RestartAgentsDialog::RestartAgentsDialog(Frame* parent, ActionHost& host)
    : Dialog(parent, kWidth, kHeight, kHeaderHeight),
      _host(host),
      _progress(new TextArea(Content(), 0, 0, Content()->Width(), kProgressRows, -1, kBlack)),
      _list(new ItemList(Content(), 0, Content()->Height() - 1, Content()->Width(), 1)),
      _liveCore(std::make_unique<CheckItem>(Strings()->GetString(kCollectLabel), false)) {
    _list->SetItems({_liveCore.get()});
}

RestartAgentsDialog::~RestartAgentsDialog() = default;

bool RestartAgentsDialog::CollectLiveCore() const {
    return _liveCore->IsChecked();
}

void* RestartAgentsDialog::GenerateAgentLiveCore(void*) {
    syslog(LOG_INFO, "%s", "Executing zenkbacktrace -c against hagentd");
    if (ZenkCtl::Util::ZenkCtl_Exec("/sbin/zenkbacktrace -w -n hagentd -o hagentd-restart% -d /var/log/",
                                    false, true, false) != 0) {
        syslog(LOG_WARNING, "%s", "zenkbacktrace failed, probably hagentd was down");
        return nullptr;
    }
    try {
        ZenkCtl::System::SystemInfoImpl().SetSystemAlert("Hagentd core dump completed");
    } catch (const HostCtl::Lib::HostCtlException& e) {
        syslog(LOG_ERR, "Unable to raise the core dump alert: %s", e.what());
    }
    return nullptr;
}

void RestartAgentsDialog::ShowProgress(const std::string& running) {
    std::string text;
    for (const std::string& line : _finished) text += "{color:dark-grey}" + line + "{/color}\n";
    if (!running.empty()) text += "{color:black}" + running + "{/color}";
    _progress->SetText(text);
}

void RestartAgentsDialog::Step(unsigned lineId, const char* command) {
    const std::string line = Strings()->GetString(lineId);
    ShowProgress(line);
    // The agents' own scripts report nothing useful here; the restart is done either way.
    _host.Exec(command);
    _finished.push_back(line + " " + Strings()->GetString(kDone));
    ShowProgress();
}

void RestartAgentsDialog::Restart() {
    SetFooter("");
    syslog(LOG_INFO, "%s", "Restarting host agents");
    _host.PostEvent(HostEvent::Text("obs.user.kovo.restarting.hostagents", "Restarting host agents"));
    if (CollectLiveCore()) {
        if (const int error = _host.StartThread(GenerateAgentLiveCore); error != 0) {
            syslog(LOG_ERR, "failed to create live core generation thread: %s", strerror(error));
        } else {
            _finished.push_back(std::string(Strings()->GetString(kCollecting)) + " " +
                                Strings()->GetString(kDone));
        }
    }
    Step(kStopping, "/bin/sh /sbin/services.sh stop");
    Step(kStarting, "/bin/sh /sbin/services.sh start");
}

int RestartAgentsDialog::HandleKey() {
    SetTitle(Strings()->GetString(kTitle));
    SetText(Strings()->GetString(kWarning));
    SetFooter(kConfirmFooter);
    _progress->SetText(Strings()->GetString(kQuestion));
    _list->Draw();
    for (int key = 0; key != KEY_F(11);) {
        key = GetKey(this, true);
        if (key == kEsc) return 0;
        if (key == kSpace) {
            _liveCore->SetChecked(!_liveCore->IsChecked());
            _list->Draw();
        }
    }
    Restart();
    SetFooter(kDoneFooter);
    for (int key = 0; key != kEnter && key != KEY_ENTER;) key = GetKey(this, true);
    return 1;
}

}  // namespace Kovo

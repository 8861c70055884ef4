#include "system/TroubleShootingWindow.h"

#include <curses.h>
#include <syslog.h>

#include <string>

#include "frames/Footers.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/SystemInfo.h"
#include "system/KovoTimeoutDialog.h"
#include "system/RestartAgentsDialog.h"
#include "system/ShellTimeoutDialog.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/ItemList.h"
#include "text/LabelItem.h"
#include "text/StringFactory.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

constexpr unsigned kTitle = 218;
constexpr unsigned kShellTimeouts = 225, kKovoTimeout = 226, kRestartAgents = 227;
constexpr unsigned kShellTimeoutsHelp = 235, kKovoTimeoutHelp = 236, kRestartAgentsHelp = 234;

}  // namespace

struct TroubleShootingWindow::Service {
    const char* initScript;
    const char* name;  // as the log lines call it
    const char* stop;
    const char* start;
    const char* disable;
    const char* enable;
    const char* startStopWarning;
    const char* enableDisableWarning;
    unsigned enableEntry, disableEntry, detailTitle, enabledStatus, disabledStatus, help;
    bool firewallFallback;
};

const TroubleShootingWindow::Service TroubleShootingWindow::kShell = {
    "/etc/init.d/QorShell",
    "Qori Shell",
    "hostsvc/stop_qor_shell",
    "hostsvc/start_qor_shell",
    "hostsvc/disable_qor_shell",
    "hostsvc/enable_qor_shell",
    "Unable to run hcl-cmd to start/stop Qori Shell",
    "Unable to run hcl-cmd to enable/disable Qori Shell",
    219,
    220,
    223,
    230,
    231,
    228,
    false,
};

const TroubleShootingWindow::Service TroubleShootingWindow::kSsh = {
    "/etc/init.d/SSH",
    "SSH",
    "hostsvc/stop_ssh",
    "hostsvc/start_ssh",
    "hostsvc/disable_ssh",
    "hostsvc/enable_ssh",
    "Unable to run hcl-cmd to start/stop ssh",
    "Unable to run hcl-cmd to enable/disable ssh",
    221,
    222,
    224,
    232,
    233,
    229,
    true,
};

TroubleShootingWindow::TroubleShootingWindow(Frame* parent, HostAccess& host)
    : RootWindow(parent),
      _host(host),
      _shellEnabled(ServiceRunning(kShell.initScript)),
      _sshEnabled(ServiceRunning(kSsh.initScript)) {
    for (int entry = kShellEntry; entry <= kRestartAgentsEntry; ++entry)
        _items.push_back(std::make_unique<LabelItem>("", true));
    ShowEntries();
    std::vector<Item*> items;
    for (const auto& item : _items) items.push_back(item.get());
    List()->SetItems(items);
}

TroubleShootingWindow::~TroubleShootingWindow() = default;

bool TroubleShootingWindow::ServiceRunning(const char* initScript) {
    return _host.Run("/bin/sh", {"sh", initScript, "status"}) == 0;
}

void TroubleShootingWindow::ShowEntries() {
    const StringFactory& strings = *Strings();
    _items[kShellEntry]->SetText(strings.GetString(_shellEnabled ? kShell.disableEntry : kShell.enableEntry));
    _items[kSshEntry]->SetText(strings.GetString(_sshEnabled ? kSsh.disableEntry : kSsh.enableEntry));
    // The time-outs take effect when a service starts, so they are set while both are off.
    const bool timeoutsOpen = !_shellEnabled && !_sshEnabled;
    const std::string timeouts = strings.GetString(kShellTimeouts);
    _items[kShellTimeoutsEntry]->SetText(timeoutsOpen ? timeouts
                                                      : "{color:dark-grey}" + timeouts + "{/color}");
    _items[kShellTimeoutsEntry]->SetEnabled(timeoutsOpen);
    _items[kKovoTimeoutEntry]->SetText(strings.GetString(kKovoTimeout));
    _items[kRestartAgentsEntry]->SetText(strings.GetString(kRestartAgents));
}

int TroubleShootingWindow::SelectedEntry() const {
    return List()->Row() + List()->Top();
}

void TroubleShootingWindow::UpdateDetails() {
    const StringFactory& strings = *Strings();
    const int entry = SelectedEntry();
    std::string title, text;
    if (entry == kShellEntry || entry == kSshEntry) {
        const Service& service = entry == kShellEntry ? kShell : kSsh;
        const bool enabled = entry == kShellEntry ? _shellEnabled : _sshEnabled;
        title = strings.GetString(service.detailTitle);
        text = std::string("{/color}{color:white}") +
               strings.GetString(enabled ? service.enabledStatus : service.disabledStatus) +
               "\n\n{/color}{color:light-grey}" + strings.GetString(service.help);
    } else {
        const unsigned titleId = entry == kShellTimeoutsEntry ? kShellTimeouts
                                 : entry == kKovoTimeoutEntry ? kKovoTimeout
                                                              : kRestartAgents;
        const unsigned helpId = entry == kShellTimeoutsEntry ? kShellTimeoutsHelp
                                : entry == kKovoTimeoutEntry ? kKovoTimeoutHelp
                                                             : kRestartAgentsHelp;
        title = strings.GetString(titleId);
        text = std::string("{/color}{color:light-grey}") + strings.GetString(helpId);
    }
    RightTitle()->SetText(title);
    Details()->SetText(text);
    RightFooter()->SetText(entry == kRestartAgentsEntry ? Footer::kDetailRestartExit
                                                        : Footer::kDetailChangeExit);
}

void TroubleShootingWindow::Toggle(const Service& service, bool& enabled) {
    const std::string& user = Frame::_loginName;
    const bool wasEnabled = enabled;
    auto hclCmd = [&](const char* command) {
        return _host.Run("/bin/hcl-cmd", {"hcl-cmd", "-U", user, command});
    };

    if (hclCmd(wasEnabled ? service.stop : service.start) != 0) {
        syslog(LOG_WARNING, "%s", service.startStopWarning);
        _host.Run("/bin/sh", {"sh", service.initScript, wasEnabled ? "stop" : "start"});
        // Started by its script, SSH also needs its port opened in the firewall (and closed when stopped).
        if (service.firewallFallback) {
            try {
                auto ruleset = _host.SystemInfo()->GetFirewallRulesetById("sshServer");
                wasEnabled ? ruleset->Disable() : ruleset->Enable();
            } catch (const HostCtl::Lib::HostCtlException& e) {
                syslog(LOG_WARNING, "Failed to update firewall sshServer ruleset status: %s", e.what());
            }
        }
    }
    if (hclCmd(wasEnabled ? service.disable : service.enable) != 0)
        syslog(LOG_WARNING, "%s", service.enableDisableWarning);

    // The menu follows the operator's request even when the host refused it; the log says what ran.
    enabled = !wasEnabled;
    syslog(LOG_INFO, "%s", ("User " + user + (enabled ? " enabled " : " disabled ") + service.name).c_str());
    ShowEntries();
    List()->Draw();
    UpdateDetails();
}

void TroubleShootingWindow::Open(Frame& dialog) {
    dialog.RunModal();
    List()->Draw();
    UpdateDetails();
}

int TroubleShootingWindow::HandleKey() {
    LeftTitle()->SetText(Strings()->GetString(kTitle));
    List()->Draw();
    UpdateDetails();
    for (;;) {
        const int key = GetKey(this, true);
        if (MoveSelection(key)) continue;
        switch (key) {
            case kEsc:
                return 1;
            case kEnter:
            case KEY_ENTER:
                switch (SelectedEntry()) {
                    case kShellEntry:
                        Toggle(kShell, _shellEnabled);
                        break;
                    case kSshEntry:
                        Toggle(kSsh, _sshEnabled);
                        break;
                    case kShellTimeoutsEntry: {
                        ShellTimeoutDialog dialog(this, _host);
                        Open(dialog);
                        break;
                    }
                    case kKovoTimeoutEntry: {
                        KovoTimeoutDialog dialog(this, _host);
                        Open(dialog);
                        break;
                    }
                    case kRestartAgentsEntry: {
                        RestartAgentsDialog dialog(this, _host);
                        Open(dialog);
                        break;
                    }
                    default:
                        break;
                }
                break;
            default:
                break;
        }
    }
}

}  // namespace Kovo

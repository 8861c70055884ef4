#include "system/TroubleShootingWindow.h"

#include <string>

#include "frames/Footers.h"
#include "frames/Log.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/SystemInfo.h"
#include "system/KovoTimeoutDialog.h"
#include "system/RestartAgentsDialog.h"
#include "system/ShellTimeoutDialog.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

// What differs between the two service toggles.
struct Service {
    const char* initScript;
    const char* name;     // as the log lines call it
    const char* command;  // the host tool's name for it: hostsvc/start_<command>, ...
    const char* warning;  // as the warnings call it
    unsigned enableEntry, disableEntry, detailTitle, enabledStatus, disabledStatus, help;
    // Started by its script, SSH also needs its port opened in the firewall (and closed when stopped).
    bool firewall;
};

constexpr Service kShell{"/etc/init.d/QorShell",
                         "Qori Shell",
                         "qor_shell",
                         "Qori Shell",
                         StringId::EnableShellEntry,
                         StringId::DisableShellEntry,
                         StringId::ShellTitle,
                         StringId::ShellIsEnabled,
                         StringId::ShellIsDisabled,
                         StringId::ShellHelp,
                         false};
constexpr Service kSsh{"/etc/init.d/SSH",
                       "SSH",
                       "ssh",
                       "ssh",
                       StringId::EnableSshEntry,
                       StringId::DisableSshEntry,
                       StringId::SshTitle,
                       StringId::SshIsEnabled,
                       StringId::SshIsDisabled,
                       StringId::SshHelp,
                       true};

bool Running(HostAccess& host, const Service& service) {
    return host.Run("/bin/sh", {"sh", service.initScript, "status"}) == 0;
}

// Stops or starts the service, then disables or enables it, falling back to its script.
void Toggle(HostAccess& host, const Service& service, bool& enabled) {
    const std::string& user = Frame::_loginName;
    const bool wasEnabled = enabled;
    auto hclCmd = [&](const char* verb) {
        return host.Run("/bin/hcl-cmd",
                        {"hcl-cmd", "-U", user, std::string("hostsvc/") + verb + "_" + service.command});
    };
    if (hclCmd(wasEnabled ? "stop" : "start") != 0) {
        LogWarning(std::string("Unable to run hcl-cmd to start/stop ") + service.warning);
        host.Run("/bin/sh", {"sh", service.initScript, wasEnabled ? "stop" : "start"});
        if (service.firewall) {
            try {
                auto ruleset = host.SystemInfo()->GetFirewallRulesetById("sshServer");
                wasEnabled ? ruleset->Disable() : ruleset->Enable();
            } catch (const HostCtl::Lib::HostCtlException& e) {
                LogWarning(std::string("Failed to update firewall sshServer ruleset status: ") + e.what());
            }
        }
    }
    if (hclCmd(wasEnabled ? "disable" : "enable") != 0)
        LogWarning(std::string("Unable to run hcl-cmd to enable/disable ") + service.warning);
    // The menu follows the operator's request even when the host refused it; the log says what ran.
    enabled = !wasEnabled;
    LogInfo("User " + user + (enabled ? " enabled " : " disabled ") + service.name);
}

}  // namespace

TroubleShootingWindow::TroubleShootingWindow(Frame* parent, HostAccess& host)
    : MenuWindow(parent, StringId::TroubleshootingTitle, nullptr),
      _host(host),
      _shellEnabled(Running(host, kShell)),
      _sshEnabled(Running(host, kSsh)) {
    ShowRows();
}

std::vector<MenuWindow::Row> TroubleShootingWindow::Rows() {
    auto service = [this](const Service& s, bool& enabled) {
        return Row{.id = s.detailTitle,
                   .caption = String(enabled ? s.disableEntry : s.enableEntry),
                   .title = String(s.detailTitle),
                   .detail =
                       [this, &s, &enabled] {
                           return "{/color}{color:white}" +
                                  String(enabled ? s.enabledStatus : s.disabledStatus) +
                                  "\n\n{/color}{color:light-grey}" + String(s.help);
                       },
                   .footer = Footer::kDetailChangeExit,
                   .open = [this, &s, &enabled] { Toggle(_host, s, enabled); }};
    };
    auto dialog = [this](unsigned id, unsigned help, const char* footer, std::function<void()> open) {
        return Row{.id = id,
                   .caption = String(id),
                   .title = String(id),
                   .detail = [this, help] { return "{/color}{color:light-grey}" + String(help); },
                   .footer = footer,
                   .open = std::move(open)};
    };
    // The time-outs take effect when a service starts, so they are set while both are off.
    const bool timeoutsOpen = !_shellEnabled && !_sshEnabled;
    Row timeouts = dialog(StringId::ShellTimeoutsEntry, StringId::ShellTimeoutsHelp,
                          Footer::kDetailChangeExit, [this] { ShellTimeoutDialog(this, _host).RunModal(); });
    if (!timeoutsOpen) timeouts.caption = "{color:dark-grey}" + timeouts.caption + "{/color}";
    timeouts.enabled = timeoutsOpen;
    return {
        service(kShell, _shellEnabled),
        service(kSsh, _sshEnabled),
        timeouts,
        dialog(StringId::KovoTimeoutEntry, StringId::KovoTimeoutHelp, Footer::kDetailChangeExit,
               [this] { KovoTimeoutDialog(this, _host).RunModal(); }),
        dialog(StringId::RestartAgentsEntry, StringId::RestartAgentsHelp, Footer::kDetailRestartExit,
               [this] { RestartAgentsDialog(this, _host).RunModal(); }),
    };
}

}  // namespace Kovo

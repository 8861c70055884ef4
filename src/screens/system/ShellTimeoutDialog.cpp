#include "system/ShellTimeoutDialog.h"

#include <climits>
#include <cstdlib>

#include "frames/Footers.h"
#include "frames/HostAccess.h"
#include "frames/Log.h"
#include "text/StringIds.h"

namespace Kovo {

namespace {

constexpr int kCapture = 256;
constexpr const char* kAvailabilityOption = "/UserVars/QoriShellTimeOut";
constexpr const char* kIdleOption = "/UserVars/QoriShellInteractiveTimeOut";

struct FieldRule {
    const char* option;
    const char* disabledLine;
    const char* modifiedLine;
};
constexpr FieldRule kRules[2] = {
    {kAvailabilityOption, "Disabled Shell timeout", "Modified Shell timeout to"},
    {kIdleOption, "Disabled shell interactive timeout", "Modified shell interactive timeout to"},
};

}  // namespace

ShellTimeoutDialog::ShellTimeoutDialog(Frame* parent, HostAccess& host)
    : TimeoutDialog(
          parent, {70, 21, 15, StringId::ShellTimeoutsTitle, StringId::ShellTimeoutsText, Footer::kOkCancel},
          host),
      _current{ReadOption(kAvailabilityOption), ReadOption(kIdleOption)} {
    AddMinutesField(StringId::AvailabilityTimeoutLabel, _current[0]);
    AddMinutesField(StringId::IdleTimeoutLabel, _current[1]);
}

uint32_t ShellTimeoutDialog::ReadOption(const char* option) {
    std::string output, error;
    Host().RunCaptured("/sbin/qorcfg-advcfg", {"qorcfg-advcfg", "-q", "-g", option}, output, error, kCapture);
    // The tool ends its answer with a newline.
    if (!output.empty()) output.pop_back();
    const unsigned long seconds = std::strtoul(output.c_str(), nullptr, 10);
    return static_cast<uint32_t>(std::min<unsigned long>(seconds, UINT32_MAX) / 60);
}

bool ShellTimeoutDialog::WriteOption(const char* option, uint32_t minutes) {
    const std::string seconds = std::to_string(minutes * 60);
    if (Host().Run("/sbin/qorcli",
                   {"qorcli", "system", "settings", "advanced", "set", "-o", option, "-i", seconds}) == 0)
        return true;
    // Without the host agent only the local tool can set options.
    return Host().Run("/sbin/qorlocalcli", {"qorlocalcli", "system", "settings", "advanced", "set", "-o",
                                            option, "-i", seconds}) == 0;
}

void ShellTimeoutDialog::RestartIfRunning(const char* initScript) {
    if (Host().Run("/bin/sh", {"sh", initScript, "status"}) == 0)
        Host().Run("/bin/sh", {"sh", initScript, "restart"});
}

void ShellTimeoutDialog::Apply() {
    for (std::size_t field = 0; field < 2; ++field) {
        const std::optional<uint32_t> minutes = ReadMinutes(field);
        if (!minutes || *minutes == _current[field]) continue;
        const FieldRule& rule = kRules[field];
        if (!WriteOption(rule.option, *minutes)) {
            LogError(std::string("Unable to set ") + rule.option + " to " + std::to_string(*minutes) +
                     " minutes");
            continue;
        }
        _current[field] = *minutes;
        // Running services read the availability time-out when they start.
        if (field == 0) {
            RestartIfRunning("/etc/init.d/QorShell");
            RestartIfRunning("/etc/init.d/SSH");
        }
        if (*minutes == 0) {
            LogInfo(rule.disabledLine);
        } else {
            LogInfo(std::string(rule.modifiedLine) + " " + std::to_string(*minutes) + " minutes");
        }
    }
}

}  // namespace Kovo

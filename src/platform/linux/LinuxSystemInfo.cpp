#include "platform/linux/LinuxSystemInfo.h"

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/TextFields.h"
#include "platform/linux/LinuxPrograms.h"
#include "platform/linux/NotAvailable.h"

namespace LinuxHost {

namespace {

// The console's layout names and the XKB layouts (and variants) a Debian host's keyboard data has for them.
// The kernel's own keymap is the US layout, so "Default" has no row of its own.
struct Layout {
    const char* name;
    const char* xkb;
    const char* variant;
};
const Layout kLayouts[] = {
    {"Belgian", "be", ""},      {"Brazilian", "br", ""},
    {"Croatian", "hr", ""},     {"Czechoslovakian", "cz", ""},
    {"Danish", "dk", ""},       {"Estonian", "ee", ""},
    {"Finnish", "fi", ""},      {"French", "fr", ""},
    {"German", "de", ""},       {"Greek", "gr", ""},
    {"Icelandic", "is", ""},    {"Italian", "it", ""},
    {"Japanese", "jp", ""},     {"Latin American", "latam", ""},
    {"Norwegian", "no", ""},    {"Polish", "pl", ""},
    {"Portuguese", "pt", ""},   {"Russian", "ru", ""},
    {"Slovenian", "si", ""},    {"Spanish", "es", ""},
    {"Swedish", "se", ""},      {"Swiss French", "ch", "fr"},
    {"Swiss German", "ch", ""}, {"Turkish", "tr", ""},
    {"US Default", "us", ""},   {"US Dvorak", "us", "dvorak"},
    {"Ukrainian", "ua", ""},    {"United Kingdom", "gb", ""},
};

const Layout* Find(const std::string& name) {
    for (const Layout& layout : kLayouts)
        if (name == layout.name) return &layout;
    return nullptr;
}

// Where the host's XKB layouts are, and the tool that makes a console keymap of the host's keyboard
// configuration and loads it (console-setup).
constexpr const char* kXkbSymbols = "/usr/share/X11/xkb/symbols/";
constexpr const char* kSetupcon = "/bin/setupcon";
// A keyboard configuration without a model gets the usual one.
constexpr const char* kDefaultModel = "pc105";

}  // namespace

LinuxSystemInfo::LinuxSystemInfo(HostFiles files, Services services)
    : _files(std::move(files)), _services(std::move(services)) {}

std::string LinuxSystemInfo::LayoutName(const std::string& xkb, const std::string& variant) {
    // Without a layout of its own the host keeps the kernel's keymap, which is the US layout.
    if (xkb.empty()) return "US Default";
    for (const Layout& layout : kLayouts)
        if (xkb == layout.xkb && variant == layout.variant) return layout.name;
    // A layout the console has no name for is shown as the host calls it.
    return variant.empty() ? xkb : xkb + "(" + variant + ")";
}

std::string LinuxSystemInfo::GetKeyboardLayout() {
    const SystemServices::Keyboard keyboard = _services()->GetKeyboard();
    return LayoutName(keyboard.layout, keyboard.variant);
}

std::vector<std::string> LinuxSystemInfo::GetKeyboardLayouts() {
    std::vector<std::string> layouts;
    // A layout the consoles cannot be given is not offered.
    std::error_code error;
    if (!std::filesystem::exists(_files.Under(kSetupcon), error)) return layouts;
    for (const Layout& layout : kLayouts)
        if (std::filesystem::exists(_files.Under(kXkbSymbols + std::string(layout.xkb)), error))
            layouts.push_back(layout.name);
    return layouts;
}

void LinuxSystemInfo::LoadKeyboardMappings(const std::string& layout) {
    // The consoles load the layout once the host's configuration holds it; here it is only checked.
    if (!Find(layout)) throw HostCtl::Lib::HostCtlException("Unknown keyboard layout: " + layout);
}

void LinuxSystemInfo::SetKeyboardLayout(const std::string& layout) {
    const Layout* chosen = Find(layout);
    if (!chosen) throw HostCtl::Lib::HostCtlException("Unknown keyboard layout: " + layout);
    auto services = _services();
    const SystemServices::Keyboard before = services->GetKeyboard();
    SystemServices::Keyboard keyboard = before;
    keyboard.layout = chosen->xkb;
    keyboard.variant = chosen->variant;
    if (keyboard.model.empty()) keyboard.model = kDefaultModel;
    services->SetKeyboard(keyboard);
    // Every console, now; at boot the host's keyboard set-up does the same from the same file.
    std::string errors;
    const int status =
        LinuxPrograms::RunDetached({kSetupcon, {"setupcon", "--force", "--keyboard-only"}}, &errors);
    if (status != 0) {
        // Not half a change: the consoles kept the old layout, so the host's configuration keeps it too.
        try {
            services->SetKeyboard(before);
        } catch (const HostCtl::Lib::HostCtlException& e) {
            errors += std::string("\nThe previous layout could not be put back: ") + e.what();
        }
        while (!errors.empty() && errors.back() == '\n') errors.pop_back();
        throw HostCtl::Lib::HostCtlException("The consoles did not take the layout " + layout +
                                             (errors.empty() ? "" : ": " + errors));
    }
}

void LinuxSystemInfo::SetSystemAlert(const std::string& message) {
    const std::vector<std::string> alerts = GetSystemAlerts();
    if (std::find(alerts.begin(), alerts.end(), message) != alerts.end()) return;
    const std::filesystem::path file = _files.Under(kAlerts);
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    const int fd = ::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    const std::string line = message + "\n";
    const bool kept = fd >= 0 && ::write(fd, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    if (fd >= 0) ::close(fd);
    if (!kept) throw HostCtl::Lib::HostCtlException("Cannot keep the alert: " + message);
    syslog(LOG_ALERT, "%s", message.c_str());
}

std::vector<std::string> LinuxSystemInfo::GetSystemAlerts() {
    std::vector<std::string> alerts;
    for (std::string& line : HostCtl::Lines(_files.Read(kAlerts).value_or("")))
        if (!line.empty()) alerts.push_back(std::move(line));
    return alerts;
}

bool LinuxSystemInfo::IsLogKept(const std::string& path) {
    return LinuxPrograms::IsJournalLog(path);
}

bool LinuxSystemInfo::IsConsoleLoginAllowed() {
    return true;
}

std::unique_ptr<HostCtl::System::FirewallRuleset> LinuxSystemInfo::GetFirewallRulesetById(
    const std::string& id) {
    NotAvailable("The firewall ruleset " + id);
}

LinuxResourceInfo::LinuxResourceInfo(std::string hostTool) : _hostTool(std::move(hostTool)) {}

bool LinuxResourceInfo::HasRunningVirtualMachines() {
    constexpr int kRunning = 0, kNoneRunning = 3;
    std::string errors;
    const int status = LinuxPrograms::RunDetached({_hostTool, {"kovo-host", "vms", "running"}}, &errors);
    if (status == kRunning) return true;
    if (status == kNoneRunning) return false;
    // The tool's own last words ("kovo-host: The hypervisor service does not answer: ..."), without its
    // name; libraries may have said more before them.
    while (!errors.empty() && errors.back() == '\n') errors.pop_back();
    const std::string prefix = "kovo-host: ";
    const std::size_t said = errors.rfind("\n" + prefix);
    if (said != std::string::npos)
        errors.erase(0, said + 1 + prefix.size());
    else if (errors.rfind(prefix, 0) == 0)
        errors.erase(0, prefix.size());
    throw HostCtl::Lib::HostCtlException(errors.empty() ? "Cannot ask the host which virtual machines run"
                                                        : errors);
}

}  // namespace LinuxHost

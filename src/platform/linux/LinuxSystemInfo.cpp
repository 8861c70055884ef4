#include "platform/linux/LinuxSystemInfo.h"

#include <syslog.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>
#include <utility>

#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/LinuxPrograms.h"
#include "platform/linux/NotAvailable.h"

namespace LinuxHost {

namespace {

// The console's layout names and the keymaps a Debian host's console data has for them.
const std::vector<std::pair<std::string, std::string>> kLayouts{
    {"Belgian", "be-latin1"},
    {"Brazilian", "br-abnt2"},
    {"Croatian", "croat"},
    {"Czechoslovakian", "cz-lat2"},
    {"Danish", "dk-latin1"},
    {"Default", "defkeymap"},
    {"Estonian", "et"},
    {"Finnish", "fi"},
    {"French", "fr-latin9"},
    {"German", "de-latin1"},
    {"Greek", "gr"},
    {"Icelandic", "is-latin1"},
    {"Italian", "it"},
    {"Japanese", "jp106"},
    {"Latin American", "la-latin1"},
    {"Norwegian", "no-latin1"},
    {"Polish", "pl"},
    {"Portuguese", "pt-latin1"},
    {"Russian", "ru"},
    {"Slovenian", "slovene"},
    {"Spanish", "es"},
    {"Swedish", "se-latin1"},
    {"Swiss French", "fr_CH-latin1"},
    {"Swiss German", "sg-latin1"},
    {"Turkish", "trq"},
    {"US Default", "us"},
    {"US Dvorak", "dvorak"},
    {"Ukrainian", "ua"},
    {"United Kingdom", "uk"},
};

// Where console keymaps live, by distribution.
const char* const kKeymapDirs[] = {"/usr/share/keymaps", "/usr/share/kbd/keymaps", "/usr/lib/kbd/keymaps"};

// Every keymap name under the keymap folders (i386/qwerty/us.kmap.gz is "us").
std::vector<std::string> InstalledKeymaps(const HostFiles& files) {
    std::vector<std::string> names;
    for (const char* dir : kKeymapDirs) {
        std::error_code error;
        const auto root = files.Under(dir);
        for (std::filesystem::recursive_directory_iterator it(root, error), end; !error && it != end;
             it.increment(error)) {
            std::string name = it->path().filename().string();
            for (const char* suffix : {".gz", ".kmap", ".map"})
                if (name.size() > strlen(suffix) &&
                    name.compare(name.size() - strlen(suffix), std::string::npos, suffix) == 0)
                    name.erase(name.size() - strlen(suffix));
            names.push_back(std::move(name));
        }
    }
    return names;
}

}  // namespace

LinuxSystemInfo::LinuxSystemInfo(HostFiles files, Services services)
    : _files(std::move(files)), _services(std::move(services)) {}

std::string LinuxSystemInfo::KeymapOf(const std::string& layout) {
    for (const auto& [name, keymap] : kLayouts)
        if (name == layout) return keymap;
    return {};
}

std::string LinuxSystemInfo::GetKeyboardLayout() {
    const std::string keymap = _services()->ConsoleKeymap();
    // Without a keymap of its own the console keeps the kernel's, which is the US layout.
    if (keymap.empty()) return "US Default";
    for (const auto& [name, map] : kLayouts)
        if (map == keymap) return name;
    return keymap;
}

std::vector<std::string> LinuxSystemInfo::GetKeyboardLayouts() {
    const std::vector<std::string> installed = InstalledKeymaps(_files);
    std::vector<std::string> layouts;
    for (const auto& [name, keymap] : kLayouts)
        if (std::find(installed.begin(), installed.end(), keymap) != installed.end()) layouts.push_back(name);
    return layouts;
}

void LinuxSystemInfo::LoadKeyboardMappings(const std::string& layout) {
    // Setting the layout loads it into every console; here it is only checked.
    if (KeymapOf(layout).empty()) throw HostCtl::Lib::HostCtlException("Unknown keyboard layout: " + layout);
}

void LinuxSystemInfo::SetKeyboardLayout(const std::string& layout) {
    const std::string keymap = KeymapOf(layout);
    if (keymap.empty()) throw HostCtl::Lib::HostCtlException("Unknown keyboard layout: " + layout);
    _services()->SetConsoleKeymap(keymap);
}

void LinuxSystemInfo::SetSystemAlert(const std::string& message) {
    const std::vector<std::string> alerts = GetSystemAlerts();
    if (std::find(alerts.begin(), alerts.end(), message) != alerts.end()) return;
    const std::filesystem::path file = _files.Under(kAlerts);
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    std::ofstream out(file, std::ios::app);
    out << message << "\n";
    if (!out.flush()) throw HostCtl::Lib::HostCtlException("Cannot keep the alert: " + message);
    syslog(LOG_ALERT, "%s", message.c_str());
}

std::vector<std::string> LinuxSystemInfo::GetSystemAlerts() {
    std::vector<std::string> alerts;
    std::istringstream lines(_files.Read(kAlerts).value_or(""));
    for (std::string line; std::getline(lines, line);)
        if (!line.empty()) alerts.push_back(line);
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

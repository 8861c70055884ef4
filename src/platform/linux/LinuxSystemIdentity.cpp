#include "platform/linux/LinuxSystemIdentity.h"

#include <cstring>

#include "platform/hostctl/HostCtlException.h"

namespace LinuxHost {

namespace {

struct Distribution {
    std::string name, version, id, prettyName;
};

Distribution ReadDistribution(const HostFiles& files) {
    std::optional<std::string> text = files.Read("/etc/os-release");
    if (!text) text = files.Read("/usr/lib/os-release");
    if (!text)
        throw HostCtl::Lib::HostCtlException("The host does not say which system it runs (no os-release)");
    Distribution d;
    d.name = ShellVariable(*text, "NAME").value_or("Linux");
    d.id = ShellVariable(*text, "ID").value_or("linux");
    d.prettyName = ShellVariable(*text, "PRETTY_NAME").value_or(d.name);
    d.version = ShellVariable(*text, "VERSION_ID").value_or("");
    // Debian names its point release ("12.8") only here; os-release stops at "12".
    const std::string point = files.FirstLine("/etc/debian_version");
    if (!point.empty() && point.rfind(d.version, 0) == 0 &&
        point.find_first_not_of("0123456789.") == std::string::npos)
        d.version = point;
    return d;
}

// The kernel's own build: "#1 SMP PREEMPT_DYNAMIC Debian 6.1.119-1 (2024-11-22)" is package 6.1.119-1;
// a kernel built elsewhere is named by its build count ("#1").
std::string KernelBuild(const HostFiles& files) {
    const std::string version = files.FirstLine("/proc/sys/kernel/version");
    const size_t debian = version.find(" Debian ");
    if (debian != std::string::npos) {
        const size_t start = debian + 8;
        return version.substr(start, version.find(' ', start) - start);
    }
    return version.substr(0, version.find(' '));
}

template <size_t N>
void Put(char (&field)[N], const std::string& value) {
    // Always terminated: a longer value is cut, never left open.
    strncpy(field, value.c_str(), N - 1);
    field[N - 1] = '\0';
}

}  // namespace

LinuxSystemIdentity::LinuxSystemIdentity(HostFiles files) : _files(std::move(files)) {}

HostCtl::Util::SysinfoVersionRecord LinuxSystemIdentity::GetVersionRecord() {
    const Distribution d = ReadDistribution(_files);
    const std::string release = _files.FirstLine("/proc/sys/kernel/osrelease");
    if (release.empty()) throw HostCtl::Lib::HostCtlException("The host does not say which kernel it runs");
    HostCtl::Util::SysinfoVersionRecord record{};
    Put(record.productName, d.name);
    Put(record.productVersion, d.version);
    Put(record.productLine, d.id);
    Put(record.kernelRelease, release);
    Put(record.buildNumberString, KernelBuild(_files));
    record.buildNumber = 0;  // a distribution has releases, not build numbers
    Put(record.productFullName, d.prettyName);
    return record;
}

HostCtl::Util::SysinfoBootOptions LinuxSystemIdentity::GetBootOptions() {
    return {};
}

HostCtl::Util::ProductNames LinuxSystemIdentity::GetProductNames() {
    try {
        const Distribution d = ReadDistribution(_files);
        return {d.name, d.version, KernelBuild(_files), "", "Linux"};
    } catch (const HostCtl::Lib::HostCtlException&) {
        return {"Linux", "unknown", "", "", "Linux"};
    }
}

}  // namespace LinuxHost

#include "platform/linux/LinuxHardwareInfo.h"

#include <unistd.h>

#include <cstdio>
#include <set>
#include <utility>

#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/TextFields.h"

namespace LinuxHost {

namespace {

constexpr const char* kDmi = "/sys/class/dmi/id/";

// Firmware fills fields it does not use with placeholders; showing them would claim a value.
bool IsPlaceholder(const std::string& value) {
    static const std::set<std::string> placeholders{"To Be Filled By O.E.M.", "Default string",
                                                    "Not Specified",          "None",
                                                    "System Serial Number",   "0123456789"};
    return placeholders.count(value) != 0;
}

// "key\t: value" lines of /proc/cpuinfo, one block per logical processor.
std::string CpuField(const std::string& line, const char* key) {
    if (line.rfind(key, 0) != 0) return {};
    const size_t colon = line.find(':');
    if (colon == std::string::npos) return {};
    const size_t start = line.find_first_not_of(' ', colon + 1);
    return start == std::string::npos ? std::string() : line.substr(start);
}

}  // namespace

LinuxHardwareInfo::LinuxHardwareInfo(HostFiles files) : _files(std::move(files)) {}

std::string LinuxHardwareInfo::Dmi(const char* name) const {
    std::string value = _files.FirstLine(std::string(kDmi) + name);
    return IsPlaceholder(value) ? std::string() : value;
}

std::string LinuxHardwareInfo::GetVendorName() {
    return Dmi("sys_vendor");
}
std::string LinuxHardwareInfo::GetProductName() {
    return Dmi("product_name");
}
std::string LinuxHardwareInfo::GetSerialNumber() {
    return Dmi("product_serial");
}
std::string LinuxHardwareInfo::GetServiceTag() {
    // Vendors that print a service tag put it in the chassis serial; others leave it empty.
    return Dmi("chassis_serial");
}
std::string LinuxHardwareInfo::GetAssetTag() {
    return Dmi("chassis_asset_tag");
}
std::string LinuxHardwareInfo::GetBmcVersion() {
    throw HostCtl::Lib::HostCtlException("This host does not report its management controller's version");
}

HostCtl::Hardware::BiosInfo LinuxHardwareInfo::GetBiosInfo() {
    HostCtl::Hardware::BiosInfo bios;
    bios.version = Dmi("bios_version");
    bios.releaseDate = Dmi("bios_date");
    // "1.16": the firmware's major and minor release.
    unsigned major = 0, minor = 0;
    if (std::sscanf(Dmi("bios_release").c_str(), "%u.%u", &major, &minor) == 2) {
        bios.majorRelease = major;
        bios.minorRelease = minor;
    } else {
        bios.majorRelease = 0;
        bios.minorRelease = 0;
    }
    return bios;
}

std::vector<std::string> LinuxHardwareInfo::GetIdentificationStrings() {
    std::vector<std::string> strings;
    for (const char* name : {"board_vendor", "board_name", "board_version"}) {
        std::string value = Dmi(name);
        if (!value.empty()) strings.push_back(std::move(value));
    }
    return strings;
}

LinuxCpuInfo::LinuxCpuInfo(HostFiles files) : _files(std::move(files)) {}

LinuxCpuInfo::Counts LinuxCpuInfo::Read() const {
    const std::optional<std::string> text = _files.Read("/proc/cpuinfo");
    if (!text) throw HostCtl::Lib::HostCtlException("The host's processors cannot be read");
    Counts counts;
    std::set<std::string> packages;
    std::set<std::pair<std::string, std::string>> cores;
    std::string package = "0";
    for (const std::string& line : HostCtl::Lines(*text)) {
        if (!CpuField(line, "processor").empty()) {
            ++counts.threads;
            package.assign(1, '0');  // a processor without "physical id" sits in the one package there is
        } else if (std::string id = CpuField(line, "physical id"); !id.empty()) {
            package = id;
            packages.insert(id);
        } else if (std::string core = CpuField(line, "core id"); !core.empty()) {
            cores.emplace(package, core);
        } else if (counts.model.empty()) {
            counts.model = CpuField(line, "model name");
        }
    }
    if (counts.threads == 0) throw HostCtl::Lib::HostCtlException("The host lists no processors");
    counts.packages = packages.empty() ? 1 : static_cast<uint32_t>(packages.size());
    counts.cores = cores.empty() ? counts.threads : static_cast<uint32_t>(cores.size());
    return counts;
}

uint32_t LinuxCpuInfo::GetNumCpuPackages() {
    return Read().packages;
}
uint32_t LinuxCpuInfo::GetNumCpuCores() {
    return Read().cores;
}
uint32_t LinuxCpuInfo::GetNumCpuThreads() {
    return Read().threads;
}
std::string LinuxCpuInfo::GetModelName() {
    return Read().model;
}

LinuxMemoryInfo::LinuxMemoryInfo(HostFiles files) : _files(std::move(files)) {}

uint64_t LinuxMemoryInfo::GetPageSize() {
    return static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
}

uint64_t LinuxMemoryInfo::GetTotalPages() {
    const std::optional<std::string> text = _files.Read("/proc/meminfo");
    for (const std::string& line : HostCtl::Lines(text.value_or(""))) {
        unsigned long long kib = 0;
        if (std::sscanf(line.c_str(), "MemTotal: %llu", &kib) == 1) return kib * 1024 / GetPageSize();
    }
    throw HostCtl::Lib::HostCtlException("The host's memory cannot be read");
}

}  // namespace LinuxHost

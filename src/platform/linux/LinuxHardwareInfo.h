#pragma once

#include "platform/hostctl/HardwareInfo.h"
#include "platform/linux/HostFiles.h"

namespace LinuxHost {

// The machine as its firmware tables describe it (/sys/class/dmi/id). A machine without them (some
// virtual machines) has empty names; a value no Linux host reports, such as the BMC's version, fails.
class LinuxHardwareInfo : public HostCtl::Hardware::HardwareInfo {
  public:
    explicit LinuxHardwareInfo(HostFiles files);

    std::string GetVendorName() override;
    std::string GetProductName() override;
    std::string GetSerialNumber() override;
    std::string GetServiceTag() override;
    std::string GetAssetTag() override;
    std::string GetBmcVersion() override;
    HostCtl::Hardware::BiosInfo GetBiosInfo() override;
    std::vector<std::string> GetIdentificationStrings() override;

  private:
    std::string Dmi(const char* name) const;
    HostFiles _files;
};

// Processor packages, cores and threads as /proc/cpuinfo counts them.
class LinuxCpuInfo : public HostCtl::Hardware::CpuInfo {
  public:
    explicit LinuxCpuInfo(HostFiles files);

    uint32_t GetNumCpuPackages() override;
    uint32_t GetNumCpuCores() override;
    uint32_t GetNumCpuThreads() override;
    std::string GetModelName() override;

  private:
    struct Counts {
        uint32_t packages = 0, cores = 0, threads = 0;
        std::string model;
    };
    Counts Read() const;
    HostFiles _files;
};

// The memory the kernel manages (MemTotal), in the host's pages.
class LinuxMemoryInfo : public HostCtl::Hardware::MemoryInfo {
  public:
    explicit LinuxMemoryInfo(HostFiles files);

    uint64_t GetTotalPages() override;
    uint64_t GetPageSize() override;

  private:
    HostFiles _files;
};

}  // namespace LinuxHost

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/hostctl/SmartCardSlot.h"
#include "platform/hostctl/SmartCardToken.h"

namespace HostCtl::Hardware {

struct BiosInfo {
    std::string version;
    int majorRelease = 0;
    int minorRelease = 0;
    std::string releaseDate;
};

// What the system board says about the machine.
class HardwareInfo {
  public:
    virtual ~HardwareInfo() = default;
    virtual std::string GetVendorName() = 0;
    virtual std::string GetProductName() = 0;
    virtual std::string GetSerialNumber() = 0;
    virtual std::string GetServiceTag() = 0;
    virtual std::string GetAssetTag() = 0;
    virtual std::string GetBmcVersion() = 0;
    virtual BiosInfo GetBiosInfo() = 0;
    virtual std::vector<std::string> GetIdentificationStrings() = 0;
};

class CpuInfo {
  public:
    virtual ~CpuInfo() = default;
    virtual uint32_t GetNumCpuPackages() = 0;
    virtual uint32_t GetNumCpuCores() = 0;
    virtual uint32_t GetNumCpuThreads() = 0;
    virtual std::string GetModelName() = 0;
};

class MemoryInfo {
  public:
    virtual ~MemoryInfo() = default;
    virtual uint64_t GetTotalPages() = 0;
    virtual uint64_t GetPageSize() = 0;
};

// Storage adapters by name.
class StorageInfo {
  public:
    virtual ~StorageInfo() = default;
    virtual std::string GetAdapterVersion(const std::string& adapter) = 0;
    virtual std::string GetAdapterDriver(const std::string& adapter) = 0;
};

class SmartCardInfo {
  public:
    virtual ~SmartCardInfo() = default;
    virtual std::vector<SmartCardSlot> GetAllSlots() = 0;
    // False when the slot holds no card.
    virtual bool GetToken(const SmartCardSlot& slot, SmartCardToken& token) = 0;
};

}  // namespace HostCtl::Hardware

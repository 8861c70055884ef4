#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/store/HostStore.h"

namespace ZenkCtl::Util {

// Nodes of the host's system information.
enum SysinfoNode : int {
    SYSNODE_system_version = 1,  // SysinfoVersionRecord
    SYSNODE_boot_options = 2,    // SysinfoBootOptions
};

// The system-version record: fixed-size, NUL-terminated (and NUL-padded) text fields.
struct SysinfoVersionRecord {
    char productName[32];        // offset 0
    char productVersion[32];     // offset 32
    char productLine[32];        // offset 64
    char kernelRelease[32];      // offset 96
    char buildNumberString[32];  // offset 128
    uint32_t buildNumber;        // offset 160
    uint32_t reserved;           // offset 164
    char releaseDate[32];        // offset 168
    char compilationOption[32];  // offset 200
    char productFullName[80];    // offset 232
};
static_assert(sizeof(SysinfoVersionRecord) == 312, "the version record is 312 bytes");

// The boot options: one byte each.
struct SysinfoBootOptions {
    uint8_t auditMode;  // 1 when the host runs in audit mode
    uint8_t pxeBoot;    // 1 when the host booted from the network
    uint8_t reserved[6];
};
static_assert(sizeof(SysinfoBootOptions) == 8, "the boot options record is 8 bytes");

class SysinfoUtil {
  public:
    // Fills buffer with the node's record. size must hold the record; parameters select nothing for
    // these nodes and may be null. HostCtlException for an unknown node, a short buffer or a store
    // that cannot be read.
    static void SysinfoGet(int node, void* buffer, size_t size, const void* parameters);
    static void SysinfoGet(const Store::HostStore& store, int node, void* buffer, size_t size);
};

}  // namespace ZenkCtl::Util

// The boot-option node by path ("/bootOptions"): 0 and the record in buffer, or an errno value
// (ENOENT unknown node or unreadable host, EINVAL short buffer).
inline constexpr const char* SYSNODE_BOOT_OPTIONS = "/bootOptions";
int SysNode_Get(const char* nodePath, void* buffer, size_t size);

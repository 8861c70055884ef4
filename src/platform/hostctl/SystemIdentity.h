#pragma once

#include <cstdint>
#include <string>

namespace HostCtl::Util {

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

// The names the platform's own log lines carry, and the name of the host's kernel for the version line.
struct ProductNames {
    std::string name, version, build, option, kernel;
};

// Who the host is: its version record and boot options.
class SystemIdentity {
  public:
    virtual ~SystemIdentity() = default;
    // HostCtl::Lib::HostCtlException when the host cannot report its version.
    virtual SysinfoVersionRecord GetVersionRecord() = 0;
    // HostCtl::Lib::HostCtlException when the host cannot report them.
    virtual SysinfoBootOptions GetBootOptions() = 0;
    // Never fails: a host that cannot say falls back to the identity built into the platform.
    virtual ProductNames GetProductNames() = 0;
};

}  // namespace HostCtl::Util

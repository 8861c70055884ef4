#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/hostctl/SystemIdentity.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl::Util {

// Nodes of the host's system information.
enum SysinfoNode : int {
    SYSNODE_system_version = 1,  // SysinfoVersionRecord
    SYSNODE_boot_options = 2,    // SysinfoBootOptions
};

using HostCtl::Util::SysinfoBootOptions;
using HostCtl::Util::SysinfoVersionRecord;

class SysinfoUtil {
  public:
    static void SysinfoGet(const Store::HostStore& store, int node, void* buffer, size_t size);
};

}  // namespace ZenkCtl::Util

#include "main/HostPlatformChoice.h"

#include <filesystem>

#include "platform/linux/LinuxHostFactory.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/StoreFaults.h"

namespace Kovo {

std::unique_ptr<HostCtl::HostFactory> ChooseHostPlatform() {
    // A host with the configuration store is a Halvor host (the simulated host is one); any other is a
    // Linux host.
    std::error_code error;
    if (std::filesystem::exists(ZenkCtl::Store::HostStore::kHostPath, error))
        return ZenkCtl::MakeHalvorPlatform(ZenkCtl::Store::HostStore::System());
    return LinuxHost::MakeLinuxPlatform();
}

}  // namespace Kovo

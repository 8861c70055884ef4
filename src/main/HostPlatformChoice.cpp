#include "main/HostPlatformChoice.h"

#include "platform/store/HostStore.h"
#include "platform/zenkctl/StoreFaults.h"

namespace Kovo {

std::unique_ptr<HostCtl::HostFactory> ChooseHostPlatform() {
    // A host with the configuration store is a Halvor host. It is also the only kind this console
    // serves so far, so a host without one gets it too: every read of its missing store then fails
    // the way an unreadable store does, and the screens say so.
    return ZenkCtl::MakeHalvorPlatform(ZenkCtl::Store::HostStore::System());
}

}  // namespace Kovo

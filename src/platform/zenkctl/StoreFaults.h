#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/faults/FaultSource.h"
#include "platform/hostctl/HostFactory.h"
#include "platform/store/HostStore.h"

namespace ZenkCtl {

// A simulated Halvor host names the operations it makes fail in its store ("/simulation/faults":
// {"<operation>": "<text>"}), and can change them while the console runs. A real host's store has no such
// member. This is the one place the platform reads them.
class StoreFaultSource : public HostCtl::Faults::FaultSource {
  public:
    static constexpr const char* kFaults = "/simulation/faults";

    explicit StoreFaultSource(std::shared_ptr<Store::HostStore> store);
    // Nothing when the store cannot be read: the operation itself then reports that.
    std::optional<std::string> Injected(const char* operation) const override;
    // Whether the store carries the faults member at all (a simulated host's does, from its boot on).
    static bool CarriesFaults(const Store::HostStore& store);

  private:
    std::shared_ptr<Store::HostStore> _store;
};

// The platform of a Halvor host over `store`: the Halvor objects, and on a host whose store carries faults
// the fault decorators around them. Which of the two is decided here, once.
std::unique_ptr<HostCtl::HostFactory> MakeHalvorPlatform(std::shared_ptr<Store::HostStore> store);
// The second of the two whatever the store carries now: a simulated host's platform.
std::unique_ptr<HostCtl::HostFactory> MakeSimulatedHalvorPlatform(std::shared_ptr<Store::HostStore> store);

}  // namespace ZenkCtl

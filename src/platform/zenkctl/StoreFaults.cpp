#include "platform/zenkctl/StoreFaults.h"

#include "platform/faults/FaultingHostFactory.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/zenkctl/HalvorHostFactory.h"

namespace ZenkCtl {

StoreFaultSource::StoreFaultSource(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

std::optional<std::string> StoreFaultSource::Injected(const char* operation) const {
    try {
        // Operation names hold no '/' or '~', so they need no escaping inside a pointer.
        const nlohmann::json fault = _store->Get(std::string(kFaults) + "/" + operation);
        if (fault.is_string()) return fault.get<std::string>();
    } catch (const HostCtl::Lib::HostCtlException&) {
    }
    return std::nullopt;
}

bool StoreFaultSource::CarriesFaults(const Store::HostStore& store) {
    try {
        return store.Get(kFaults).is_object();
    } catch (const HostCtl::Lib::HostCtlException&) {
        return false;
    }
}

std::unique_ptr<HostCtl::HostFactory> MakeHalvorPlatform(std::shared_ptr<Store::HostStore> store) {
    if (!StoreFaultSource::CarriesFaults(*store)) return std::make_unique<HalvorHostFactory>(store);
    return MakeSimulatedHalvorPlatform(store);
}

std::unique_ptr<HostCtl::HostFactory> MakeSimulatedHalvorPlatform(std::shared_ptr<Store::HostStore> store) {
    auto faults = std::make_shared<StoreFaultSource>(store);
    return std::make_unique<HostCtl::Faults::FaultingHostFactory>(std::make_unique<HalvorHostFactory>(store),
                                                                  std::move(faults));
}

}  // namespace ZenkCtl

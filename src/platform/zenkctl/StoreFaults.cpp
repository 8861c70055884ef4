#include "platform/zenkctl/StoreFaults.h"

#include "platform/faults/FaultingHostFactory.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/zenkctl/HalvorHostFactory.h"

namespace ZenkCtl {

namespace {
constexpr const char* kFaults = "/simulation/faults";
}  // namespace

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
    auto halvor = std::make_unique<HalvorHostFactory>(store);
    if (!StoreFaultSource::CarriesFaults(*store)) return halvor;
    return std::make_unique<HostCtl::Faults::FaultingHostFactory>(std::move(halvor),
                                                                  std::make_shared<StoreFaultSource>(store));
}

}  // namespace ZenkCtl

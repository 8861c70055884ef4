#include "platform/store/InjectedFault.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/store/StoreSchema.h"

namespace ZenkCtl::Store {

void ThrowIfInjected(const HostStore& store, const std::string& operation) {
    // Operation names hold no '/' or '~', so they need no escaping inside a pointer.
    const nlohmann::json fault = store.Get(std::string(Schema::kInjectedFaults) + "/" + operation);
    if (fault.is_string()) throw HostCtl::Lib::HostCtlException(fault.get<std::string>());
}

}  // namespace ZenkCtl::Store

#include "platform/zenkctl/ProductState.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/Log.h"
#include "platform/zenkctl/ProductIdentity.h"

namespace {

struct ProductTexts {
    std::string name, version, build, option;
};

const ProductTexts& Texts() {
    // Read once: the identity of the running product does not change during the process.
    static const ProductTexts texts = [] {
        ZenkCtl::Util::ProductIdentity id;
        try {
            id = ZenkCtl::Util::ProductIdentity::FromJson(
                ZenkCtl::Store::HostStore::System()->Get(ZenkCtl::Store::Schema::kVersion));
        } catch (const HostCtl::Lib::HostCtlException& e) {
            Log_Warning("Using the built-in product identity: %s", e.what());
        }
        return ProductTexts{id.productName, id.productVersion, id.BuildNumberString(), id.compilationOption};
    }();
    return texts;
}

}  // namespace

const char* ProductState_GetName() {
    return Texts().name.c_str();
}
const char* ProductState_GetVersion() {
    return Texts().version.c_str();
}
const char* ProductState_GetBuildNumberString() {
    return Texts().build.c_str();
}
const char* ProductState_GetCompilationOption() {
    return Texts().option.c_str();
}

#include "platform/zenkctl/SystemIdentityImpl.h"

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/Log.h"
#include "platform/zenkctl/ProductIdentity.h"
#include "platform/zenkctl/SysinfoUtil.h"

namespace ZenkCtl::Util {

SystemIdentityImpl::SystemIdentityImpl(std::shared_ptr<Store::HostStore> store) : _store(std::move(store)) {}

HostCtl::Util::SysinfoVersionRecord SystemIdentityImpl::GetVersionRecord() {
    HostCtl::Util::SysinfoVersionRecord record{};
    SysinfoUtil::SysinfoGet(*_store, SYSNODE_system_version, &record, sizeof record);
    return record;
}

HostCtl::Util::SysinfoBootOptions SystemIdentityImpl::GetBootOptions() {
    HostCtl::Util::SysinfoBootOptions options{};
    SysinfoUtil::SysinfoGet(*_store, SYSNODE_boot_options, &options, sizeof options);
    return options;
}

HostCtl::Util::ProductNames SystemIdentityImpl::GetProductNames() {
    ProductIdentity id;
    try {
        id = ProductIdentity::FromJson(_store->Get(Store::Schema::kVersion));
    } catch (const HostCtl::Lib::HostCtlException& e) {
        Log_Warning("Using the built-in product identity: %s", e.what());
    }
    return {id.productName, id.productVersion, id.BuildNumberString(), id.compilationOption, "ZenKernel"};
}

}  // namespace ZenkCtl::Util

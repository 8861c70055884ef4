#include "platform/zenkctl/SysinfoUtil.h"

#include <cerrno>
#include <cstring>

#include "platform/hostctl/HostCtlException.h"
#include "platform/store/StoreSchema.h"
#include "platform/zenkctl/NetworkJson.h"
#include "platform/zenkctl/ProductIdentity.h"

using HostCtl::Lib::HostCtlException;
namespace Json = ZenkCtl::Network::Json;

namespace ZenkCtl::Util {
namespace {

template <size_t N>
void Put(char (&field)[N], const std::string& text) {
    std::memset(field, 0, N);
    std::memcpy(field, text.data(), std::min(text.size(), N - 1));  // always NUL-terminated
}

}  // namespace

void SysinfoUtil::SysinfoGet(const Store::HostStore& store, int node, void* buffer, size_t size) {
    if (buffer == nullptr) throw HostCtlException("No buffer for system information");
    if (node == SYSNODE_system_version) {
        if (size < sizeof(SysinfoVersionRecord))
            throw HostCtlException("Buffer too small for the version record");
        const ProductIdentity id = ProductIdentity::FromJson(store.Get(Store::Schema::kVersion));
        SysinfoVersionRecord record{};
        Put(record.productName, id.productName);
        Put(record.productVersion, id.productVersion);
        Put(record.productLine, id.productLine);
        Put(record.kernelRelease, id.kernelRelease);
        Put(record.buildNumberString, id.BuildNumberString());
        record.buildNumber = id.buildNumber;
        Put(record.releaseDate, id.releaseDate);
        Put(record.compilationOption, id.compilationOption);
        Put(record.productFullName, id.productName + " " + id.productVersion);
        std::memcpy(buffer, &record, sizeof record);
        return;
    }
    if (node == SYSNODE_boot_options) {
        if (size < sizeof(SysinfoBootOptions))
            throw HostCtlException("Buffer too small for the boot options");
        const nlohmann::json options = store.Get(Store::Schema::kBootOptions);
        SysinfoBootOptions record{};
        record.auditMode = Json::Flag(options, "auditMode") ? 1 : 0;
        record.pxeBoot = Json::Flag(options, "pxeBoot") ? 1 : 0;
        std::memcpy(buffer, &record, sizeof record);
        return;
    }
    throw HostCtlException("Unknown system information node " + std::to_string(node));
}

}  // namespace ZenkCtl::Util

#include "text/HostVersionSource.h"

#include "platform/store/HostStore.h"
#include "platform/zenkctl/SysinfoUtil.h"
#include "text/VersionLine.h"

namespace Kovo {

using ZenkCtl::Util::SysinfoUtil;
using ZenkCtl::Util::SysinfoVersionRecord;
using ZenkCtl::Util::SYSNODE_system_version;

std::string ReadHostVersionLine() {
    SysinfoVersionRecord record{};
    SysinfoUtil::SysinfoGet(SYSNODE_system_version, &record, sizeof record, nullptr);
    return FormatVersionLine(record);
}

std::string ReadHostVersionLine(const ZenkCtl::Store::HostStore& store) {
    SysinfoVersionRecord record{};
    SysinfoUtil::SysinfoGet(store, SYSNODE_system_version, &record, sizeof record);
    return FormatVersionLine(record);
}

}  // namespace Kovo

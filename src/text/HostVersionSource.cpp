#include "text/HostVersionSource.h"

#include "platform/hostctl/HostCtlException.h"
#include "text/VersionLine.h"

namespace Kovo {

std::string ReadHostVersionLine() {
    // TODO(strings): read the record through the platform's sysinfo call once it is published.
    throw HostCtl::Lib::HostCtlException("system version record is not readable");
}

}  // namespace Kovo

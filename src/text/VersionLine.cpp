#include "text/VersionLine.h"

#include <cstring>
#include <utility>

#include "platform/hostctl/HostCtlException.h"

namespace Kovo {

namespace {

template <std::size_t N>
std::string Field(const char (&field)[N]) {
    return std::string(field, strnlen(field, N));
}

}  // namespace

std::string FormatVersionLine(const HostCtl::Util::SysinfoVersionRecord& record, const std::string& kernel) {
    return Field(record.productName) + " " + Field(record.productVersion) + " (" + kernel + " " +
           Field(record.kernelRelease) + " Build " + Field(record.buildNumberString) + ")";
}

VersionLine::VersionLine(Source source) : _source(std::move(source)) {}

const char* VersionLine::Get() {
    if (_line.empty()) {
        try {
            _line = _source();
        } catch (const HostCtl::Lib::HostCtlException&) {
            // The host cannot tell its version yet; show nothing now and ask again next time.
        }
    }
    return _line.empty() ? "" : _line.c_str();
}

}  // namespace Kovo

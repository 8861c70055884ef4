#include "text/VersionLine.h"

#include <cstring>
#include <utility>

#include "platform/hostctl/HostCtlException.h"

namespace Kovo {

namespace {

constexpr std::size_t kFieldSize = 32;
constexpr std::size_t kProductOffset = 0;
constexpr std::size_t kVersionOffset = 32;
constexpr std::size_t kKernelReleaseOffset = 96;
constexpr std::size_t kBuildOffset = 128;

std::string Field(std::span<const char, kVersionRecordSize> record, std::size_t offset) {
    const char* start = record.data() + offset;
    return std::string(start, strnlen(start, kFieldSize));
}

}  // namespace

std::string FormatVersionLine(std::span<const char, kVersionRecordSize> record) {
    return Field(record, kProductOffset) + " " + Field(record, kVersionOffset) + " (ZenKernel " +
           Field(record, kKernelReleaseOffset) + " Build " + Field(record, kBuildOffset) + ")";
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

#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>

namespace Kovo {

// Size of the host's system-version record and the fixed text fields the version line is made of.
inline constexpr std::size_t kVersionRecordSize = 312;

// "<product> <version> (ZenKernel <kernel release> Build <build>)" from the raw record. Each field is
// read up to its first NUL but never past its own 32 bytes, so an unterminated field cannot run into
// its neighbour.
std::string FormatVersionLine(std::span<const char, kVersionRecordSize> record);

// The host's version line, read on first need and then kept. While the host cannot report its version
// (the source throws HostCtl::Lib::HostCtlException) the line is empty and the next Get() tries again.
class VersionLine {
public:
    using Source = std::function<std::string()>;

    explicit VersionLine(Source source);

    // Valid until the next Get() that succeeds for the first time; once non-empty it never changes.
    const char* Get();

private:
    Source _source;
    std::string _line;
};

}  // namespace Kovo

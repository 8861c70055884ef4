#pragma once

#include <functional>
#include <string>

#include "platform/hostctl/SystemIdentity.h"

namespace Kovo {

// "<product> <version> (<kernel> <kernel release> Build <build>)" from the host's version record and the
// name of its kernel.
// Each field is read up to its first NUL but never past its own bytes, so an unterminated field cannot
// run into its neighbour.
std::string FormatVersionLine(const HostCtl::Util::SysinfoVersionRecord& record, const std::string& kernel);

// The host's version line, read on first need and then kept. While the host cannot report its version
// (the source throws HostCtl::Lib::HostCtlException) the line is empty and the next Get() tries again.
class VersionLine {
  public:
    using Source = std::function<std::string()>;

    explicit VersionLine(Source source);

    // Once non-empty, the returned text never changes and stays valid as long as this object.
    const char* Get();

  private:
    Source _source;
    std::string _line;
};

}  // namespace Kovo

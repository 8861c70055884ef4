#pragma once

#include <string>

namespace Kovo {

// Reads the host's system-version record and formats the version line from it. Throws
// HostCtl::Lib::HostCtlException when the host cannot report its version.
std::string ReadHostVersionLine();

}  // namespace Kovo

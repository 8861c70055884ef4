#pragma once

#include <string>

namespace ZenkCtl::Store {
class HostStore;
}

namespace Kovo {

// Reads the host's system-version record and formats the version line from it. Throws
// HostCtl::Lib::HostCtlException when the host cannot report its version.
std::string ReadHostVersionLine();

// The same, from a given host store (a host's disk seen from outside it).
std::string ReadHostVersionLine(const ZenkCtl::Store::HostStore& store);

}  // namespace Kovo

#pragma once

#include <string>

#include "platform/hostctl/HostCtlException.h"

namespace LinuxHost {

// What a Linux host cannot do, said as such: the screen shows it instead of claiming a state.
[[noreturn]] inline void NotAvailable(const std::string& what) {
    throw HostCtl::Lib::HostCtlException(what + " is not available on this host");
}

// Management network changes go through the host's network service.
[[noreturn]] inline void NetworkChangeNotAvailable() {
    NotAvailable("Changing the management network from the console");
}

}  // namespace LinuxHost

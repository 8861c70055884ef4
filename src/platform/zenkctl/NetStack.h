#pragma once

#include <string>

#include "platform/hostctl/HostCtlException.h"

namespace ZenkCtl::Network {

// The host has one TCP/IP stack; objects built for another name fail at once.
inline constexpr const char* kDefaultNetStack = "defaultNetStack";

inline void RequireDefaultNetStack(const std::string& netstack) {
    if (netstack != kDefaultNetStack)
        throw HostCtl::Lib::HostCtlException("Unknown network stack " + netstack);
}

}  // namespace ZenkCtl::Network

#pragma once

#include <memory>

#include "platform/hostctl/HostFactory.h"

namespace Kovo {

// The platform of the host this process runs on, chosen once at start-up by what the host is.
std::unique_ptr<HostCtl::HostFactory> ChooseHostPlatform();

}  // namespace Kovo

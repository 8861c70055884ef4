#pragma once

#include "platform/hostctl/Ipv6Address.h"

namespace Kovo {

// True for an address taken as link-local by its first two bytes. Besides fe80::/10 the test also
// matches ff80:: to ffbf:: (multicast); it is kept so on purpose, as static addresses are refused by it.
bool IsLinkLocalByBytes(const HostCtl::Network::Ipv6Address& address);

}  // namespace Kovo

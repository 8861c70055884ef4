#include "network/LinkLocal.h"

namespace Kovo {

bool IsLinkLocalByBytes(const HostCtl::Network::Ipv6Address& address) {
    const auto& bytes = address.GetBytes();
    return (bytes[0] & 0xfe) == 0xfe && (bytes[1] & 0xc0) == 0x80;
}

}  // namespace Kovo

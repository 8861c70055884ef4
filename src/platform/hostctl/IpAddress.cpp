#include "platform/hostctl/IpAddress.h"

#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"

namespace HostCtl::Network {

std::unique_ptr<IpAddress> IpAddress::Parse(const std::string& text) {
    if (Ipv6Address::IsValidAddress(text)) return std::make_unique<Ipv6Address>(text);
    if (Ipv4Address::IsValidAddress(text)) return std::make_unique<Ipv4Address>(text);
    return nullptr;
}

}  // namespace HostCtl::Network

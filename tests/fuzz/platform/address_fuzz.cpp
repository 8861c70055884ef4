// Feeds arbitrary text to every address parser: none may crash, and whatever one accepts must survive a
// round trip through its canonical text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/hostctl/DnsConfig.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/HostsTable.h"
#include "platform/hostctl/IpAddress.h"
#include "platform/hostctl/Ipv4Address.h"
#include "platform/hostctl/Ipv6Address.h"
#include "platform/hostctl/Ipv6Network.h"

using namespace HostCtl::Network;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (Ipv4Address::IsValidAddress(text)) {
        Ipv4Address a(text);
        if (Ipv4Address(a.GetStringAddress()) != a) std::abort();
        (void)a.IsValidNetmask();
    }
    if (Ipv6Address::IsValidAddress(text)) {
        Ipv6Address a(text);
        if (Ipv6Address(a.GetScopedStringAddress()) != a) std::abort();
    }
    if (Ipv6Network::IsValidAddressAndNetmask(text)) {
        Ipv6Network n(text);
        if (!Ipv6Network::IsValidAddressAndNetmask(n.GetStringNetwork())) std::abort();
    } else {
        try {
            Ipv6Network n(text);
            std::abort();  // the constructor must agree with the check
        } catch (const HostCtl::Lib::HostCtlException&) {
        }
    }
    (void)IpAddress::Parse(text);
    (void)HostCtl::Network::IsValidDomain(text);
    bool found = false;
    (void)HostCtl::Network::HostsTable::RemoveName(text, "h1.example.com", found);
    return 0;
}

#include "platform/linux/KernelNetwork.h"

#include <arpa/inet.h>
#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <net/if.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>

#include "platform/hostctl/HostCtlException.h"

namespace LinuxHost {

namespace {

using Lib = HostCtl::Lib::HostCtlException;

struct SocketCloser {
    void operator()(mnl_socket* socket) const { mnl_socket_close(socket); }
};

std::string InterfaceName(uint32_t index) {
    char name[IF_NAMESIZE] = {};
    return if_indextoname(index, name) ? name : std::string();
}

std::string AddressText(int family, const void* bytes) {
    char text[INET6_ADDRSTRLEN] = {};
    return inet_ntop(family, bytes, text, sizeof text) ? text : std::string();
}

// One rtnetlink dump: every message of `type` goes to `each`.
void Dump(uint16_t type, const void* request, size_t requestSize,
          const std::function<void(const nlmsghdr*)>& each) {
    std::unique_ptr<mnl_socket, SocketCloser> socket(mnl_socket_open(NETLINK_ROUTE));
    if (!socket || mnl_socket_bind(socket.get(), 0, MNL_SOCKET_AUTOPID) < 0)
        throw Lib(std::string("Cannot ask the kernel about the network: ") + strerror(errno));
    // Dumps come in parts of up to 32 KiB on current kernels.
    std::vector<char> buffer(32768);
    nlmsghdr* header = mnl_nlmsg_put_header(buffer.data());
    header->nlmsg_type = type;
    header->nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    const uint32_t sequence = static_cast<uint32_t>(time(nullptr));
    header->nlmsg_seq = sequence;
    memcpy(mnl_nlmsg_put_extra_header(header, requestSize), request, requestSize);
    if (mnl_socket_sendto(socket.get(), header, header->nlmsg_len) < 0)
        throw Lib(std::string("Cannot ask the kernel about the network: ") + strerror(errno));
    const uint32_t port = mnl_socket_get_portid(socket.get());
    auto callback = [](const nlmsghdr* message, void* data) -> int {
        (*static_cast<const std::function<void(const nlmsghdr*)>*>(data))(message);
        return MNL_CB_OK;
    };
    for (;;) {
        const ssize_t received = mnl_socket_recvfrom(socket.get(), buffer.data(), buffer.size());
        if (received < 0) throw Lib(std::string("The kernel's network answer was lost: ") + strerror(errno));
        const int result = mnl_cb_run(buffer.data(), static_cast<size_t>(received), sequence, port, callback,
                                      const_cast<std::function<void(const nlmsghdr*)>*>(&each));
        if (result == MNL_CB_ERROR)
            throw Lib(std::string("The kernel refused a network question: ") + strerror(errno));
        if (result == MNL_CB_STOP) return;
    }
}

// The attributes of a message after its fixed header, by type.
template <size_t N>
void Attributes(const nlmsghdr* message, size_t headerSize, const nlattr* (&table)[N]) {
    struct Table {
        const nlattr** entries;
        size_t size;
    } into{table, N};
    mnl_attr_parse(
        message, static_cast<unsigned>(headerSize),
        [](const nlattr* attribute, void* data) -> int {
            auto* t = static_cast<Table*>(data);
            const uint16_t type = mnl_attr_get_type(attribute);
            if (type < t->size) t->entries[type] = attribute;
            return MNL_CB_OK;
        },
        &into);
}

}  // namespace

std::vector<KernelAddress> NetlinkNetwork::Addresses() const {
    std::vector<KernelAddress> addresses;
    ifaddrmsg request{};
    request.ifa_family = AF_UNSPEC;
    Dump(RTM_GETADDR, &request, sizeof request, [&](const nlmsghdr* message) {
        if (message->nlmsg_type != RTM_NEWADDR) return;
        const auto* info = static_cast<const ifaddrmsg*>(mnl_nlmsg_get_payload(message));
        if (info->ifa_family != AF_INET && info->ifa_family != AF_INET6) return;
        const nlattr* table[IFA_MAX + 1] = {};
        Attributes(message, sizeof *info, table);
        // IFA_LOCAL is the interface's own address; IFA_ADDRESS is the peer's on a point-to-point link.
        const nlattr* where = table[IFA_LOCAL] ? table[IFA_LOCAL] : table[IFA_ADDRESS];
        if (!where) return;
        KernelAddress a;
        a.interface = InterfaceName(info->ifa_index);
        a.family = info->ifa_family;
        a.address = AddressText(a.family, mnl_attr_get_payload(where));
        a.prefixLength = info->ifa_prefixlen;
        a.flags = table[IFA_FLAGS] ? mnl_attr_get_u32(table[IFA_FLAGS]) : info->ifa_flags;
        if (table[IFA_CACHEINFO])
            a.validLifetime =
                static_cast<const ifa_cacheinfo*>(mnl_attr_get_payload(table[IFA_CACHEINFO]))->ifa_valid;
        if (!a.interface.empty() && !a.address.empty()) addresses.push_back(std::move(a));
    });
    return addresses;
}

std::vector<KernelRoute> NetlinkNetwork::DefaultRoutes() const {
    std::vector<KernelRoute> routes;
    rtmsg request{};
    request.rtm_family = AF_UNSPEC;
    Dump(RTM_GETROUTE, &request, sizeof request, [&](const nlmsghdr* message) {
        if (message->nlmsg_type != RTM_NEWROUTE) return;
        const auto* info = static_cast<const rtmsg*>(mnl_nlmsg_get_payload(message));
        if (info->rtm_dst_len != 0 || info->rtm_type != RTN_UNICAST) return;
        const nlattr* table[RTA_MAX + 1] = {};
        Attributes(message, sizeof *info, table);
        const uint32_t routeTable = table[RTA_TABLE] ? mnl_attr_get_u32(table[RTA_TABLE]) : info->rtm_table;
        if (routeTable != RT_TABLE_MAIN || !table[RTA_OIF]) return;
        KernelRoute r;
        r.family = info->rtm_family;
        r.interface = InterfaceName(mnl_attr_get_u32(table[RTA_OIF]));
        if (table[RTA_GATEWAY]) r.gateway = AddressText(r.family, mnl_attr_get_payload(table[RTA_GATEWAY]));
        if (table[RTA_PRIORITY]) r.metric = mnl_attr_get_u32(table[RTA_PRIORITY]);
        if (!r.interface.empty()) routes.push_back(std::move(r));
    });
    return routes;
}

}  // namespace LinuxHost

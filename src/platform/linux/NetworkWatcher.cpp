#include "platform/linux/NetworkWatcher.h"

#include <libmnl/libmnl.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <signal.h>
#include <syslog.h>
#include <unistd.h>

#include <cstring>
#include <thread>
#include <vector>

namespace LinuxHost {

namespace {

// A burst (a lease brings an address, a route and a link change) settles within this.
constexpr int kSettleMs = 300;

void Watch(mnl_socket* socket) {
    std::vector<char> buffer(32768);
    pollfd watched{mnl_socket_get_fd(socket), POLLIN, 0};
    for (;;) {
        if (poll(&watched, 1, -1) <= 0) continue;
        // Drain the burst, then tell once.
        do {
            if (mnl_socket_recvfrom(socket, buffer.data(), buffer.size()) < 0 && errno != ENOBUFS) {
                syslog(LOG_WARNING, "Network changes are no longer followed: %s", strerror(errno));
                mnl_socket_close(socket);
                return;
            }
        } while (poll(&watched, 1, kSettleMs) > 0);
        kill(getpid(), SIGUSR1);
    }
}

}  // namespace

void StartNetworkWatcher() {
    mnl_socket* socket = mnl_socket_open(NETLINK_ROUTE);
    if (!socket) return;
    const unsigned groups =
        RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
    if (mnl_socket_bind(socket, groups, MNL_SOCKET_AUTOPID) < 0) {
        mnl_socket_close(socket);
        return;
    }
    // The watcher must never take a signal itself: the console's signal thread waits for them all, and
    // an unblocked SIGUSR1 here would end the process. The thread starts with every signal blocked.
    sigset_t all, previous;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &previous);
    std::thread(Watch, socket).detach();
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

}  // namespace LinuxHost

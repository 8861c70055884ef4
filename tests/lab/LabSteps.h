#pragma once

// Shell steps inside the lab's host, shared by the tests run there and those that drive a console there.

namespace KovoLab {

// Back to a host with no network of its own: every change a test left open undone (a killed console's
// would otherwise hold the devices until its time runs out), every profile gone, both NICs the service's
// again, IPv6 as it was.
inline constexpr const char* kReset =
    "for c in $(busctl get-property org.freedesktop.NetworkManager /org/freedesktop/NetworkManager "
    "org.freedesktop.NetworkManager Checkpoints | grep -o '\"[^\"]*\"' | tr -d '\"'); do "
    "busctl call org.freedesktop.NetworkManager /org/freedesktop/NetworkManager "
    "org.freedesktop.NetworkManager CheckpointRollback o \"$c\" >/dev/null; done; "
    "nmcli -g UUID connection show | xargs -r nmcli connection delete >/dev/null; "
    "nmcli device set e0 managed yes; nmcli device set e1 managed yes; "
    "rm -f /etc/sysctl.d/90-kovo-ipv6.conf";

// Another tool's network, as a Debian host with NetworkManager has it: a DHCP profile on e0, brought up.
// Prints "up" when it is.
inline constexpr const char* kForeignDhcp =
    "nmcli connection add type ethernet ifname e0 con-name 'Wired e0' ipv4.method auto ipv6.method ignore "
    ">/dev/null && nmcli connection up 'Wired e0' >/dev/null && echo up";

}  // namespace KovoLab

#pragma once

// Shell steps inside the lab's host, shared by the tests run there and those that drive a console there.

namespace KovoLab {

// Restarts the lab's network service through its service manager, as the platform does.
#define KOVO_LAB_RESTART_SERVICE                                                                       \
    "busctl call org.freedesktop.systemd1 /org/freedesktop/systemd1 org.freedesktop.systemd1.Manager " \
    "RestartUnit ss NetworkManager.service replace >/dev/null"

// Back to a host with no network of its own: ifupdown configuring nothing (and the service restarted to
// see that), every change a test left open undone (a killed console's would otherwise hold the devices
// until its time runs out), every profile gone, both NICs the service's again, IPv6 as it was.
inline constexpr const char* kReset =
    "rm -f /var/lib/kovo/ifupdown-handover /etc/NetworkManager/conf.d/*; "
    "if grep -qw e0 /etc/network/interfaces; then "
    "ifdown --force e0 >/dev/null 2>&1; printf 'auto lo\niface lo inet loopback\n' "
    ">/etc/network/interfaces; " KOVO_LAB_RESTART_SERVICE
    "; fi; "
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

// A Debian host whose network ifupdown configures: a static address on e0, and a comment and a second
// NIC's stanza that are not the management network's. Prints "up" once e0 has its address.
inline constexpr const char* kIfupdownStatic =
    "nmcli -g UUID connection show | xargs -r nmcli connection delete >/dev/null; ip -4 addr flush dev e0; "
    "printf '# The interfaces, as the installer wrote them.\\nauto lo\\niface lo inet loopback\\n\\n"
    "allow-hotplug e0\\niface e0 inet static\\n\\taddress 192.168.88.44/24\\n\\tgateway 192.168.88.1\\n\\n"
    "iface e1 inet manual\\n' >/etc/network/interfaces && " KOVO_LAB_RESTART_SERVICE
    " && ifup --force e0 >/dev/null 2>&1 && echo up";
// The same host with e0 on DHCP, as Debian's installer sets a host up: ifupdown's DHCP client runs for it.
inline constexpr const char* kIfupdownDhcp =
    "nmcli -g UUID connection show | xargs -r nmcli connection delete >/dev/null; ip -4 addr flush dev e0; "
    "printf 'auto lo\\niface lo inet loopback\\n\\nallow-hotplug e0\\niface e0 inet dhcp\\n' "
    ">/etc/network/interfaces && " KOVO_LAB_RESTART_SERVICE " && ifup --force e0 >/dev/null 2>&1 && echo up";

}  // namespace KovoLab

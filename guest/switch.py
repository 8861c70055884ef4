#!/usr/bin/python3
"""The guest's lab switch: its NICs' ports, an access port to the lab's LAN and one to VLAN 20.

  switch.py DIR LAN_TAP VLAN_TAP

Each guest NIC is a qemu datagram netdev whose frames arrive on DIR/nicN.switch (N = 0, 1) and go back
to DIR/nicN.qemu. The guest's ports are trunks: untagged frames belong to the lab's LAN, frames tagged
with VLAN 20 to VLAN 20, and any other tag is dropped. The two access ports are tap devices this switch
creates in the namespace it runs in: LAN_TAP (for the lab's bridge) and VLAN_TAP (VLAN 20's own
segment), both untagged. The kernel's bridge would do this with VLAN filtering, which the machines the
tests run on do not always have.

Frames are flooded, as by a hub, except between the guest's own ports, which never talk to each other
(a bond's backup port must not hear the active one). Runs until it is killed.
"""
import fcntl
import os
import selectors
import socket
import struct
import sys

TUNSETIFF = 0x400454CA
IFF_TAP, IFF_NO_PI = 0x0002, 0x1000
TPID = b"\x81\x00"
VLAN = 20
NICS = 2


def open_tap(name):
    fd = os.open("/dev/net/tun", os.O_RDWR)
    fcntl.ioctl(fd, TUNSETIFF, struct.pack("16sH", name.encode(), IFF_TAP | IFF_NO_PI))
    return fd


def tagged(frame):
    """The frame with VLAN 20's tag after its two addresses."""
    return frame[:12] + TPID + struct.pack("!H", VLAN) + frame[12:]


def main(argv):
    if len(argv) != 4:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    run_dir, lan_name, vlan_name = argv[1:]
    lan, vlan = open_tap(lan_name), open_tap(vlan_name)
    ports = []
    for n in range(NICS):
        path = os.path.join(run_dir, f"nic{n}.switch")
        if os.path.exists(path):
            os.unlink(path)
        sock = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        sock.bind(path)
        ports.append((sock, os.path.join(run_dir, f"nic{n}.qemu")))

    def to_guest(frame):
        for sock, peer in ports:
            try:
                sock.sendto(frame, peer)
            except OSError:
                pass  # that NIC's qemu end is not there (yet): the frame is lost, as on a cable

    selector = selectors.DefaultSelector()
    selector.register(lan, selectors.EVENT_READ, "lan")
    selector.register(vlan, selectors.EVENT_READ, "vlan")
    for sock, _ in ports:
        selector.register(sock, selectors.EVENT_READ, "guest")
    while True:
        for key, _ in selector.select():
            if key.data == "lan":
                to_guest(os.read(lan, 65536))
            elif key.data == "vlan":
                to_guest(tagged(os.read(vlan, 65536)))
            else:
                frame = key.fileobj.recv(65536)
                if len(frame) < 14:
                    continue
                try:
                    if frame[12:14] != TPID:
                        os.write(lan, frame)
                    elif len(frame) >= 18 and struct.unpack("!H", frame[14:16])[0] & 0x0FFF == VLAN:
                        os.write(vlan, frame[:12] + frame[16:])
                except OSError:
                    pass  # an access port that is down drops the frame


if __name__ == "__main__":
    sys.exit(main(sys.argv))

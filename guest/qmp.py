#!/usr/bin/python3
"""qemu's machine protocol (QMP) over its unix socket: the client the other guest tools share.

  qmp.py SOCKET link NIC up|down    the guest's NIC (its netdev id: nic0, nic1) gains or loses its link
"""
import json
import socket
import sys


class QmpError(Exception):
    pass


class Qmp:
    def __init__(self, path):
        self.sock = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.sock.settimeout(10.0)
        self.sock.connect(path)
        self.buf = b""
        self._message()  # the greeting
        self.call("qmp_capabilities")

    def _message(self):
        while True:
            line, newline, rest = self.buf.partition(b"\n")
            if newline:
                self.buf = rest
                message = json.loads(line)
                if "event" not in message:
                    return message
                continue
            data = self.sock.recv(65536)
            if not data:
                raise QmpError("qemu closed its QMP socket")
            self.buf += data

    def call(self, command, arguments=None):
        message = {"execute": command}
        if arguments is not None:
            message["arguments"] = arguments
        self.sock.sendall(json.dumps(message).encode() + b"\n")
        reply = self._message()
        if "error" in reply:
            raise QmpError(reply["error"].get("desc", str(reply["error"])))
        return reply.get("return")



def main(argv):
    if len(argv) != 5 or argv[2] != "link" or argv[4] not in ("up", "down"):
        print(__doc__.strip(), file=sys.stderr)
        return 2
    try:
        Qmp(argv[1]).call("set_link", {"name": argv[3], "up": argv[4] == "up"})
    except (OSError, QmpError, ValueError) as e:
        print(f"qmp: {e}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

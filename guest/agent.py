#!/usr/bin/python3
"""Client of the guest agent over qemu's unix socket for the guest's virtio-serial channel.

  agent.py wait SOCKET [--timeout S] [--pid QEMU_PID]   until the agent answers guest-ping
  agent.py exec SOCKET -- COMMAND [ARGS...]              run as root in the guest, relay output and status

The channel works without the guest's network; it needs only qemu-guest-agent running in the guest.
"""
import argparse
import base64
import json
import os
import random
import socket
import sys
import time

CALL_TIMEOUT = 30.0


class AgentGone(Exception):
    """The channel closed or stayed silent: the agent is not (or no longer) there."""


class AgentError(Exception):
    """The agent answered a command with an error."""


class Agent:
    def __init__(self, path, timeout=CALL_TIMEOUT):
        self.sock = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.sock.settimeout(timeout)
        self.sock.connect(path)
        self.buf = b""

    def close(self):
        self.sock.close()

    def _fill(self):
        try:
            data = self.sock.recv(65536)
        except socket.timeout as e:
            raise AgentGone("the guest agent did not answer") from e
        except OSError as e:
            raise AgentGone(f"the guest agent's channel failed: {e}") from e
        if not data:
            raise AgentGone("the guest agent's channel closed")
        self.buf += data

    def _send_raw(self, data):
        try:
            self.sock.sendall(data)
        except OSError as e:
            raise AgentGone(f"the guest agent's channel failed: {e}") from e

    def _send(self, message):
        self._send_raw(json.dumps(message).encode() + b"\n")

    def _reply(self):
        # The agent ends each reply with a line end; sync markers (0xFF) may come before one.
        while True:
            self.buf = self.buf.lstrip(b"\xff \t\r\n")
            line, newline, rest = self.buf.partition(b"\n")
            if newline:
                self.buf = rest
                try:
                    return json.loads(line)
                except ValueError:
                    continue  # the tail of a reply cut short for an earlier client
            self._fill()

    def sync(self):
        """Leaves the channel in step with this client.

        Replies meant for an earlier client (one that gave up while the guest was still booting) can
        still be on the way. guest-sync-delimited with a fresh id answers behind a 0xFF marker; every
        reply before the one carrying our id is dropped. The leading 0xFF resets the agent's parser.
        """
        token = random.randrange(1, 2**31)
        self._send_raw(b"\xff")
        self._send({"execute": "guest-sync-delimited", "arguments": {"id": token}})
        while b"\xff" not in self.buf:
            self.buf = b""
            self._fill()
        self.buf = self.buf[self.buf.index(b"\xff") + 1:]
        while self._reply().get("return") != token:
            pass

    def call(self, command, arguments=None):
        message = {"execute": command}
        if arguments is not None:
            message["arguments"] = arguments
        self._send(message)
        reply = self._reply()
        if "error" in reply:
            raise AgentError(reply["error"].get("desc", str(reply["error"])))
        return reply.get("return")


def alive(pid):
    try:
        os.kill(pid, 0)
        return True
    except ProcessLookupError:
        return False


def wait(args):
    deadline = time.monotonic() + args.timeout
    while True:
        if args.pid and not alive(args.pid):
            print("agent: qemu is no longer running", file=sys.stderr)
            return 1
        try:
            agent = Agent(args.socket, timeout=2.0)
            try:
                agent.sync()
                agent.call("guest-ping")
                return 0
            finally:
                agent.close()
        except (OSError, AgentGone):
            pass
        if time.monotonic() >= deadline:
            print(f"agent: no answer from the guest agent within {args.timeout:g} s", file=sys.stderr)
            return 1
        time.sleep(0.5)


def exec_command(args):
    if not args.command:
        print("agent: exec needs a command", file=sys.stderr)
        return 2
    try:
        agent = Agent(args.socket)
        agent.sync()
    except (OSError, AgentGone) as e:
        print(f"agent: the guest agent does not answer: {e}", file=sys.stderr)
        return 255
    try:
        pid = agent.call("guest-exec", {"path": args.command[0], "arg": args.command[1:],
                                        "capture-output": True})["pid"]
    except AgentError as e:
        print(f"agent: {args.command[0]}: {e}", file=sys.stderr)
        return 127
    except AgentGone as e:
        print(f"agent: {e}", file=sys.stderr)
        return 255
    delay = 0.005
    try:
        while True:
            status = agent.call("guest-exec-status", {"pid": pid})
            if status["exited"]:
                break
            time.sleep(delay)
            delay = min(delay * 2, 0.2)
    except AgentGone as e:
        # Expected after 'poweroff' or 'reboot': the agent ends with the guest.
        print(f"agent: {e} before {args.command[0]} ended", file=sys.stderr)
        return 255
    for key, stream in (("out-data", sys.stdout.buffer), ("err-data", sys.stderr.buffer)):
        if key in status:
            stream.write(base64.b64decode(status[key]))
            stream.flush()
    for key in ("out-truncated", "err-truncated"):
        if status.get(key):
            print(f"agent: the guest agent cut the command's {key.split('-')[0]}put short",
                  file=sys.stderr)
    if "signal" in status:
        return 128 + status["signal"]
    return status.get("exitcode", 0)


def main():
    parser = argparse.ArgumentParser(prog="agent.py")
    sub = parser.add_subparsers(dest="action", required=True)
    p = sub.add_parser("wait")
    p.add_argument("socket")
    p.add_argument("--timeout", type=float, default=300)
    p.add_argument("--pid", type=int, default=0)
    p = sub.add_parser("exec")
    p.add_argument("socket")
    p.add_argument("command", nargs=argparse.REMAINDER)
    args = parser.parse_args()
    if args.action == "wait":
        return wait(args)
    if args.command and args.command[0] == "--":
        args.command = args.command[1:]
    return exec_command(args)


if __name__ == "__main__":
    sys.exit(main())

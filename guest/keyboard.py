#!/usr/bin/python3
"""Keys pressed on the guest's own keyboard (its PS/2 keyboard), through qemu's QMP socket.

  keyboard.py SOCKET [KEY | --text TEXT]...

A KEY is a qemu key code, with modifiers joined by '-': f2, ret, esc, down, spc, shift-a, ctrl-alt-f1.
--text types TEXT as a US keyboard would produce it (the guest's keymap decides what it becomes). Keys
go in the order given. What they reach is the guest's foreground virtual console, not its serial line.
"""
import sys
import time

from qmp import Qmp, QmpError

HOLD_MS = 50
# qemu releases a key after the hold time; the next one waits until then, so none overlap.
GAP = (HOLD_MS + 30) / 1000

SHIFTED = {
    "!": "1", "@": "2", "#": "3", "$": "4", "%": "5", "^": "6", "&": "7", "*": "8", "(": "9", ")": "0",
    "_": "minus", "+": "equal", "{": "bracket_left", "}": "bracket_right", "|": "backslash",
    ":": "semicolon", '"': "apostrophe", "<": "comma", ">": "dot", "?": "slash", "~": "grave_accent",
}
PLAIN = {
    " ": "spc", "-": "minus", "=": "equal", "[": "bracket_left", "]": "bracket_right",
    "\\": "backslash", ";": "semicolon", "'": "apostrophe", ",": "comma", ".": "dot", "/": "slash",
    "`": "grave_accent", "\n": "ret", "\t": "tab",
}


class Keyboard(Qmp):
    def press(self, codes):
        self.call("send-key", {"keys": [{"type": "qcode", "data": c} for c in codes],
                               "hold-time": HOLD_MS})
        time.sleep(GAP)


def codes_of_char(c):
    if c.isascii() and (c.islower() or c.isdigit()):
        return [c]
    if c.isascii() and c.isupper():
        return ["shift", c.lower()]
    if c in PLAIN:
        return [PLAIN[c]]
    if c in SHIFTED:
        return ["shift", SHIFTED[c]]
    raise QmpError(f"no key types {c!r} on a US keyboard")


def main(argv):
    if len(argv) < 2:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    strokes = []
    args = argv[2:]
    try:
        while args:
            if args[0] == "--text":
                if len(args) < 2:
                    raise QmpError("--text needs a text")
                strokes += [codes_of_char(c) for c in args[1]]
                args = args[2:]
            else:
                strokes.append(args[0].split("-"))
                args = args[1:]
        qmp = Keyboard(argv[1])
        for codes in strokes:
            qmp.press(codes)
    except (OSError, QmpError, ValueError) as e:
        print(f"keyboard: {e}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))

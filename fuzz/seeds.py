#!/usr/bin/env python3
"""Makes seeds for the fuzz targets from a board on which a daemon has worked: the frames of its
trace (kinds `bus`), its store and its EDIDs, and the example files.

  fuzz/seeds.py BOARD     writes fuzz/seeds/TARGET/NAME; what is there already stays

Frames of the same kind (register space, operation, length) are kept once."""

import hashlib
import pathlib
import struct
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SEEDS = ROOT / "fuzz" / "seeds"
ENVELOPE = 28
AS_IT_STANDS, OWN_ADDRESS, SIXTEENFOLD = 0x8000, 0x4000, 0x1000
MOST_FRAME = 600
STORED = {  # target: the address and length of its pieces, and how much of them a seed takes
    "image": ([(0xA60010, 1), (0xC20000, 0x60), (0xA5C000, 768), (0xA3B100, 512),
               (0xA3C000, 40960)], 1889),
    "shortcut": ([(0xB99000, 0x1000)], 256),
    "settings": ([(0x200000, 0x100)], 72),
    "gamma": ([(0xD00000, 4), (0xD01000, 4), (0xD02000, 4), (0xC21000, 0x200)], 524),
    "identity": ([(0x1000, 0x100), (0xA01000, 0x100)], 512),
    "storedfiles": ([(0xE00000, 0x4000)], 0x4000),
    "plans": ([(0xB8B000, 0x1400)], 1024),
}
CHOICES = {"image": [b"\0", b"\1"]}  # bytes in front of the pieces: a start, a first boot
EXAMPLES = {"brightness-": 0, "wall-": 1, "card-file": 2, "gamma-": 3, "demo": 4}


def keep(target, content):
    folder = SEEDS / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / hashlib.sha1(content).hexdigest()[:12]).write_bytes(content)


def frames(trace):
    """The frames towards the daemon, one of each kind."""
    seen = set()
    for line in trace.read_text(errors="replace").splitlines():
        words = line.split()
        if len(words) < 6 or words[1] != "bus" or words[2] != ">":
            continue
        frame = bytes.fromhex(words[-1])
        kind = (frame[6], frame[10], frame[12:16], len(frame).bit_length())
        if kind not in seen and len(frame) <= MOST_FRAME:
            seen.add(kind)
            yield frame


def long_writes():
    """Steps that write to a space with a buffer of 4096 bytes: as far as that, and past it."""
    for length in (257, 258):
        frame = struct.pack("<HBBBBBBHBBI", 0x55AA, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0xF0000000)
        yield struct.pack("<H", length | OWN_ADDRESS | SIXTEENFOLD) + frame.ljust(length, b"\0")


def main():
    board = pathlib.Path(sys.argv[1])
    rows = list(frames(board / "trace.log"))
    for at in range(0, len(rows), 4):
        step = b"".join(struct.pack("<H", len(frame) | AS_IT_STANDS | OWN_ADDRESS) + frame
                        for frame in rows[at:at + 4])
        keep("request", step + b"\0\0")
    keep("request", b"".join(long_writes()))
    for frame in rows[::8]:
        keep("frame", frame)
    store = (board / "usr/zeph/etc/envcfg/brmpara").read_bytes()
    for target, (pieces, most) in STORED.items():
        content = b"".join(store[address:address + length] for address, length in pieces)
        for choice in CHOICES.get(target, [b""]):
            keep(target, choice + content[:most].rstrip(b"\xff"))
    keep("environment", (board / "usr/zeph/etc/envcfg/env").read_bytes())
    keep("environment", (board / "board.conf").read_bytes()[:2000])
    for edid in (board / "inputs").glob("*.edid"):
        keep("edid", edid.read_bytes())
    for file in (ROOT / "examples").iterdir():
        for prefix, kind in EXAMPLES.items():
            if file.name.startswith(prefix):
                keep("clientfiles", bytes([kind]) + file.read_bytes())


if __name__ == "__main__":
    sys.exit(main())

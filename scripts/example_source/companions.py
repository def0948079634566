"""Companions "._name": what a system without extended attributes keeps of them."""

import struct

FINDER_INFO = 9
RESOURCE_FORK = 2
ENTRIES_PLACE = 120


def aligned(size):
    return (size + 3) // 4 * 4


def companion(attributes):
    """The archiver's form; `attributes` are pairs of name and bytes."""
    names = [name.encode("utf-8") + b"\0" for name, _ in attributes]
    values_place = ENTRIES_PLACE + sum(aligned(11 + len(name)) for name in names)
    entries = b""
    values = b""
    for name, (_, value) in zip(names, attributes):
        entry = struct.pack(">IIHB", values_place + len(values), len(value), 0, len(name)) + name
        entries += entry.ljust(aligned(len(entry)), b"\0")
        values += value
    size = values_place + len(values)
    header = struct.pack(">II16sH", 0x00051607, 0x00020000, b"Mac OS X        ", 2)
    header += struct.pack(">III", FINDER_INFO, 50, size - 50)
    header += struct.pack(">III", RESOURCE_FORK, size, 0)
    block = struct.pack(">IIIII12xHH", 0x41545452, 0, size, values_place, len(values), 0,
                        len(attributes))
    return header + bytes(34) + block + entries + values


def last_used(seconds, nanoseconds):
    """The value of com.apple.lastuseddate#PS."""
    return struct.pack("<qq", seconds, nanoseconds)

"""Metadata containers built byte by byte: AppleDouble companions and images with a position."""

from __future__ import annotations

import struct
import zlib

Rational = tuple[int, int]
FINDER_SIZE, HEADER_PLACE, ENTRIES_PLACE = 32, 84, 120


def last_used(seconds: int, nanoseconds: int) -> bytes:
    return struct.pack("<qq", seconds, nanoseconds)


def finder_info(date_added: int) -> bytes:
    return bytes(20) + struct.pack(">I", date_added) + bytes(8)


def apple_double(attributes: dict[str, bytes], padded: bool, date_added: int = 0) -> bytes:
    """A companion in the kernel's padded shape or in the archiver's compact one."""
    names = [name.encode("utf-8") + b"\0" for name in attributes]
    values_place = ENTRIES_PLACE + sum((11 + len(name) + 3) & ~3 for name in names)
    table, values = b"", b""
    for name, value in zip(names, attributes.values()):
        entry = struct.pack(">IIHB", values_place + len(values), len(value), 0, len(name)) + name
        table += entry.ljust((len(entry) + 3) & ~3, b"\0")
        values += value
    end = values_place + len(values)
    total = max(3810, end) if padded else end
    header = struct.pack(">4sIIII12sHH", b"ATTR", 7, total, values_place, len(values), bytes(12),
                         0, len(names))
    fork = b"This resource fork intentionally left blank".ljust(286, b"\0") if padded else b""
    start = struct.pack(">II16sH", 0x00051607, 0x00020000, b"Mac OS X        ", 2)
    start += struct.pack(">III", 9, 50, total - 50) + struct.pack(">III", 2, total, len(fork))
    body = start + finder_info(date_added) + b"\0\0" + header + table + values
    return body.ljust(total, b"\0") + fork


def exif_block(order: str, latitude: list[Rational] | None, latitude_letter: str | None,
               longitude: list[Rational] | None, longitude_letter: str | None) -> bytes:
    """A TIFF structure of two directories; order is "<" or ">"."""
    values: list[tuple[int, int, int, bytes]] = []
    for tag, letter in ((1, latitude_letter), (3, longitude_letter)):
        if letter is not None:
            values.append((tag, 2, 2, letter.encode("ascii").ljust(4, b"\0")))
    for tag, parts in ((2, latitude), (4, longitude)):
        if parts is not None:
            values.append((tag, 5, len(parts), b"".join(struct.pack(order + "II", *part)
                                                        for part in parts)))
    values.sort()
    position_place = 8 + 2 + 12 + 4
    data_place = position_place + 2 + 12 * len(values) + 4
    entries, data = b"", b""
    for tag, kind, count, content in values:
        entries += struct.pack(order + "HHI", tag, kind, count)
        if len(content) <= 4:
            entries += content
        else:
            entries += struct.pack(order + "I", data_place + len(data))
            data += content
    head = (b"II" if order == "<" else b"MM") + struct.pack(order + "HI", 42, 8)
    first = struct.pack(order + "HHHIII", 1, 0x8825, 4, 1, position_place, 0)
    return head + first + struct.pack(order + "H", len(values)) + entries + bytes(4) + data


def jpeg(block: bytes) -> bytes:
    def segment(marker: int, payload: bytes) -> bytes:
        return struct.pack(">HH", marker, len(payload) + 2) + payload
    return (b"\xff\xd8" + segment(0xFFE0, b"JFIF\0\x01\x02\0\0\x01\0\x01\0\0")
            + segment(0xFFE1, b"http://ns.adobe.com/xap/1.0/\0<x/>")
            + segment(0xFFE1, b"Exif\0\0" + block) + b"\xff\xda\0\x02\0\xff\xd9")


def png(block: bytes, late: bool) -> bytes:
    def chunk(kind: bytes, payload: bytes) -> bytes:
        checksum = zlib.crc32(kind + payload)
        return struct.pack(">I", len(payload)) + kind + payload + struct.pack(">I", checksum)
    picture = chunk(b"IDAT", zlib.compress(b"\0\0"))
    position = chunk(b"eXIf", block)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 1, 1, 8, 0, 0, 0, 0))
            + (picture + position if late else position + picture) + chunk(b"IEND", b""))

"""Small pictures with a position, made from their bytes."""

import struct
import zlib

# A step of the level is 15 * 13 / 8 of 256 shades.
QUANTIZATION = b"\xff\xdb\x00\x43\x00" + b"\x0d" * 64
# Codes of the level: 0 for "as before", 10 for a step of four bits. Of the detail: 0 for none.
LEVEL_CODES = b"\xff\xc4\x00\x15\x00" + bytes([1, 1] + [0] * 14) + bytes([0, 4])
DETAIL_CODES = b"\xff\xc4\x00\x14\x10" + bytes([1] + [0] * 15) + bytes([0])
LEVEL_STEP = 15


def position_block(order, latitude, longitude, camera):
    """A TIFF block with a camera's name and a GPS directory.

    `order` is ">" or "<"; a position is a letter and three pairs of numerator and denominator.
    """
    letters = {">": b"MM", "<": b"II"}[order]
    name = camera.encode("ascii") + b"\0"
    name_place = 8 + 2 + 2 * 12 + 4
    gps_place = name_place + len(name) + len(name) % 2
    values_place = gps_place + 2 + 4 * 12 + 4
    first = struct.pack(order + "H" + "HHII" * 2 + "I", 2,
                        0x010F, 2, len(name), name_place,
                        0x8825, 4, 1, gps_place, 0)
    gps = struct.pack(order + "H", 4)
    values = b""
    for tag, (letter, *parts) in ((1, latitude), (3, longitude)):
        gps += struct.pack(order + "HHI4s", tag, 2, 2, letter.encode("ascii"))
        gps += struct.pack(order + "HHII", tag + 1, 5, 3, values_place + len(values))
        for part in parts:
            values += struct.pack(order + "II", *part)
    gps += struct.pack(order + "I", 0)
    header = letters + struct.pack(order + "HI", 42, 8)
    return header + first + name + b"\0" * (len(name) % 2) + gps + values


def scan(blocks_wide, blocks_high):
    """Bands of grey, brighter from top to bottom, as the bits of a JPEG's only scan."""
    bits = ""
    for row in range(blocks_high):
        bits += "10" + format(LEVEL_STEP, "04b") + "0"
        bits += "00" * (blocks_wide - 1)
    bits += "1" * (-len(bits) % 8)
    packed = bytes(int(bits[i:i + 8], 2) for i in range(0, len(bits), 8))
    return packed.replace(b"\xff", b"\xff\x00")


def jpeg(block, blocks_wide=8, blocks_high=6):
    """A grey picture; `block` is what position_block makes, or empty for a picture without."""
    exif = b"Exif\0\0" + block
    segment = b"\xff\xe1" + struct.pack(">H", len(exif) + 2) + exif if block else b""
    frame = b"\xff\xc0" + struct.pack(">HBHHB", 11, 8, blocks_high * 8, blocks_wide * 8, 1)
    return (b"\xff\xd8" + segment + QUANTIZATION + frame + bytes([1, 0x11, 0]) + LEVEL_CODES +
            DETAIL_CODES + b"\xff\xda\x00\x08\x01\x01\x00\x00\x3f\x00" +
            scan(blocks_wide, blocks_high) + b"\xff\xd9")


def chunk(kind, content):
    return (struct.pack(">I", len(content)) + kind + content +
            struct.pack(">I", zlib.crc32(kind + content)))


def png(block, side=16):
    """A grey square. Its bytes are stored, since compressors differ in what they make."""
    lines = (b"\0" + b"\x60" * side) * side
    stored = (b"\x78\x01\x01" + struct.pack("<HH", len(lines), len(lines) ^ 0xFFFF) + lines +
              struct.pack(">I", zlib.adler32(lines)))
    header = struct.pack(">IIBBBBB", side, side, 8, 0, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", stored) +
            chunk(b"eXIf", block) + chunk(b"IEND", b""))

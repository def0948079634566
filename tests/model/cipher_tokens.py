#!/usr/bin/env python3
"""Derives tokens of the log cipher from its description, without the plug-in's code.

Prints the rows of the table in encryptor_string_test.cpp: for each case the text and its token as
base64, made with the random byte 0x5A.
"""
import base64
import hashlib
import struct
import zlib

KEY = struct.pack("<Q", 0x5C3E91D7A2B46F18)
RANDOM_BYTE = 0x5A


def crc16_iso_3309(data: bytes) -> int:
    crc = 0xFFFF
    for byte in data:
        crc ^= byte
        for _ in range(8):
            crc = (crc >> 1) ^ (0x8408 if crc & 1 else 0)
    return crc ^ 0xFFFF


def token(data: bytes, compress: str, protect: str) -> str:
    flags = 0
    packed = struct.pack(">I", len(data)) + zlib.compress(data, 9)
    if compress == "always" or (compress == "auto" and len(packed) < len(data)):
        data, flags = packed, flags | 0x01
    integrity = b""
    if protect == "checksum":
        integrity, flags = struct.pack(">H", crc16_iso_3309(data)), flags | 0x02
    elif protect == "hash":
        integrity, flags = hashlib.sha1(data).digest(), flags | 0x04
    body = bytearray([RANDOM_BYTE]) + integrity + data
    previous = 0
    for position, byte in enumerate(body):
        previous = byte ^ KEY[position % 8] ^ previous
        body[position] = previous
    return base64.b64encode(bytes([3, flags]) + bytes(body)).decode()


CASES = [
    ("", "auto", "checksum"),
    ("one line of a log", "auto", "checksum"),
    ("größer als ASCII ✓", "auto", "checksum"),
    ("a" * 200, "auto", "checksum"),
    ("one line of a log", "never", "hash"),
    ("one line of a log", "always", "none"),
]

if __name__ == "__main__":
    assert crc16_iso_3309(b"123456789") == 0x906E
    for text, compress, protect in CASES:
        print(f"{compress:7} {protect:9} {text[:20]!r:24} {token(text.encode(), compress, protect)}")

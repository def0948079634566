#!/usr/bin/env python3
"""Writes the seeds of the fuzz targets cipher and source_tree:  fuzz/make_seeds.py

The same script always writes the same bytes. Bytes of companions, images, attributes and indexes
come from the seeds of the targets that read them alone.
"""

from __future__ import annotations

import base64
import pathlib
import plistlib
import struct
import zlib

CORPUS = pathlib.Path(__file__).parent / "corpus"

# As in source_tree.cpp.
(ALICE_BOOKMARKS, ALICE_HISTORY, ALICE_TRANSFERS, ALICE_PREFERENCES, ALICE_DOCUMENTS,
 BOB_BOOKMARKS, BOB_HISTORY, BOB_TRANSFERS, BOB_PREFERENCES, BOB_DOCUMENTS,
 STORE, INDEX, DATA_STORE, ALICE_SUPPORT, USERS, ROOT) = range(16)
FILE, DUCK, TRANSFER, COMPANION, KNOWN_NAME, ATTRIBUTE, QUEUE, LINK, FIFO, FOLDER = range(10)
PREFERENCES_NAME, STORE_NAME, HIDDEN_STORE_NAME, CONFIGURATION_NAME = b"\0", b"\1", b"\2", b"\3"
HOME_FOLDER, WITH_LOG, WITH_ATTRIBUTES = 1, 2, 4

BOOKMARK = {"Nickname": "Work", "Hostname": "ftp.example.org", "Port": "22", "Protocol": "sftp",
            "UUID": "0f", "Username": "alice", "Path": "/srv", "Comment": "a\nb",
            "Access Timestamp": "1589021112345",
            "Download Folder Dictionary": {"Path": "~/Documents"},
            "Upload Folder Dictionary": {"Path": "~"}}
QUEUED = {"Type": "download", "UUID": "1f", "Size": "10", "Timestamp": "1589021112345",
          "Host": BOOKMARK,
          "Items": [{"Local Dictionary": {"Path": "~/Documents/a.jpg"},
                     "Remote": {"Type": "file", "Remote": "/srv/a.jpg",
                                "Attributes": {"Modified": "1589021112345", "Duplicate": "0",
                                               "Permission": {"Mask": "644"}}}}]}
PREFERENCES = {"s3.storage.class": "STANDARD", "queue.upload.action": "similar",
               "connection.timeout.seconds": "30", "connection.login.useKeychain": "true",
               "browser.charset.encoding": "UTF-8"}


def entry(kind: int, place: int, name: bytes, content: bytes = b"") -> bytes:
    return bytes((kind, place, len(name))) + name + struct.pack("<H", len(content)) + content


def xml(value: object) -> bytes:
    return plistlib.dumps(value)


def binary(value: object) -> bytes:
    return plistlib.dumps(value, fmt=plistlib.FMT_BINARY)


def of(target: str, name: str) -> bytes:
    return (CORPUS / target / name).read_bytes()


def sources() -> dict[str, bytes]:
    stored = b"com.apple.metadata:kMDItem"
    return {
        "lists_xml": bytes((WITH_LOG,)) + entry(DUCK, ALICE_BOOKMARKS, b"a", xml(BOOKMARK))
        + entry(DUCK, ALICE_HISTORY, b"a/b/c", xml(BOOKMARK))
        + entry(TRANSFER, ALICE_TRANSFERS, b"a", xml(QUEUED))
        + entry(KNOWN_NAME, ALICE_PREFERENCES, PREFERENCES_NAME, xml(PREFERENCES)),
        "lists_binary": bytes((HOME_FOLDER,)) + entry(DUCK, BOB_BOOKMARKS, b"a", binary(BOOKMARK))
        + entry(DUCK, BOB_HISTORY, b"a", binary(BOOKMARK))
        + entry(TRANSFER, BOB_TRANSFERS, b"a", binary(QUEUED))
        + entry(KNOWN_NAME, BOB_PREFERENCES, PREFERENCES_NAME, binary(PREFERENCES)),
        "local_copies": bytes((WITH_LOG | WITH_ATTRIBUTES,))
        + entry(QUEUE, ALICE_TRANSFERS, b"q", b"~/Documents/a.jpg\n~/Documents/b\n~/Documents\n~/x")
        + entry(FILE, ALICE_DOCUMENTS, b"a.jpg", of("image_gps", "jpeg"))
        + entry(COMPANION, ALICE_DOCUMENTS, b"a.jpg", of("apple_double", "archive"))
        + entry(FILE, ALICE_DOCUMENTS, b"b", b"text")
        + entry(ATTRIBUTE, ALICE_DOCUMENTS, b"b", stored + b"WhereFroms\0" + binary(["http://a/"]))
        + entry(ATTRIBUTE, ALICE_DOCUMENTS, b"b", stored + b"FinderComment\0" + binary("a note")),
        "index": bytes((WITH_LOG | WITH_ATTRIBUTES,))
        + entry(KNOWN_NAME, STORE, STORE_NAME, of("spotlight_store", "zlib"))
        + entry(KNOWN_NAME, INDEX, CONFIGURATION_NAME,
                binary({"Stores": {"A": {"PartialPath": "/"}}}))
        + entry(FILE, USERS, "a:b\u0301".encode(), b"x")
        + entry(QUEUE, BOB_TRANSFERS, b"q", "~/../a:b\u0301\n~/Documents/a".encode())
        + entry(FILE, BOB_DOCUMENTS, b"a", b"x"),
        "links_and_pipes": bytes((WITH_LOG,))
        + entry(LINK, ALICE_BOOKMARKS, b"out.duck", b"../../../../../../../beside")
        + entry(LINK, ALICE_BOOKMARKS, b"passwords.duck", b"/etc/passwd")
        + entry(LINK, ALICE_BOOKMARKS, b"self.duck", b"self.duck")
        + entry(LINK, ALICE_SUPPORT, b"Cyberduck/History", b"/Users/bob")
        + entry(LINK, ALICE_DOCUMENTS, b"out", b"../../../../beside")
        + entry(FIFO, ALICE_BOOKMARKS, b"pipe.duck")
        + entry(FOLDER, ALICE_BOOKMARKS, b"folder.duck")
        + entry(FIFO, ALICE_DOCUMENTS, b"pipe.jpg")
        + entry(QUEUE, ALICE_TRANSFERS, b"q",
                b"~/Documents/out/Library\n~/../../../beside\n~/Documents/pipe.jpg\n~/../../etc"),
        "odd_names": bytes((WITH_LOG,))
        + entry(DUCK, ALICE_BOOKMARKS, b"a\n[2020-Jan-01T00-00-00][HALDO_BENCH]", b"broken")
        + entry(DUCK, ALICE_BOOKMARKS, b"\x1b[2J\r\xe2\x80\xae", b"broken")
        + entry(DUCK, ALICE_BOOKMARKS, b"\xff\xfe not text", xml(BOOKMARK))
        + entry(DUCK, ALICE_BOOKMARKS, b".hidden/a", xml(BOOKMARK))
        + entry(DUCK, ALICE_HISTORY, b"x" * 250, xml(BOOKMARK))
        + entry(QUEUE, ALICE_TRANSFERS, b"100%;'\"", b"~/Documents/%41\\U2019s;\"=}\n~//\n\n~"),
    }


def ciphers() -> dict[str, bytes]:
    tokens = {"short": "AwJCBMMOt0NdbRwdzE72AR8iGhnCBw==",
              "compressed": "AwNC2F/9KrtNaauPd8kAka8xVnIP",
              "hash": "AwRCqYQGlTe4yo4WPCGM4aB7N1CcBfsFVWxUV4pG9EUULhYYjEL6DA==",
              "unprotected": "AwFCLZk7/RTwZ7CUdR8BlLgdbAk0nHIazZG/z34/"}
    line = b"[2024-Mar-05T14-07-31][HALDO_BENCH][Artifacts Extraction][f]:-- [f] starts starts"
    packed = zlib.compress(b"a" * 200, 9)
    seeds = {
        "too_short": b"\x04\x03",
        "inside_compressed": b"\x06" + struct.pack(">I", 200) + packed,
        "inside_length_too_small": b"\x06" + struct.pack(">I", 1) + packed,
        "inside_length_forged": b"\x0a\x7f\xff\xff\xff garbage",
        "round_trip_empty": b"\x07",
        "round_trip_checksum": b"\x07" + line,
        "round_trip_hash_packed": b"\x1b" + line,
        "round_trip_plain": b"\x23" + line,
    }
    for name, token in tokens.items():
        seeds["token_" + name] = b"\x04" + base64.b64decode(token)
        seeds["base64_" + name] = b"\x05" + token.encode()
    return seeds


def main() -> None:
    for target, seeds in (("cipher", ciphers()), ("source_tree", sources())):
        folder = CORPUS / target
        folder.mkdir(exist_ok=True)
        for name, content in seeds.items():
            (folder / name).write_bytes(content)


if __name__ == "__main__":
    main()

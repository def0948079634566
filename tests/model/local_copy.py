"""What the source says about one file of it: where a path leads, its metadata, its position."""

from __future__ import annotations

import ctypes
import datetime
import functools
import os
import plistlib
import stat
import struct
import unicodedata
from typing import Any

from filters import EPOCH

MISSING, OUTSIDE, PRESENT = "missing", "outside", "present"
METADATA_PREFIX = "com.apple.metadata:"
NAME_PREFIXES = ("osx.", "user.DosStream.", "user.", "")
READING_ORDER = ("osx.", "", "user.", "user.DosStream.")
MAXIMUM_LINKS = 40
STATX_BIRTH_TIME = 0x800


def resolve(root: str, path: str) -> tuple[str, str]:
    """Follows a path as the examined machine would: absolute links start at the root."""
    if not path.startswith(root):
        return OUTSIDE, ""
    pending = [part for part in path[len(root):].split("/") if part][::-1]
    current: list[str] = []
    links = 0
    while pending:
        part = pending.pop()
        if part == "..":
            if not current:
                return OUTSIDE, ""
            current.pop()
            continue
        if part == ".":
            continue
        candidate = root + "/".join(current + [part])
        if os.path.islink(candidate):
            links += 1
            target = os.readlink(candidate)
            pending += [piece for piece in target.split("/") if piece][::-1]
            current = [] if target.startswith("/") else current
            if links > MAXIMUM_LINKS:
                return MISSING, ""
        elif not os.path.lexists(candidate):
            # Further ".." still may lead out, which matters more than that nothing is there.
            return _lexical_end(current + [part], pending), ""
        else:
            current.append(part)
    return PRESENT, root + "/".join(current)


def _lexical_end(current: list[str], pending: list[str]) -> str:
    depth = len(current)
    for part in reversed(pending):
        depth += -1 if part == ".." else (0 if part == "." else 1)
        if depth < 0:
            return OUTSIDE
    return MISSING


@functools.lru_cache(maxsize=None)
def _c_library() -> ctypes.CDLL:
    return ctypes.CDLL(None, use_errno=True)


def birth_time(path: str) -> datetime.datetime | None:
    buffer = ctypes.create_string_buffer(256)
    if _c_library().statx(-100, os.fsencode(path), 0, STATX_BIRTH_TIME, buffer) != 0:
        return None
    if not struct.unpack_from("<I", buffer, 0)[0] & STATX_BIRTH_TIME:
        return None
    seconds, nanoseconds = struct.unpack_from("<qI", buffer, 80)
    return from_unix(seconds, nanoseconds)


def from_unix(seconds: int, nanoseconds: int = 0) -> datetime.datetime:
    return EPOCH + datetime.timedelta(seconds=seconds, microseconds=nanoseconds // 1000)


def decoded_value(data: bytes) -> Any:
    """The value of a com.apple.metadata attribute, None when it holds none."""
    candidates = [data, data[:-1]] if data.endswith(b"\0") else [data]
    if data.startswith(b"bplist0"):
        return next(filter(lambda v: v is not None, map(_parsed, candidates)), None)
    if data.lstrip().startswith((b"<?xml", b"<!DOCTYPE plist", b"<plist")):
        return _parsed(candidates[-1])
    text = candidates[-1]
    if not text or b"\0" in text:
        return None
    try:
        return text.decode("utf-8")
    except UnicodeDecodeError:
        return None


def _parsed(data: bytes) -> Any:
    try:
        return plistlib.loads(data)
    except Exception:  # plistlib lets many kinds of exception out for damaged data
        return None


def _facts_from_attribute(name: str, data: bytes) -> dict[str, Any]:
    """The Spotlight attributes that one stored attribute gives."""
    if name == "com.apple.lastuseddate#PS":
        if len(data) not in (16, 17):
            return {}
        seconds, nanoseconds = struct.unpack_from("<qq", data)
        if not 0 <= nanoseconds <= 999999999:
            return {}
        return {"kMDItemLastUsedDate": from_unix(seconds, nanoseconds)}
    name = name.split("#")[0]
    if name == "com.apple.FinderInfo" and len(data) >= 32:
        seconds = struct.unpack_from(">I", data, 20)[0]
        return {"kMDItemDateAdded": from_unix(seconds)} if seconds else {}
    if name.startswith(METADATA_PREFIX):
        value = decoded_value(data)
        return {} if value is None else {name[len(METADATA_PREFIX):]: value}
    return {}


def _canonical(name: str) -> tuple[str, str]:
    prefix = next(prefix for prefix in NAME_PREFIXES if name.startswith(prefix))
    name = name[len(prefix):]
    if name.upper().endswith(":$DATA"):
        name = name[:-6]
    return prefix, name.replace("\uf022", ":")


def extended_attributes(path: str) -> dict[str, Any]:
    facts: dict[str, Any] = {}
    names = [(*_canonical(name), name) for name in os.listxattr(path, follow_symlinks=False)]
    for prefix, name, stored in sorted(names, key=lambda item: READING_ORDER.index(item[0])):
        data = os.getxattr(path, stored, follow_symlinks=False)
        for attribute, value in _facts_from_attribute(name, data).items():
            facts.setdefault(attribute, value)
    return facts


def _companions(root: str, path: str) -> list[str]:
    folder, name = os.path.split(path)
    names = dict.fromkeys([name] + [unicodedata.normalize(form, name) for form in ("NFC", "NFD")])
    places = [folder]
    ancestor = folder
    while len(ancestor) >= len(root.rstrip("/")):
        places.append(os.path.join(ancestor, "__MACOSX", os.path.relpath(folder, ancestor)))
        ancestor = os.path.dirname(ancestor)
    return [os.path.join(place, "._" + name) for place in places for name in names]


def companion_attributes(root: str, path: str) -> dict[str, Any]:
    facts: dict[str, Any] = {}
    for companion in _companions(root, path):
        if not os.path.isfile(companion) or os.path.islink(companion):
            continue
        with open(companion, "rb") as file:
            stored = _apple_double(file.read())
        for name, data in stored:
            for attribute, value in _facts_from_attribute(name, data).items():
                facts.setdefault(attribute, value)
    return facts


def _apple_double(data: bytes) -> list[tuple[str, bytes]]:
    if len(data) < 82 or data[:4] != b"\0\x05\x16\x07":
        return []
    entries = [struct.unpack_from(">III", data, 26 + 12 * index)
               for index in range(struct.unpack_from(">H", data, 24)[0])]
    found = next((entry for entry in entries if entry[0] == 9), None)
    if found is None:
        return []
    _, start, length = found
    stored = [("com.apple.FinderInfo", data[start:start + 32])]
    header = start + 34
    if length <= 70 or data[header:header + 4] != b"ATTR":
        return stored
    position = header + 36
    for _ in range(struct.unpack_from(">H", data, header + 34)[0]):
        offset, size, _, name_size = struct.unpack_from(">IIHB", data, position)
        name = data[position + 11:position + 11 + name_size - 1].decode("utf-8")
        stored.append((name, data[offset:offset + size]))
        position += (11 + name_size + 3) & ~3
    return stored


def file_system_facts(path: str) -> dict[str, Any]:
    status = os.stat(path)
    modified = from_unix(*divmod(status.st_mtime_ns, 10 ** 9))
    facts = {"kMDItemFSName": os.path.basename(path).replace(":", "/"),
             "kMDItemFSContentChangeDate": modified,
             "kMDItemContentModificationDate": modified}
    born = birth_time(path)
    if born is not None:
        facts.update(kMDItemFSCreationDate=born, kMDItemContentCreationDate=born)
    if stat.S_ISDIR(status.st_mode):
        facts["kMDItemFSNodeCount"] = len(os.listdir(path))
    else:
        facts["kMDItemFSSize"] = status.st_size
    return facts


def attributes(root: str, path: str) -> dict[str, Any]:
    """Every attribute of a resolved path; a nearer source never gives way to a farther one."""
    return {**file_system_facts(path), **companion_attributes(root, path),
            **extended_attributes(path)}


def total_size(path: str) -> int:
    """The bytes of a file, or of all files of a folder, hidden ones included, links left out."""
    if not os.path.isdir(path):
        return os.stat(path).st_size
    files = [os.path.join(folder, name) for folder, _, names in os.walk(path) for name in names]
    return sum(os.stat(file).st_size for file in files if not os.path.islink(file))


def position(path: str) -> tuple[str, str]:
    """Latitude and longitude of an image, empty texts where it has none."""
    if not os.path.isfile(path):
        return "", ""
    with open(path, "rb") as file:
        block = _exif_block(file.read())
    order = {b"II*\0": "<", b"MM\0*": ">"}.get(block[:4])
    if order is None:
        return "", ""
    try:
        pointer = _directory(block, order, struct.unpack_from(order + "I", block, 4)[0])[0x8825]
        entries = _directory(block, order, struct.unpack(order + "I", pointer[2])[0])
    except (KeyError, struct.error):
        return "", ""
    return (_coordinate(block, order, entries, 1, "S"), _coordinate(block, order, entries, 3, "W"))


def _exif_block(data: bytes) -> bytes:
    if data[:4] in (b"II*\0", b"MM\0*"):
        return data
    if data[:3] == b"\xff\xd8\xff":
        return _jpeg_block(data)
    if data[:8] == b"\x89PNG\r\n\x1a\n":
        place = 8
        while place + 8 <= len(data):
            length = struct.unpack_from(">I", data, place)[0]
            if data[place + 4:place + 8] == b"eXIf":
                return data[place + 8:place + 8 + length].removeprefix(b"Exif\0\0")
            place += 12 + length
    return b""


def _jpeg_block(data: bytes) -> bytes:
    place = 2
    while place + 4 <= len(data) and data[place + 1] != 0xDA:
        marker, length = struct.unpack_from(">HH", data, place)
        payload = data[place + 4:place + 2 + length]
        if marker == 0xFFE1 and payload.startswith(b"Exif\0\0"):
            return payload[6:]
        place += 2 + length
    return b""


def _directory(block: bytes, order: str, place: int) -> dict[int, tuple[int, int, bytes]]:
    entries = {}
    for index in range(struct.unpack_from(order + "H", block, place)[0]):
        tag, kind, count, value = struct.unpack_from(order + "HHI4s", block, place + 2 + 12 * index)
        entries.setdefault(tag, (kind, count, value))
    return entries


def _coordinate(block: bytes, order: str, entries: dict[int, tuple[int, int, bytes]],
                reference_tag: int, negative: str) -> str:
    kind, count, value = entries.get(reference_tag + 1, (0, 0, b""))
    if kind not in (5, 10) or count == 0:
        return ""
    start = struct.unpack(order + "I", value)[0]
    total = 0.0
    for index, unit in enumerate((1, 60, 3600)[:count]):
        numerator, denominator = struct.unpack_from(order + ("2I" if kind == 5 else "2i"),
                                                    block, start + 8 * index)
        if denominator:
            total += numerator / denominator / unit
        elif index == 0:
            return ""
    reference_kind, _, letters = entries.get(reference_tag, (0, 0, b""))
    sign = "-" if reference_kind == 2 and negative in letters.decode("latin-1").upper() else ""
    return sign + f"{total:.6g}"

"""Texts as Core Foundation prints them, and the filters that turn them into column values."""

from __future__ import annotations

import datetime
import re
import struct
from typing import Any

EPOCH = datetime.datetime(1970, 1, 1)
POINTERS = "0x7f8000000010 [0x7fff80000000]"
# The white space of the Unicode categories Z* and of the old control characters. str.strip()
# would also take U+001C to U+001F, which the program under test keeps.
WHITE_SPACE = "\t\n\v\f\r \x85\xa0\u1680\u2028\u2029\u202f\u205f\u3000" + "".join(
    map(chr, range(0x2000, 0x200B)))
LIST_ESCAPES = {'"': '\\"', "\\": "\\\\", "\n": "\\n", "\t": "\\t", "\r": "\\r", "\a": "\\a",
                "\b": "\\b", "\v": "\\v", "\f": "\\f"}
SEARCH_SEPARATOR = ";++::++;"


def trimmed(text: str) -> str:
    return text.strip(WHITE_SPACE)


def date_text(value: datetime.datetime) -> str:
    """The UTC date, its fraction dropped towards 1970."""
    seconds = int((value - EPOCH) / datetime.timedelta(seconds=1))
    return (EPOCH + datetime.timedelta(seconds=seconds)).strftime("%Y-%m-%d %H:%M:%S +0000")


def _double_text(value: float) -> str:
    if value == 0:
        return "-0.0" if struct.pack(">d", value)[0] else "+0.0"
    return f"{value:+.20f}"


def _quoted(text: str) -> str:
    parts = []
    for character in text:
        if character in LIST_ESCAPES:
            parts.append(LIST_ESCAPES[character])
        elif " " <= character <= "~":
            parts.append(character)
        else:
            units = character.encode("utf-16-be")
            parts += [f"\\U{units[i]:02x}{units[i + 1]:02x}" for i in range(0, len(units), 2)]
    return '"' + "".join(parts) + '"'


def _element_text(value: Any) -> str:
    if isinstance(value, bool):
        return "1" if value else "0"
    if isinstance(value, datetime.datetime):
        return _quoted(date_text(value))
    if isinstance(value, (int, float)):
        value = f"{value:.16g}" if isinstance(value, float) else str(value)
    return value if re.fullmatch("[A-Za-z0-9]+", value) else _quoted(value)


def description(value: Any) -> str | None:
    """What CFCopyDescription prints; None for a value that is not handed out at all."""
    if isinstance(value, bool):
        return f"<CFBoolean {POINTERS}>{{value = {'true' if value else 'false'}}}"
    if isinstance(value, int):
        return f"<CFNumber {POINTERS}>{{value = {value:+d}, type = kCFNumberSInt64Type}}"
    if isinstance(value, float):
        number = _double_text(value)
        return f"<CFNumber {POINTERS}>{{value = {number}, type = kCFNumberFloat64Type}}"
    if isinstance(value, str):
        return f'<CFString {POINTERS}>{{contents = "{value}"}}'
    if isinstance(value, datetime.datetime):
        return date_text(value)
    if isinstance(value, list) and value:
        return "(\n" + ",\n".join("    " + _element_text(item) for item in value) + "\n)"
    return None


def c_string(value: Any) -> str:
    """The description as a C string pointer shows it: only pure ASCII texts have one."""
    text = description(value) or ""
    return text if text.isascii() else ""


def piece(text: str, separator: str, index: int) -> str:
    parts = text.split(separator)
    return parts[index] if len(parts) > 1 else ""


def number_value(text: str) -> str:
    return trimmed(piece(piece(trimmed(text), ",", 0), "+", 1))


def boolean_value(text: str) -> str:
    return trimmed(piece(piece(trimmed(text), "]>{", 1), "=", 1)[:-1])


def cfstring_value(text: str) -> str:
    return trimmed(boolean_value(text).replace('"', ""))


def string_value(text: str) -> str:
    text = trimmed(text)
    if not text:
        return ""
    pieces = [trimmed(re.sub('[()"]', "", part)) for part in text.split(",")]
    return ";".join(pieces)


def epoch_text(text: str) -> str:
    """Seconds since 1970; "0" for a text that is no date, as Qt counts an invalid date."""
    try:
        parsed = datetime.datetime.strptime(trimmed(text), "%Y-%m-%d %H:%M:%S +0000")
    except ValueError:
        return "0"
    return str(int((parsed - EPOCH).total_seconds()))


def date_value(text: str) -> str:
    return epoch_text(text) if trimmed(text) else ""


def after_equals(text: str) -> str:
    """The part between the first two "=", without closing braces and quotes."""
    return trimmed(piece(text, "=", 1).replace("}", "").replace('"', ""))


def percent_decoded(text: str) -> str:
    def byte(match: re.Match[bytes]) -> bytes:
        return bytes([int(match.group(1), 16)])
    decoded = re.sub(rb"%([0-9A-Fa-f]{2})", byte, text.encode("utf-8"))
    return decoded.decode("utf-8", "replace")


def where_from_list(text: str) -> str:
    text = percent_decoded(text)
    for old, new in (("\n", ""), ("  ", ""), ('("', ""), ('")', ""), ('",', ";"), (",", ";"),
                     ('"', ""), ("\\U2019s", "'s")):
        text = text.replace(old, new)
    return percent_decoded(text).replace('"', "")


def torrent_list(text: str) -> str:
    for old, new in (("\n", ""), ("  ", ""), ('("', ""), ('")', ""), ('","', ";")):
        text = text.replace(old, new)
    return percent_decoded(text)


def used_date_list(text: str) -> list[str]:
    return [epoch_text(part) for part in re.sub('[()"]', "", text).split(",")]


def attribute_value(value: Any) -> str | None:
    """An attribute as the extended-attribute columns show it, None when it has no value."""
    text = description(value)
    if text is None:
        return None
    for start, convert in (("<CFNumber ", number_value), ("<CFBoolean ", boolean_value),
                           ("<CFString ", cfstring_value)):
        if text.startswith(start):
            return convert(text)
    return string_value(text)

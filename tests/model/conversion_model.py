#!/usr/bin/env python3
"""Compares the converters and filters with an independent model on generated texts.

Usage: conversion_model.py DRIVER [COUNT]   (COUNT texts per function, 1000 unless said otherwise)
"""
import datetime
import decimal
import os
import random
import re
import subprocess
import sys
import zoneinfo

EPOCH = datetime.datetime(1970, 1, 1)
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()
SPACES = "\t\n\v\f\r \x85\xa0\u1680\u2000\u2009\u2028\u2029\u202f\u205f\u3000"


# --- what Qt's number and text functions do

def trim(text):
    return text.strip(SPACES)


def integer(text, low, high):
    match = re.fullmatch(r"[+-]?[0-9]+", trim(text))
    value = int(match[0]) if match else 0
    if match and low == 0 and match[0][0] == "-":
        return 0
    return value if low <= value <= high else 0


def int32(text):
    return integer(text, -2**31, 2**31 - 1)


def uint64_as_signed(text):
    value = integer(text, 0, 2**64 - 1)
    return value - 2**64 if value >= 2**63 else value


def toward_zero(value, divisor):
    return abs(value) // divisor * (1 if value >= 0 else -1)


# --- dates

def moment(year, month, day, hour=0, minute=0, second=0):
    try:
        return datetime.datetime(int(year), int(month), int(day), int(hour), int(minute), int(second))
    except (ValueError, TypeError):
        return None


def seconds(when):
    return 0 if when is None else int((when - EPOCH) // datetime.timedelta(seconds=1))


def month_number(name):
    names = [month.lower() for month in MONTHS]
    return names.index(name.lower()) + 1 if name.lower() in names else 0


def apple(text):
    text = trim(text)
    return "" if text in ("", "0") else str(int32(text.split(".")[0]) + 978307200)


def google(text):
    if text == "0":
        return ""
    if len(text) == 10:
        return text
    return str(toward_zero(uint64_as_signed(text), 1000000) - 11644473600)


def timezone_seconds(text):
    value = (int32(text[2:]) + int32(text[:2]) * 60) * 60
    return value if -2**31 <= value < 2**31 else 0


def readable_utc(text):
    text = trim(text)
    if not text:
        return ""
    when = EPOCH + datetime.timedelta(seconds=int32(text.split(".")[0]))
    return f"{when.day:02}-{MONTHS[when.month - 1]}-{when.year:04} {when:%H:%M:%S}"


def duration(text):
    total = int32(trim(text).split(".")[0])
    if total < 0:
        return ""
    rest = f"{total % 3600 // 60:02}:{total % 60:02}"
    return rest + " Min" if total < 3600 else f"{total // 3600:02}:{rest} Hrs"


def local_seconds(when):
    zone = zoneinfo.ZoneInfo(os.environ["TZ"])
    return seconds(when) - int(zone.utcoffset(when.replace(tzinfo=zone)).total_seconds())


def readable_1(text):
    text = trim(text)
    if text in ("", "0"):
        return ""
    marker = " AM " if " AM " in text else " PM "
    pieces = text.split(marker)
    zone = pieces[1] if len(pieces) > 1 else ""
    if marker in text:
        text = text[:text.rindex(marker) + 3]
    match = re.fullmatch(r"([A-Za-z]{3}) ([0-9]{1,2}), ([0-9]{4}), "
                         r"([0-9]{1,2}):([0-9]{2}):([0-9]{2}) ([AaPp])[Mm]", text)
    if not match or int(match[4]) > 12:
        return "0"
    hour = int(match[4]) % 12 + (12 if match[7] in "Pp" else 0)
    when = moment(match[3], month_number(match[1]), match[2], hour, match[5], match[6])
    if when is None:
        return "0"
    return str(seconds(when) if zone == "UTC" else local_seconds(when))


def offset_of(text, start):
    """The text without its offset, and the offset."""
    match = re.search(r"[+-]", text[start:]) if start >= 0 else None
    if not match:
        return text, 0
    position = start + match.start()
    amount = timezone_seconds(trim(text[position + 1:]).replace(":", ""))
    return text[:position], amount if match[0] == "+" else -amount


def readable_2(text):
    text = trim(text)
    if text in ("", "0"):
        return ""
    wall, offset = offset_of(text, text.find(" "))
    match = re.fullmatch(r"([0-9]{4})-([0-9]{2})-([0-9]{2}) ([0-9]{2}):([0-9]{2}):([0-9]{2})",
                         trim(wall.split(".")[0]))
    return str((seconds(moment(*match.groups())) if match else 0) - offset)


def readable_3(text):
    text = trim(text)
    if text in ("", "0"):
        return ""
    if "," in text:
        text = text.split(",", 1)[1]
    text = trim(text.rpartition(" ")[0])
    match = re.fullmatch(r"([0-9]{2}) (\w{3}) ([0-9]{4}) ([0-9]{2}):([0-9]{2}):([0-9]{2})", text,
                         re.ASCII)
    if not match:
        return "0"
    return str(seconds(moment(match[3], month_number(match[2]), match[1], *match.groups()[3:])))


def t_z(text):
    text = trim(text)
    if text in ("", "0"):
        return ""
    text = trim(text.replace("Z", "").replace("T", " "))
    wall, offset = offset_of(text, text.find(" "))
    wall = trim(wall.split(".")[0]).replace("-", "").replace(":", "")
    match = re.fullmatch(r"([0-9]{4})([0-9]{2})([0-9]{2})(?: ([0-9]{2})([0-9]{2})([0-9]{2}))?", wall)
    when = moment(*(part or 0 for part in match.groups())) if match else None
    return str(seconds(when) - offset)


def iso_date(text):
    """Only for texts of the shapes that the generator makes."""
    match = re.fullmatch(r"([0-9]{4})-([0-9]{2})-([0-9]{2})"
                         r"(?:[T ]([0-9]{2}):([0-9]{2}):([0-9]{2})(\.[0-9]+)?"
                         r"(Z| ?[+-][0-9]{2}:?[0-9]{2})?)?", trim(text))
    when = moment(*(part or 0 for part in match.groups()[:6])) if match else None
    if when is None:
        return "invalid"
    fraction = int((match[7] or ".0")[1:].ljust(3, "0")[:3])
    return str(toward_zero(seconds(when) * 1000 + fraction, 1000))


def date_filter(text):
    found = iso_date(text)
    return "" if not trim(text) else "0" if found == "invalid" else found


# --- filters and helpers

def piece(text, separator, number):
    pieces = text.split(separator)
    return pieces[number] if len(pieces) >= 2 else ""


def number_filter(text):
    text = trim(text)
    return trim(piece(text.split(",")[0], "+", 1)) if "," in text else ""


def boolean(text):
    return trim(piece(piece(trim(text), "]>{", 1), "=", 1)[:-1])


def cfstring(text):
    return trim(boolean(text).replace('"', ""))


def where_from(text):
    text = trim(text)
    for before, after in (("\n", ""), ("  ", ""), ('("', ""), ('")', ""), ('",', ";"), (",", "\n"),
                          ("<", "("), (">", ")"), ('"', ""), ("\\U2019s", "'s")):
        text = text.replace(before, after)
    return trim(text)


def string_filter(text):
    if not trim(text):
        return ""
    return ";".join(trim(re.sub(r'[()"]', "", part)) for part in trim(text).split(","))


def size(text):
    text = trim(text)
    if not text:
        return ""
    value = uint64_as_signed(text)
    if value <= 1023:
        return f"{value} B"
    unit, name = (1024, "KB") if value <= 1048575 else (1048576, "MB")
    amount = decimal.Decimal(float(value) / unit)
    return f"{amount.quantize(decimal.Decimal('0.01'), decimal.ROUND_HALF_UP)} {name}"


def suffix(text):
    name = trim(text).rstrip("/").rsplit("/", 1)[-1]
    name = name[1:] if name.startswith(".") else name
    return name.rsplit(".", 1)[1] if "." in name else ""


def unicode_escapes(text):
    def decoded(match):
        if match[0] == "\\\\":
            return match[0]
        units = bytes.fromhex(match[0].replace("\\U", ""))
        try:
            return units.decode("utf-16-be") if units != b"\0\0" else match[0]
        except UnicodeDecodeError:
            return match[0]
    unit = r"\\U[0-9A-Fa-f]{4}"
    pair = r"\\U[Dd][89ABab][0-9A-Fa-f]{2}\\U[Dd][C-Fc-f][0-9A-Fa-f]{2}"
    return re.sub(rf"\\\\|{pair}|{unit}", decoded, text)


def scan_version(text):
    scheme, version = text.split("|", 1)
    if not re.match(r"macOS|iOS|winOS", trim(scheme)):
        return ""
    match = re.search(r"[0-9].*", version.replace("_", "."), re.DOTALL)
    if not match:
        return ""
    pieces = [re.match(r"[0-9]*", part)[0] for part in match[0].split(".")]
    if trim(scheme).startswith("macOS") and pieces[0] == "10" and len(pieces) > 1 and pieces[1]:
        return "10." + pieces[1]
    return pieces[0]


# --- generated texts

class texts:
    def __init__(self, seed):
        self.random = random.Random(seed)

    def pick(self, *choices):
        return self.random.choice(choices)

    def number(self):
        edge = self.pick(0, 10, 1023, 1048575, 2**31, 2**32, 13 * 10**15, 2**63, 2**64)
        value = self.pick(edge + self.random.randint(-2, 2), self.random.randint(-4000, 4000),
                          self.random.randint(-2**33, 2**33), self.random.randint(0, 2**65))
        return self.pick("", "", "", " ", "+", "x") + str(value) + \
            self.pick("", "", "", ".75", ".", " \n", ",", "e3", "\u00a0")

    def clock(self):
        span = self.pick((-62135596800, 253402300799), (-10**6, 10**6), (1262304000, 1735689600))
        return EPOCH + datetime.timedelta(seconds=self.random.randint(*span))

    def offset(self):
        return f"{self.pick('+', '-')}{self.random.randint(0, 14):02}{self.pick('', '', ':')}" \
               f"{self.pick('00', '30', '45')}"

    def spoilt(self, text):
        """Now and then another character, or one too few."""
        if self.random.random() > 0.2 or not text:
            return text
        position = self.random.randrange(len(text))
        return text[:position] + self.pick("", "x", "9", " ", ":", "\u0660") + text[position + 1:]

    def date(self, form):
        when = self.clock()
        day, clock = f"{when.year:04}-{when.month:02}-{when.day:02}", f"{when:%H:%M:%S}"
        month = self.pick(str, str.upper)(MONTHS[when.month - 1])
        fraction = self.pick("", "", ".5", ".250", ".999999")
        if form == "1":
            return self.spoilt(f"{month} {when.day}, {when.year:04}, {when.hour % 12 or 12}:"
                               f"{when:%M:%S} {'AM' if when.hour < 12 else 'PM'}"
                               f"{self.pick(' UTC', ' UTC', ' IST', '')}")
        if form == "2":
            return self.spoilt(day + " " + clock + fraction + self.pick("", " ") + self.offset())
        if form == "3":
            return self.spoilt(f"Sat, {when.day:02} {month} {when.year:04} {clock} GMT")
        day = self.pick(day, day.replace("-", ""))
        return self.spoilt(self.pick(day, day + self.pick("T", " ") + clock + fraction +
                                     self.pick("Z", "", " +0000", self.offset())))

    def iso(self):
        when = self.clock()
        day = f"{when.year:04}-{when.month:02}-{when.day + self.pick(0, 0, 0, 3):02}"
        return self.pick("", " ") + day + self.pick(
            "", self.pick("T", " ") + f"{when:%H:%M:%S}" + self.pick("", ".5", ".9999") +
            self.pick("", "Z", " +0000", self.offset()))

    def description(self):
        parts = ["<CFNumber 0x7f [0x7f]>{value = ", "]>{", "contents = ", "=", "+5", "-3", "}", '"',
                 '("', '")', '",', ",", "(", ")", " ", "  ", "\n", "https://a.example/?b", "<", ">",
                 "\\U2019s", "\\U2019", "\\Ud83d\\Ude00", "\\Ud83d", "\\U00", "\\", "\\\\", "\u00e9",
                 "\U0001f600", ";", ".", "/", "a", "tar", "\u3000"]
        return "".join(self.random.choice(parts) for _ in range(self.random.randint(0, 14)))

    def version(self):
        return self.pick("macOS", " macOS", "iOS_UID", "winOS", "linux", "") + "|" + \
            self.pick("", "macOS ", "x_") + self.pick("10", "11", "100", "", "8") + \
            self.pick("", ".15.7", "_14", ".", ".x", " (19H2)")


FUNCTIONS = {
    "apple": (apple, texts.number), "google": (google, texts.number),
    "timezone": (lambda text: str(timezone_seconds(text)),
                 lambda made: made.pick(made.offset()[1:], made.number())),
    "readable_utc": (readable_utc, texts.number), "duration": (duration, texts.number),
    "readable_1": (readable_1, lambda made: made.date("1")),
    "readable_2": (readable_2, lambda made: made.date("2")),
    "readable_3": (readable_3, lambda made: made.date("3")),
    "t_z": (t_z, lambda made: made.date("t_z")),
    "iso_date": (iso_date, texts.iso), "date_filter": (date_filter, texts.iso),
    "number": (number_filter, texts.description), "boolean": (boolean, texts.description),
    "cfstring": (cfstring, texts.description), "where_from": (where_from, texts.description),
    "string": (string_filter, texts.description), "size": (size, texts.number),
    "suffix": (suffix, texts.description), "unicode": (unicode_escapes, texts.description),
    "scan_version": (scan_version, texts.version),
}

WORKED_EXAMPLES = (
    ("apple", "600000000.75", "1578307200"), ("apple", "2147483648", "978307200"),
    ("google", "13000000000000000", "1355526400"), ("timezone", "0545", "20700"),
    ("duration", "3725", "01:02:05 Hrs"), ("size", "1073741824", "1024.00 MB"),
    ("iso_date", "2020-05-09 10:45:12 +0000", "1589021112"), ("suffix", "a.tar.gz", "gz"),
)


def escaped(text):
    units = text.encode("utf-16-be", "surrogatepass")
    codes = [units[i] << 8 | units[i + 1] for i in range(0, len(units), 2)]
    return "".join(chr(code) if 32 <= code < 127 and code != 92 else f"\\{code:04x}"
                   for code in codes)


def main():
    driver, count = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 1000
    made = texts(20200509)
    cases = []
    for name, text, expected in WORKED_EXAMPLES:
        cases.append((name, text, expected))
    for name, (model, generate) in FUNCTIONS.items():
        for _ in range(count):
            text = generate(made)
            cases.append((name, text, model(text)))
    requests = "".join(f"{name}\t{escaped(text)}\n" for name, text, _ in cases)
    answer = subprocess.run([driver], input=requests, capture_output=True, text=True, check=True)
    answers = answer.stdout.splitlines()
    if len(answers) != len(cases):
        sys.exit(f"{len(cases)} requests, {len(answers)} answers")
    wrong = [(case, got) for case, got in zip(cases, answers) if escaped(case[2]) != got]
    for (name, text, expected), got in wrong[:20]:
        print(f"{name}({text!r}): model {escaped(expected)!r}, library {got!r}")
    print(f"{len(cases)} texts, {len(wrong)} differences")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())

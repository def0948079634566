#!/usr/bin/env python3
"""Extracts the invented source and compares all rows and log lines with tests/expected_rows/.

    tests/expected_rows_test.py HOST [--library FILE] [--without-metadata] [--update]

HOST is plugin_host with its library at its side. With --library, that library has to hold all texts
of log_texts.csv, those of rare failures included. With --without-metadata, for a platform whose
system has no metadata to give here, columns and log lines of metadata are left out. With --update the files
are written anew.

A copy is extracted, whose files get times of change by their paths. What the machine makes
different is not compared:
- the order of files in a folder, and with it the numbers in INT, which only have to be 1, 2, 3 …;
  rows of one file keep their order;
- the time at which the copy was made, which stands in fs_creation_date, content_creation_date and
  date_added where neither index nor companion knows better: "*" stands there.
"""

import argparse
import collections
import csv
import os
import pathlib
import plistlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
import zlib

TESTS = pathlib.Path(__file__).resolve().parent
SOURCE = TESTS.parent / "examples" / "source"
TABLES = ("bookmarks", "history", "transfers", "preferences")
# Those with a column of their own must not come again among the selected ones.
ATTRIBUTES = ("kMDItemFinderComment,kMDItemFSSize,kMDItemContentTypeTree,kMDItemKind,"
              "kMDItemDateAdded,kMDItemContentCreationDate,kMDItemContentModificationDate,"
              "kMDItemContentType,kMDItemFSContentChangeDate,kMDItemFSCreationDate,kMDItemFSName,"
              "kMDItemFSNodeCount,kMDItemWhereFroms,kMDItemLatitude,kMDItemLongitude,"
              "kMDItemAltitude,org_bittorrent_torrent_filenames,kMDItemUsedDates,"
              "kMDItemLastUsedDate")
RUNS = {
    "image": ["--attributes", ATTRIBUTES],
    "home": ["--source-type", "macOS_Home_Directory", "--os-display", "macOS 10.15",
             "--source-count", "12", "--account", "noah quist:OFFICE", "--account", "jörg"],
}
TIME_OF_COPY = ("fs_creation_date", "content_creation_date", "date_added")
METADATA_LINE = re.compile("log_metadata_notes|get_datetime_from_string_with_iso_date")
METADATA = (*TIME_OF_COPY, "content_modification_date", "content_type", "fs_content_change_date",
            "fs_name", "fs_node_count", "last_used_date", "used_dates", "first_date", "last_date",
            "wherefrom", "latitude", "longitude", "altitude", "torrent_file_list",
            "extended_attributes_key_value", "extended_attributes_value_for_search")
NULL = "\\N"

# Of these keys only some codes are shown; each gets a home of its own.
CODES = {
    "bookmark.icon.size": ["16", "32", "64", "65"],
    "queue.transfer.type": ["newconnection", "browser", "concurrent", "NewConnection"],
    "queue.upload.action": ["ask", "overwrite", "resume", "similar", "rename", "compare", "skip"],
    "editor.bundleIdentifier": ["com.apple.textedit", "com.apple.dt.xcode", "com.example.editor"],
    "queue.download.bandwidth.bytes": ["-1", "65536"],
    "s3.location": ["us-east-1", "us-west-1", "us-west-2", "eu-west-1", "ap-southeast-1",
                    "ap-southeast-2", "eu-central-1", "ap-northeast-1", "sa-east-1", "eu-west-2"],
    "s3.storage.class": ["STANDARD_IA", "STANDARD", "REDUCED_REDUNDANCY", "GLACIER"],
}


def copy_source(target):
    shutil.copytree(SOURCE, target, symlinks=True)
    for number in range(max(map(len, CODES.values()))):
        place = target / "Users" / f"code {number}" / "Library" / "Preferences"
        place.mkdir(parents=True)
        with open(place / "ch.sudo.cyberduck.plist", "wb") as file:
            plistlib.dump({key: codes[number] for key, codes in CODES.items()
                           if number < len(codes)}, file)
    for folder, folders, files in os.walk(target, topdown=False):
        for name in folders + files:
            path = os.path.join(folder, name)
            shown = os.path.relpath(path, target).encode()
            moment = 1_100_000_000 + zlib.crc32(shown) % 400_000_000
            os.utime(path, (moment, moment), follow_symlinks=False)


def extract(host, source, folder, options):
    """The database, and how often each log line comes, without its time."""
    folder.mkdir()
    # A zone away from UTC brings out every conversion through local time.
    environment = {**os.environ, "LC_ALL": "C.UTF-8", "TZ": "America/St_Johns",
                   "QT_QPA_PLATFORM": "minimal"}
    done = subprocess.run([host, "extract", *options, "--debug-log", folder / "log", "--progress",
                           "never", source, folder / "result"],
                          env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    # Some of its lists cannot be read.
    if done.returncode != 1 or done.stderr.count(b"\n") != done.stderr.count(b"warning: "):
        sys.exit(f"ended with {done.returncode}\n{done.stderr.decode(errors='replace')}")
    log = (folder / "log").read_text(encoding="utf-8").replace(str(source), "SOURCE")
    counts = collections.Counter(re.sub(r"^\[[^]]*\]", "", line) for line in log.splitlines())
    return (folder / "result" / "Artifacts_Result" / "Cyberduck" / "Cyberduck.sqlite",
            [["line", "count"], *([line, str(count)] for line, count in sorted(counts.items()))])


def shown(column, value, started):
    if value is None:
        return NULL
    if column in TIME_OF_COPY and isinstance(value, int) and value >= started:
        return "*"
    return str(value)


def table_of(database, table, started, left_out):
    """A line of names and one for each row."""
    connection = sqlite3.connect(f"file:{database}?mode=ro", uri=True)
    found = connection.execute(f"select * from {table} order by INT")
    names = [column[0] for column in found.description]
    rows = [dict(zip(names, row)) for row in found]
    connection.close()
    if [row["INT"] for row in rows] != list(range(1, len(rows) + 1)):
        sys.exit(f"{table}: rows are not numbered from 1")
    kept = [name for name in names if name != "INT" and name not in left_out]
    rows.sort(key=lambda row: row["source_file"])
    return [kept] + [[shown(name, row[name], started) for name in kept] for row in rows]


def differences(name, expected, found):
    if len(expected) != len(found):
        yield f"{name}: {len(expected)} lines expected, {len(found)} found"
    for number, (left, right) in enumerate(zip(expected, found), 1):
        for column, (one, other) in enumerate(zip(left, right)):
            if one != other:
                yield f"{name}, line {number}, {expected[0][column]}: {one!r} expected, {other!r}"
        if len(left) != len(right):
            yield f"{name}, line {number}: {len(left)} columns expected, {len(right)} found"


def without(lines, left_out):
    places = [place for place, name in enumerate(lines[0]) if name not in left_out]
    return [[line[place] for place in places] for line in lines]


def missing_texts(library, with_metadata):
    """Texts of the log that the library does not have, neither as bytes nor as UTF-16, with or
    without a place for a value."""
    held = pathlib.Path(library).read_bytes()
    with open(TESTS / "expected_rows" / "log_texts.csv", encoding="utf-8", newline="") as file:
        for (text,) in list(csv.reader(file))[1:]:
            if not with_metadata and text.startswith(("metadata ", ": ")):
                continue
            if not any((text + end).encode(form) in held
                       for end in ("\0", "%1\0") for form in ("utf-8", "utf-16-le")):
                yield f"log text is gone: {text!r}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("host")
    parser.add_argument("--library")
    parser.add_argument("--without-metadata", action="store_true")
    parser.add_argument("--update", action="store_true")
    arguments = parser.parse_args()
    left_out = METADATA if arguments.without_metadata else ()
    started = int(time.time())
    found = {}
    with tempfile.TemporaryDirectory() as scratch:
        base = pathlib.Path(os.path.realpath(scratch))
        copy_source(base / "source")
        for run, options in RUNS.items():
            database, log = extract(os.path.abspath(arguments.host), base / "source", base / run,
                                    options)
            found[f"{run}/debug_log"] = log
            for table in TABLES:
                found[f"{run}/{table}"] = table_of(database, table, started, left_out)
    problems = []
    if arguments.library:
        problems += missing_texts(arguments.library, not arguments.without_metadata)
    for name, lines in found.items():
        path = TESTS / "expected_rows" / f"{name}.csv"
        if arguments.update:
            path.parent.mkdir(exist_ok=True)
            with open(path, "w", encoding="utf-8", newline="") as file:
                csv.writer(file, lineterminator="\n").writerows(lines)
            continue
        with open(path, encoding="utf-8", newline="") as file:
            expected = list(csv.reader(file))
        if left_out:
            expected = [line for line in expected if not METADATA_LINE.search(line[0])]
        problems += differences(name, without(expected, left_out), lines)
    print("\n".join(problems[:40]))
    print(f"{sum(map(len, found.values()))} lines, {len(problems)} differences")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())

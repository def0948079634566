#!/usr/bin/env python3
"""Runs the reference host on random sources and compares every row with the model's."""

from __future__ import annotations

import argparse
import collections
import hashlib
import json
import os
import shutil
import sqlite3
import stat
import subprocess
import sys
import tempfile
from typing import Any

from expected_rows import EMPTY_OR_NULL, TABLES, Anything, Expected, Model, Row, Settings
from source_generator import SourceGenerator

RUN_SECONDS = 60
LONGEST_PROBLEM = 1500
# Every line with one of these texts has to be foreseen; other lines may come and go.
FAILURE_TEXTS = ("FAILED", "Dictionary is nil", "items_array is nil")


def fingerprint(root: str) -> dict[str, Any]:
    """All that must not change: kind, mode, size, change times, content, links, attributes."""
    found: dict[str, Any] = {}
    for folder, folders, files in os.walk(root):
        for path in [folder] + [os.path.join(folder, name) for name in files + folders]:
            status = os.lstat(path)
            content: Any = None
            if stat.S_ISREG(status.st_mode):
                with open(path, "rb") as file:
                    content = hashlib.sha256(file.read()).hexdigest()
            elif stat.S_ISLNK(status.st_mode):
                content = os.readlink(path)
            names = os.listxattr(path, follow_symlinks=False)
            found[path] = (status.st_mode, status.st_size, status.st_mtime_ns, status.st_ctime_ns,
                           content, sorted(names))
    return found


def host_command(host: str, settings: Settings, base: str) -> list[str]:
    command = [host, "extract", "--source-type", settings.source_type,
               "--os-display", settings.os_display, "--source-count", str(settings.source_count),
               "--tabs", ",".join(settings.tabs), "--debug-log", base + "/log",
               "--progress", "never", "--format", "json"]
    if settings.attributes:
        command += ["--attributes", ",".join(settings.attributes)]
    for index, account in enumerate(settings.accounts or []):
        command += ["--account", account + ":its domain" if index % 2 else account]
    return command + [settings.root, base + "/result"]


def read_rows(database: str) -> dict[str, list[Row]]:
    connection = sqlite3.connect(f"file:{database}?mode=ro", uri=True)
    connection.row_factory = sqlite3.Row
    rows = {table: [dict(row) for row in connection.execute(f"select * from {table}")]
            for table in TABLES}
    connection.close()
    return rows


def column_agrees(table: str, column: str, expected: Any, got: Any) -> bool:
    if expected == got:
        return True
    if table != "transfers" or column not in EMPTY_OR_NULL:
        return False
    return got in (None, "") and any(expected == empty for empty in (None, ""))


def differing(table: str, expected: Row, got: Row) -> list[str]:
    columns = (expected.keys() | got.keys()) - {"INT"}
    return sorted(column for column in columns
                  if not column_agrees(table, column, expected.get(column), got.get(column)))


def compare_rows(table: str, expected: list[Row], got: list[Row]) -> list[str]:
    """Pairs equal rows off; what is left on either side is a difference."""
    left = list(got)
    missing = []
    # Rows with fewer open columns choose first, so that an open one takes no other's partner.
    for row in sorted(expected, key=lambda one: sum(isinstance(v, Anything) for v in one.values())):
        partner = next((one for one in left if not differing(table, row, one)), None)
        if partner is None:
            missing.append(row)
        else:
            left.remove(partner)
    problems = []
    for row in missing:
        if not left:
            problems.append(f"{table}: row missing: {row}")
            continue
        nearest = min(left, key=lambda one: len(differing(table, row, one)))
        left.remove(nearest)
        problems += [f"{table}.{column}: expected {row.get(column)!r}, got {nearest.get(column)!r}"
                     f" (source file {nearest['source_file']!r})"
                     for column in differing(table, row, nearest)]
    return problems + [f"{table}: row too many: {row}" for row in left]


def compare_log(path: str, expected: collections.Counter[str]) -> list[str]:
    with open(path, encoding="utf-8", errors="surrogateescape") as file:
        text = file.read()
    problems = []
    for message, count in expected.items():
        found = text.count("]:-- " + message.replace("\n", "\\u000a") + "\n")
        if found != count:
            problems.append(f"log: expected {count} times, got {found}: {message!r}")
    for failure in FAILURE_TEXTS:
        foreseen = sum(count for message, count in expected.items() if failure in message)
        if text.count(failure) != foreseen:
            problems.append(f"log: expected {foreseen} lines with {failure!r}, "
                            f"got {text.count(failure)}")
    return problems


def compare_summary(output: str, rows: dict[str, list[Row]]) -> list[str]:
    summary = json.loads(output)
    counts = {table: len(found) for table, found in rows.items()}
    shown = {table: summary["tables"].get(table) for table in rows}
    problems = [] if shown == counts else [f"summary: {shown} for {counts} rows"]
    if summary["records"] != sum(counts.values()):
        problems.append(f"summary: {summary['records']} records for {counts}")
    return problems


def compare_run(settings: Settings, expected: Expected, base: str, output: str) -> list[str]:
    rows = read_rows(base + "/result/Artifacts_Result/Cyberduck/Cyberduck.sqlite")
    problems = []
    for table in TABLES:
        problems += compare_rows(table, expected.rows[table], rows[table])
    return problems + compare_log(base + "/log", expected.log) + compare_summary(output, rows)


def run_seed(host: str, seed: int, tabs: list[str], base: str) -> list[str]:
    settings = SourceGenerator(seed, base, tabs).generate()
    os.mkdir(base + "/result")
    before = fingerprint(base + "/source")
    expected = Model(settings).expected()
    # A zone away from UTC brings out every conversion through local time.
    # The last one is for a plug-in whose frameworks are stand-ins.
    environment = {**os.environ, "LC_ALL": "C.UTF-8", "TZ": "XST-5:30",
                   "STAND_IN_VOLUME": settings.root}
    try:
        done = subprocess.run(host_command(host, settings, base), env=environment,
                              capture_output=True, timeout=RUN_SECONDS, check=False)
    except subprocess.TimeoutExpired:
        return [f"the host did not end within {RUN_SECONDS} seconds"]
    if done.returncode != 0:
        return [f"the host ended with {done.returncode}: {done.stderr.decode(errors='replace')}"]
    problems = compare_run(settings, expected, base, done.stdout.decode())
    after = fingerprint(base + "/source")
    problems += [f"changed on the source: {path}" for path in sorted(before.keys() | after.keys())
                 if before.get(path) != after.get(path)]
    return problems


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--host", required=True, help="path of plugin_host")
    parser.add_argument("--runs", type=int, default=20, help="number of sources")
    parser.add_argument("--seed", type=int, default=1, help="seed of the first source")
    parser.add_argument("--tables", default=",".join(TABLES), help="comma list of tables")
    parser.add_argument("--keep", action="store_true", help="keep the folders of failed sources")
    arguments = parser.parse_args()
    tabs = arguments.tables.split(",")
    if not set(tabs) <= set(TABLES):
        parser.error("--tables takes " + ", ".join(TABLES))
    failed = 0
    for seed in range(arguments.seed, arguments.seed + arguments.runs):
        base = os.path.realpath(tempfile.mkdtemp(prefix="model-"))
        problems = run_seed(os.path.abspath(arguments.host), seed, tabs, base)
        failed += bool(problems)
        for problem in problems:
            print(f"seed {seed}: {problem[:LONGEST_PROBLEM]}", flush=True)
        if problems and arguments.keep:
            print(f"seed {seed}: kept in {base}")
        else:
            shutil.rmtree(base)
    print(f"{arguments.runs - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

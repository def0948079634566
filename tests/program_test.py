#!/usr/bin/env python3
"""Runs the program as an examiner would: layouts of sources, accounts that add up, results that are
kept, marked and verified.

    tests/program_test.py HOST [SOURCES [MOMENTS]]

HOST is plugin_host with its library at its side. SOURCES random sources are made (default: 15), and
MOMENTS runs are killed (default: 10).
"""

import collections
import datetime
import json
import os
import pathlib
import plistlib
import random
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

HOST = os.path.abspath(sys.argv[1])
SOURCES = int(sys.argv[2]) if len(sys.argv) > 2 else 15
MOMENTS = int(sys.argv[3]) if len(sys.argv) > 3 else 10
EXAMPLE = pathlib.Path(__file__).resolve().parent.parent / "examples" / "source"
TABLES = {"bookmark": "bookmarks", "history": "history", "transfer": "transfers",
          "preferences": "preferences"}
SUPPORT = "Library/Application Support/Cyberduck"
CONTAINER = "Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck"
# What a row tells of the list alone, not of a local copy.
OF_LIST = "source_file, hostname, protocol, username"


def run(*arguments, **options):
    return subprocess.run([HOST, *map(str, arguments)], capture_output=True, text=True,
                          check=False, **options)


def query(database, statement):
    with sqlite3.connect(f"file:{database}?mode=ro", uri=True) as connection:
        connection.text_factory = lambda raw: raw.decode("utf-8", "surrogatepass")
        return connection.execute(statement).fetchall()


def rows_of_lists(results):
    database = results / "Artifacts_Result/Cyberduck/Cyberduck.sqlite"
    return {table: sorted(query(database, f"select {OF_LIST} from {table}"), key=repr)
            for table in ("bookmarks", "history", "transfers")}


def files_below(folder):
    return {path: path.read_bytes() for path in folder.rglob("*") if path.is_file()}


class program(unittest.TestCase):
    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="program_test_"))
        self.scratch.chmod(0o755)
        self.out = self.scratch / "out"
        self.addCleanup(lambda: subprocess.run(["rm", "-rf", str(self.scratch)], check=True))

    def extract(self, *arguments, **options):
        done = run("extract", "--progress", "never", *arguments, self.out, **options)
        self.assertIn(done.returncode, (0, 1), done.stderr)
        return done


class layouts(program):
    """Each layout gives the rows of the volume, or says where it has looked."""

    def copy(self, source, target):
        shutil.copytree(source, self.scratch / target, symlinks=True)
        return self.scratch / target

    def users(self):
        return sorted(path.name for path in (EXAMPLE / "Users").iterdir()
                      if (path / "Library").is_dir())

    def test_rows(self):
        self.extract(EXAMPLE)
        expected = rows_of_lists(self.out)
        self.assertGreater(len(expected["bookmarks"]), 5)
        data = self.copy(EXAMPLE, "system/System/Volumes/Data").parents[2]
        self.copy(EXAMPLE / "Users", "people")
        self.copy(EXAMPLE, "unpacked/host/C")
        self.copy(EXAMPLE, "tm/Backups.backupdb/Mac/2020-05-09-101112/Macintosh HD")
        self.copy(EXAMPLE, "apfs/2021-01-02-030405.backup/Macintosh HD - Data")
        for name, source in {"system-volume": data, "users-folder": self.scratch / "people",
                             "collection": self.scratch / "unpacked",
                             "backup": self.scratch / "tm", "backup ": self.scratch / "apfs"}.items():
            with self.subTest(name):
                self.extract("--force", source)
                self.assertEqual(rows_of_lists(self.out), expected)
                told = json.loads((self.out / "run.json").read_text())
                self.assertEqual(told["sources"][0]["layout"], name.strip())
        with self.subTest("homes, each a source"):
            self.extract("--force", *[EXAMPLE / "Users" / user for user in self.users()])
            self.assertEqual(rows_of_lists(self.out), expected)
        with self.subTest("a home by another name"):
            home = self.copy(EXAMPLE / "Users/amelia", "evidence 7")
            self.extract("--force", "--account", "amelia", home)
            own = {table: [row for row in rows if row[0].startswith("/Users/amelia/")]
                   for table, rows in expected.items()}
            self.assertEqual(rows_of_lists(self.out), own)
            self.assertIn("local copies were not collected", run("show", self.out).stdout
                          + json.dumps(json.loads((self.out / "run.json").read_text())))

    def test_loose_lists(self):
        folder = self.copy(EXAMPLE / "Users/amelia" / SUPPORT, "Cyberduck")
        left = self.out / "view/1/Users/unknown" / SUPPORT / "Bookmarks/Web server.duck"
        left.parent.mkdir(parents=True)
        left.write_bytes(b"what a killed run has left")
        self.extract(folder)
        names = {row[0].rpartition("/")[2] for row in rows_of_lists(self.out)["bookmarks"]}
        self.extract("--force", folder / "Bookmarks/Web server.duck")
        self.assertEqual([row[0] for row in rows_of_lists(self.out)["bookmarks"]],
                         [f"/Users/unknown/{SUPPORT}/Bookmarks/Web server.duck"])
        self.assertIn("Web server.duck", names)

    def test_snapshots_oldest_first_and_appended(self):
        for date in ("2021-03-01-000000", "2019-03-01-000000", "2020-03-01-000000"):
            home = self.scratch / "tm" / date / "Disk/Users/al" / SUPPORT / "Bookmarks"
            home.mkdir(parents=True)
            (home / "a.duck").write_bytes(plistlib.dumps({"Nickname": date}))
        self.extract(self.scratch / "tm")
        self.extract("--append", self.scratch / "tm/2019-03-01-000000/Disk")
        database = self.out / "Artifacts_Result/Cyberduck/Cyberduck.sqlite"
        self.assertEqual(query(database, "select source_count_name, nickname from bookmarks"),
                         [("Source1", "2019-03-01-000000"), ("Source2", "2020-03-01-000000"),
                          ("Source3", "2021-03-01-000000"), ("Source4", "2019-03-01-000000")])
        self.assertEqual(query(self.out / "inventory.sqlite", "select source, rows from list"),
                         [(1, 1), (2, 1), (3, 1), (4, 1)])

    def test_odd_values_are_noted(self):
        home = self.scratch / "disk/Users/al" / SUPPORT / "Transfers"
        home.mkdir(parents=True)
        (self.scratch / "disk/Volumes/Stick").mkdir(parents=True)
        (self.scratch / "disk/Volumes/Stick/a").write_bytes(b"12345")
        paths = ["/Volumes/Stick/a", "/Volumes/Stick/b", "/../../etc/passwd", "/Users/al/x", "~/y"]
        (home / "t.cyberducktransfer").write_bytes(plistlib.dumps({
            "Host": {"Hostname": "h"}, "Timestamp": "9999999999999",
            "Items": [{"Local Dictionary": {"Path": path}} for path in paths]}))
        self.extract(self.scratch / "disk")
        notes = query(self.out / "inventory.sqlite", "select text, target from note order by id")
        self.assertEqual([(text.rpartition(": ")[2], target) for text, target in notes], [
            ("a file of 5 bytes is there", paths[0]), ("nothing is there", paths[1]),
            ("it leads out of the source", paths[2]), ("9999999999999", None)])

    def test_nothing(self):
        (self.scratch / "empty/Users/eve").mkdir(parents=True)
        image = self.scratch / "disk.E01"
        image.write_bytes(b"EVF\x09\x0d\x0a\xff\x00" + bytes(600))
        for source, told in ((self.scratch / "empty", f"eve/{SUPPORT}/Bookmarks"),
                             (self.scratch / "empty/Users/eve", "five levels down"),
                             (image, "ewfmount")):
            for command in (["scan", source], ["extract", source, self.out]):
                done = run(*command)
                self.assertEqual(done.returncode, 3)
                self.assertIn(told, done.stderr)
        self.assertFalse(self.out.exists())
        done = run("scan", "--json", EXAMPLE)
        self.assertEqual(json.loads(done.stdout)["sources"][0]["layout"], "volume")


class results(program):
    """A result is kept, marked and can be verified."""

    def test_kept_and_verified(self):
        source = self.scratch / "source"
        shutil.copytree(EXAMPLE, source, symlinks=True)
        self.extract(source)
        before = files_below(self.out)
        self.assertEqual(run("extract", source, self.out).returncode, 4)
        self.assertEqual(run("extract", "--account", "nobody", "--force", source,
                             self.out).returncode, 3)
        self.assertEqual(files_below(self.out), before)
        self.assertEqual(run("verify", self.out).returncode, 0)
        lists = sorted((source / "Users/amelia" / SUPPORT / "Bookmarks").rglob("*.duck"))
        self.flip(lists[0])
        lists[1].unlink()
        shutil.copy(lists[2], lists[2].with_name("added.duck"))
        self.flip(self.out / "Artifacts_Result/Cyberduck/Cyberduck.sqlite")
        done = run("verify", self.out)
        self.assertEqual(done.returncode, 1)
        for what, which in (("changed", lists[0]), ("missing", lists[1]),
                            ("new", lists[2].with_name("added.duck")),
                            ("changed", "Cyberduck.sqlite")):
            self.assertRegex(done.stdout, f"{what} *: .*{re.escape(str(which))}")
        self.assertEqual(len(done.stdout.splitlines()), 5)

    def flip(self, path):
        raw = bytearray(path.read_bytes())
        raw[len(raw) // 2] ^= 1
        path.write_bytes(bytes(raw))

    def test_killed(self):
        home = self.scratch / "source/Users/al" / SUPPORT / "Bookmarks"
        home.mkdir(parents=True)
        for i in range(1500):
            (home / f"{i}.duck").write_bytes(plistlib.dumps({"Nickname": str(i)}))
        start = time.monotonic()
        self.extract(self.scratch / "source")
        whole = time.monotonic() - start
        states = collections.Counter()
        for moment in range(MOMENTS):
            process = subprocess.Popen([HOST, "extract", "--force", self.scratch / "source", self.out],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(whole * moment / MOMENTS)
            process.send_signal(signal.SIGKILL)
            ended = process.wait()
            state = json.loads((self.out / "run.json").read_text())["state"]
            states[state] += 1
            rows = query(self.out / "Artifacts_Result/Cyberduck/Cyberduck.sqlite",
                         "select count(*) from bookmarks")
            self.assertEqual(rows, [(1500,)], "a killed run costs no earlier rows")
            if state == "complete" and ended == -signal.SIGKILL:
                self.assertEqual(run("verify", self.out).returncode, 0)
        self.assertGreater(states["partial"], 0)

    def test_inspect(self):
        content = {"b": "x\u202ey", "a": [1, 2.5, True, b"\x00\xff"],
                   "t": datetime.datetime(2020, 5, 9, 10, 45, 12)}
        for form in (plistlib.FMT_XML, plistlib.FMT_BINARY):
            done = subprocess.run([HOST, "inspect", "-"], capture_output=True, check=True,
                                  input=plistlib.dumps(content, fmt=form, sort_keys=False))
            self.assertEqual(list(json.loads(done.stdout).items()), [
                ("b", "x\u202ey"), ("a", [1, 2.5, True, "AP8="]), ("t", "2020-05-09T10:45:12Z")])
        self.assertEqual(subprocess.run([HOST, "inspect", "-"], input=b"{", capture_output=True,
                                        check=False).returncode, 1)


class account(program):
    """On hostile sources, what is found is read, skipped or failed, and no value is missing."""

    def value(self, rng, depth=0):
        kinds = ["", "té/xt\\", 7, -1, 2.5, True, bytes(range(9)), datetime.datetime(1999, 1, 2)]
        if depth < 3 and rng.random() < 0.4:
            size = rng.randrange(4)
            if rng.random() < 0.5:
                return [self.value(rng, depth + 1) for _ in range(size)]
            return {rng.choice("ab/\\é") + str(i): self.value(rng, depth + 1) for i in range(size)}
        return rng.choice(kinds)

    def content(self, rng, suffix):
        content = {f"key {i}": self.value(rng) for i in range(rng.randrange(6))}
        if suffix == ".cyberducktransfer":
            content["Host"] = {"Hostname": "h"}
            content["Items"] = [rng.choice(["no item", {"Remote": {"Remote": "/x"}}])
                                for _ in range(rng.randrange(5))]
        raw = plistlib.dumps(content, fmt=rng.choice([plistlib.FMT_XML, plistlib.FMT_BINARY]))
        return rng.choice([raw] * 6 + [raw[:len(raw) // 2], b"", plistlib.dumps([1])])

    def build(self, seed, source):
        rng = random.Random(seed)
        for user in ("al", "bé", "cé d")[:rng.randrange(1, 4)]:
            home = source / "Users" / user
            for support in rng.sample([SUPPORT, CONTAINER], rng.randrange(1, 3)):
                for kind, suffix in (("Bookmarks", ".duck"), ("History", ".duck"),
                                     ("Transfers", ".cyberducktransfer")):
                    folder = home / support / kind / rng.choice(["", "sub", ".hidden", "a.duck"])
                    folder.mkdir(parents=True, exist_ok=True)
                    for i in range(rng.randrange(5)):
                        path = folder / (rng.choice(["", "", "."]) + f"{i}"
                                         + rng.choice([suffix, suffix, suffix.upper(), ".txt"]))
                        path.write_bytes(self.content(rng, suffix))
                        if rng.random() < 0.1:
                            path.chmod(0)
                    if rng.random() < 0.3:
                        (folder / f"link{suffix}").symlink_to(
                            rng.choice(["nowhere", "/etc/passwd", "0" + suffix]))
                    if rng.random() < 0.2:
                        os.mkfifo(folder / f"pipe{suffix}")
                    if rng.random() < 0.1:
                        folder.chmod(0)
            if rng.random() < 0.7:
                path = home / "Library/Preferences/ch.sudo.cyberduck.plist"
                path.parent.mkdir(parents=True)
                path.write_bytes(self.content(rng, ""))
            if rng.random() < 0.1:
                home.chmod(0)

    def key_paths(self, value, prefix=""):
        entries = enumerate(value) if isinstance(value, list) else value.items()
        for key, inner in entries:
            path = prefix + str(key).replace("\\", "\\\\").replace("/", "\\/")
            yield path
            if isinstance(inner, (list, dict)):
                yield from self.key_paths(inner, path + "/")

    def check(self, seed, options):
        source = self.scratch / f"source {seed}"
        self.build(seed, source)
        self.out = self.scratch / f"out {seed}"
        self.out.mkdir()
        self.out.chmod(0o777)
        done = run("extract", "--format", "json", source, self.out, **options)
        if done.returncode == 3:
            return
        self.assertIn(done.returncode, (0, 1), done.stderr)
        told = json.loads(done.stdout)
        for one in told["by_user_and_tab"]:
            self.assertEqual(one["found"], one["read"] + one["skipped"] + one["failed"], one)
        database = self.out / "Artifacts_Result/Cyberduck/Cyberduck.sqlite"
        inventory = self.out / "inventory.sqlite"
        for kind, table in TABLES.items():
            self.assertEqual(
                dict(query(inventory, f"select path, rows from list where kind = '{kind}' and rows > 0")),
                dict(query(database, f"select source_file, count(*) from {table} group by 1")))
        self.assertEqual(query(inventory, "select path from list where rows_differ = 1"), [])
        failed = query(inventory, "select count(*) from list where status <> 'read'")[0][0]
        notes = query(inventory, "select count(*) from note where failure = 1")[0][0]
        self.assertEqual(done.returncode, 1 if failed + notes else 0)
        for number, file in query(inventory, "select id, file from list where sha256 is not null"):
            try:
                content = plistlib.loads(pathlib.Path(file).read_bytes())
            except Exception:  # not a list for that reader either
                continue
            wanted = set(self.key_paths(content))
            found = {row[0] for row in query(inventory,
                                             f"select path from value where list = {number}")}
            self.assertEqual(found, wanted, file)

    def test_adds_up(self):
        for seed in range(SOURCES):
            with self.subTest(seed=seed):
                self.check(seed, {})

    @unittest.skipUnless(os.geteuid() == 0, "only root can become somebody without rights")
    def test_adds_up_without_rights(self):
        for seed in range(SOURCES, 2 * SOURCES):
            with self.subTest(seed=seed):
                self.check(seed, {"user": 65534, "group": 65534, "extra_groups": []})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

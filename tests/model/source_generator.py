"""Random source trees, each made from a seed alone."""

from __future__ import annotations

import contextlib
import datetime
import os
import plistlib
import random
import unicodedata
from typing import Any

import handmade_bytes
from expected_rows import (FIXED_ATTRIBUTES, GROUP_FOLDER, HOME_DIRECTORY, OLD_FOLDER,
                           PREFERENCES_FILE, TABLES, Settings)
from preference_table import EXISTING_FILES, PREFERENCES, REGIONS

USER_NAMES = ("alice", "bob", "s", "Us", "Users", "Zoë", "jo ann", "李雷", "o'neil", "a=b", "e",
              "carol.x", "Library")
TEXTS = ("sftp", "ftp.example.org", "22", "0022", "1e5", "-7", "1.50", "1.5", "~/Downloads", "é",
         "a=b;c", 'say "hi"', "it's", "<tag> & more", "Größe 大 😀", "true", "false", "\\U2019s",
         "%41%20", "two\nlines", "tab\there", "~", "~/Documents/../x", "/tmp", "tmp", "NULL")
BLANKS = (" ", "\t", "\n", "\u00a0", "\u2003", "  ", "\u3000")
NAMES = ("a", "B", "x y", "Zürich", "semi;colon", "quote\"d", "it's", "eq=ual", "ünï", "100%",
         "colon:name", "😀", "brace}", "com,ma", "(paren)", "line\nbreak", "e\u0301", "%41", "a.b", ".hid")
EXTENSIONS = (".txt", ".jpg", ".tar.gz", "", ".PNG", ".zip", ".", ". b")
STORED_NAMES = ("kMDItemDownloadedDate", "kMDItemFinderComment", "_kMDItemUserTags",
                "com_apple_note", "kMDItemPixelCount")
EXTRA_ATTRIBUTES = STORED_NAMES + ("kMDItemFSSize", "kMDItemFSName", "kMDItemWhereFroms", "none")
EPOCH = datetime.datetime(1970, 1, 1)


class SourceGenerator:
    """Makes one source tree below base/source; base/outside is what links lead out to."""

    def __init__(self, seed: int, base: str, tabs: list[str] | None = None) -> None:
        self.random = random.Random(seed)
        self.base = base
        self.root = base + "/source/"
        self.tabs = tabs or list(TABLES)

    def chance(self, probability: float) -> bool:
        return self.random.random() < probability

    def generate(self) -> Settings:
        os.makedirs(self.base + "/outside")
        self.outside = self.base + "/outside/x.duck"
        self.write(self.outside, plistlib.dumps(self.bookmark()))
        os.makedirs(self.root + "Users/Shared")
        users = self.random.sample(USER_NAMES, self.random.randint(1, 5))
        for user in users:
            self.user(user)
        if self.chance(0.3):
            self.user("Shared")
        if self.chance(0.2):
            self.user(".hidden")
        return self.settings(users)

    def settings(self, users: list[str]) -> Settings:
        accounts = None
        if self.chance(0.5):
            accounts = users + self.random.sample(users + ["nobody", "Shared"], 1)
            self.random.shuffle(accounts)
        chosen = self.random.sample(EXTRA_ATTRIBUTES, self.random.randint(0, 5))
        return Settings(self.root, self.random.choice(("macOS_Image", HOME_DIRECTORY)),
                        self.random.choice(("macOS", "macOS 14 – été")),
                        self.random.randint(1, 40), self.tabs, chosen, accounts)

    def user(self, user: str) -> None:
        home = self.root + "Users/" + user
        os.makedirs(home + "/Downloads/sub", exist_ok=True)
        makers = {"bookmarks": ("Bookmarks", ".duck", self.bookmark),
                  "history": ("History", ".duck", self.history),
                  "transfers": ("Transfers", ".cyberducktransfer", lambda: self.transfer(home))}
        for table in self.tabs:
            if table == "preferences":
                self.preferences(home + PREFERENCES_FILE)
                continue
            kind, suffix, maker = makers[table]
            for place in (OLD_FOLDER, GROUP_FOLDER):
                if self.chance(0.6):
                    self.data_folder(home + place + kind, suffix, maker)
                elif self.chance(0.1):
                    self.write(home + place + kind, b"a file where a folder should be")

    # --- files ------------------------------------------------------------------------------

    def write(self, path: str, data: bytes) -> None:
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)

    def link(self, target: str, path: str) -> None:
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with contextlib.suppress(FileExistsError):
            os.symlink(target, path)

    def data_folder(self, folder: str, suffix: str, maker: Any) -> None:
        if self.chance(0.05):
            self.link(os.path.relpath(self.base + "/outside", os.path.dirname(folder)), folder)
            return
        os.makedirs(folder)
        inner = [folder, folder + "/sub", folder + "/sub/deep er", folder + "/.hidden"]
        for index in range(self.random.randint(0, 8)):
            place = self.random.choice(inner)
            stem = f"{self.random.choice(NAMES)}{index}"
            name = stem + self.random.choice((suffix,) * 9 + (suffix.upper(), suffix + "x", ""))
            name = "." + name if self.chance(0.05) else name
            data = self.broken() if self.chance(0.15) else self.encoded(maker())
            self.write(f"{place}/{name}", data)
        self.odd_entries(folder, suffix, maker)
        if self.chance(0.2):
            os.makedirs(folder + "/empty", exist_ok=True)

    def odd_entries(self, folder: str, suffix: str, maker: Any) -> None:
        if self.chance(0.2):
            self.write(f"{folder}/real.list", self.encoded(maker()))
            self.link("real.list", f"{folder}/inside{suffix}")
        if self.chance(0.2):
            self.link("nowhere", f"{folder}/broken{suffix}")
        if self.chance(0.2):
            up = os.path.relpath(self.outside, folder)
            self.link(self.random.choice((up, self.outside)), f"{folder}/leading out{suffix}")
        if self.chance(0.2):
            self.write(f"{folder}/folder{suffix}/in it{suffix}", self.encoded(maker()))
        if self.chance(0.2):
            self.link("..", f"{folder}/loop")
        if self.chance(0.1):
            os.mkfifo(f"{folder}/pipe{suffix}")

    # --- property lists ---------------------------------------------------------------------

    def encoded(self, content: dict[str, Any]) -> bytes:
        """The same dictionary as a binary list or as XML in one of its many outer forms."""
        if self.chance(0.4):
            return plistlib.dumps(content, fmt=plistlib.FMT_BINARY, sort_keys=False)
        text = plistlib.dumps(content, fmt=plistlib.FMT_XML, sort_keys=False).decode("utf-8")
        form = self.random.randrange(8)
        head, _, rest = text.partition("<plist")
        declaration = head.split("\n")[0]
        if form == 1:
            text = declaration + "\n<plist" + rest
        elif form == 2:
            text = declaration + rest[rest.index(">") + 1:rest.rindex("</plist>")]
        elif form == 3:
            return b"\xef\xbb\xbf" + text.encode("utf-8")
        elif form == 4:
            return text.replace("UTF-8", "UTF-16", 1).encode("utf-16")
        elif form == 5:
            return text.replace("UTF-8", "ISO-8859-1", 1).encode("latin-1", "xmlcharrefreplace")
        elif form == 6:
            text = "\n  " + text
        elif form == 7:
            text = text.replace("<string>", "<string><![CDATA[]]>")
        return text.encode("utf-8")

    def broken(self) -> bytes:
        good = {"Nickname": "never seen", "Host": {}, "Items": []}
        xml, binary = plistlib.dumps(good), plistlib.dumps(good, fmt=plistlib.FMT_BINARY)
        return self.random.choice((
            b"", b"{ Nickname = old; }", xml[:-20], binary[:-5], binary[:20], xml[:60],
            plistlib.dumps(["list"]), plistlib.dumps("text", fmt=plistlib.FMT_BINARY),
            self.random.randbytes(200), xml.replace(b"never seen", b"&unknown;"),
            xml.replace(b"</string>", b"</key>")))

    def text(self) -> str:
        kind = self.random.randrange(12)
        if kind == 0:
            return ""
        if kind == 1:
            return "".join(self.random.choices(BLANKS, k=3))
        text = self.random.choice(TEXTS)
        if kind == 2:
            text = self.random.choice(BLANKS) + text + self.random.choice(BLANKS)
        return text * 700 if kind == 3 else text

    def wrong(self) -> Any:
        return self.random.choice((22, 0, -1, 2.5, True, False, b"data", [], ["a"], {}, {"a": "b"},
                                   datetime.datetime(2020, 5, 9, 10, 45, 12)))

    def put(self, owner: dict[str, Any], key: str, value: Any) -> None:
        """Mostly the value, at times another class or no such key at all."""
        draw = self.random.random()
        if draw < 0.12:
            owner[key] = self.wrong()
        elif draw < 0.85:
            owner[key] = value

    def time_stamp(self) -> str:
        return self.random.choice(("1589021112345", " 1600000000123 ", "abc", "12", "", "-1",
                                   "15890.21112", "99999999999999", "  ", "1e3"))

    def path_dictionary(self) -> dict[str, Any]:
        path: dict[str, Any] = {"Bookmark": b"opaque"}
        self.put(path, "Path", self.random.choice(("~/Downloads", "~", "/tmp", "", self.text())))
        return path

    def bookmark(self) -> dict[str, Any]:
        content = self.history()
        for key in ("Path", "Nickname"):
            self.put(content, key, self.text())
        for key in ("Upload Folder Dictionary", "Download Folder Dictionary"):
            self.put(content, key, self.path_dictionary())
        return self.shuffled(content)

    def history(self) -> dict[str, Any]:
        content: dict[str, Any] = {"Labels": ["not read"], "Custom": {"a": 1}}
        for key in ("Protocol", "UUID", "Hostname", "Port", "Username", "Comment", "Nickname"):
            self.put(content, key, self.text())
        self.put(content, "Access Timestamp", self.time_stamp())
        return self.shuffled(content)

    def shuffled(self, content: dict[str, Any]) -> dict[str, Any]:
        return dict(self.random.sample(list(content.items()), len(content)))

    def preferences(self, path: str) -> None:
        draw = self.random.random()
        if draw < 0.15:
            return
        if draw < 0.2:
            os.makedirs(path)
        elif draw < 0.25:
            self.link(os.path.relpath(self.outside, os.path.dirname(path)), path)
        elif draw < 0.35:
            self.write(path, self.broken())
        else:
            chosen = (1.0, 0.5, 0.0)[self.random.randrange(3)]
            content: dict[str, Any] = {f"unknown.{i}": self.wrong() for i in range(5)}
            content.update({key: self.preference() for key, _, _ in PREFERENCES
                            if self.chance(chosen)})
            self.write(path, self.encoded(self.shuffled(content)))

    def preference(self) -> Any:
        kind = self.random.randrange(5)
        if kind == 0:
            return self.wrong()
        if kind == 1:
            return self.text()
        if kind == 2:
            return self.random.choice((0, 1, 2, 30, -5, 2.9, -2.9, 0.4, 1e30, -1e30, 2 ** 60 + 1,
                                       2 ** 63 - 1, True, False, 1e-9))
        if kind == 3:
            return self.random.choice(("1", "0", "0.5", " 2", "\t3x", "-1", "1e2", ".9", "+4",
                                       "1e", "yes", "0x10", "1e400", "-0", "inf", "--1", "5."))
        codes = ["16", "32", "64", "48", "newconnection", "browser", "concurrent", "-1", "1048576",
                 "com.apple.textedit", "com.apple.dt.xcode", "STANDARD", "STANDARD_IA",
                 "REDUCED_REDUNDANCY", *EXISTING_FILES, *REGIONS]
        code = self.random.choice(codes)
        return self.random.choice((code, code, code, code.upper(), code.title(), code + " "))

    # --- transfers --------------------------------------------------------------------------

    def transfer(self, home: str) -> dict[str, Any]:
        content: dict[str, Any] = {"Kind": "1", "Current": "5", "Bandwidth": "-1", "Roots": []}
        for key in ("Type", "UUID"):
            self.put(content, key, self.text())
        self.put(content, "Size", self.random.choice(("1048576", "1.0", "many", "", " 12 ")))
        self.put(content, "Timestamp", self.time_stamp())
        if self.chance(0.9):
            content["Host"] = self.bookmark() if self.chance(0.95) else "no dictionary"
        if self.chance(0.9):
            count = self.random.choice((0, 1, 2, 3, 12))
            items: Any = [self.item(home) if self.chance(0.9) else self.wrong()
                          for _ in range(count)]
            content["Items"] = items if self.chance(0.95) else {"no": "array"}
        return self.shuffled(content)

    def item(self, home: str) -> dict[str, Any]:
        attributes: dict[str, Any] = {}
        self.put(attributes, "Size", "123")
        self.put(attributes, "Modified", self.time_stamp())
        self.put(attributes, "Duplicate", self.text())
        self.put(attributes, "Permission", {"Mask": self.text()})
        remote: dict[str, Any] = {}
        self.put(remote, "Type", self.random.choice(("[file]", "[directory]", " x ")))
        self.put(remote, "Remote", self.text())
        self.put(remote, "Attributes", attributes)
        item: dict[str, Any] = {}
        self.put(item, "Remote", remote)
        local: dict[str, Any] = {}
        self.put(local, "Path", self.local_path(home))
        self.put(item, "Local Dictionary", local)
        return item

    def local_path(self, home: str) -> str:
        """A path as a transfer records it, mostly of a local copy that is made on the spot."""
        draw = self.random.random()
        if draw < 0.1:
            return "~/Downloads/gone.zip"
        if draw < 0.16:
            return self.random.choice(("~/../../../outside/x.duck", "~/../../../../nowhere/y.txt",
                                       "~/Downloads/way out/x.duck"))
        name = self.copy_name(home + "/Downloads/")
        path = home + "/Downloads/" + name
        self.local_copy(path)
        if draw < 0.22:
            return "~/Downloads/sub/../" + name
        if draw < 0.30:
            return self.linked_path(home, path)
        return "~/Downloads/" + name

    def copy_name(self, folder: str) -> str:
        self.link(os.path.relpath(self.base + "/outside", folder), folder + "way out")
        place = self.random.choice(("sub/", "", ""))
        name = self.random.choice(NAMES) + self.random.choice(EXTENSIONS)
        while os.path.lexists(folder + place + name):
            name = str(self.random.randrange(100)) + name
        return place + name

    def linked_path(self, home: str, path: str) -> str:
        number = self.random.randrange(10 ** 6)
        link = f"{home}/Downloads/link{number}.txt"
        inside = "/" + path[len(self.root):]
        self.link(self.random.choice((inside, os.path.relpath(path, os.path.dirname(link)))), link)
        return f"~/Downloads/link{number}.txt"

    def local_copy(self, path: str) -> None:
        if self.chance(0.2):
            self.write(path + "/one.txt", b"1" * self.random.randrange(100))
            self.write(path + "/in/two", b"2" * self.random.randrange(100))
            self.write(path + "/.DS_Store", b"3" * self.random.randrange(100))
            self.link("one.txt", path + "/link")
            self.link("in", path + "/linked")
        elif self.chance(0.3):
            self.write(path, self.image())
        else:
            self.write(path, self.random.randbytes(self.random.choice((0, 5, 5000))))
        if self.chance(0.4):
            self.extended_attributes(path)
        if self.chance(0.4):
            self.companion(path)
        if self.chance(0.7):
            moment = self.random.randrange(-10 ** 9, 2 * 10 ** 18, 7)
            os.utime(path, ns=(moment, moment))

    def image(self) -> bytes:
        def parts(limit: int) -> list[tuple[int, int]] | None:
            degrees = (self.random.randrange(limit), self.random.choice((1, 1, 1, 1, 0)))
            minutes = (self.random.randrange(6000), self.random.choice((100, 100, 0)))
            seconds = (self.random.randrange(600), self.random.choice((10, 1, 0)))
            count = self.random.choice((3, 3, 3, 2, 1))
            return None if self.chance(0.1) else [degrees, minutes, seconds][:count]
        block = handmade_bytes.exif_block(
            self.random.choice("<>"), parts(91), self.random.choice(("N", "S", "s", None)),
            parts(181), self.random.choice(("E", "W", "w", None)))
        form = self.random.randrange(4)
        if form == 0:
            return block
        if form == 1:
            return handmade_bytes.jpeg(block)
        return handmade_bytes.png(block, late=form == 2)

    # --- metadata of local copies -----------------------------------------------------------

    def moment(self) -> datetime.datetime:
        return EPOCH + datetime.timedelta(seconds=self.random.randrange(-10 ** 8, 2 * 10 ** 9),
                                          microseconds=self.random.randrange(10 ** 6))

    def address(self) -> str:
        return self.random.choice((
            "https://example.org/a.zip", "https://example.org/a%20b.zip", "", "Anna’s Mac", "guide",
            "https://example.org/?q=1,2", "https://example.org/%2520", "Zoë 😀", 'a "quote"',
            "two  blanks", "back\\slash", "(x)", "https://example.org/100%", "C\u0301", "%C3%A9"))

    def list_value(self) -> list[Any]:
        return [self.address() for _ in range(self.random.randint(0, 3))]

    def any_value(self) -> Any:
        return self.random.choice((
            self.address(), self.list_value(), 5, -3, 0, 2.5, -0.25, 0.0, 1e21, True, False,
            self.moment(), [self.moment(), 7, -7, 1.5, 4.0, True, "two words", "plain"],
            {"no": "value"}, b"none", "brace}]>{=x", "key=value", " blanks ", "<CFNumber +1,"))

    def stored_value(self, name: str) -> Any:
        if name in ("kMDItemWhereFroms", "org_bittorrent_torrent_filenames"):
            return self.list_value() or ["https://example.org"]
        if name == "kMDItemUsedDates":
            return sorted(self.moment() for _ in range(self.random.randint(1, 4)))
        if name == "kMDItemAltitude":
            return self.random.choice((103, -4, 103.0, 0.0, 48.5, -1.5, True))
        if name == "kMDItemFSNodeCount":
            return self.random.choice((4, -4))
        if name == "kMDItemContentType" or name not in FIXED_ATTRIBUTES:
            return self.any_value()
        return self.address() or "x" if name == "kMDItemFSName" else self.moment()

    def value_bytes(self, value: Any) -> bytes:
        if isinstance(value, str) and value and self.chance(0.3):
            return value.encode("utf-8") + self.random.choice((b"", b"\0"))
        form = self.random.choice((plistlib.FMT_BINARY, plistlib.FMT_BINARY, plistlib.FMT_XML))
        return plistlib.dumps(value, fmt=form)

    def attribute_set(self) -> dict[str, bytes]:
        """Canonical names and values; one source of a date each, as two would have no order."""
        names = [name for name in sorted(FIXED_ATTRIBUTES) + list(STORED_NAMES)
                 if name not in ("kMDItemLatitude", "kMDItemLongitude", "kMDItemKind")]
        chosen = self.random.sample(names, self.random.randint(1, 6))
        found = {"com.apple.metadata:" + name: self.value_bytes(self.stored_value(name))
                 for name in chosen}
        if "kMDItemLastUsedDate" not in chosen and self.chance(0.5):
            nanoseconds = self.random.choice((0, 250000000, 999999999, 10 ** 9))
            found["com.apple.lastuseddate#PS"] = handmade_bytes.last_used(
                self.random.randrange(2 * 10 ** 9), nanoseconds)
        if self.chance(0.3):
            found["com.apple.metadata:kMDLabel_x"] = self.random.randbytes(40)
        return found

    def extended_attributes(self, path: str) -> None:
        found = self.attribute_set()
        if "com.apple.metadata:kMDItemDateAdded" not in found and self.chance(0.3):
            found["com.apple.FinderInfo"] = handmade_bytes.finder_info(
                self.random.randrange(2 * 10 ** 9))
        samba, flagged = self.chance(0.2), self.chance(0.2)
        for name, value in found.items():
            if flagged and "#" not in name:
                name += "#PS"
            if samba:
                name, value = f"DosStream.{name}:$DATA".replace(":k", "\uf022k"), value + b"\0"
            with contextlib.suppress(OSError):  # not every file system holds large attributes
                os.setxattr(path, "user." + name, value)

    def companion(self, path: str) -> None:
        folder, name = os.path.split(path)
        if self.chance(0.2):
            name = unicodedata.normalize(self.random.choice(("NFC", "NFD")), name)
        if self.chance(0.3):
            home = "/".join(path[len(self.root):].split("/")[:2])
            ancestor = self.root + self.random.choice((home, home + "/Downloads"))
            folder = f"{ancestor}/__MACOSX/{os.path.relpath(folder, ancestor)}"
        data = handmade_bytes.apple_double(self.attribute_set(), self.chance(0.5))
        if self.chance(0.1):
            data = self.random.choice((b"not a companion" * 10, data[:60], b""))
        self.write(os.path.normpath(folder) + "/._" + name, data)

"""The exact rows and log lines that one extraction of a source tree has to give."""

from __future__ import annotations

import codecs
import collections
import dataclasses
import datetime
import functools
import os
import plistlib
import re
import sqlite3
import stat
import xml.etree.ElementTree as ElementTree
from collections.abc import Iterator
from typing import Any

import filters
import local_copy
from filters import trimmed
from preference_table import PREFERENCES

HOME_DIRECTORY = "macOS_Home_Directory"
TABLES = ("bookmarks", "history", "transfers", "preferences")
OLD_FOLDER = "/Library/Application Support/Cyberduck/"
GROUP_FOLDER = ("/Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/")
PREFERENCES_FILE = "/Library/Preferences/ch.sudo.cyberduck.plist"

INTEGER_COLUMNS = frozenset(
    "bookmark file_exist file_size transfer_size remote_modification_date transfer_timestamp "
    "access_timestamp date_added content_modification_date fs_creation_date "
    "fs_content_change_date content_creation_date last_used_date first_date last_date "
    "used_dates".split())
# Columns of transfers that are only said to be empty when there is nothing to show.
EMPTY_OR_NULL = frozenset(
    "file_name file_size suffix local_path preview_file_path export_file_paths duplicate "
    "remote_path file_type remote_modification_date remote_mask date_added content_creation_date "
    "content_modification_date content_type fs_content_change_date fs_creation_date fs_name "
    "fs_node_count last_used_date used_dates first_date last_date wherefrom latitude longitude "
    "altitude torrent_file_list attr_file_type extended_attributes_value_for_search".split())

FIXED_ATTRIBUTES = frozenset(
    "kMDItemDateAdded kMDItemKind kMDItemContentCreationDate kMDItemContentModificationDate "
    "kMDItemContentType kMDItemFSContentChangeDate kMDItemFSCreationDate kMDItemFSName "
    "kMDItemFSNodeCount kMDItemWhereFroms kMDItemLatitude kMDItemLongitude kMDItemAltitude "
    "org_bittorrent_torrent_filenames kMDItemUsedDates kMDItemLastUsedDate".split())

HISTORY_KEYS = {"Protocol": "protocol", "UUID": "uuid", "Hostname": "hostname", "Port": "port",
                "Username": "username", "Comment": "comment"}
BOOKMARK_KEYS = {**HISTORY_KEYS, "Path": "remote_path", "Nickname": "nickname"}

# The standard parser takes a reference to an unknown entity for nothing when there is a DOCTYPE.
FOREIGN_ENTITY = re.compile(rb"&(?!(?:amp|lt|gt|quot|apos);|#)")

Row = dict[str, Any]


@dataclasses.dataclass
class Settings:
    """One run of the host: root ends with "/", accounts None means the host's own listing."""
    root: str
    source_type: str
    os_display: str
    source_count: int
    tabs: list[str]
    attributes: list[str]
    accounts: list[str] | None

    @property
    def is_home(self) -> bool:
        return self.source_type == HOME_DIRECTORY


@dataclasses.dataclass
class Expected:
    rows: dict[str, list[Row]]
    log: collections.Counter[str]


class Anything:
    """A column whose content is not settled."""

    def __eq__(self, other: object) -> bool:
        return True

    def __repr__(self) -> str:
        return "anything"


class AttributeDocument:
    """The XML of the selected attributes; only its indentation is not compared."""

    def __init__(self, path: str | None, values: list[tuple[str, str]]) -> None:
        self.content = [] if path is None else [("File_Path", path)] + values
        self.has_file = path is not None

    def __eq__(self, other: object) -> bool:
        if not str(other).startswith('<?xml version="1.0" encoding="UTF-8"?>'):
            return False
        try:
            document = ElementTree.fromstring(str(other).encode("utf-8"))
        except ElementTree.ParseError:
            return False
        files = list(document)
        if document.tag != "Extended_Attributes_XML_Header" or len(files) != int(self.has_file):
            return False
        if any(file.tag != "Extended_Attributes_Artifact_Source_Header" for file in files):
            return False
        return [(item.tag, item.text or "") for file in files for item in file] == self.content

    def __repr__(self) -> str:
        return f"XML of {self.content}"


@functools.lru_cache(maxsize=None)
def _affinity_connection() -> sqlite3.Connection:
    connection = sqlite3.connect(":memory:")
    connection.execute("create table t(v INTEGER)")
    return connection


@functools.lru_cache(maxsize=None)
def integer_affinity(text: str) -> Any:
    """What an INTEGER column makes of a bound text."""
    connection = _affinity_connection()
    connection.execute("delete from t")
    connection.execute("insert into t values (?)", (text,))
    return connection.execute("select v from t").fetchone()[0]


def stored(column: str, value: Any) -> Any:
    if column in INTEGER_COLUMNS and isinstance(value, str):
        return integer_affinity(value)
    return value


# --- property lists ---------------------------------------------------------------------------

def load_dictionary(path: str) -> dict[str, Any] | None:
    try:
        with open(path, "rb") as file:
            data = file.read()
        if data.startswith(b"bplist00"):
            loaded = plistlib.loads(data, fmt=plistlib.FMT_BINARY)
        elif FOREIGN_ENTITY.search(data) and not data.startswith(codecs.BOM_UTF16):
            return None
        else:
            loaded = plistlib.loads(data.lstrip(), fmt=plistlib.FMT_XML)
    except Exception:  # plistlib lets many kinds of exception out for damaged data
        return None
    return loaded if isinstance(loaded, dict) else None


def dictionary_at(owner: dict[str, Any], *keys: str) -> dict[str, Any]:
    """The dictionary behind the keys; an empty one when any step is not a dictionary."""
    for key in keys:
        value = owner.get(key)
        owner = value if isinstance(value, dict) else {}
    return owner


def text_at(owner: dict[str, Any], key: str) -> str | None:
    value = owner.get(key)
    return trimmed(value) if isinstance(value, str) else None


def first_ten(text: str | None) -> str | None:
    return None if text is None else text[:10]


# --- paths ------------------------------------------------------------------------------------

def with_leading_slash(path: str) -> str:
    return path if path.startswith("/") or not trimmed(path) else "/" + path


def normalised(settings: Settings, path: str) -> str:
    path = trimmed(path)
    if path.startswith(settings.root):
        path = path[len(settings.root):]
    return path if path.startswith("/") or not path else "/" + path


def behind_user(path: str, user: str) -> str:
    place = path.find(user)
    return path if place < 0 else path[place + len(user):]


def relative_path(settings: Settings, path: str | None, user: str) -> str | None:
    if path is None:
        return None
    path = normalised(settings, path)
    return with_leading_slash(behind_user(path, user) if settings.is_home else path)


def source_columns(settings: Settings, path: str, user: str) -> Row:
    path = normalised(settings, path)
    return {"source_file": relative_path(settings, path, user),
            "artifacts_relation_source_file": path if settings.is_home else None,
            "source_count_name": f"Source{settings.source_count}",
            "os_scheme_display": settings.os_display,
            "system_user": user, "bookmark": "0"}


def folder_on_source(settings: Settings, owner: dict[str, Any], key: str, user: str) -> str | None:
    path = text_at(dictionary_at(owner, key), "Path")
    return None if path is None else settings.root + "Users/" + user + path[1:]


def users(settings: Settings) -> list[str]:
    if settings.accounts is not None:
        return list(dict.fromkeys(filter(None, settings.accounts)))
    with os.scandir(settings.root + "Users") as entries:
        return [entry.name for entry in entries
                if entry.is_dir() and entry.name != "Shared" and not entry.name.startswith(".")]


def data_folders(settings: Settings, kind: str) -> list[tuple[str, str]]:
    found = []
    for user in users(settings):
        home = settings.root + "Users/" + user
        for folder in (home + OLD_FOLDER + kind + "/", home + GROUP_FOLDER + kind + "/"):
            if os.path.exists(folder):
                found.append((folder, user))
                break
    return found


def walk(folder: str, suffix: str) -> Iterator[str]:
    """Entries as a plain directory listing shows them: nothing hidden, no broken link."""
    if not os.path.isdir(folder):
        return
    for name in os.listdir(folder):
        path = os.path.join(folder, name)
        if name.startswith(".") or not os.path.exists(path):
            continue
        mode = os.lstat(path).st_mode
        if not (stat.S_ISREG(mode) or stat.S_ISDIR(mode) or stat.S_ISLNK(mode)):
            continue
        if name.endswith(suffix):
            yield path
        if stat.S_ISDIR(mode):
            yield from walk(path, suffix)


# --- the four tables --------------------------------------------------------------------------

class Model:
    """Computes rows and log lines of one run, table by table."""

    def __init__(self, settings: Settings) -> None:
        self.settings = settings
        self.log: collections.Counter[str] = collections.Counter()

    def expected(self) -> Expected:
        tables = {"bookmarks": self.bookmarks, "history": self.history,
                  "transfers": self.transfers, "preferences": self.preferences}
        rows: dict[str, list[Row]] = {table: [] for table in TABLES}
        for table in self.settings.tabs:
            rows[table] = [{column: stored(column, value) for column, value in row.items()}
                           for row in tables[table]()]
        return Expected(rows, self.log)

    def leads_out(self, name: str, path: str) -> bool:
        """Whether a path that exists here is none of the source's own; logged if so."""
        if local_copy.resolve(self.settings.root, path)[0] == local_copy.PRESENT:
            return False
        self.log[f"[{name}] outside the source ------FAILED------{path}"] += 1
        return True

    def loaded(self, kind: str, suffix: str, failure: str) -> Iterator[tuple[str, str, Row]]:
        name = "xcode_extract_" + kind.lower()
        for text in ("starts", "end"):
            self.log[f"[{name}] {text}"] += 1
        for folder, user in data_folders(self.settings, kind):
            if self.leads_out(name, folder):
                continue
            for path in walk(folder, suffix):
                if self.leads_out(name, path):
                    continue
                content = load_dictionary(path)
                if content is None:
                    self.log[f"[{name}] {failure}{path}"] += 1
                else:
                    yield path, user, content

    def bookmarks(self) -> Iterator[Row]:
        for path, user, content in self.loaded("Bookmarks", ".duck",
                                               "m_plist open ------FAILED------"):
            row = source_columns(self.settings, path, user)
            row.update({column: text_at(content, key) for key, column in BOOKMARK_KEYS.items()})
            row["access_timestamp"] = first_ten(text_at(content, "Access Timestamp"))
            for key, column in (("Upload Folder Dictionary", "upload_folder"),
                                ("Download Folder Dictionary", "download_folder")):
                folder = folder_on_source(self.settings, content, key, user)
                row[column] = relative_path(self.settings, folder, user)
            yield row

    def history(self) -> Iterator[Row]:
        for path, user, content in self.loaded("History", ".duck",
                                               "m_plist is nil ------FAILED------"):
            row = source_columns(self.settings, path, user)
            row.update({column: text_at(content, key) for key, column in HISTORY_KEYS.items()})
            row["access_timestamp"] = first_ten(text_at(content, "Access Timestamp"))
            yield row

    def preferences(self) -> Iterator[Row]:
        for user in users(self.settings):
            path = self.settings.root + "Users/" + user + PREFERENCES_FILE
            if not os.path.exists(path):
                continue
            self.log[" Starts"] += 1
            if self.leads_out("xcode_extract_preferences", path):
                continue
            content = load_dictionary(path)
            if content is None:
                self.log["[xcode_extract_preferences] m_plist open  ---FAILED--- "] += 1
                continue
            self.log["xcode_extract_preferences Ends"] += 1
            for key, label, rendering in PREFERENCES:
                value = rendering(content.get(key))
                if value is not None:
                    self.log["[insert_values_fun] starts"] += 1
                    yield {**source_columns(self.settings, path, user), "key": label,
                           "value": value}

    # transfers

    def transfers(self) -> Iterator[Row]:
        for path, user, content in self.loaded("Transfers", ".cyberducktransfer",
                                               "m_plist open ------FAILED------"):
            host, items = content.get("Host"), content.get("Items")
            if not isinstance(host, dict):
                self.log["[xcode_extract_transfers] Empty host_dict Dictionary is nil "
                         "--Host--"] += 1
                continue
            if not isinstance(items, list):
                self.log["[xcode_extract_transfers] items_array is nil "] += 1
                continue
            shared = self.transfer_columns(path, user, content, host)
            for item in items:
                if isinstance(item, dict):
                    yield {**shared, **self.item_columns(item, user)}

    def transfer_columns(self, path: str, user: str, content: Row, host: Row) -> Row:
        row = source_columns(self.settings, path, user)
        row.update({column: text_at(host, key) for key, column in HISTORY_KEYS.items()})
        row["access_timestamp"] = first_ten(text_at(host, "Access Timestamp"))
        row["transfer_type"] = text_at(content, "Type")
        row["transfer_uuid"] = text_at(content, "UUID")
        row["transfer_size"] = text_at(content, "Size")
        row["transfer_timestamp"] = first_ten(text_at(content, "Timestamp"))
        for key, column in (("Upload Folder Dictionary", "upload_path"),
                            ("Download Folder Dictionary", "download_path")):
            folder = folder_on_source(self.settings, host, key, user)
            row[column] = relative_path(self.settings, folder, user)
        return row

    def item_columns(self, item: Row, user: str) -> Row:
        remote = dictionary_at(item, "Remote")
        attributes = dictionary_at(remote, "Attributes")
        local = folder_on_source(self.settings, item, "Local Dictionary", user)
        shown = relative_path(self.settings, local, user)
        row = {"file_type": text_at(remote, "Type"), "remote_path": text_at(remote, "Remote"),
               "remote_modification_date": first_ten(text_at(attributes, "Modified")),
               "duplicate": text_at(attributes, "Duplicate"),
               "remote_mask": text_at(dictionary_at(attributes, "Permission"), "Mask"),
               "local_path": shown, "preview_file_path": shown, "export_file_paths": shown}
        row.update(self.local_columns(local or ""))
        return row

    def local_columns(self, local: str) -> Row:
        name = local.rpartition("/")[2]
        stem, _, suffix = name.removeprefix(".").rpartition(".")
        row = {"file_name": name, "suffix": suffix if stem else "", "file_exist": "NO",
               "extended_attributes_key_value": AttributeDocument(None, []),
               "extended_attributes_value_for_search": ""}
        state, real = local_copy.resolve(self.settings.root, local) if local else ("", "")
        if state == local_copy.OUTSIDE:
            self.log["[xcode_extract_transfers] outside the source ------FAILED------" + local] += 1
        if state == local_copy.PRESENT:
            row.update(self.present_columns(local, real))
        return row

    def present_columns(self, local: str, real: str) -> Row:
        facts = local_copy.attributes(self.settings.root, real)
        born = local_copy.birth_time(real)
        row = {"file_exist": "YES", "file_size": str(local_copy.total_size(real))}
        row.update(spotlight_columns(facts))
        if not row["date_added"] and born is not None:
            row["date_added"] = str(int((born - filters.EPOCH) // datetime.timedelta(seconds=1)))
        row["latitude"], row["longitude"] = local_copy.position(real)
        names = [name for name in self.settings.attributes if name not in FIXED_ATTRIBUTES]
        values = [(name, filters.attribute_value(facts[name])) for name in names if name in facts]
        shown = [(name, value) for name, value in values if value is not None]
        row["extended_attributes_value_for_search"] = filters.SEARCH_SEPARATOR.join(
            value for _, value in shown)
        row["extended_attributes_key_value"] = AttributeDocument(
            normalised_prefix(self.settings.root, local), shown)
        if local != real:
            # Whether the names and dates of a link or of its target count is not settled.
            row.update({column: Anything() for column in
                        ("fs_name", "fs_creation_date", "fs_content_change_date", "date_added",
                         "content_creation_date", "content_modification_date")})
        return row


def normalised_prefix(root: str, path: str) -> str:
    path = path[len(root):] if path.startswith(root) else path
    return path if path.startswith("/") else "/" + path


def spotlight_columns(facts: dict[str, Any]) -> Row:
    def text(name: str) -> str:
        return filters.c_string(facts.get(name))
    used = text("kMDItemUsedDates")
    used_dates = filters.used_date_list(used) if used else []
    last_used = text("kMDItemLastUsedDate")
    return {
        "date_added": filters.date_value(text("kMDItemDateAdded")),
        "content_creation_date": filters.date_value(text("kMDItemContentCreationDate")),
        "content_modification_date": filters.date_value(text("kMDItemContentModificationDate")),
        "content_type": filters.after_equals(text("kMDItemContentType")),
        "fs_content_change_date": filters.date_value(text("kMDItemFSContentChangeDate")),
        "fs_creation_date": filters.date_value(text("kMDItemFSCreationDate")),
        "fs_name": filters.after_equals(text("kMDItemFSName")),
        "fs_node_count": filters.number_value(text("kMDItemFSNodeCount")),
        "wherefrom": filters.where_from_list(text("kMDItemWhereFroms")),
        "altitude": filters.number_value(text("kMDItemAltitude")),
        "torrent_file_list": filters.torrent_list(text("org_bittorrent_torrent_filenames")),
        "last_used_date": filters.epoch_text(last_used) if last_used else "",
        "used_dates": ";".join(used_dates),
        # The generator stores used dates in ascending order, the only order with settled ends.
        "first_date": used_dates[0] if used_dates else "",
        "last_date": used_dates[-1] if used_dates else "",
    }

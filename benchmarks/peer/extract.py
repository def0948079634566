#!/usr/bin/env python3
"""The script an examiner would write: bookmarks, history or transfers of one user into a database
that has the tables. Prints the rows and the seconds that it took, without the start of Python."""

import os
import plistlib
import sqlite3
import sys
import time

USER = "alice"


def connection(host):
    def folder(key):
        path = host.get(key, {}).get("Path")
        return f"/Users/{USER}{path.strip()[1:]}" if path is not None else None

    def text(key):
        value = host.get(key)
        return value.strip() if isinstance(value, str) else None

    stamp = text("Access Timestamp")
    return {
        "comment": text("Comment"),
        "hostname": text("Hostname"),
        "port": text("Port"),
        "protocol": text("Protocol"),
        "uuid": text("UUID"),
        "username": text("Username"),
        "access_timestamp": stamp[:10] if stamp else None,
    }, folder("Download Folder Dictionary"), folder("Upload Folder Dictionary")


def bookmark_rows(content):
    row, download, upload = connection(content)
    yield row | {
        "nickname": content.get("Nickname"),
        "remote_path": content.get("Path"),
        "download_folder": download,
        "upload_folder": upload,
    }


def history_rows(content):
    yield connection(content)[0]


def transfer_rows(content, root):
    shared, download, upload = connection(content["Host"])
    shared |= {
        "download_path": download,
        "upload_path": upload,
        "transfer_type": content.get("Type"),
        "transfer_uuid": content.get("UUID"),
        "transfer_size": content.get("Size"),
        "transfer_timestamp": content.get("Timestamp", "")[:10],
    }
    for item in content["Items"]:
        remote = item.get("Remote", {})
        attributes = remote.get("Attributes", {})
        local = f"/Users/{USER}" + item["Local Dictionary"]["Path"][1:]
        reachable = root + local[1:]
        exists = os.path.exists(reachable)
        yield shared | {
            "local_path": local,
            "preview_file_path": local,
            "export_file_paths": local,
            "file_name": os.path.basename(local),
            "suffix": os.path.splitext(local)[1][1:],
            "file_exist": "YES" if exists else "NO",
            "file_size": str(os.path.getsize(reachable)) if exists else None,
            "file_type": remote.get("Type"),
            "remote_path": remote.get("Remote"),
            "remote_modification_date": attributes.get("Modified", "")[:10],
            "remote_mask": attributes.get("Permission", {}).get("Mask"),
        }


def main():
    root, table, database_path = sys.argv[1:]
    folder = os.path.join(root, "Users", USER, "Library/Application Support/Cyberduck",
                          table.capitalize())
    suffix = ".cyberducktransfer" if table == "transfers" else ".duck"
    started = time.perf_counter()
    count = 0
    database = sqlite3.connect(database_path)
    for place, _, names in os.walk(folder):
        for name in names:
            if not name.endswith(suffix):
                continue
            path = os.path.join(place, name)
            with open(path, "rb") as file:
                content = plistlib.load(file)
            if table == "bookmarks":
                rows = bookmark_rows(content)
            elif table == "history":
                rows = history_rows(content)
            else:
                rows = transfer_rows(content, root)
            for row in rows:
                row |= {
                    "bookmark": "0",
                    "system_user": USER,
                    "source_file": "/" + os.path.relpath(path, root),
                    "source_count_name": "Source1",
                    "os_scheme_display": "macOS",
                }
                database.execute(
                    f"insert into {table} ({','.join(row)}) values ({','.join('?' * len(row))})",
                    list(row.values()))
                count += 1
    database.commit()
    database.close()
    print(count, time.perf_counter() - started)


main()

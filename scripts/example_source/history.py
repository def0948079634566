"""Connections of the past: three years of one user, a few of the others."""

import calendar

from example_source.lists import (
    GROUP_CONTAINER, OLDER, as_binary, as_broken_xml, as_client_xml, chance, folder, identity,
    write)

HOUR_MS = 60 * 60 * 1000
DAY_MS = 24 * HOUR_MS
FIRST_DAY_MS = calendar.timegm((2018, 1, 2, 0, 0, 0)) * 1000
YEARS_DAYS = 3 * 365
CONNECTIONS = 240


def connection(protocol, host, port, username, time_ms, **more):
    """The keys of one past connection; `more` names further ones, with "_" for a blank."""
    content = {
        "Protocol": protocol,
        "Provider": "Example Transfers",
        "UUID": identity(f"history {host} {username} {time_ms}"),
        "Hostname": host,
        "Port": port,
        "Username": username,
        "Access Timestamp": str(time_ms),
    }
    for key, value in more.items():
        content[key.replace("_", " ")] = value
    return content


# Protocol, host, port, user name, keys that some connections have besides.
AMELIA_SERVERS = [
    ("sftp", "web.example.org", "22", "amelia", {"Path": "/srv/www"}),
    ("sftp", "web.example.org", "22", "root", {"Comment": "only for the certificate"}),
    ("ftp", "ftp.print.example.com", "21", "guest7", {"Nickname": "Printer's proofs"}),
    ("davs", "dav.museum.example.org", "443", "amelia.t",
     {"Comment": "Catalogue – spring & autumn",
      "Upload Folder Dictionary": folder("~/Pictures/Museum shots")}),
    ("ftps", "shop.example.com", "990", "shop-admin", {}),
    ("ftp", "203.0.113.40", "2121", "anonymous", {}),
    ("s3", "s3.eu-west.example.com", "443", "AKIAEXAMPLE00AMELIA", {"Region": "eu-west-9"}),
    ("sftp", "198.51.100.23", "22", "amelia", {"Comment": "hotel network"}),
    ("sftp", "2001:db8::1:17", "2222", "amelia", {}),
    ("dav", "bücher.example.net", "80", "leser", {"Comment": "Zugang läuft im März ab"}),
]


def amelia_connections():
    """Nearly evenly over the years, more often to the servers at the top of the list."""
    for number in range(CONNECTIONS):
        day = number * YEARS_DAYS // CONNECTIONS + chance(f"day {number}", 4)
        time_ms = FIRST_DAY_MS + day * DAY_MS + 8 * HOUR_MS + chance(f"time {number}", 12 * HOUR_MS)
        place = min(chance(f"first {number}", len(AMELIA_SERVERS)),
                    chance(f"second {number}", len(AMELIA_SERVERS)))
        protocol, host, port, username, more = AMELIA_SERVERS[place]
        content = connection(protocol, host, port, username, time_ms)
        if chance(f"more {number}", 3) != 0:
            content.update(more)
        yield content, as_binary if number % 16 == 5 else as_client_xml


# A number where the client writes a text, a time that is none, a short one, a list without keys
# that are read, a cut-off one, one whose name does not count.
AMELIA_ODD = [
    ("Imported.duck", as_client_xml,
     connection("sftp", "imported.example.com", 2222, "amelia", 1546300800000)),
    ("No time.duck", as_client_xml,
     connection("ftp", "ftp.print.example.com", "21", "guest7", "yesterday")),
    ("Short time.duck", as_client_xml,
     connection("ftp", "ftp.print.example.com", "21", "guest7", " 15463 ")),
    ("Number.duck", as_binary, {
        **connection("sftp", "web.example.org", "22", "amelia", 0),
        "Access Timestamp": 1546387200000}),
    ("Empty.duck", as_client_xml, {"Region": "eu-west-9"}),
    ("Cut off.duck", as_broken_xml,
     connection("sftp", "web.example.org", "22", "amelia", 1599999999999)),
    ("Capital.Duck", as_client_xml,
     connection("sftp", "ignored.example.org", "22", "amelia", 1599999999999)),
]

NOAH_HISTORY = [
    connection("s3", "s3.eu-west.example.com", "443", "AKIAEXAMPLE0000NOAH", 1649990000456,
               Path="/noah-backups"),
    connection("smb", "files.office.example.org", "445", "OFFICE\\noah", 1661230000000,
               Comment="Türschloss-Code beim Empfang"),
    connection("sftp", "192.0.2.17", "2200", "noah", 1666666600001),
    connection("sftp", "192.0.2.17", "2200", "noah", 1667000000002),
]

JOERG_HISTORY = [
    connection("sftp", "übung.example.org", "22", "jörg", 1577836700999),
    connection("davs", "tokyo.example.com", "443", "joerg", 1589990000000, Comment="共有フォルダ"),
]

# Where the client moved its data to; the older folder still exists and is the one read.
JOERG_MOVED_HISTORY = [
    connection("sftp", "moved.example.org", "22", "joerg", 1700000000000),
]


def write_history(users):
    amelia = users / "amelia" / OLDER / "History"
    for content, form in amelia_connections():
        write(amelia / (content["UUID"] + ".duck"), form(content))
    for name, form, content in AMELIA_ODD:
        write(amelia / name, form(content))
    for user, place, form, connections in (
            ("noah quist", GROUP_CONTAINER, as_binary, NOAH_HISTORY),
            ("jörg", OLDER, as_client_xml, JOERG_HISTORY),
            ("jörg", GROUP_CONTAINER, as_client_xml, JOERG_MOVED_HISTORY)):
        for content in connections:
            write(users / user / place / "History" / (content["UUID"] + ".duck"), form(content))

"""Bookmarks of all users, in every form of list that occurs."""

from example_source.lists import (
    GROUP_CONTAINER, OLDER, as_bare_xml, as_binary, as_broken_xml, as_client_xml, as_xml, folder,
    identity, write)


def bookmark(protocol, host, nickname, **more):
    """The keys of one bookmark; `more` names further ones, with "_" for a blank."""
    content = {
        "Protocol": protocol,
        "Provider": "Example Transfers",
        "Nickname": nickname,
        "UUID": identity(host + "/" + nickname),
        "Hostname": host,
    }
    for key, value in more.items():
        content[key.replace("_", " ")] = value
    return content


# File below Bookmarks/, how it is written, content.
AMELIA_BOOKMARKS = [
    ("Web server.duck", as_client_xml, bookmark(
        "sftp", "web.example.org", "Web server",
        Port="22", Username="amelia", Path="/srv/www",
        Comment="Key is on the blue stick.",
        Access_Timestamp="1589021112345",
        Download_Folder_Dictionary=folder("~/Downloads/web"))),
    ("Printer's proofs.duck", as_bare_xml, bookmark(
        "ftp", "ftp.print.example.com", "Printer's proofs",
        Port="21", Username="guest7", Path="/incoming",
        Access_Timestamp="1571234567890",
        Upload_Folder_Dictionary=folder("~/Documents/Proofs"))),
    ("Clients/Harbour museum.duck", as_xml, bookmark(
        "davs", "dav.museum.example.org", "Harbour museum – catalogue",
        Port="443", Username="amelia.t", Path="/remote.php/webdav/Catalogue 2020",
        Access_Timestamp="1601500000000",
        Download_Folder_Dictionary=folder("~/Desktop/museum"),
        Upload_Folder_Dictionary=folder("~/Pictures/Museum shots"))),
    ("Clients/Archive/Old shop.duck", as_binary, bookmark(
        "ftps", "shop.example.com", "Old shop",
        Port="990", Username="shop-admin",
        Comment="Line one\nLine two",
        Access_Timestamp="1483228800000")),
    # A port that is a number, as another program might write it, and no time stamp.
    ("Clients/Archive/Imported.duck", as_xml, bookmark(
        "sftp", "imported.example.com", "Imported",
        Port=2222, Username="amelia")),
    ("Clients/Archive/Unfinished.duck", as_broken_xml, bookmark(
        "s3", "s3.example.com", "Unfinished", Port="443")),
]

NOAH_BOOKMARKS = [
    (identity("noah bucket") + ".duck", as_binary, bookmark(
        "s3", "s3.eu-west.example.com", "Backups",
        Port="443", Username="AKIAEXAMPLE0000NOAH", Path="/noah-backups",
        Region="eu-west-9",
        Access_Timestamp="1650000000123",
        Download_Folder_Dictionary=folder("~/Restore"))),
    (identity("noah office") + ".duck", as_binary, bookmark(
        "smb", "files.office.example.org", "Büro <intern> & Ablage",
        Port="445", Username="OFFICE\\noah", Path="/Ablage/Verträge",
        Labels=["office", "shared"],
        Access_Timestamp="1661234567000")),
    ("Private/" + identity("noah pictures") + ".duck", as_client_xml, bookmark(
        "sftp", "192.0.2.17", "Attic server",
        Port="2200", Username="noah", Path="/tank/pictures",
        Access_Timestamp="1666666666666")),
]

JOERG_BOOKMARKS = [
    ("Übungsserver.duck", as_client_xml, bookmark(
        "sftp", "übung.example.org", "Übungsserver",
        Port="22", Username="jörg", Path="/home/jörg",
        Access_Timestamp="1577836800999",
        Download_Folder_Dictionary=folder("~/Schreibtisch/Übung"))),
    ("日本/東京.duck", as_binary, bookmark(
        "davs", "tokyo.example.com", "東京",
        Port="443", Username="joerg", Path="/共有",
        Access_Timestamp="1590000000000")),
]

# Moved over when the client changed folders; the older folder still exists and is the one read.
JOERG_MOVED_BOOKMARKS = [
    (identity("joerg moved") + ".duck", as_binary, bookmark(
        "sftp", "moved.example.org", "Moved", Port="22", Username="joerg",
        Access_Timestamp="1700000000000")),
]

BOOKMARKS = [
    ("amelia", OLDER, AMELIA_BOOKMARKS),
    ("noah quist", GROUP_CONTAINER, NOAH_BOOKMARKS),
    ("jörg", OLDER, JOERG_BOOKMARKS),
    ("jörg", GROUP_CONTAINER, JOERG_MOVED_BOOKMARKS),
]


def write_bookmarks(users):
    for user, place, bookmarks in BOOKMARKS:
        for name, form, content in bookmarks:
            write(users / user / place / "Bookmarks" / name, form(content))
    # Not a bookmark, by its name: passed over in silence.
    write(users / "amelia" / OLDER / "Bookmarks" / "Notes.txt", b"Ask for the new key.\n")

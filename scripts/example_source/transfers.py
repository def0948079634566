"""The transfer queues of three users: what was to be copied, and what is said of it."""

from example_source.lists import (
    GROUP_CONTAINER, OLDER, as_binary, as_broken_xml, as_client_xml, as_xml, folder, identity,
    write)

SUFFIX = ".cyberducktransfer"
FILE = "1"
FOLDER = "2"


def host(protocol, name, port, username, time_ms, **more):
    """The keys of a transfer's server; `more` names further ones, with "_" for a blank."""
    content = {
        "Protocol": protocol,
        "Provider": "Example Transfers",
        "UUID": identity(f"server {name} {username}"),
        "Hostname": name,
        "Port": port,
        "Username": username,
        "Access Timestamp": time_ms,
    }
    for key, value in more.items():
        content[key.replace("_", " ")] = value
    return content


def item(kind, remote, local, size=None, modified=None, mask=None, duplicate=None):
    """One file or folder of a transfer; what is not given is left out."""
    known = {"Size": size, "Modified": modified, "Duplicate": duplicate,
             "Permission": None if mask is None else {"Mask": mask}}
    attributes = {key: value for key, value in known.items() if value is not None}
    content = {"Remote": {"Type": kind, "Remote": remote}}
    if attributes:
        content["Remote"]["Attributes"] = attributes
    if local is not None:
        content["Local Dictionary"] = {"Path": local}
    return content


def transfer(way, server, items, time_ms, size, current, **more):
    """A transfer is finished when as many bytes were copied as it has."""
    content = {
        "Type": way,
        "Kind": {"download": "0", "upload": "1", "sync": "2"}[way],
        "UUID": identity(f"{way} {server['Hostname']} {time_ms}"),
        "Host": server,
        "Items": items,
        "Timestamp": time_ms,
        "Size": size,
        "Current": current,
        "Bandwidth": "-1.0",
    }
    content.update(more)
    return content


WEB = host("sftp", "web.example.org", "22", "amelia", "1589021112345",
           Comment="Key is on the blue stick.",
           Download_Folder_Dictionary=folder("~/Downloads/web"))
PRINT = host("ftp", "ftp.print.example.com", "21", "guest7", "1571234567890",
             Upload_Folder_Dictionary=folder("~/Documents/Proofs"))
MUSEUM = host("davs", "dav.museum.example.org", "443", "amelia.t", "1601500000000",
              Labels=["museum"],
              Download_Folder_Dictionary=folder("~/Desktop/museum"),
              Upload_Folder_Dictionary=folder("~/Pictures/Museum shots"))

# Name of the file in Transfers/, how it is written, content.
AMELIA_TRANSFERS = [
    # Copied and still there.
    ("Web pages", as_client_xml, transfer("download", WEB, [
        item(FILE, "/srv/www/index.html", "~/Downloads/web/index.html",
             "157", "1588934400000", "644"),
        item(FILE, "/srv/www/Plan A; Plan B.txt", "~/Downloads/web/Plan A; Plan B.txt",
             "43", "1588848000000", "600"),
        item(FOLDER, "/srv/www/photos", "~/Downloads/web/photos",
             "0", "1588761600000", "755"),
    ], "1589021200111", "686", "686")),
    # Deleted since, and moved to another folder since.
    ("Database and logo", as_client_xml, transfer("download", WEB, [
        item(FILE, "/srv/backup/dump 2020-05.sql.gz", "~/Downloads/web/dump 2020-05.sql.gz",
             "48211904", "1588291200000", "600"),
        item(FILE, "/srv/www/logo.svg", "~/Downloads/web/logo.svg",
             "118", "1588204800000", "644"),
    ], "1589021500222", "48212022", "48212022")),
    ("Museum pictures", as_xml, transfer("upload", MUSEUM, [
        item(FILE, "/remote.php/webdav/Catalogue 2020/Harbour at dusk.jpg",
             "~/Pictures/Museum shots/Harbour at dusk.jpg", duplicate=""),
        item(FILE, "/remote.php/webdav/Catalogue 2020/Crane №7 – détail.jpg",
             "~/Pictures/Museum shots/Crane №7 – détail.jpg"),
    ], "1601500100333", "481", "481", Labels=["museum"])),
    # Begun and not finished.
    ("Proofs", as_client_xml, transfer("upload", PRINT, [
        item(FILE, '/incoming/Printer\'s "final" proof.pdf',
             '~/Documents/Proofs/Printer\'s "final" proof.pdf'),
        item(FILE, "/incoming/Latest proof.pdf", "~/Documents/Latest proof.pdf"),
    ], "1571234600444", "448", "224")),
    ("Clients/Tender", as_binary, transfer("download", MUSEUM, [
        item(FILE, "/remote.php/webdav/Tender documents.pdf", "~/Documents/Tender documents.pdf",
             "219", "1590969600000", "640"),
    ], "1591012345678", "219", "219")),
    # A local path that leads out of the examined system, and one on another volume.
    ("Elsewhere", as_client_xml, transfer("download", WEB, [
        item(FILE, "/srv/www/README.md", "~/../../../README.md", "900", "1588934400000", "644"),
        item(FILE, "/srv/www/offer.ods", "/Volumes/STICK/offer.ods", "9216", "1588934400000"),
    ], "1589025000555", "10116", "10116")),
    # An old version of the client named the files otherwise.
    ("Old queue", as_client_xml, {
        "Kind": "0", "Host": host("ftps", "shop.example.com", "990", "shop-admin", "1483228800000"),
        "Roots": [{"Remote": "/orders/2016.csv", "Local": "~/Documents/2016.csv"}],
        "Size": "2048", "Current": "2048", "Custom": {"Resume": "1"}}),
    ("Cut off", as_broken_xml, transfer("download", WEB, [], "1589030000666", "0", "0")),
]

BUCKET = host("s3", "s3.eu-west.example.com", "443", "AKIAEXAMPLE0000NOAH", "1650000000123",
              Region="eu-west-9", Download_Folder_Dictionary=folder("~/Restore"))
OFFICE = host("smb", "files.office.example.org", "445", "OFFICE\\noah", "1661234567000",
              Upload_Folder_Dictionary=folder("~/Documents/Ablage"))

NOAH_TRANSFERS = [
    ("restore", as_binary, transfer("download", BUCKET, [
        item(FOLDER, "/noah-backups/Archive", "~/Restore/Archive", modified="1649000000000"),
        item(FILE, "/noah-backups/Archive/notes 2021-03.txt", "~/Restore/Latest/notes 2021-03.txt",
             "27", "1617188400000", duplicate="true"),
    ], "1650000100777", "27", "27")),
    # A screen shot with a position; a contract that was renamed before it was sent off.
    ("office", as_binary, transfer("upload", OFFICE, [
        item(FILE, "/Ablage/Lageplan.png", "~/Documents/Ablage/Lageplan.png"),
        item(FILE, "/Ablage/Verträge/Vertrag Übersee & Söhne.odt",
             "~/Documents/Ablage/Vertrag Übersee & Söhne.odt"),
    ], "1661234600888", "918", "918")),
    # Kinds that the client does not write: numbers for texts, an item that is none, no local copy.
    ("odd", as_xml, {
        **transfer("sync", BUCKET, [
            "not an item",
            item(FILE, "/noah-backups/keys.txt", None, 12, "soon"),
            {"Local Dictionary": folder("~/Restore/Archive/index.csv")},
        ], "1650001000999", "0", "0"),
        "Size": 24}),
    ("no server", as_client_xml, {"Type": "download", "Kind": "0", "Items": []}),
]

LESSON = host("sftp", "übung.example.org", "22", "jörg", "1577836800999",
              Download_Folder_Dictionary=folder("~/Schreibtisch/Übung"))
TOKYO = host("davs", "tokyo.example.com", "443", "joerg", "1590000000000")

JOERG_TRANSFERS = [
    ("Aufgaben", as_client_xml, transfer("download", LESSON, [
        item(FILE, "/home/jörg/Aufgaben.zip", "~/Schreibtisch/Übung/Aufgaben.zip",
             "1422", "1577750400000", "644"),
        item(FILE, "/home/jörg/Aufgaben/Blatt 1.pdf",
             "~/Schreibtisch/Übung/Aufgaben/Blatt 1.pdf", "220", "1577750400000", "644"),
    ], "1577836900100", "1642", "1422")),
    ("東京", as_binary, transfer("upload", TOKYO, [
        item(FOLDER, "/共有/Proben", "~/Musik/Proben"),
        item(FILE, "/共有/写真 – 東京.jpg", "~/Bilder/写真 – 東京.jpg"),
    ], "1590000100200", "8721", "8721")),
]

QUEUES = [
    ("amelia", OLDER, AMELIA_TRANSFERS),
    ("noah quist", GROUP_CONTAINER, NOAH_TRANSFERS),
    ("jörg", OLDER, JOERG_TRANSFERS),
]


def write_transfers(users):
    for user, place, transfers in QUEUES:
        for name, form, content in transfers:
            write(users / user / place / "Transfers" / (name + SUFFIX), form(content))
    # Not a transfer, by the case of its name: passed over in silence.
    write(users / "amelia" / OLDER / "Transfers" / "Spare.CyberduckTransfer",
          as_client_xml(transfer("download", WEB, [], "1589040000000", "0", "0")))

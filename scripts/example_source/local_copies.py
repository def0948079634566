"""The local copies of transferred files, as far as they are still there."""

import os

from example_source.companions import companion, last_used
from example_source.images import jpeg, png, position_block
from example_source.lists import as_binary, write

PDF = (
    b"%%PDF-1.4\n"
    b"1 0 obj <</Type /Catalog /Pages 2 0 R>> endobj\n"
    b"2 0 obj <</Type /Pages /Kids [3 0 R] /Count 1>> endobj\n"
    b"3 0 obj <</Type /Page /Parent 2 0 R /MediaBox [0 0 200 100]>> endobj\n"
    b"trailer <</Root 1 0 R>>\n"
    b"%% %s\n"
    b"%%%%EOF\n"
)
PAGE = (
    '<!DOCTYPE html>\n<html lang="en">\n<head><meta charset="utf-8"><title>Amelia</title></head>\n'
    "<body><p>Under construction – back in spring.</p></body>\n</html>\n"
)
LOGO = (
    '<svg xmlns="http://www.w3.org/2000/svg" width="64" height="64">\n'
    '  <circle cx="32" cy="32" r="30" fill="#268"/>\n</svg>\n'
)
# In the middle of the sea; degrees, minutes and seconds.
DUSK = (("S", (12, 1), (30, 1), (3636, 100)), ("W", (20, 1), (15, 1), (90, 10)))
TOKYO = (("N", (31, 1), (1530, 100), (0, 1)), ("E", (171, 1), (4575, 100), (0, 1)))
PLAN = (("n", (52, 1), (0, 1), (0, 1)), ("w", (33, 1), (0, 1), (0, 1)))


def pdf(text):
    return PDF % text.encode("utf-8")


def link(path, target):
    """A symbolic link; one of an earlier run is replaced."""
    path.parent.mkdir(parents=True, exist_ok=True)
    if path.is_symlink():
        path.unlink()
    os.symlink(target, path)


def write_amelia(home):
    web = home / "Downloads" / "web"
    write(web / "index.html", PAGE.encode("utf-8"))
    # As another client leaves it behind with what it fetched.
    write(web / "._index.html", companion([
        ("com.apple.metadata:kMDItemAltitude", as_binary(103.5)),
        ("com.apple.metadata:kMDItemLatitude", as_binary(1.5)),
        ("com.apple.metadata:kMDItemLongitude", as_binary(2.5)),
        ("com.apple.metadata:org_bittorrent_torrent_filenames",
         as_binary(["pages/index.html", "pages/Read me; first.txt"]))]))
    write(web / "Plan A; Plan B.txt", b"A: by ship.\nB: by train; see Monday's mail\n")
    for number in range(1, 4):
        write(web / "photos" / f"Façade {number}.jpg", jpeg(b"", 4 * number, 3 * number))
    write(web / "photos" / "raw" / "list.txt", b"none yet\n")
    # Downloaded to web/, moved here since.
    write(home / "Documents" / "Logos" / "logo.svg", LOGO.encode("utf-8"))
    proofs = home / "Documents" / "Proofs"
    write(proofs / 'Printer\'s "final" proof.pdf', pdf("third round"))
    link(home / "Documents" / "Latest proof.pdf", 'Proofs/Printer\'s "final" proof.pdf')
    write(home / "Documents" / "Tender documents.pdf", pdf("tender"))
    write(home / "Documents" / "._Tender documents.pdf", companion([
        ("com.apple.metadata:kMDItemWhereFroms", as_binary([
            "https://dav.museum.example.org/remote.php/webdav/Tender%20documents.pdf",
            "https://museum.example.org/tenders?year=2020"])),
        ("com.apple.lastuseddate#PS", last_used(1591500000, 250000000)),
        ("com.apple.metadata:kMDItemFinderComment", as_binary("Answer before July"))]))
    shots = home / "Pictures" / "Museum shots"
    write(shots / "Harbour at dusk.jpg", jpeg(position_block(">", *DUSK, "Example Camera")))
    write(shots / "Crane №7 – détail.jpg", jpeg(b"", 6, 8))


def write_noah(home):
    archive = home / "Restore" / "Archive"
    write(archive / "notes 2021-03.txt", b"Paid, filed, forgotten; ok\n")
    write(archive / "index.csv", b"name;bytes\nnotes 2021-03.txt;27\n")
    # As the examined system knew the place, not as it is reachable here.
    link(home / "Restore" / "Latest", "/Users/noah quist/Restore/Archive")
    filing = home / "Documents" / "Ablage"
    write(filing / "Lageplan.png", png(position_block("<", *PLAN, "Example Scanner")))


def write_joerg(home):
    lesson = home / "Schreibtisch" / "Übung"
    write(lesson / "Aufgaben" / "Blatt 1.pdf", pdf("Blatt 1"))
    # Where unzipping puts what the archive keeps of a file's attributes.
    write(lesson / "__MACOSX" / "Aufgaben" / "._Blatt 1.pdf", companion([
        ("com.apple.metadata:kMDItemWhereFroms", as_binary(["Jörgs Freundin", "Büro-Mac"]))]))
    for number, size in ((1, 2000), (2, 2400), (3, 4000)):
        write(home / "Musik" / "Proben" / f"Probe {number}.aiff", tone(size))
    write(home / "Bilder" / "写真 – 東京.jpg", jpeg(position_block("<", *TOKYO, "Example Phone")))


def tone(size):
    """Uncompressed sound of `size` bytes in all: a square wave."""
    samples = (b"\x20" * 20 + b"\xe0" * 20) * (size // 40 + 1)
    samples = samples[:size - 54]
    common = (b"COMM" + (18).to_bytes(4, "big") + b"\0\x01" + len(samples).to_bytes(4, "big") +
              b"\0\x08" + b"\x40\x0b\xfa\0\0\0\0\0\0\0")
    sound = b"SSND" + (len(samples) + 8).to_bytes(4, "big") + bytes(8) + samples
    body = b"AIFF" + common + sound
    return b"FORM" + len(body).to_bytes(4, "big") + body


def write_local_copies(users):
    write_amelia(users / "amelia")
    write_noah(users / "noah quist")
    write_joerg(users / "jörg")

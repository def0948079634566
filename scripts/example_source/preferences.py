"""Preferences: a binary file as the system keeps it, an XML one with oddities, a broken one."""

import datetime

from example_source.lists import as_binary, as_broken_binary, as_xml, write

PLACE = "Library/Preferences/ch.sudo.cyberduck.plist"

# What a usual file holds: switches are texts, intervals are numbers.
AMELIA = {
    "NSWindow Frame Browser": "120 200 900 640 0 0 1440 877 ",
    "SULastCheckTime": datetime.datetime(2020, 11, 30, 8, 15, 0),
    "SUEnableAutomaticChecks": True,
    "uses": "412",
    "browser.serialize": "true",
    "browser.open.untitled": "false",
    "connection.login.useKeychain": "true",
    "browser.disconnect.confirm": "false",
    "connection.protocol.default": "sftp",
    "browser.showHidden": "true",
    "browser.doubleclick.edit": "false",
    "browser.enterkey.rename": "true",
    "browser.info.inspector": "true",
    "browser.view.autoexpand": "1",
    "browser.view.autoexpand.useDelay": True,
    "browser.view.autoexpand.delay": 1.5,
    "browser.alternatingRows": "true",
    "browser.horizontalLines": "false",
    "browser.verticalLines": "false",
    "bookmark.icon.size": "32",
    "queue.transfer.type": "newconnection",
    "queue.window.open.transfer.start": "true",
    "queue.window.open.transfer.stop": "false",
    "queue.removeItemWhenComplete": "false",
    "queue.download.complete.open": "false",
    "queue.download.folder": "~/Downloads/web",
    "queue.download.reload.action": "similar",
    "queue.upload.file.temporary": "true",
    "queue.upload.action": "compare",
    "queue.upload.reload.action": "overwrite",
    "editor.bundleIdentifier": "com.apple.dt.xcode",
    "editor.alwaysUseDefault": "false",
    "queue.download.bandwidth.bytes": "-1",
    "queue.upload.bandwidth.bytes": "1048576",
    "bookmark.import.com.fetchsoftworks.Fetch": "true",
    "s3.location": "eu-central-1",
    "s3.storage.class": "STANDARD_IA",
    "s3.encryption.algorithm": "AES256",
    "browser.charset.encoding": "UTF-8",
    "connection.timeout.seconds": 30,
    "connection.retry.delay": 10,
    "connection.retry": 3,
    "connection.proxy.enable": "true",
}

# Values of other kinds than the client writes, codes that are not known, blanks kept as they are.
NOAH = {
    "browser.serialize": True,
    "browser.open.untitled": " true ",
    "connection.login.useKeychain": 1,
    "browser.disconnect.confirm": "",
    "connection.protocol.default": "smb",
    "browser.view.autoexpand": "true",
    "browser.view.autoexpand.useDelay": "1",
    "browser.view.autoexpand.delay": -2.9,
    "browser.horizontalLines": ["true"],
    "bookmark.icon.size": "48",
    "queue.transfer.type": "Browser",
    "queue.download.folder": "~/Restore/Größe & Maß",
    "queue.download.reload.action": "ask",
    "queue.upload.action": "rename",
    "editor.bundleIdentifier": "org.example.editor",
    "queue.download.bandwidth.bytes": "-1",
    "queue.upload.bandwidth.bytes": "-1",
    "s3.location": "eu-west-9",
    "s3.storage.class": "REDUCED_REDUNDANCY",
    "s3.encryption.algorithm": b"AES256",
    "browser.charset.encoding": "ISO-8859-15",
    "connection.timeout.seconds": "30",
    "connection.retry.delay": 86400,
    "connection.retry": False,
    "connection.proxy.enable": {"enabled": "true"},
}

JOERG = {
    "browser.serialize": "true",
    "connection.protocol.default": "davs",
    "browser.charset.encoding": "Shift_JIS",
}


def write_preferences(users):
    write(users / "amelia" / PLACE, as_binary(AMELIA))
    write(users / "noah quist" / PLACE, as_xml(NOAH))
    write(users / "jörg" / PLACE, as_broken_binary(JOERG))

"""The ways in which the client and the system write property lists, and shared names."""

import plistlib
import uuid

OLDER = "Library/Application Support/Cyberduck"
GROUP_CONTAINER = (
    "Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck"
)
DOCTYPE = (
    b'<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" '
    b'"http://www.apple.com/DTDs/PropertyList-1.0.dtd">\n'
)
NAMES = uuid.UUID("5d0c7a52-6a0e-4d5b-9d0e-2f3b8d0f4c11")


def identity(text):
    """The same UUID for the same text, on every run."""
    return str(uuid.uuid5(NAMES, text))


def chance(text, limit):
    """A number below `limit`, the same for the same text on every run and version."""
    return int.from_bytes(uuid.uuid5(NAMES, "chance " + text).bytes[:4], "big") % limit


def as_xml(content):
    """As the system's own tools write a list."""
    return plistlib.dumps(content, fmt=plistlib.FMT_XML, sort_keys=False)


def as_client_xml(content):
    """As the client writes its lists: without document type and version."""
    text = as_xml(content).replace(DOCTYPE, b"")
    return text.replace(b'<plist version="1.0">', b"<plist>")


def as_bare_xml(content):
    """A list whose root is the dictionary itself."""
    text = as_client_xml(content)
    return text.replace(b"<plist>\n", b"").replace(b"</plist>\n", b"")


def as_binary(content):
    return plistlib.dumps(content, fmt=plistlib.FMT_BINARY, sort_keys=False)


def as_broken_xml(content):
    """Cut off in the middle, as after a full disk."""
    return as_client_xml(content)[:150]


def as_broken_binary(content):
    """Without its last bytes, which tell where its objects lie."""
    return as_binary(content)[:-20]


def write(path, content):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def folder(path):
    return {"Path": path}

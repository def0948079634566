"""The settings that are shown: key, label, and how the value is rendered."""

from __future__ import annotations

import re
from collections.abc import Callable
from typing import Any

from filters import WHITE_SPACE

Rendering = Callable[[Any], "str | None"]

EXISTING_FILES = {"ask": "Prompt", "overwrite": "Overwrite", "resume": "Resume",
                  "similar": "Rename", "rename": "Rename existing", "compare": "Compare",
                  "skip": "Skip"}
REGIONS = {
    "us-east-1": "US East (Northern Virginia)", "us-west-1": "US West (Northern California)",
    "us-west-2": "US West (Oregon)", "eu-west-1": "EU (Ireland)",
    "ap-southeast-1": "Asia Pacific (Singapore)", "ap-southeast-2": "Asia Pacific (Sydney)",
    "eu-central-1": "EU (Frankfurt)", "ap-northeast-1": "Asia Pacific (Tokyo)",
    "sa-east-1": "South America (Sao Paulo)"}


def as_stored(value: Any) -> str | None:
    return value if isinstance(value, str) else None


def leading_number(text: str) -> float:
    number = re.compile(r"[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?", re.ASCII)
    match = number.match(text.lstrip(WHITE_SPACE))
    return float(match.group()) if match else 0.0


def truncated(number: float) -> int:
    if number != number:
        return 0
    if abs(number) >= 2.0 ** 63:
        return 2 ** 63 - 1 if number > 0 else -2 ** 63
    return int(number)


def is_number(value: Any) -> bool:
    return isinstance(value, (bool, int, float))


def text_switch(value: Any) -> str | None:
    if not isinstance(value, str):
        return None
    return "YES" if truncated(leading_number(value)) else "NO"


def number_switch(value: Any) -> str | None:
    if not is_number(value):
        return None
    return "YES" if truncated(float(value)) else "NO"


def integer(value: Any) -> str | None:
    return str(truncated(float(value))) if is_number(value) else None


def mapped(codes: dict[str, str]) -> Rendering:
    return lambda value: codes.get(value) if isinstance(value, str) else None


def itself(*codes: str) -> Rendering:
    return mapped({code: code for code in codes})


UNLIMITED = mapped({"-1": "Unlimited bandwidth"})
PREFERENCES: list[tuple[str, str, Rendering]] = [
    ("browser.serialize", "Save workspace", as_stored),
    ("browser.open.untitled", "Open new browser window on startup", as_stored),
    ("connection.login.useKeychain", "Use keychain", as_stored),
    ("browser.disconnect.confirm", "Confirm disconnect", as_stored),
    ("connection.protocol.default", "Default protocol", as_stored),
    ("browser.showHidden", "Show hidden files", as_stored),
    ("browser.doubleclick.edit", "Double click opens file in external editor", as_stored),
    ("browser.enterkey.rename", "Return key selects folder or file to rename", as_stored),
    ("browser.info.inspector", "Info window always shows current selection", as_stored),
    ("browser.view.autoexpand", "Use spring-loaded folders when dragging files", text_switch),
    ("browser.view.autoexpand.useDelay",
     "Use spring-loaded folders when dragging files with delay", number_switch),
    ("browser.view.autoexpand.delay", "Browser view autoexpand delay", integer),
    ("browser.alternatingRows", "Use alternating row background", as_stored),
    ("browser.horizontalLines", "Horizontal Lines", as_stored),
    ("browser.verticalLines", "Vertical Lines", as_stored),
    ("bookmark.icon.size", "Bookmark icon size",
     mapped({"16": "Use small icons", "32": "Use medium icons", "64": "Use large icons"})),
    ("queue.transfer.type", "Transfer Files",
     mapped({"newconnection": "Open new connection", "browser": "Use browser connection",
             "concurrent": "Open multiple connection"})),
    ("queue.window.open.transfer.start", "Bring window to front when transfer starts", as_stored),
    ("queue.window.open.transfer.stop", "Close window when trabsfer completes", as_stored),
    ("queue.removeItemWhenComplete", "Remove when transfer completes", as_stored),
    ("queue.download.complete.open", "Open downloaded files with default application", as_stored),
    ("queue.download.folder", "Download folder", as_stored),
    ("queue.download.reload.action", "Existing Files", mapped(EXISTING_FILES)),
    ("queue.upload.file.temporary", "Upload with temporary file name", as_stored),
    ("queue.upload.action", "Existing Files", mapped(EXISTING_FILES)),
    ("queue.upload.reload.action", "Always overwrite when reloading", as_stored),
    ("editor.bundleIdentifier", "Editor", itself("com.apple.textedit", "com.apple.dt.xcode")),
    ("editor.alwaysUseDefault", "Always use this application", as_stored),
    ("queue.download.bandwidth.bytes", "Downloads maximum throughput", UNLIMITED),
    ("queue.upload.bandwidth.bytes", "Uploads maximum throughput", UNLIMITED),
    ("bookmark.import.com.fetchsoftworks.Fetch", "Bookmark Import com Fetchs of tworks Fetch",
     as_stored),
    ("s3.location", "Default bucket location", mapped(REGIONS)),
    ("s3.storage.class", "Default storage class",
     itself("STANDARD_IA", "STANDARD", "REDUCED_REDUNDANCY")),
    ("s3.encryption.algorithm", "Algorithm to encrypt files with on upload", as_stored),
    ("browser.charset.encoding", "Text encoding", as_stored),
    ("connection.timeout.seconds", "Timeout for opening connections (seconds)", integer),
    ("connection.retry.delay", "Repeat failed networking tasks with delay", integer),
    ("connection.retry", "Repeat failed networking tasks number of retries", integer),
    ("connection.proxy.enable", "Use system proxy settings", as_stored),
]

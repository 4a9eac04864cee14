"""Describes a binary property list, read by plistlib, in the notation of the tests."""

import datetime
import plistlib
import sys


def quoted(text):
    data = text.encode("utf-16-be", "surrogatepass")
    units = [data[i] << 8 | data[i + 1] for i in range(0, len(data), 2)]
    return '"' + "".join(chr(u) if 0x20 <= u < 0x7F and chr(u) not in '"\\' else f"\\{u:04x}"
                         for u in units) + '"'


def described(value):
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, int):
        return str(value)
    if isinstance(value, float):
        return f"real {value:.17g}"
    if isinstance(value, str):
        return quoted(value)
    if isinstance(value, bytes):
        return f"<{value.hex()}>"
    if isinstance(value, datetime.datetime):
        return f"date {(value - datetime.datetime(2001, 1, 1)).total_seconds():.17g}"
    if isinstance(value, plistlib.UID):
        return f"uid {value.data}"
    if isinstance(value, list):
        return "[" + ", ".join(described(item) for item in value) + "]"
    entries = (quoted(key) + ": " + described(item) for key, item in value.items())
    return "{" + ", ".join(sorted(entries)) + "}"


with open(sys.argv[1], "rb") as file:
    print(described(plistlib.load(file, fmt=plistlib.FMT_BINARY)))

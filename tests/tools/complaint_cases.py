"""Reads the cases in complaints/, whose form the README there describes."""

import collections
import glob
import os
import re

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "complaints")

# `fixed` is None for a file that has to be made anew.
Case = collections.namedtuple("Case", "name options track findings fixed left shows")

ESCAPE = re.compile(r"\\x([0-9a-f]{2})|\\u([0-9A-F]{4})")
FINDING = re.compile(r"-> (\d+(?::\d+)?) (Q\d{3}) (lost|changed|remark) ([^|]*?)(?: \| (.*))?")


def read_all():
    return [case for path in sorted(glob.glob(os.path.join(FOLDER, "*.cases")))
            for case in read_file(path)]


def read_file(path):
    with open(path, encoding="utf-8", newline="\n") as file:
        parts = re.split(r"^## ", file.read(), flags=re.MULTILINE)[1:]
    return [read_case(os.path.basename(path), part) for part in parts]


def read_case(file, text):
    title, body = text.split("\n", 1)
    before, separator, behind = re.split(r"^==(?: (none))?\n", body, maxsplit=1,
                                         flags=re.MULTILINE)
    track, findings, notes = read_part(before)
    fixed, left, more = read_part(behind)
    return Case(f"{file}: {title}", notes.get("with", "").split(), track, findings,
                None if separator else fixed, left, more.get("shows"))


def read_part(text):
    """The track, the findings and the notes by name."""
    track, findings, notes = [], [], {}
    for line in text.splitlines(keepends=True):
        note = re.fullmatch(r"-> (with|shows) (.*)\n", line)
        if note:
            notes[note.group(1)] = note.group(2)
        elif line.startswith("-> "):
            found = FINDING.fullmatch(line.rstrip("\n"))
            assert found, line
            findings.append(found.groups(default=""))
        elif not findings and not notes:
            track.append(line)
        else:
            assert not line.strip(), line
    return to_bytes("".join(track)), findings, notes


def to_bytes(text):
    def byte_or_character(match):
        return (bytes([int(match.group(1), 16)]) if match.group(1)
                else chr(int(match.group(2), 16)).encode())
    pieces, at = [], 0
    for match in ESCAPE.finditer(text):
        pieces += [text[at:match.start()].encode(), byte_or_character(match)]
        at = match.end()
    return b"".join(pieces + [text[at:].encode()])

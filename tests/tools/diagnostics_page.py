"""Reads docs/diagnostics.md, whose place the environment gives: QUILL_DOCS."""

import collections
import os
import re

PAGE = os.path.join(os.environ["QUILL_DOCS"], "diagnostics.md")

# `track`, `fixed` and the chunk sizes of both are None where the page has none.
Entry = collections.namedtuple("Entry", "code name text track fixed chunk fixed_chunk")

ENTRY = re.compile(r"^### (Q\d{3}) (\S+)\n\n(.*?)(?=^##|\Z)", re.MULTILINE | re.DOTALL)
EXAMPLE = re.compile(r"^```text\n(.*?)^```$", re.MULTILINE | re.DOTALL)
CHUNK = re.compile(r"`--chunk (\d+)`")
BYTE = re.compile(rb"\\x([0-9a-f]{2})")


def read_page():
    with open(PAGE, encoding="utf-8") as file:
        return file.read()


def read_entries():
    return [read_entry(*match.groups()) for match in ENTRY.finditer(read_page())]


def read_entry(code, name, body):
    tracks = [read_track(example) for example in EXAMPLE.findall(body)]
    chunk, fixed_chunk, *_ = (CHUNK.findall(body) or [None]) * 2
    text = " ".join(EXAMPLE.sub("", body).split())
    track, fixed, *_ = tracks + [None, None]
    return Entry(code, name, text, track, fixed, chunk, fixed_chunk)


def read_track(example):
    return BYTE.sub(lambda match: bytes([int(match.group(1), 16)]), example.encode())

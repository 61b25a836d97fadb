#!/usr/bin/env python3
"""damaged_modules.py [--count N] [--seed N] [--jobs N]: tries copies of the module, each of which is damaged
in one place of the part that is loaded, with quill cues and quill check.

However a copy fails, quill has to end by itself, in time and with one of its exit codes, and with a message
unless the code is 0. Prints how many ended in which way. QUILL names the quill to try; the module lies
beside it."""

import argparse
import collections
import concurrent.futures
import functools
import os
import random
import re
import resource
import struct
import subprocess
import sys
import tempfile
import time

from quill_runner import MODULE, command

LIMIT = 1  # seconds that a call may take
# The limit twice, the second time to find the block, and what a busy machine takes.
IN_TIME = 20
TRACK = b"WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\n\n" + b"".join(
    b"%d\n00:%02d.000 --> 00:%02d.900 line:%d%% align:start\n<v A>One &amp; <i>two</i>\nthree\n\n" %
    (number, number, number, number) for number in range(20)) + b"00:01.000 --> 00:0x\nlost\n\n"

Outcome = collections.namedtuple("Outcome", "seed command place code seconds message")


@functools.lru_cache(maxsize=None)
def module():
    """The module's bytes, and how many of them lie in what is loaded."""
    with open(MODULE, "rb") as file:
        content = file.read()
    start, size, count = struct.unpack_from("=28xI10xHH", content)
    loaded = 0
    for number in range(count):
        kind, offset, _, _, length = struct.unpack_from("=5I", content, start + number * size)
        loaded = max(loaded, offset + length if kind == 1 else 0)
    return content, loaded


def try_one(seed, folder):
    """What becomes of quill cues and quill check with the copy of that seed."""
    content, loaded = module()
    draw = random.Random(seed)
    place = draw.randrange(loaded)
    length = draw.choice((1, 1, 4, 16))
    path = os.path.join(folder, f"{seed}.so")
    with open(path, "wb") as file:
        file.write(content[:place] + draw.randbytes(length) + content[place + length:])
    track = os.path.join(folder, f"{seed}.vtt")
    with open(track, "wb") as file:
        file.write(TRACK)
    # In a build that counts what is run, a damaged module must not write into the counts of the sound one.
    environment = {**os.environ, "GCOV_PREFIX": os.path.join(folder, "counts")}
    for name in ("cues", "check"):
        started = time.monotonic()
        try:
            done = subprocess.run(command(name, "--quiet", "--timeout", LIMIT, "--module", path, track),
                                  capture_output=True, timeout=3 * IN_TIME, check=False,
                                  stdin=subprocess.DEVNULL, env=environment)
            code, message = done.returncode, re.findall(b"^quill: (.*)$", done.stderr, re.MULTILINE)
        except subprocess.TimeoutExpired:
            code, message = "never", []
        yield Outcome(seed, name, place, code, time.monotonic() - started,
                      message[-1].decode("utf-8", "replace") if message else "")
    os.unlink(path)
    os.unlink(track)


def try_all(seeds, folder, jobs=1):
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        return [outcome for outcomes in pool.map(lambda seed: list(try_one(seed, folder)), seeds)
                for outcome in outcomes]


def faults_of(outcomes):
    """Those that are not as they must be. quill check says on standard output what is lost."""
    return [one for one in outcomes
            if one.code not in (0, 1, 2, 3) or one.seconds > IN_TIME or
            (one.code in (2, 3) and not one.message)]


def kind_of(outcome):
    """The outcome without what is the single copy's own."""
    said = re.search(r"crashed by \w+|hung|ended the process|exited with status|is damaged|cannot load|"
                     r"is a \S+ (?:\S+ )?\(|is not a|cannot be used|the module threw|made no parser|"
                     r"not a WebVTT track|lost", outcome.message)
    return f"{outcome.command}: {outcome.code}, {said.group() if said else outcome.message[:60] or 'no message'}"


def overlapping_versions():
    """The module's bytes with a table of versions that is its own next record over and over again."""
    content, loaded = module()
    start, size, count = struct.unpack_from("=28xI10xHH", content)
    segments = [struct.unpack_from("=5I", content, start + number * size) for number in range(count)]
    dynamic = next(offset for kind, offset, *_ in segments if kind == 2)
    table = loaded + -loaded % 16
    grown = bytearray(content[:loaded].ljust(table, b"\0"))
    records = 262144 // 16
    # Every record is a library, whose names are all records behind it.
    grown += struct.pack("=HHIII", 1, 0xffff, 0, 16, 16) * (records - 1) + struct.pack("=HHIII", 1, 1, 0, 0, 0)
    last = max((offset, address, number) for number, (kind, offset, address, *_) in enumerate(segments)
               if kind == 1)
    at = start + last[2] * size
    struct.pack_into("=II", grown, at + 16, len(grown) - last[0], len(grown) - last[0])
    address = last[1] + table - last[0]
    while struct.unpack_from("=I", grown, dynamic)[0] != 0:
        tag = struct.unpack_from("=I", grown, dynamic)[0]
        value = {0x6ffffffe: address, 0x6fffffff: records}.get(tag)
        if value is not None:
            struct.pack_into("=I", grown, dynamic + 4, value)
        dynamic += 8
    return bytes(grown)


def seconds_of_inspecting(folder):
    """Of processor time."""
    path = os.path.join(folder, "versions.so")
    with open(path, "wb") as file:
        file.write(overlapping_versions())
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    done = subprocess.run(command("inspect", path), capture_output=True, check=False)
    if b"versions are more than the file can hold" not in done.stdout:
        raise AssertionError(done)
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--count", type=int, default=2000, help="how many copies (2000)")
    parser.add_argument("--seed", type=int, default=1, help="others for another seed (1)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1, help="at a time")
    arguments = parser.parse_args()
    seeds = range(arguments.seed * 1_000_000, arguments.seed * 1_000_000 + arguments.count)
    with tempfile.TemporaryDirectory() as folder:
        outcomes = try_all(seeds, folder, arguments.jobs)
    for kind, count in sorted(collections.Counter(map(kind_of, outcomes)).items()):
        print(f"{count:6} {kind}")
    faults = faults_of(outcomes)
    for one in faults:
        print("WRONG", one)
    print(f"{arguments.count} damaged copies: {len(faults)} wrong ends, "
          f"{max(one.seconds for one in outcomes):.1f} s at the most")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())

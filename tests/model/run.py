#!/usr/bin/env python3
"""Plays generated scripts through the loaded module and holds the result to the model.

    run.py --player build/i386/tests/model/script_player --module build/i386/quillcaption.so
    run.py ... --count 20000 --seed 7          many more, others
    run.py ... --script failing.script         one script out of a file
    run.py --player .../failing_player ... --failing --count 50     every allocation fails once
    run.py --show --seed 7 --first 12 --count 1          print a generated script

Exit codes: 0 all agree; 1 a script failed (the smallest one found is printed); 2 wrong usage.
"""

import argparse
import pathlib
import struct
import sys
import time

import failing
import generate
from model.module import Module
from player import Player, PlayerError
from reach import Reach
from script import ScriptError, format_call, format_script, parse_script
from shrink import shrink

BATCH = 250  # scripts for each run of the player


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--player", help="the built script_player")
    parser.add_argument("--module", help="the built quillcaption.so")
    parser.add_argument("--emulator", default="", help="such as build/armhf/run")
    parser.add_argument("--count", type=int, default=2000, help="scripts to generate (2000)")
    parser.add_argument("--seed", type=int, default=1, help="other scripts for another seed (1)")
    parser.add_argument("--first", type=int, default=0, help="first script of the seed (0)")
    parser.add_argument("--script", action="append", help="play this file instead, - for stdin")
    parser.add_argument("--track", action="append", default=[],
                        help="generate scripts around this track, not around random ones")
    parser.add_argument("--failures", metavar="DIR", help="also write failing scripts there")
    parser.add_argument("--reached", action="store_true", help="print what the scripts reached")
    parser.add_argument("--failing", action="store_true",
                        help="play short scripts, and every single allocation of theirs fails")
    parser.add_argument("--show", action="store_true", help="print the scripts, play nothing")
    arguments = parser.parse_args()
    if not arguments.show and not (arguments.player and arguments.module):
        parser.error("--player and --module are needed")
    return arguments


def scripts_of(arguments):
    """(name, calls) of each script to play, generated one by one."""
    for path in arguments.script or ():
        text = sys.stdin.read() if path == "-" else pathlib.Path(path).read_text("ascii")
        yield path, parse_script(text)
    if not arguments.script:
        tracks = [pathlib.Path(path).read_bytes() for path in arguments.track]
        for index in range(arguments.first, arguments.first + arguments.count):
            calls = generate.generate(arguments.seed, index, tracks)
            yield f"seed {arguments.seed}, script {index}", calls


def batches(scripts):
    batch = []
    for one in scripts:
        batch.append(one)
        if len(batch) == BATCH:
            yield batch
            batch = []
    if batch:
        yield batch


def expected_report(calls):
    return Module().play(calls)


def explain(calls, expected, actual):
    """The calls that differ, one line of a report below the other."""
    lines = []
    for number, (one, want) in enumerate(zip(calls, expected)):
        got = actual[number] if number < len(actual) else ["(not reached)"]
        if want != got:
            lines.append(f"call {number + 1}: {format_call(one)}")
            lines += [f"  expected  {readable(line)}" for line in want]
            lines += [f"  actual    {readable(line)}" for line in got]
    lines += [f"at the end: {line}" for extra in actual[len(calls):] for line in extra]
    return "\n".join(lines)


def readable(line):
    """A record's times once more in decimal."""
    words = line.split(" ")
    if words[0] != "cue" or len(words) < 7:
        return line
    start, end = (struct.unpack(">d", bytes.fromhex(words[i]))[0] for i in (4, 6))
    return f"{line}  ({start!r} to {end!r})"


def report_failure(name, calls, player, failures):
    def fails(candidate):
        return player.play_one(candidate) != expected_report(candidate)

    print(f"\nFAILED: {name} ({len(calls)} calls), shrinking ...", flush=True)
    if fails(calls):
        calls = shrink(calls, fails)
    else:
        print("It fails only behind other scripts, so here it is as it was.")
    text = format_script(calls)
    print(f"The smallest failing script found, to be kept in a file for --script:\n\n{text}")
    print(explain(calls, expected_report(calls), player.play_one(calls)))
    if failures:
        folder = pathlib.Path(failures)
        folder.mkdir(parents=True, exist_ok=True)
        path = folder / (name.replace(", ", "-").replace(" ", "-").replace("/", "-") + ".script")
        path.write_text(text, "ascii")
        print(f"Written to {path}")


def compare(arguments):
    """Whether all scripts agree. Stops at the first one that does not."""
    player = Player(arguments.player, arguments.module, arguments.emulator)
    reach, started = Reach(), time.monotonic()
    for batch in batches(scripts_of(arguments)):
        reports = player.play([calls for _, calls in batch])
        for (name, calls), actual in zip(batch, reports):
            expected = expected_report(calls)
            if actual != expected:
                report_failure(name, calls, player, arguments.failures)
                return False
            reach.add(expected)
        if sys.stdout.isatty():
            print(f"\r{reach.scripts} scripts agree", end="", flush=True)
    print(f"\r{reach.scripts} scripts agree, {time.monotonic() - started:.0f} s")
    if arguments.reached:
        print(reach.table())
    return True


def compare_failing(arguments):
    """Whether every run in which an allocation fails ends as one that the model knows."""
    player = Player(arguments.player, arguments.module, arguments.emulator)
    scripts = [*failing.long_scripts(), *failing.small_scripts(arguments.seed, arguments.first,
                                                              arguments.count)]
    runs, started = 0, time.monotonic()
    for name, calls in scripts:
        try:
            runs += failing.check(calls, player, Module)
        except failing.Disagreement as found:
            print(f"\nFAILED: {name}\n{format_script(found.calls)}\n{found.explain(format_call)}")
            return False
    if runs == 0:
        raise PlayerError("this player's memory never fails: give failing_player")
    print(f"{len(scripts)} scripts agree, with memory failing in {runs} runs, "
          f"{time.monotonic() - started:.0f} s")
    return True


def main():
    arguments = parse_arguments()
    try:
        if arguments.show:
            for name, calls in scripts_of(arguments):
                print(f"# {name}\n{format_script(calls)}")
            return 0
        agree = compare_failing if arguments.failing else compare
        return 0 if agree(arguments) else 1
    except (PlayerError, ScriptError, OSError, UnicodeError) as error:
        print(f"run.py: {error}", file=sys.stderr)
        return 2


if __name__ == "__main__":
    sys.exit(main())

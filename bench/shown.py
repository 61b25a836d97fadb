"""The figures that docs/performance.md shows: which commands print them, how a page takes new ones, and
whether others have moved. The page names the commit that they were measured on and, for a tree without
its history, a digest of all that they depend on."""

import hashlib
import re
import sys

import measuring

sys.path.insert(1, str(measuring.TREE / "tests" / "docs"))
import pages  # pylint: disable=wrong-import-position

PAGE = measuring.TREE / "docs" / "performance.md"
# What the counts depend on, beside the compiler.
SOURCES = ("src", "include", "support", "bench", "cmake/compile_options.cmake", "cmake/toolchains")
MARK = re.compile(r"Measured on commit `(\w+)`, sources `(\w+)`,\nbuilt by GCC ([\d.]+)\.")
NUMBER = re.compile(r"-?\d+(?:\.\d+)?")


def digest():
    """Of the contents of all that the figures depend on."""
    total = hashlib.sha256()
    for place in (measuring.TREE / name for name in SOURCES):
        for path in [place] if place.is_file() else sorted(place.rglob("*")):
            if path.suffix in (".c", ".cpp", ".h", ".cmake"):
                total.update(str(path.relative_to(measuring.TREE)).encode() + path.read_bytes())
    return total.hexdigest()[:12]


def measured_blocks(text):
    """The commands of each block in which something of bench/ prints."""
    for block in pages.blocks(text):
        if block.language == "console":
            commands = pages.commands(block)
            if any(re.match(r"(build/\w+/)?bench/", command.text) for command in commands):
                yield commands


def label(line):
    """What a row says that it is about: its text up to the first column."""
    return re.split(r" {2,}", line.strip())[0]


def without_numbers(text):
    return NUMBER.sub("#", text)


def fill(shown, printed):
    """The lines that a page shows, with the figures of those that were printed. In a block with "..." each
    row stands for the next printed one with its label. Raises Failure for a row that has none."""
    printed = [line.rstrip() for line in printed]
    if "..." not in shown:
        return printed
    filled, at = [], 0
    for line in shown:
        if line == "...":
            filled.append(line)
            continue
        rest = range(at, len(printed))
        same = [i for i in rest if label(printed[i]) == label(line)] or \
               [i for i in rest if without_numbers(label(printed[i])) == without_numbers(label(line))]
        if not same:
            raise measuring.Failure(f"{PAGE.name} shows a row that is not printed any more, so edit the "
                                    f"page: {line.strip()}")
        at = same[0] + 1
        filled.append(printed[same[0]])
    if not pages.agrees(printed, filled):
        raise measuring.Failure(f"{PAGE.name} shows rows side by side that have others in between: put "
                                f"\"...\" where rows are left out, near: {shown[0].strip()}")
    return filled


def moved(shown, printed, columns):
    """Those of the printed lines with one of their first figures off by more than it is rounded to."""
    found = []
    for line, other in zip(shown, printed):
        pairs = list(zip(NUMBER.findall(line[len(label(line)):]), NUMBER.findall(other[len(label(other)):])))
        if label(line) != label(other) or any(differ(*pair) for pair in pairs[:columns]):
            found.append(f"{other.strip()}   (the page: {line.strip()})")
    return found


def differ(shown, printed):
    decimals = len(shown.partition(".")[2])
    return abs(float(shown) - float(printed)) > 1.5 * 10 ** -decimals

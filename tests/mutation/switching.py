"""Sources with many faults in them at once, of which one is chosen when a test is started.

Every such fault becomes a choice where it stands, on the line on which it stands:
    a < b   ->   (QUILL_FAULT(7) ? (a <= b) : (a < b))
So one build serves them all. What is no expression and no statement, or has another type with the
fault in it, does not go that way and is tried by itself."""

import pathlib
import re
import subprocess

from building import must, standard_headers

SWITCH = """
// Which fault was chosen, and which were passed.
#pragma once
extern __attribute__((visibility("hidden"))) int quill_fault;
extern __attribute__((visibility("hidden"))) unsigned char* quill_passed;
#define QUILL_FAULT(number) (quill_passed[number] = 1, quill_fault == (number))
"""
SWITCH_SOURCE = """
#include <fcntl.h>
#include <sys/mman.h>
#include <cstdlib>
int quill_fault = -1;
static unsigned char passed_by_nobody[%(size)d];
unsigned char* quill_passed = passed_by_nobody;
__attribute__((constructor(101))) static void choose_fault() {
    const char* number = std::getenv("QUILL_FAULT");
    if (number != nullptr) quill_fault = std::atoi(number);
    const char* file = std::getenv("QUILL_PASSED");
    if (file == nullptr) return;
    const int opened = open(file, O_RDWR);
    void* map = mmap(nullptr, %(size)d, PROT_READ | PROT_WRITE, MAP_SHARED, opened, 0);
    if (map != MAP_FAILED) quill_passed = static_cast<unsigned char*>(map);
}
"""
HOME = "api/module_info.cpp"  # where the definitions go


class SwitchError(Exception):
    """The faults cannot be put into the sources."""


def with_fault(text, fault, begin, end):
    """A part of the text with the fault in it, on one line."""
    part = text[begin:fault.at] + fault.new + text[fault.at + len(fault.old):end]
    return re.sub(r"\s*\n\s*", " ", re.sub(r"//[^\n]*", "", part))


class Region:
    """A part of a file in which faults can be chosen, and the parts within it."""

    def __init__(self, begin, end, form):
        self.begin, self.end, self.form = begin, end, form
        self.faults, self.inner = [], []

    def render(self, text):
        inside = self.render_inside(text)
        if self.form == "expression":
            choices = "".join(f"QUILL_FAULT({fault.number}) ? "
                              f"({with_fault(text, fault, self.begin, self.end)}) : "
                              for fault in self.faults)
            return f"({choices}({inside}))"
        fault = self.faults[0]  # the statement is left out: there is one way to do that
        return f"{{ if (QUILL_FAULT({fault.number})) {{}} else {{ {inside} }} }}"

    def render_inside(self, text):
        parts, at = [], self.begin
        for region in self.inner:
            parts += [text[at:region.begin], region.render(text)]
            at = region.end
        return "".join([*parts, text[at:self.end]])


def render(text, faults):
    """The text with all the faults to choose from."""
    regions = {}
    for fault in faults:
        key = (*fault.span, fault.form)
        regions.setdefault(key, Region(*key)).faults.append(fault)
    whole = Region(0, len(text), "")
    open_regions = [whole]
    for region in sorted(regions.values(), key=lambda region: (region.begin, -region.end)):
        while open_regions[-1].end <= region.begin:
            open_regions.pop()
        open_regions[-1].inner.append(region)
        open_regions.append(region)
    return whole.render_inside(text)


def write_switched(tree, faults, find_errors):
    """Puts the faults into the tree's sources. Returns those that can be chosen there.

    find_errors() gives the (file, line) of what does not compile then: the faults there are taken
    out, and go the other way."""
    (tree / "src" / "switch.h").write_text(SWITCH, "utf-8")
    size = max((fault.number for fault in faults), default=0) + 1
    names = {HOME} | {fault.file for fault in faults}
    originals = {name: (tree / "src" / name).read_text("utf-8") for name in names}
    chosen = [fault for fault in faults if fault.form]
    while True:
        for name, text in originals.items():
            # With the numbers of the lines as they were.
            switched = '#include "switch.h"\n#line 1\n'
            switched += render(text, [fault for fault in chosen if fault.file == name])
            switched += SWITCH_SOURCE % {"size": size} if name == HOME else ""
            (tree / "src" / name).write_text(switched, "utf-8")
        errors = find_errors()
        if not errors:
            return chosen
        kept = [fault for fault in chosen if not any(touches(fault, originals, *error)
                                                     for error in errors)]
        if len(kept) == len(chosen):
            raise SwitchError("this does not compile with faults to choose from: "
                              + ", ".join(f"src/{name}:{line}" for name, line in sorted(errors)))
        chosen = kept


def touches(fault, originals, name, line):
    if fault.file != name:
        return False
    text = originals[name]
    first, last = (text.count("\n", 0, at) + 1 for at in fault.span)
    return first <= line <= last


def compiler_flags(tree):
    """What a compiler needs to read the sources as the i386 build does."""
    multiarch = subprocess.run(["gcc", "-print-multiarch"], capture_output=True, text=True).stdout
    return ["-m32", "-msse2", "-mfpmath=sse", "-std=c++17", f"-I{tree}/src", f"-I{tree}/include",
            "-idirafter", f"/usr/include/{multiarch.strip() or 'x86_64-linux-gnu'}"]


def find_errors(tree):
    """Where the compiler stops in the tree's sources, as {(file, line)}."""
    errors = set()
    sources = tree / "src"
    compiler = ["g++", "-w", "-fmax-errors=0", *compiler_flags(tree)]
    standard = tree / "standard.h"  # read once instead of once a file
    if not standard.exists():
        standard.write_text(standard_headers(sources), "utf-8")
        must(*compiler, "-x", "c++-header", "-o", f"{standard}.gch", standard)
    for path in sorted(sources.rglob("*.cpp")):
        done = subprocess.run([*compiler, "-fsyntax-only", "-include", standard, path],
                              capture_output=True, text=True)
        for found in re.finditer(r"^(\S+?):(\d+):\d+: (?:fatal )?error:", done.stderr, re.MULTILINE):
            place = pathlib.Path(found[1])
            if place.is_relative_to(sources):
                errors.add((str(place.relative_to(sources)), int(found[2])))
        if done.returncode != 0 and not errors:
            raise SwitchError(done.stderr[-3000:])
    return errors

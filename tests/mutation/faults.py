"""Faults: those of the list, which is held to the sources, and those that are drawn."""

import pathlib
import tomllib
from dataclasses import dataclass


class FaultError(Exception):
    """A list does not fit the sources."""


@dataclass(frozen=True)
class Fault:
    number: int
    file: str  # from src/
    old: str  # occurs exactly once in the file, unless the fault says where
    new: str
    why: str
    seen_by: str  # "tests", or "sanitizer" or "compiler" when only that can see it
    # Of those that are drawn:
    at: int | None = None  # where old begins in the file
    line: int = 0
    span: tuple = ()  # of the expression or statement that the fault changes
    form: str = ""  # "expression" or "statement": it can be chosen when a test is started
    kind: str = ""
    before: str = ""  # the changed lines, white space apart, as they are
    after: str = ""
    above: str = ""  # the line above these


SEEN_BY = ("tests", "sanitizer", "compiler")
FIELDS = {"file", "old", "new", "why", "seen_by"}


def describe(fault):
    if fault.at is None:
        return f"{fault.number:3}  {fault.file}: {fault.why}"
    return (f"{fault.number}  {fault.file}:{fault.line}: {fault.kind}\n"
            f"        - {fault.before}\n        + {fault.after}")


def read_faults(path, sources):
    """The faults, numbered from 1 in the order of the file."""
    content = tomllib.loads(pathlib.Path(path).read_text("utf-8"))
    faults = [make_fault(number, entry) for number, entry in enumerate(content["fault"], start=1)]
    for fault in faults:
        apply(fault, read_source(sources, fault.file))  # fails when it does not fit
    check_complete(faults, content.get("without", []), sources)
    return faults


def make_fault(number, entry):
    unknown = entry.keys() - FIELDS
    if unknown or not {"file", "old", "new", "why"} <= entry.keys():
        raise FaultError(f"fault {number} wants the fields file, old, new and why, and knows "
                         "seen_by")
    fault = Fault(number, entry["file"], entry["old"], entry["new"], entry["why"],
                  entry.get("seen_by", "tests"))
    if fault.seen_by not in SEEN_BY:
        raise FaultError(f"fault {number}: seen_by is one of {', '.join(SEEN_BY)}")
    if fault.old == fault.new:
        raise FaultError(f"fault {number} changes nothing")
    return fault


def make_drawn(number, file, text, place):
    kind, span, at, old, new, form, line = place
    begin = text.rfind("\n", 0, at) + 1
    end = text.find("\n", at + len(old))
    before = text[begin:end]
    after = text[begin:at] + new + text[at + len(old):end]
    above = text[:begin].rstrip().rpartition("\n")[2]
    return Fault(number, file, old, new, kind, "tests", at, line, span, form, kind,
                 *(" ".join(part.split()) for part in (before, after, above)))


def read_equivalent(path, places):
    """The faults, among all that can be drawn, that change nothing, each with the reason."""
    reasons = {}
    for entry in tomllib.loads(pathlib.Path(path).read_text("utf-8")).get("equivalent", []):
        if entry.keys() - {"above"} != {"file", "before", "after", "why"} or not entry["why"]:
            raise FaultError(f"{path.name}: an entry has the fields file, before, after and why, and "
                             f"knows above: {entry}")
        found = [fault for fault in places
                 if (fault.file, fault.before, fault.after, entry.get("above", fault.above))
                 == (entry["file"], entry["before"], entry["after"], fault.above)]
        text = f"src/{entry['file']}\n- {entry['before']}\n+ {entry['after']}"
        if not found:
            raise FaultError(f"{path.name}: no fault like this can be drawn in {text}\n"
                             "put the entry right, or take it out if its lines are gone")
        lines = sorted({fault.line for fault in found})
        if len(lines) > 1:
            raise FaultError(f"{path.name}: lines {', '.join(map(str, lines))} can have this fault; the "
                             f"field above says which one is meant, by the line above it: {text}")
        reasons.update({fault.number: entry["why"] for fault in found})
    return reasons


def read_source(sources, name):
    try:
        return (sources / name).read_text("utf-8")
    except OSError as error:
        raise FaultError(f"src/{name} cannot be read: {error.strerror}") from error


def apply(fault, text):
    """The text with the fault in it."""
    if fault.at is not None:
        return text[:fault.at] + fault.new + text[fault.at + len(fault.old):]
    found = text.count(fault.old)
    if found != 1:
        raise FaultError(f"fault {fault.number}: its text occurs {found} times in src/{fault.file}"
                         f", not once:\n{fault.old}")
    return text.replace(fault.old, fault.new)


def check_complete(faults, without, sources):
    """Each file of the sources has a fault, or a reason why it can have none."""
    covered = {fault.file for fault in faults} | {entry["file"] for entry in without}
    for entry in without:
        if not entry.get("why"):
            raise FaultError(f"src/{entry['file']} is without a fault and without a reason")
    present = {str(path.relative_to(sources)) for path in sources.rglob("*") if path.is_file()}
    for name in sorted(present - covered):
        raise FaultError(f"src/{name} has no fault")
    for name in sorted(covered - present):
        raise FaultError(f"src/{name} does not exist")

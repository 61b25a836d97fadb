"""Reads the list of faults and holds it to the sources."""

import pathlib
import tomllib
from dataclasses import dataclass


class FaultError(Exception):
    """The list does not fit the sources."""


@dataclass(frozen=True)
class Fault:
    number: int
    file: str  # from src/
    old: str  # occurs exactly once in the file
    new: str
    why: str
    seen_by: str  # "tests", or "sanitizer" or "compiler" when only that can see it


SEEN_BY = ("tests", "sanitizer", "compiler")
FIELDS = {"file", "old", "new", "why", "seen_by"}


def describe(fault):
    return f"{fault.number:3}  {fault.file}: {fault.why}"


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


def read_source(sources, name):
    try:
        return (sources / name).read_text("utf-8")
    except OSError as error:
        raise FaultError(f"src/{name} cannot be read: {error.strerror}") from error


def apply(fault, text):
    """The text with the fault in it."""
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

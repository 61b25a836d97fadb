"""What earlier runs found, so that one which was interrupted goes on where it was."""

import hashlib
import json
import threading


class Diary:
    """A file with a line for each fault that was tried in a stage.

    What was noticed stays so while src/ is as it was; what was not is tried again when the tests
    have changed, unless there is an argument that nothing can notice it."""

    def __init__(self, path, root, argued=()):
        self.path, self.lock, self.known = path, threading.Lock(), {}
        self.sources = digest(root / "src")
        self.tests = digest(root / "tests", {"mutation"})
        path.parent.mkdir(parents=True, exist_ok=True)
        lines = path.read_text("utf-8").splitlines() if path.exists() else []
        argued = {key(fault, "")[:-1] for fault in argued}
        for entry in map(json.loads, lines):
            if entry["sources"] == self.sources and (entry["by"] or entry["tests"] == self.tests
                                                     or tuple(entry["fault"][:-1]) in argued):
                self.known[tuple(entry["fault"])] = entry["by"]

    def has(self, fault, stage):
        return key(fault, stage) in self.known

    def by(self, fault, stage):
        return self.known[key(fault, stage)]

    def add(self, fault, stage, by):
        with self.lock, open(self.path, "a", encoding="utf-8") as file:
            self.known[key(fault, stage)] = by
            entry = {"sources": self.sources, "tests": self.tests, "fault": key(fault, stage), "by": by}
            file.write(json.dumps(entry) + "\n")


def key(fault, stage):
    return fault.file, fault.at, fault.old, fault.new, stage


def digest(folder, without=frozenset()):
    sum_ = hashlib.sha256()
    for path in sorted(folder.rglob("*")):
        if path.is_file() and not without & set(path.relative_to(folder).parts) \
                and "__pycache__" not in path.parts:
            sum_.update(f"{path.relative_to(folder)}\n".encode() + path.read_bytes())
    return sum_.hexdigest()[:16]

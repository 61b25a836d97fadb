"""What became of the faults of a run."""

import json
import subprocess
from collections import Counter

from laboratory import COMPILER, STAGES


class Score:
    def __init__(self, faults, equivalent):
        self.faults, self.equivalent = faults, equivalent
        self.by = {}  # who noticed, by number: a stage, or the compiler
        self.tried = set()  # by the quick tests at least
        self.complete = False  # until every stage is done

    def add(self, fault, stage, killer):
        self.tried.add(fault.number)
        if killer:
            self.by[fault.number] = "compiler" if killer == COMPILER else stage.name

    def noticed(self, fault):
        return fault.number in self.by

    def refuted(self):
        """Those that are said to change nothing, and that were noticed."""
        return [fault for fault in self.faults
                if self.noticed(fault) and fault.number in self.equivalent]

    def survivors(self):
        """Of every stage; so far, while the score is not complete."""
        return [fault for fault in self.faults if fault.number in self.tried
                and not self.noticed(fault) and fault.number not in self.equivalent]

    def counts(self, faults):
        """So many noticed by whom; argued to change nothing; survived."""
        by = Counter(self.by.get(fault.number) for fault in faults)
        equivalent = sum(fault.number in self.equivalent and not self.noticed(fault)
                         for fault in faults)
        survived = len(set(faults) & set(self.survivors()))
        return {"faults": len(faults), **{stage.name: by[stage.name] for stage in STAGES},
                "compiler": by["compiler"], "equivalent": equivalent,
                "survived": survived, "untried": by[None] - equivalent - survived}

    def summary(self):
        counts = self.counts(self.faults)
        files = len({fault.file for fault in self.faults})
        noticed = sum(map(self.noticed, self.faults))
        text = (f"{len(self.faults)} faults in {files} files: {noticed} noticed "
                f"({counts['quick tests']} by quick tests, {counts['slow tests']} by slow ones, "
                f"{counts['sanitizer']} by a sanitizer only, {counts['compiler']} by the compiler), "
                f"{counts['survived']} survived")
        text += f", {counts['equivalent']} change nothing" if self.equivalent else ""
        return text + ("" if self.complete else f"; interrupted, {counts['untried']} not tried yet, "
                       "and not all survivors by every stage")

    def write(self, path, root, arguments):
        """Keeps the score with the commit that it was measured on."""
        commit = subprocess.run(["git", "-C", root, "log", "-1", "--format=%h %cs", "--", "src"],
                                capture_output=True, text=True, check=True).stdout.split()
        kinds = sorted({fault.kind for fault in self.faults})
        content = {"commit": commit[0], "date": commit[1], "seed": arguments.seed,
                   "all": self.counts(self.faults),
                   "kinds": {kind: self.counts([fault for fault in self.faults if fault.kind == kind])
                             for kind in kinds}}
        path.write_text(json.dumps(content, indent=2) + "\n", "utf-8")

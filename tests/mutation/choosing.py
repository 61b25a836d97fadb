"""A build with many faults in it: a test chooses one when it is started, and only those tests are
started that come past it."""

import json
import shutil
import tempfile
import time
from dataclasses import dataclass, field

from building import NOT_COPIED, Build
from diary import digest
from switching import find_errors, write_switched
from testing import TARGETS, TestError, find_tests, processor_time

QUICK = 0.1  # seconds; such cases of one program run together
SLOWER = 10  # a test with sanitizers than without, at most
# They look at the module's file, in which the choice shows.
OF_THE_FILE = {"contract.binary"}


@dataclass
class Run:
    """A test, or some cases of one, that comes past a fault."""
    test: object
    cases: list = field(default_factory=list)
    seconds: float = 0.0
    slowest: float = 0.0  # of the cases

    def add(self, case, seconds):
        self.cases.append(case)
        self.seconds += seconds
        self.slowest = max(self.slowest, seconds)
        return self


class SwitchedBuild:
    def __init__(self, tree, folder, options=()):
        self.original, self.tree = tree, folder / "tree"
        # Made once, so nothing is gained by compiling its files one by one.
        self.build = Build(self.tree, folder / "build", [*options, "-DQUILL_UNITY=ON"])
        self.chosen, self.runs = set(), []
        self.slower = 1  # than what was measured
        self.passes = set()  # what was seen to pass without a fault, if it was not measured

    def make(self, faults, scripts, jobs, measured):
        """Measures the tests, but for those that another build has measured: its runs."""
        made = self.tree.parent / "made"  # of what, when it is complete
        wanted = {"sources": digest(self.original / "src"),
                  "tests": digest(self.original / "tests", {"mutation"}),
                  "faults": [fault.number for fault in faults]}
        known = json.loads(made.read_text("utf-8")) if made.exists() else {}
        if known.get("of") != wanted:
            shutil.rmtree(self.tree, ignore_errors=True)
            made.unlink(missing_ok=True)
            shutil.copytree(self.original, self.tree, ignore=NOT_COPIED)
            chosen = write_switched(self.tree, faults, lambda: find_errors(self.tree))
            known = {"of": wanted, "chosen": [fault.number for fault in chosen]}
            self.build.make(jobs, TARGETS)
            made.write_text(json.dumps(known), "utf-8")
        self.chosen = set(known["chosen"])
        size = max((fault.number for fault in faults), default=0) + 1
        known = {(test.name, case): (seconds, passed) for test, case, seconds, passed in measured}
        self.slower = SLOWER if known else 1
        for test in find_tests(self.build, scripts):
            if test.name in OF_THE_FILE:
                continue
            for case in test.cases():
                if (test.name, case) in known:
                    self.runs.append((test, case, *known[test.name, case]))
                else:
                    self.measure(test, case, size)

    def measure(self, test, case, size):
        """What a case takes without a fault, and which faults it comes past."""
        with tempfile.NamedTemporaryFile(dir=self.tree.parent) as passed:
            passed.truncate(size)
            before, began = processor_time(), time.monotonic()
            noticed = test.notices(self.build.folder / test.product, [case],
                                   {"QUILL_PASSED": passed.name})
            if noticed:
                raise TestError(f"{noticed} fails without a fault")
            seconds = max(processor_time() - before, (time.monotonic() - began) / 4)
            self.runs.append((test, case, seconds, passed.read()))

    def in_order(self, fault):
        """The runs that come past a fault, the quickest first."""
        together, alone = {}, []
        for test, case, seconds, passed in self.runs:
            if not passed[fault.number]:
                continue
            if seconds > QUICK or not case:
                alone.append(Run(test).add(case, seconds))
            else:
                together.setdefault(test.name, Run(test)).add(case, seconds)
        return sorted([*together.values(), *alone], key=lambda run: run.seconds)

    def try_fault(self, fault, stage):
        """The first test of a stage that fails with the fault, or None."""
        for run in self.in_order(fault):
            if not stage.has(run.slowest):
                continue
            noticed = self.notices(run, {"QUILL_FAULT": str(fault.number)})
            if noticed:
                self.check_without(run)
                return noticed
        return None

    def notices(self, run, chosen):
        return run.test.notices(self.build.folder / run.test.product, run.cases, chosen,
                                run.seconds * self.slower)

    def check_without(self, run):
        """A test that was not measured here was not seen to pass either."""
        key = (run.test.name, *run.cases)
        if self.slower != 1 and key not in self.passes:
            noticed = self.notices(run, {})
            if noticed:
                raise TestError(f"{noticed} fails without a fault")
            self.passes.add(key)

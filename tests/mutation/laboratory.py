"""Tries faults: the nearest tests first, until one notices."""

import shutil
import threading
from dataclasses import dataclass

from building import MODULE, NOT_COPIED, UNIT_TESTS, Build, Trial
from choosing import SwitchedBuild
from testing import TARGETS, TestError, find_tests, measure, naming_tests, near_tests

QUICK = 0.3  # seconds; slower tests come last
FEW = 3  # objects that are compiled anew before the module is tried
SANITIZED = ["-DQUILLCAPTION_SANITIZE=address,undefined"]
COMPILER = "the compiler"


@dataclass(frozen=True)
class Stage:
    """Which tests a fault is tried with, in which build."""
    name: str
    build: str
    seen_by: str  # as in a list of faults
    least: float = 0  # seconds that a test takes
    most: float = float("inf")

    def has(self, seconds):
        return self.least < seconds <= self.most


# A fault goes from one to the next until it is noticed. What a test takes is not twice the same.
STAGES = [Stage("quick tests", "plain", "tests", 0, QUICK),
          Stage("slow tests", "plain", "tests", QUICK / 2),
          Stage("sanitizer", "sanitized", "sanitizer")]


class Builds:
    """One way to build, with what is built when a fault first needs it."""

    def __init__(self, name, options, tree, folder):
        self.build = Build(tree, folder / name, options)
        self.switched = SwitchedBuild(tree, folder / f"{name}-switched", options)
        self.tests = []


class Laboratory:
    """A copy of the tree and its builds, shared by all that try faults in it."""

    def __init__(self, root, folder, scripts, jobs):
        self.root, self.folder, self.scripts, self.jobs = root, folder, scripts, jobs
        self.tree = folder / "tree"
        self.builds = {name: Builds(name, options, self.tree, folder)
                       for name, options in (("plain", []), ("sanitized", SANITIZED))}
        self.lock = threading.Lock()

    def prepare(self):
        shutil.rmtree(self.tree, ignore_errors=True)
        shutil.copytree(self.root, self.tree, ignore=NOT_COPIED)

    def prepare_switched(self, stage, faults):
        """One build for all of these that can be chosen when a test is started."""
        switched = self.builds[stage.build].switched
        if any(fault.form and fault.number not in switched.chosen for fault in faults):
            plain = self.builds["plain"].switched
            if not plain.runs:
                plain.make(faults, self.scripts, self.jobs, [])
            if switched is not plain:
                switched.make(faults, self.scripts, self.jobs, plain.runs)

    def ready(self, builds):
        """Builds and measures when a fault first needs it."""
        with self.lock:
            if not builds.tests:
                builds.build.make(self.jobs, TARGETS)
                builds.tests = measure(find_tests(builds.build, self.scripts))

    def can_be_chosen(self, fault, stage):
        return fault.number in self.builds[stage.build].switched.chosen

    def try_fault(self, fault, stage, worker):
        """Who noticed the fault, or None. No two workers have the same name."""
        builds = self.builds[stage.build]
        if self.can_be_chosen(fault, stage):
            return builds.switched.try_fault(fault, stage)
        self.ready(builds)
        noticed = self.first_to_notice(Trial(builds.build, fault, self.folder / worker), stage,
                                       builds.tests)
        if fault.at is None and (noticed == COMPILER) != (fault.seen_by == "compiler"):
            if noticed == COMPILER:
                raise TestError(f"fault {fault.number} does not compile")
            if noticed is not None:
                raise TestError(f"fault {fault.number} compiles; seen_by is wrong")
        return noticed

    def first_to_notice(self, trial, stage, tests):
        for test, without in self.in_order(trial, stage, tests):
            product = trial.product(test.product, without)
            if product is None and without:
                continue  # the fault may need more of the sources
            if product is None:
                return COMPILER
            noticed = test.notices(product)
            if noticed:
                return noticed
        return None

    def in_order(self, trial, stage, tests):
        """The tests, each with the objects that its program is linked without."""
        near = naming_tests(trial.build, trial.fault).union(near_tests(trial.build, trial.fault.file))
        if near and not stage.least:
            units = next(test for test in tests if test.product == UNIT_TESTS)
            yield units, trial.build.not_for(near)
        # To compile many tests of classes takes longer than to run all that needs the module only.
        modules_first = len(trial.touched(UNIT_TESTS)) > len(trial.touched(MODULE)) + FEW
        for test in sorted((test for test in tests if stage.has(test.seconds)), key=lambda test: (
                test.seconds > QUICK or (test.product == MODULE) != modules_first,
                test.seconds > QUICK)):
            yield test, frozenset()

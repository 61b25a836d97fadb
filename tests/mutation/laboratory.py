"""Tries faults: the nearest tests first, until one notices."""

import shutil
import threading

from building import MODULE, NOT_COPIED, UNIT_TESTS, Build, Trial
from testing import TARGETS, TestError, find_tests, measure, near_tests

QUICK = 1  # seconds; slower tests come last
FEW = 3  # objects that are compiled anew before the module is tried


class Laboratory:
    """A copy of the tree and its builds, shared by all that try faults in it."""

    def __init__(self, root, folder, scripts, jobs):
        self.root, self.folder, self.scripts, self.jobs = root, folder, scripts, jobs
        self.tree = folder / "tree"
        self.plain = Build(self.tree, folder / "plain")
        self.sanitized = Build(self.tree, folder / "sanitized",
                               ["-DQUILLCAPTION_SANITIZE=address,undefined"])
        self.tests = {}
        self.lock = threading.Lock()

    def prepare(self):
        shutil.rmtree(self.tree, ignore_errors=True)
        shutil.copytree(self.root, self.tree, ignore=NOT_COPIED)
        self.ready(self.plain)

    def ready(self, build):
        """Builds and measures when a fault first needs it."""
        with self.lock:
            if build not in self.tests:
                build.make(self.jobs, TARGETS)
                self.tests[build] = measure(find_tests(build, self.scripts))
        return build

    def try_fault(self, fault, worker):
        """Who noticed the fault, or None. No two workers have the same name."""
        build = self.ready(self.sanitized if fault.seen_by == "sanitizer" else self.plain)
        noticed = self.first_to_notice(Trial(build, fault, self.folder / worker))
        if (noticed == "the compiler") != (fault.seen_by == "compiler"):
            if noticed == "the compiler":
                raise TestError(f"fault {fault.number} does not compile")
            if noticed is not None:
                raise TestError(f"fault {fault.number} compiles; seen_by is wrong")
        return noticed

    def first_to_notice(self, trial):
        for test, without in self.in_order(trial):
            product = trial.product(test.product, without)
            if product is None and without:
                continue  # the fault may need more of the sources
            if product is None:
                return "the compiler"
            noticed = test.notices(product)
            if noticed:
                return noticed
        return None

    def in_order(self, trial):
        """The tests, each with the objects that its program is linked without."""
        tests = self.tests[trial.build]
        near = near_tests(trial.build, trial.fault.file)
        if near:
            units = next(test for test in tests if test.product == UNIT_TESTS)
            yield units, trial.build.not_for(near)
        # To compile many tests of classes takes longer than to run all that needs the module only.
        modules_first = len(trial.touched(UNIT_TESTS)) > len(trial.touched(MODULE)) + FEW
        for test in sorted(tests, key=lambda test: (
                test.seconds > QUICK or (test.product == MODULE) != modules_first,
                test.seconds > QUICK)):
            yield test, frozenset()

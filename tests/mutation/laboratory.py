"""A copy of the tree in which faults are tried."""

import json
import os
import pathlib
import re
import resource
import shutil
import subprocess
import time

from faults import apply

# What does not touch the module, or only through things that are not built here.
SKIPPED_TESTS = re.compile(r"^(model\.selftest|contract\.refusals|tools\b.*|quill\b.*|bench\b.*)$")
NOT_COPIED = shutil.ignore_patterns("build", ".git", "__pycache__")
ADDRESS_SPACE = 3 << 30  # a fault may make a test eat all memory
MODEL_SCRIPTS = "2000"


class LaboratoryError(Exception):
    """The copy cannot be built, or its tests fail without a fault."""


class Test:
    def __init__(self, name, command, folder, environment):
        self.name, self.command, self.folder = name, command, folder
        self.environment = environment
        self.seconds = 60.0  # how long it takes without a fault; a guess until measured


class Build:
    """One build folder of the copy, with its tests."""

    def __init__(self, tree, name, options):
        self.tree, self.folder = tree, tree.parent / name
        self.options = options
        self.tests = []

    def configure(self):
        self.must("cmake", "-S", self.tree, "-B", self.folder, "-G", "Ninja",
                  f"-DCMAKE_TOOLCHAIN_FILE={self.tree}/cmake/toolchains/i386.cmake",
                  "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
                  "-DCMAKE_C_FLAGS_DEBUG=-O0", "-DQUILLCAPTION_TOOLS=OFF", *self.options)

    def must(self, *command):
        done = subprocess.run(list(map(str, command)), capture_output=True, text=True)
        if done.returncode != 0:
            raise LaboratoryError(f"this failed without a fault: {' '.join(map(str, command))}\n"
                                  f"{done.stdout[-3000:]}{done.stderr[-3000:]}")
        return done.stdout

    def compiles(self, *targets):
        command = ["ninja", "-C", str(self.folder), "-j", "1", *targets]
        return subprocess.run(command, capture_output=True).returncode == 0

    def find_tests(self, scripts):
        listed = json.loads(self.must("ctest", "--test-dir", self.folder,
                                      "--show-only=json-v1"))
        for entry in listed["tests"]:
            if "command" not in entry or SKIPPED_TESTS.match(entry["name"]):
                continue
            properties = {item["name"]: item["value"] for item in entry.get("properties", [])}
            command = [str(scripts) if word == MODEL_SCRIPTS else word
                       for word in entry["command"]]
            environment = dict(item.split("=", 1) for item in properties.get("ENVIRONMENT", []))
            if "QUILLCAPTION_INSTRUMENTED" in environment:
                # Without optimisation the module asks for more than the product may.
                environment["QUILLCAPTION_INSTRUMENTED"] = "ON"
            self.tests.append(Test(entry["name"], command,
                                   properties.get("WORKING_DIRECTORY", str(self.folder)),
                                   environment))
        if not self.tests:
            raise LaboratoryError("the copy has no tests")

    def measure(self):
        """Runs all tests without a fault; afterwards the quickest come first."""
        for test in self.tests:
            began = time.monotonic()
            noticed = self.notices(test, limit=1200)
            if noticed:
                raise LaboratoryError(f"{noticed} fails without a fault")
            test.seconds = time.monotonic() - began
        self.tests.sort(key=lambda test: test.seconds)

    def first_to_notice(self):
        """The first test that fails now, or None."""
        for test in self.tests:
            if not self.compiles(*self.targets_of(test)):
                return "the compiler"
            noticed = self.notices(test, limit=20 + 10 * test.seconds)
            if noticed:
                return noticed
        return None

    def targets_of(self, test):
        """The files of this build that a test's command names, as ninja knows them."""
        inside = [word for word in test.command if word.startswith(f"{self.folder}/")]
        return [str(pathlib.Path(word).relative_to(self.folder)) for word in inside] or ["all"]

    def notices(self, test, limit):
        """What failed, in words, or None when the test passes."""
        environment = {**os.environ, "GTEST_FAIL_FAST": "1", "PYTHONDONTWRITEBYTECODE": "1",
                       **test.environment}
        limits = None if self.options else limit_memory  # a sanitizer reserves all there is
        with subprocess.Popen(test.command, cwd=test.folder, env=environment, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, errors="replace", preexec_fn=limits,
                              start_new_session=True) as process:
            try:
                output, _ = process.communicate(timeout=limit)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, 9)
                process.communicate()
                return f"{test.name} (it did not end)"
        if process.returncode == 0:
            return None
        case = re.search(r"^\[  FAILED  \] (\S+)|^\[ RUN      \] (\S+)(?![\s\S]*\[ RUN )", output,
                         re.MULTILINE)
        detail = (case[1] or case[2]).rstrip(",") if case else ""
        if process.returncode < 0:
            detail += f" (signal {-process.returncode})"
        return f"{test.name} {detail}".strip()


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (ADDRESS_SPACE, ADDRESS_SPACE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Laboratory:
    def __init__(self, root, folder, scripts):
        self.root, self.folder, self.scripts = root, folder, scripts
        self.tree = folder / "tree"
        self.plain = Build(self.tree, "plain", [])
        self.sanitized = Build(self.tree, "sanitized",
                               ["-DQUILLCAPTION_SANITIZE=address,undefined"])
        self.prepared = set()

    def prepare(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        shutil.copytree(self.root, self.tree, ignore=NOT_COPIED)
        self.ready(self.plain)

    def ready(self, build):
        """Builds and measures when a fault first needs it."""
        if build not in self.prepared:
            build.configure()
            build.must("ninja", "-C", build.folder, "-j", "1")
            build.find_tests(self.scripts)
            build.measure()
            self.prepared.add(build)
        return build

    def try_fault(self, fault):
        """Who noticed the fault, or None."""
        build = self.ready(self.sanitized if fault.seen_by == "sanitizer" else self.plain)
        path = self.tree / "src" / fault.file
        original = path.read_text("utf-8")
        path.write_text(apply(fault, original), "utf-8")
        try:
            noticed = build.first_to_notice()
        finally:
            path.write_text(original, "utf-8")
        if (noticed == "the compiler") != (fault.seen_by == "compiler"):
            if noticed == "the compiler":
                raise LaboratoryError(f"fault {fault.number} does not compile")
            if noticed is not None:
                raise LaboratoryError(f"fault {fault.number} compiles; seen_by is wrong")
        return noticed

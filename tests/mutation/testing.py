"""The tests that look at the module, and how one of them is run on a fault."""

import copy
import json
import os
import pathlib
import re
import resource
import signal
import subprocess
import tempfile
import time

from building import MODULE, PRODUCTS, must

KEPT = re.compile(r"^(unit_tests|memory_tests|arena_tests|host_(?!case_thorough)\w+"
                  r"|contract\.(plain_\w+|binary)|model\.(compare|samples|failing)|examples\.host)$")
# What these tests need, in the words of the build.
TARGETS = ("quillcaption", "tests/unit/all", "tests/host/all", "script_player", "failing_player",
           "examples/all", "tests/examples/all")
FEW = 3  # tests that name the same
SLOW = 0.1  # seconds that a quick case does not take
ADDRESS_SPACE = 3 << 30  # a fault may make a test eat all memory


class TestError(Exception):
    """The tests fail without a fault."""


class Test:
    """One test of a build, which plays the build's module or another one."""

    def __init__(self, name, command, folder, environment, build):
        self.name, self.command, self.folder = name, command, folder
        self.environment, self.build = environment, build
        self.seconds = 60.0  # processor time without a fault; a guess until measured
        self.took = []  # by the cases of a GoogleTest program that passed, in seconds
        self.filter = ""  # the cases of a GoogleTest program, if not all
        # A program that has the sources in it, or the module.
        self.product = next((product for product in PRODUCTS
                             if command[0] == str(build.folder / product)), MODULE)

    def cases(self):
        """The names of a GoogleTest program's cases, those that differ in a parameter only under one
        name; of another test, one empty name."""
        if len(self.command) > 1:
            return [""]
        names, suite = [], ""
        for line in must(*self.command, "--gtest_list_tests").splitlines():
            name = line.partition("#")[0].rstrip()
            if name.endswith(".") and not name[0].isspace():
                suite = name
            elif suite:
                names.append(re.sub(r"/[^/]*$", "/*", suite + name.strip()))
        return list(dict.fromkeys(names))

    def notices(self, product, cases=(), also=(), seconds=None):
        """What failed with this product, in words, or None when the test passes.

        Only these cases of a GoogleTest program, if there are any; with these variables besides;
        and seconds is what it takes without a fault."""
        seconds = self.seconds if seconds is None else seconds
        original = str(self.build.folder / self.product)
        command = [str(product) if word == original else word for word in self.command]
        environment = {**os.environ, "GTEST_FAIL_FAST": "1", "PYTHONDONTWRITEBYTECODE": "1",
                       **self.environment, **dict(also)}
        if any(cases) or self.filter:
            environment["GTEST_FILTER"] = ":".join(cases) or self.filter
        if self.product == MODULE:
            environment["QUILLCAPTION_MODULE"] = str(product)
        with tempfile.TemporaryFile() as output:
            with subprocess.Popen(command, cwd=self.folder, env=environment,
                                  stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                  preexec_fn=lambda: self.limit(seconds),
                                  start_new_session=True) as process:
                try:
                    code = process.wait(60 + 30 * seconds)
                except subprocess.TimeoutExpired:
                    code = -signal.SIGXCPU
                finally:
                    end_all(process)
            output.seek(0)
            return self.verdict(code, output.read().decode("utf-8", "replace"))

    def limit(self, seconds):
        processor = int(3 + 5 * seconds)
        resource.setrlimit(resource.RLIMIT_CPU, (processor, processor))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if not self.build.is_sanitized():  # a sanitizer reserves all there is
            resource.setrlimit(resource.RLIMIT_AS, (ADDRESS_SPACE, ADDRESS_SPACE))

    def verdict(self, code, output):
        if code == 0:
            self.took = [(case, int(time) / 1000) for case, time in
                         re.findall(r"^\[       OK \] ([^\s,]+).* \((\d+) ms\)$", output, re.MULTILINE)]
            return None
        cases = (re.findall(r"^\[  FAILED  \] ([^\s,]+)", output, re.MULTILINE)
                 or re.findall(r"^\[ RUN      \] (\S+)", output, re.MULTILINE)[-1:])
        detail = cases[0] if cases else ""
        if code in (-signal.SIGXCPU, -signal.SIGKILL):
            detail += " (it did not end)"
        elif code < 0:
            detail += f" (signal {-code})"
        return f"{self.name} {detail}".strip()


def end_all(process):
    """Nothing that a test has started lives on."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass


def find_tests(build, scripts):
    listed = json.loads(must("ctest", "--test-dir", build.folder, "--show-only=json-v1"))
    tests = []
    for entry in listed["tests"]:
        if "command" not in entry or not KEPT.match(entry["name"]):
            continue
        properties = {item["name"]: item["value"] for item in entry.get("properties", [])}
        command = list(entry["command"])
        if "--count" in command:
            count = command.index("--count") + 1
            command[count] = str(min(int(command[count]), scripts))
        environment = dict(item.split("=", 1) for item in properties.get("ENVIRONMENT", []))
        if "QUILLCAPTION_INSTRUMENTED" in environment:
            # Without optimisation the module asks for more than the product may.
            environment["QUILLCAPTION_INSTRUMENTED"] = "ON"
        tests.append(Test(entry["name"], command,
                          properties.get("WORKING_DIRECTORY", str(build.folder)), environment,
                          build))
    if not tests:
        raise TestError("the copy has no tests")
    return tests


def measure(tests):
    """Runs all tests without a fault; afterwards the quickest come first. A program with slow cases
    becomes two tests, the slow ones by themselves."""
    measured = []
    for test in tests:
        run(test)
        slow = [case for case, took in test.took if took > SLOW]
        if slow and test.seconds > 1:
            rest = copy.copy(test)
            test.filter, rest.filter = ":".join(slow), "-" + ":".join(slow)
            run(rest)
            measured.append(rest)
        measured.append(test)
    return sorted(measured, key=lambda test: test.seconds)


def run(test):
    before, began = processor_time(), time.monotonic()
    noticed = test.notices(test.build.folder / test.product)
    if noticed:
        raise TestError(f"{noticed} fails without a fault")
    test.seconds = max(processor_time() - before, (time.monotonic() - began) / 4)


def processor_time():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def naming_tests(build, fault):
    """The few tests of classes that name what stands on a fault's lines."""
    near = set()
    for word in set(re.findall(r"[A-Za-z_]\w{3,}", fault.before or fault.old)):
        naming = {made for made in build.unit_tests() if word in build.words[made]}
        if len(naming) <= FEW:
            near |= naming
    return near


def near_tests(build, file):
    """The tests of classes whose names have most of their first letters in common with a file's."""
    stem = pathlib.Path(file).stem
    common = {made: len(os.path.commonprefix([stem, pathlib.Path(made).name]))
              for made in sorted(build.unit_tests())}
    longest = max(common.values())
    if longest < min(len(stem), 4):
        return []
    return [made for made, length in common.items() if length == longest]

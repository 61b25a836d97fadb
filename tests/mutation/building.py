"""A build of a copy of the tree, and what of it has to be made anew when a source changes."""

import json
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

from faults import apply

MODULE = "quillcaption.so"
UNIT_TESTS = "tests/unit/unit_tests"
# What the sources are linked into.
PRODUCTS = (MODULE, UNIT_TESTS, "tests/unit/memory_tests", "tests/unit/arena_tests")
NOT_COPIED = shutil.ignore_patterns("build", ".git", "__pycache__")
# Read by one file only, into which it puts an object of its own.
NOT_PRECOMPILED = {"iostream"}


class BuildError(Exception):
    """The copy cannot be built."""


def must(*command):
    done = subprocess.run(list(map(str, command)), capture_output=True, text=True)
    if done.returncode != 0:
        raise BuildError(f"this failed without a fault: {' '.join(map(str, command))}\n"
                         f"{done.stdout[-3000:]}{done.stderr[-3000:]}")
    return done.stdout


def configure(tree, folder, options):
    must("cmake", "-S", tree, "-B", folder, "-G", "Ninja",
         f"-DCMAKE_TOOLCHAIN_FILE={tree}/cmake/toolchains/i386.cmake",
         "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DCMAKE_C_FLAGS_DEBUG=-O0",
         "-DQUILLCAPTION_TOOLS=OFF", "-DQUILLCAPTION_BENCH=OFF",
         f"-DPython3_EXECUTABLE={sys.executable}", *options)


def standard_headers(sources):
    """A file that includes what the sources include of the standard library."""
    names = {name for path in sources.rglob("*.[ch]*")
             for name in re.findall(r"^#include <(\w+)>$", path.read_text("utf-8"), re.MULTILINE)}
    return "".join(f"#include <{name}>\n" for name in sorted(names - NOT_PRECOMPILED))


class Build:
    """A build folder without any fault. Nothing in it changes once it is made."""

    def __init__(self, tree, folder, options=()):
        self.tree, self.folder, self.options = tree, folder, list(options)
        self.compile, self.link, self.read_by, self.left_out = {}, {}, {}, {}
        self.words = {}  # that stand in a test of classes, by its object

    def is_sanitized(self):
        return any("SANITIZE" in option for option in self.options)

    def make(self, jobs, targets):
        configure(self.tree, self.folder, self.options)
        must("ninja", "-C", self.folder, "-j", str(jobs), *targets)
        for product in PRODUCTS:
            words = shlex.split(must("ninja", "-C", self.folder, "-t", "commands", "-s", product))
            words = words[words.index("&&") + 1:]
            self.link[product] = words[:words.index("&&")]
        linked = {word for words in self.link.values() for word in words if word.endswith(".o")}
        for entry in json.loads((self.folder / "compile_commands.json").read_text("utf-8")):
            words = shlex.split(entry["command"])
            made = words[words.index("-o") + 1]
            if made in linked:
                self.compile[made] = words
                if made.endswith("_test.cpp.o"):
                    self.words[made] = set(re.findall(r"\w+", pathlib.Path(entry["file"]).read_text("utf-8")))
        # The linker takes out of an archive what is needed: see not_for.
        must("ar", "--thin", "-crs", self.folder / "sources.a",
             *(self.folder / word for word in sorted(self.sources())))
        self.read_dependencies()
        self.precompile()

    def read_dependencies(self):
        """Which objects are compiled from which files of src/."""
        sources, made = self.tree / "src", None
        for line in must("ninja", "-C", self.folder, "-t", "deps").splitlines():
            if line and not line[0].isspace():
                made = line.split(":")[0]
            elif line and made in self.compile:
                path = pathlib.Path(self.folder, line.strip()).resolve()
                if path.is_relative_to(sources):
                    name = str(path.relative_to(sources))
                    self.read_by.setdefault(name, []).append(made)

    def precompile(self):
        """The standard headers that the sources include, read once instead of once a fault."""
        header = self.folder / "standard.h"
        header.write_text(standard_headers(self.tree / "src"), "utf-8")
        words = next(words for made, words in self.compile.items() if made.startswith("src/"))
        words = words[:words.index("-o")]
        must(*words, "-x", "c++-header", "-o", f"{header}.gch", header)
        for made, words in self.compile.items():
            if made.startswith("src/"):
                words[words.index("-o"):words.index("-o")] = ["-include", str(header)]

    def sources(self):
        """The objects of src/."""
        return {word for word in self.link[UNIT_TESTS] if word.startswith("src/")}

    def unit_tests(self):
        """The objects that are tests of classes and nothing else."""
        return {word for word in self.link[UNIT_TESTS] if word.endswith("_test.cpp.o")}

    def not_for(self, tests):
        """The objects of the program of unit tests that some of its tests do without."""
        key = frozenset(tests)
        if key not in self.left_out:
            others = self.unit_tests() - key
            sources = self.sources()
            words = [word for word in self.link[UNIT_TESTS] if word not in others | sources]
            words[words.index("-o") + 1] = str(self.folder / "needed")
            taken = subprocess.run([*words, "sources.a", "-Wl,--trace"], cwd=self.folder, text=True,
                                   capture_output=True).stdout
            needed = {word for word in sources if re.search(rf"\b{re.escape(word)}\b", taken)}
            self.left_out[key] = frozenset(others | (sources - needed))
        return self.left_out[key]


class Trial:
    """A fault beside a build: what reads the changed file is compiled anew, in a folder of the
    trial's own, and linked with the rest of the build."""

    def __init__(self, build, fault, folder):
        self.build, self.fault, self.folder = build, fault, folder
        shutil.rmtree(folder, ignore_errors=True)
        changed = folder / "src" / fault.file
        changed.parent.mkdir(parents=True)
        changed.write_text(apply(fault, (build.tree / "src" / fault.file).read_text("utf-8")),
                           "utf-8")
        self.objects, self.products = {}, {}

    def reads(self, made):
        return made in self.build.read_by.get(self.fault.file, [])

    def touched(self, product):
        return [word for word in self.build.link[product] if self.reads(word)]

    def product(self, name, without=frozenset()):
        """The path of a product with the fault in it, linked without some of its objects; None
        when it does not compile."""
        key = (name, frozenset(without))
        if key not in self.products:
            self.products[key] = self.make(name, without)
        return self.products[key]

    def make(self, name, without):
        if self.fault.file not in self.build.read_by:
            return self.make_otherwise(name)
        if not self.touched(name):
            return self.build.folder / name
        words = [word for word in self.build.link[name] if word not in without]
        for made in filter(self.reads, words):
            if made not in self.objects and not self.compiles(made):
                return None
        target = self.folder / f"{len(self.products)}-{pathlib.Path(name).name}"
        words = [str(self.objects.get(word, word)) for word in words]
        words[words.index("-o") + 1] = str(target)
        return target if self.runs(words) else None

    def compiles(self, made):
        words = list(self.build.compile[made])
        original = str(self.build.tree / "src" / self.fault.file)
        words = [str(self.folder / "src" / self.fault.file) if word == original else word
                 for word in words]
        target = self.folder / f"{len(self.objects)}.o"
        words[words.index("-o") + 1] = str(target)
        first = next(at for at, word in enumerate(words) if word.startswith("-"))
        words.insert(first, f"-I{self.folder / 'src'}")  # in front of the build's own
        self.objects[made] = target
        return self.runs(words)

    def make_otherwise(self, name):
        """For a file that no compiler reads, such as the export map: another tree's module."""
        if name != MODULE:
            return self.build.folder / name
        tree, folder = self.folder / "tree", self.folder / "build"
        shutil.copytree(self.build.tree, tree, ignore=NOT_COPIED)
        shutil.copy(self.folder / "src" / self.fault.file, tree / "src" / self.fault.file)
        configure(tree, folder, self.build.options)
        made = self.runs(["ninja", "-C", str(folder), "-j", "1", name])
        return folder / name if made else None

    def runs(self, words):
        return subprocess.run(words, cwd=self.build.folder, capture_output=True).returncode == 0

"""The module's file, as a loader sees it, against golden lists.

QUILLCAPTION_MODULE is the file, QUILLCAPTION_READELF binutils' readelf, QUILLCAPTION_TARGET the name
of the target's list in golden/. QUILLCAPTION_INSTRUMENTED is set for a module built with sanitizers
or for coverage, which bring libraries and symbols of their own, and for the guard, which has some
too.
"""

import os
import pathlib
import re
import subprocess
import unittest

MODULE = os.environ["QUILLCAPTION_MODULE"]
READELF = os.environ["QUILLCAPTION_READELF"]
TARGET = os.environ["QUILLCAPTION_TARGET"]
INSTRUMENTED = bool(os.environ.get("QUILLCAPTION_INSTRUMENTED"))
GOLDEN = pathlib.Path(__file__).parent.parent / "golden"


def golden(name):
    """The lines of a golden file, cut into words."""
    lines = (GOLDEN / f"{name}.txt").read_text().splitlines()
    return [line.split() for line in lines if line and not line.startswith("#")]


def readelf(*options):
    result = subprocess.run([READELF, "--wide", *options, MODULE], check=True,
                            stdout=subprocess.PIPE, env={**os.environ, "LC_ALL": "C"})
    return result.stdout.decode()


def header(field):
    return re.search(rf"^ *{field}: +(.*?) *$", readelf("--file-header"), re.MULTILINE).group(1)


def symbols(option):
    """The rows of a symbol table: value, size, type, bind, visibility, section, name."""
    row = r"^ *\d+: ([0-9a-f]+) +(\w+) (\w+) +(\w+) +(\w+) +(?:\[.*\] +)?(\w+) (\S*)"
    return re.findall(row, readelf(option), re.MULTILINE)


def section_names():
    """By number, which readelf writes as text."""
    return dict(re.findall(r"^ *\[ *(\d+)\] (\S+)", readelf("--section-headers"), re.MULTILINE))


def dynamic(tag):
    """The values of all entries of a kind in the dynamic section."""
    return re.findall(rf"^ *0x[0-9a-f]+ \({tag}\) +(.*?) *$", readelf("--dynamic"), re.MULTILINE)


def version(text):
    return [int(number) for number in text.split(".")]


class Exports(unittest.TestCase):
    def exported(self):
        # Local rows, which ARM's linker makes for sections, are seen by nobody.
        return [row for row in symbols("--dyn-syms") if row[5] != "UND" and row[3] != "LOCAL"]

    def test_are_exactly_these_eight(self):
        found = sorted((kind, size if kind == "OBJECT" else "-", name)
                       for _, size, kind, _, _, _, name in self.exported())
        self.assertEqual(found, sorted(tuple(words) for words in golden("exports")))
        self.assertEqual(len(found), 8)

    def test_are_ordinary_global_symbols(self):
        for _, _, _, bind, visibility, _, name in self.exported():
            self.assertEqual((bind, visibility), ("GLOBAL", "DEFAULT"), name)

    def test_no_symbol_is_unique_in_the_process(self):
        """A GNU-unique symbol would keep the module mapped after dlclose."""
        rows = symbols("--syms")
        self.assertGreater(len(rows), 8)
        self.assertEqual([row[6] for row in rows if row[3] == "UNIQUE"], [])

    def test_functions_and_objects_lie_where_they_belong(self):
        """Functions in code; the objects in memory that is read-only once relocated."""
        sections = section_names()
        for _, _, kind, _, _, section, name in self.exported():
            wanted = ".text" if kind == "FUNC" else ".data.rel.ro"
            self.assertEqual(sections[section], wanted, name)


@unittest.skipIf("guard" in os.path.basename(MODULE), "the guard locks what its calls share")
class State(unittest.TestCase):
    def test_no_function_has_a_variable_that_outlives_its_call(self):
        """Two parsers at once would share it. The compiler begins the names of such variables, and
        of what says that they are made, like this."""
        sections = section_names()
        rows = [row for row in symbols("--syms") if sections.get(row[5]) in (".bss", ".data")]
        self.assertIn("live_handles", "".join(row[6] for row in rows))
        self.assertEqual([row[6] for row in rows if re.match("_ZZ|_ZGVZ", row[6])], [])


class File(unittest.TestCase):
    def test_is_a_shared_object_for_the_target(self):
        machine = " ".join(dict((words[0], words[1:]) for words in golden(TARGET))["machine"])
        self.assertEqual(header("Class"), "ELF32")
        self.assertEqual(header("Machine"), machine)
        self.assertIn("DYN", header("Type"))

    def test_has_no_name_and_no_search_path_of_its_own(self):
        for tag in ("SONAME", "RPATH", "RUNPATH"):
            self.assertEqual(dynamic(tag), [], tag)

    def test_is_bound_at_load_time_and_read_only_then(self):
        self.assertIn("BIND_NOW", " ".join(dynamic("FLAGS")) + " ".join(dynamic("BIND_NOW")))
        self.assertIn("NOW", " ".join(dynamic("FLAGS_1")))
        self.assertIn("GNU_RELRO", readelf("--program-headers"))

    def test_code_is_not_relocated_and_data_not_executed(self):
        self.assertEqual(dynamic("TEXTREL"), [])
        self.assertNotIn("TEXTREL", " ".join(dynamic("FLAGS")))
        rows = re.findall(r"^ +(\w+) +(?:0x[0-9a-f]+ +){5}([RWE ]{3}) ",
                          readelf("--program-headers"), re.MULTILINE)
        flags = [(kind, flag.replace(" ", "")) for kind, flag in rows]
        self.assertIn(("GNU_STACK", "RW"), flags)
        self.assertIn("RE", [flag for _, flag in flags])
        self.assertEqual([one for one in flags if "W" in one[1] and "E" in one[1]], [])


@unittest.skipIf(INSTRUMENTED, "the module is instrumented")
class Requirements(unittest.TestCase):
    def test_libraries_are_those_of_every_board(self):
        allowed = {words[0] for words in golden("needed")}
        needed = set(re.findall(r"\[(.*?)\]", " ".join(dynamic("NEEDED"))))
        self.assertIn("libc.so.6", needed)
        self.assertEqual(needed - allowed, set())

    def test_versions_are_not_higher_than_they_were(self):
        allowed = {words[0]: words[1] for words in golden(TARGET) if words[0] != "machine"}
        asked = re.findall(r"@(\w+?)_([\d.]+)", readelf("--dyn-syms"))
        self.assertIn("GLIBC", {interface for interface, _ in asked})
        for interface, number in sorted(set(asked)):
            self.assertIn(interface, allowed)
            self.assertLessEqual(version(number), version(allowed[interface]), interface)

    def test_streams_are_made_by_the_module(self):
        """Older libraries make std::cout only for those that ask."""
        names = {row[6].split("@")[0] for row in symbols("--dyn-syms") if row[5] == "UND"}
        self.assertIn("_ZNSt8ios_base4InitC1Ev", names)

    def test_nothing_is_weak_but_the_compilers_own(self):
        weak = {row[6].split("@")[0] for row in symbols("--dyn-syms") if row[3] == "WEAK"}
        self.assertLessEqual(weak, {"__cxa_finalize", "__gmon_start__", "_ITM_registerTMCloneTable",
                                    "_ITM_deregisterTMCloneTable"})


if __name__ == "__main__":
    unittest.main()

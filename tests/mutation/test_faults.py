"""The listed faults fit the sources, a list that does not is refused, and the nearest tests are found."""

import pathlib
import tempfile
import unittest

from faults import FaultError, apply, make_fault, read_faults
from testing import naming_tests, near_tests

HERE = pathlib.Path(__file__).resolve().parent
SOURCES = HERE.parent.parent / "src"
ENTRY = {"file": "a.h", "old": "int a", "new": "int b", "why": "another name"}

REFUSED = [
    ("int a; int a;", [ENTRY], "occurs 2 times"),
    ("int b;", [ENTRY], "occurs 0 times"),
    ("int a;", [ENTRY | {"new": "int a"}], "changes nothing"),
    ("int a;", [ENTRY | {"seen_by": "nobody"}], "seen_by is one of"),
    ("int a;", [ENTRY | {"line": "1"}], "wants the fields"),
    ("int a;", [ENTRY | {"file": "b.h"}], "src/b.h cannot be read"),
    ("int a;", [], "src/a.h has no fault"),
]


class FaultsTest(unittest.TestCase):
    def test_the_list_fits_the_sources(self):
        self.assertGreater(len(read_faults(HERE / "faults.toml", SOURCES)), 200)

    def test_a_list_that_does_not_fit_is_refused(self):
        for text, entries, reason in REFUSED:
            with self.subTest(reason), tempfile.TemporaryDirectory() as folder:
                sources = pathlib.Path(folder, "src")
                sources.mkdir()
                (sources / "a.h").write_text(text, "utf-8")
                lines = "".join("[[fault]]\n" + "".join(f'{key} = "{value}"\n'
                                                        for key, value in entry.items())
                                for entry in entries) or "fault = []\n"
                path = pathlib.Path(folder, "faults.toml")
                path.write_text(lines, "utf-8")
                with self.assertRaisesRegex(FaultError, reason):
                    read_faults(path, sources)

    def test_a_fault_takes_the_place_of_its_text(self):
        self.assertEqual(apply(make_fault(1, ENTRY), "  int a;\n"), "  int b;\n")


TESTS = ("cue_settings", "cue_text", "tokenizer_tags", "tokenizer_text", "node")


def test_objects(*names):
    return [f"tests/{name}_test.cpp.o" for name in names]


class FakeBuild:
    words = {**dict.fromkeys(test_objects(*TESTS), {"node"}), "tests/node_test.cpp.o": {"node", "kRoot"}}

    def unit_tests(self):
        return test_objects(*TESTS)


class NearTest(unittest.TestCase):
    def test_the_longest_common_front_counts(self):
        for file, expected in [("cue/cue_settings.cpp", ["cue_settings"]),
                               ("payload/tokenizer.h", ["tokenizer_tags", "tokenizer_text"]),
                               ("payload/node_walk.h", ["node"]),
                               ("cue/cue.cpp", ["cue_settings", "cue_text"]),
                               ("api/exports.map", [])]:
            with self.subTest(file):
                near = near_tests(FakeBuild(), file)
                self.assertEqual(near, test_objects(*expected))

    def test_a_name_counts_that_few_tests_know(self):
        for old, expected in [("kRoot = 0", ["node"]), ("node = 0", []), ("kOther = 0", [])]:
            with self.subTest(old):
                fault = make_fault(1, ENTRY | {"old": old})
                self.assertEqual(naming_tests(FakeBuild(), fault), set(test_objects(*expected)))


if __name__ == "__main__":
    unittest.main()

"""Which faults are drawn from a piece of source, and how they are put in to be chosen from."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

from diary import Diary
from faults import FaultError, apply, make_drawn, read_equivalent
from laboratory import STAGES
from score import Score
from switching import render

try:
    import drawing
except ImportError:  # python3-clang is for those who draw
    drawing = None

# A file, and what becomes of its lines: (kind, before, after).
SOURCE = """\
#include <cassert>
enum Kind { kOne = 1 };
int twice(int value);
inline bool is_small(int value) { return value < 99; }
bool inside(int value, const int* end) {
    int sum = value + 7;
    if (value < 10 && end != nullptr) {
        twice(sum);
        sum -= 'a';
    }
    for (; sum > 0; --sum) {
        break;
    }
    static_assert(sizeof(sum) == 4, "an int");
    assert(sum >= 0 && is_small(sum) && twice(sum) == 0);
    return !(sum == 2);
}
"""
DRAWN = [
    ("constant", "enum Kind { kOne = 1 };", "enum Kind { kOne = 2 };"),
    ("static", "int sum = value + 7;", "static int sum = value + 7;"),
    ("operator", "int sum = value + 7;", "int sum = value - 7;"),
    ("constant", "int sum = value + 7;", "int sum = value + 6;"),
    ("operator", "if (value < 10 && end != nullptr) {", "if (value <= 10 && end != nullptr) {"),
    ("operator", "if (value < 10 && end != nullptr) {", "if (value < 10 || end != nullptr) {"),
    ("condition", "if (value < 10 && end != nullptr) {", "if (end != nullptr) {"),
    ("condition", "if (value < 10 && end != nullptr) {", "if (false) {"),
    ("statement", "twice(sum);", ";"),
    ("operator", "sum -= 'a';", "sum += 'a';"),
    ("constant", "sum -= 'a';", "sum -= 'b';"),
    ("operator", "for (; sum > 0; --sum) {", "for (; sum > 0; ++sum) {"),
    ("statement", "break;", ";"),
    ("operator", "return !(sum == 2);", "return (sum == 2);"),
    ("operator", "return !(sum == 2);", "return !(sum != 2);"),
]
# What is between the brackets of a for is no statement; assertions are not in the module.
NOT_DRAWN = [
    ("statement", "for (; sum > 0; --sum) {", "for (; ; --sum) {"),
    ("statement", "assert(sum >= 0 && is_small(sum) && twice(sum) == 0);", ";"),
    ("operator", "inline bool is_small(int value) { return value < 99; }",
     "inline bool is_small(int value) { return value <= 99; }"),
    ("static", 'static_assert(sizeof(sum) == 4, "an int");',
     'static static_assert(sizeof(sum) == 4, "an int");'),
]

TEXT = "if (a < b) {\n    f(a,\n      1);  // one\n}\n"


def place(kind, old, new, form="expression", span_of=None):
    at = TEXT.index(old)
    begin = TEXT.index(span_of or old)
    return kind, (begin, begin + len(span_of or old)), at, old, new, form, 1


PLACES = [
    place("operator", "<", "<=", span_of="a < b"),
    place("condition", "a < b", "true"),
    place("statement", "f(a,\n      1);", ";", "statement"),
    place("constant", "1", "2"),
]
RENDERED = ("if ((QUILL_FAULT(1) ? (a <= b) : QUILL_FAULT(2) ? (true) : (a < b))) {\n"
            "    { if (QUILL_FAULT(3)) {} else { f(a,\n"
            "      (QUILL_FAULT(4) ? (2) : (1))); } }  // one\n}\n")


def faults():
    return [make_drawn(number, "a.cpp", TEXT, one) for number, one in enumerate(PLACES, start=1)]


@unittest.skipUnless(drawing, "python3-clang is not installed")
class DrawingTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "src", "a.cpp")
            path.parent.mkdir()
            path.write_text(SOURCE, "utf-8")
            cls.faults = drawing.all_faults(pathlib.Path(folder))

    def test_what_is_drawn(self):
        drawn = [(fault.kind, fault.before, fault.after) for fault in self.faults]
        for expected in DRAWN:
            self.assertIn(expected, drawn)
        for unexpected in NOT_DRAWN:
            self.assertNotIn(unexpected, drawn)

    def test_what_the_compiler_computes_cannot_be_chosen(self):
        forms = {fault.before: fault.form for fault in self.faults if fault.kind == "constant"}
        self.assertEqual(forms["enum Kind { kOne = 1 };"], "")
        self.assertEqual(forms["int sum = value + 7;"], "expression")

    def test_every_line_comes_before_any_comes_again(self):
        lines = {fault.line for fault in self.faults}
        drawn = drawing.draw(self.faults, len(lines), 5)
        self.assertEqual({fault.line for fault in drawn}, lines)
        self.assertEqual(drawn, drawing.draw(self.faults, len(lines), 5))
        self.assertNotEqual(drawn, drawing.draw(self.faults, len(lines), 6))

    @unittest.skipUnless(shutil.which("git"), "git is not installed")
    def test_changed_lines_are_those_that_differ_from_a_commit(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "src", "a.cpp")
            path.parent.mkdir()
            path.write_text(SOURCE.replace("twice(sum);", "twice(1);"), "utf-8")
            git = ["git", "-C", folder, "-c", "user.name=a", "-c", "user.email=a@example.com"]
            for words in (["init", "-q"], ["add", "src"], ["commit", "-qm", "Begin"]):
                subprocess.run([*git, *words], check=True)
            path.write_text(SOURCE, "utf-8")
            faults = drawing.on_changed_lines(self.faults, pathlib.Path(folder), "HEAD")
            self.assertEqual([fault.before for fault in faults], ["twice(sum);"])
            with self.assertRaisesRegex(FaultError, "nowhere.*takes any commit"):
                drawing.on_changed_lines(self.faults, pathlib.Path(folder), "nowhere")
            subprocess.run([*git, "config", "diff.mnemonicPrefix", "true"], check=True)
            self.assertEqual(drawing.on_changed_lines(self.faults, pathlib.Path(folder), "HEAD"), faults)
            subprocess.run([*git, "rm", "-q", "--cached", "src/a.cpp"], check=True)
            subprocess.run([*git, "commit", "-qm", "Before there was the file"], check=True)
            self.assertEqual(drawing.on_changed_lines(self.faults, pathlib.Path(folder), "HEAD"),
                             self.faults)


class SwitchingTest(unittest.TestCase):
    def test_faults_are_put_in_on_their_lines(self):
        self.assertEqual(render(TEXT, faults()), RENDERED)

    def test_a_fault_by_itself(self):
        self.assertEqual(apply(faults()[3], TEXT), TEXT.replace("1", "2"))


class EquivalentTest(unittest.TestCase):
    def read(self, entry, places):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "equivalent.toml")
            path.write_text("[[equivalent]]\n" + "".join(f"{key} = '''{value}'''\n"
                                                         for key, value in entry.items()), "utf-8")
            return read_equivalent(path, places)

    def test_faults_are_found_by_their_text(self):
        entry = {"file": "a.cpp", "before": "if (a < b) {", "after": "if (true) {", "why": "b is large"}
        self.assertEqual(self.read(entry, faults()), {2: "b is large"})
        for wrong, reason in [({"after": "if (false) {"}, "no fault like this"),
                              ({"file": "b.cpp"}, "no fault like this"),
                              ({"above": "}"}, "no fault like this"),
                              ({"line": "7"}, "has the fields"),
                              ({"why": ""}, "has the fields")]:
            with self.subTest(wrong), self.assertRaisesRegex(FaultError, reason):
                self.read(entry | wrong, faults())

    def test_the_line_above_tells_lines_apart(self):
        text = "void f() {\n    c();\n}\nvoid g() {\n\n    c();\n}\n"
        begin, again = text.index("c();"), text.rindex("c();")
        places = [make_drawn(number, "a.cpp", text, ("statement", (at, at + 4), at, "c();", ";", "", line))
                  for number, at, line in ((1, begin, 2), (2, again, 6))]
        entry = {"file": "a.cpp", "before": "c();", "after": ";", "why": "c is empty"}
        with self.assertRaisesRegex(FaultError, "lines 2, 6 can have this fault"):
            self.read(entry, places)
        self.assertEqual(self.read(entry | {"above": "void g() {"}, places), {2: "c is empty"})


class DiaryTest(unittest.TestCase):
    def test_what_a_run_that_was_interrupted_had_found_is_known(self):
        noticed, survived, argued, untried = faults()
        changes = [  # what has changed since, and which faults are known then
            ("", [noticed, survived, argued]),
            ("tests/a_test.cpp", [noticed, argued]),
            ("tests/mutation/run", [noticed, survived, argued]),
            ("src/a.cpp", []),
        ]
        for changed, known in changes:
            with self.subTest(changed), tempfile.TemporaryDirectory() as folder:
                root = pathlib.Path(folder)
                for name in ("src", "tests/mutation"):
                    (root / name).mkdir(parents=True)
                path = root / "build" / "diary"
                diary = Diary(path, root)
                diary.add(noticed, "tests", "unit_tests Case")
                diary.add(survived, "tests", None)
                diary.add(argued, "tests", None)
                if changed:
                    (root / changed).write_text("changed", "utf-8")
                diary = Diary(path, root, [argued])
                found = [fault for fault in (noticed, survived, argued, untried)
                         if diary.has(fault, "tests")]
                self.assertEqual(found, known)
                self.assertFalse(diary.has(noticed, "sanitizer"))
                for fault in known:
                    self.assertEqual(diary.by(fault, "tests"),
                                     "unit_tests Case" if fault == noticed else None)


class ScoreTest(unittest.TestCase):
    def test_who_noticed(self):
        first, second, third, fourth = faults()
        score = Score(faults(), {first.number: "a mistake", fourth.number: "it changes nothing"})
        quick, slow, sanitizer = STAGES
        score.add(first, slow, "unit_tests Case")
        score.add(second, quick, None)
        score.add(second, sanitizer, "unit_tests Case")
        score.add(third, quick, None)
        self.assertEqual(score.survivors(), [third])
        self.assertEqual(score.refuted(), [first])
        self.assertEqual(score.counts(faults()),
                         {"faults": 4, "quick tests": 0, "slow tests": 1, "sanitizer": 1, "compiler": 0,
                          "equivalent": 1, "survived": 1, "untried": 0})

    def test_a_score_may_not_be_complete(self):
        first, second, *_ = faults()
        score = Score(faults(), {})
        score.add(first, STAGES[0], None)
        score.add(second, STAGES[0], "the compiler")
        self.assertEqual(score.survivors(), [first])
        self.assertEqual(score.counts(faults())["untried"], 2)
        self.assertIn("interrupted, 2 not tried yet", score.summary())
        score.complete = True
        self.assertNotIn("interrupted", score.summary())


if __name__ == "__main__":
    unittest.main()

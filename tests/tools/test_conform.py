"""quill conform: its suite on the module, what it finds in broken ones, and case files."""

import collections
import json
import os
import re
import shutil
import time
import unittest

from quill_runner import EMULATOR, MODULE, QUILL, SANITIZED, QuillTest, broken, fixture
from test_module import X86_64, described, elf

CASES = os.environ["QUILL_CASES"]
GROUPS = ["descriptor", "layout", "handles", "results", "signature", "line-endings", "chunks",
          "blocks", "times", "settings", "numbers", "markup", "headers", "maps", "delivery",
          "lifetime"]
LEAKS = ["a-long-life", "carried-text-is-freed", "delivered-cues-are-freed",
         "exceptions-are-freed", "headers-are-freed", "lost-blocks-are-freed",
         "undelivered-cues-are-freed"]


def only(*patterns):
    return [part for pattern in patterns for part in ("--only", pattern)]


class Conforming(QuillTest):
    def conform(self, *arguments, code=0, **how):
        """The lines that were printed."""
        result = self.quill("conform", *arguments, **how)
        self.assertEqual(result.code, code, result)
        # An emulator has a word of its own on every crash.
        self.assertEqual(re.sub(b"^qemu: uncaught target signal.*\n", b"", result.err,
                                flags=re.MULTILINE), b"")
        return result.out.decode().splitlines()

    def conform_json(self, *arguments, code=0, **how):
        """(one object for each case, the counts)"""
        lines = self.conform("--format", "json", *arguments, code=code, **how)
        records = [json.loads(line) for line in lines]
        return records[:-1], records[-1]


class Suite(Conforming):
    def test_the_module_passes_all_cases(self):
        # Here the children are counted too, where lines are.
        lines = self.conform(env={**os.environ, "QUILL_COUNT_CHILDREN": "1"})
        count = len(lines) - 1
        self.assertGreaterEqual(count, 200)
        self.assertEqual(lines[-1], f"{count} cases: {count} passed")
        for line in lines[:-1]:
            self.assertRegex(line, "^passed  [a-z-]+/[a-z0-9-]+$")

    def test_list(self):
        lines = self.conform("--list")
        names = [line.split(":")[0] for line in lines[:-1]]
        self.assertEqual(lines[-1], f"{len(names)} cases")
        self.assertEqual(len(set(names)), len(names))
        groups = collections.Counter(name.split("/")[0] for name in names)
        self.assertEqual(list(groups), GROUPS)
        self.assertGreaterEqual(min(groups.values()), 10)
        for line in lines[:-1]:
            self.assertRegex(line, r"^[a-z/0-9-]+: [A-Z0-9<&>].*\.$")

    def test_every_case_file_is_compiled_in(self):
        written = set()
        for name in os.listdir(CASES):
            if name.endswith(".cases"):
                with open(os.path.join(CASES, name), encoding="ascii") as file:
                    titles = re.findall("^== (.*)$", file.read(), re.MULTILINE)
                written |= {f"{name[:-6]}/{title}" for title in titles}
        records, _ = self.conform_json("--list")
        self.assertEqual({one["case"] for one in records if one["place"]}, written)

    def test_list_needs_no_module(self):
        alone = shutil.copy(QUILL, self.folder)
        self.assertIn("descriptor/name", self.quill("conform", "--list", quill=alone).out.decode())
        self.assert_fails(self.quill("conform", quill=alone), 3, "no module", "quillcaption.so")

    def test_only(self):
        for patterns, names in (
                (["descriptor/name"], ["descriptor/name"]),
                (["*/name", "*/tag"], ["descriptor/name", "handles/tag", "delivery/tag"]),
                (["layout/*-info-*"], ["layout/empty-info-block"]),
                (["markup/[rv]*b?"], ["markup/ruby"]),
                (["handles/zero-*", "handles/zero-take"],
                 ["handles/zero-" + end for end in ("parse", "release", "register", "take",
                                                    "video-time")])):
            with self.subTest(patterns):
                count = len(names)
                self.assertEqual(self.conform(*only(*patterns)),
                                 ["passed  " + name for name in names] +
                                 [f"{count} case{'s' * (count > 1)}: {count} passed"])

    def test_a_group(self):
        lines = self.conform("--list", "--only", "layout")
        self.assertEqual({line.split("/")[0] for line in lines[:-1]}, {"layout"})

    def test_failed_only(self):
        self.assertEqual(self.conform("--failed-only", "--only", "descriptor/name"),
                         ["1 case: 1 passed"])

    def test_json(self):
        records, counts = self.conform_json("--only", "times/zero", "--only", "descriptor/name")
        self.assertEqual(records[0], {
            "case": "descriptor/name", "reason": 'The pointer at offset 4 leads to '
            '"quillcaption.so".', "place": None, "outcome": "passed", "details": []})
        self.assertRegex(records[1]["place"], "^times.cases:[0-9]+$")
        self.assertEqual(counts, {"cases": 2, "passed": 2, "failed": 0, "crashed": 0, "hung": 0})

    def test_progress(self):
        # The case hangs for longer than the second in which nothing is shown.
        ours, theirs = os.openpty()
        wipe = b"\r\x1b[K"
        with os.fdopen(ours, "rb", buffering=0) as ours, os.fdopen(theirs, "wb") as theirs:
            result = self.quill("conform", fixture("broken"), "--failed-only", "--timeout", "2",
                                "--only", "markup/mark-references", "--only",
                                "markup/space-reference", env=broken("hang"), stderr=theirs)
            shown = self.read_until(ours, b"2 of 2 cases" + wipe)
        self.assertEqual(shown, wipe + b"1 of 2 cases" + wipe + wipe + b"2 of 2 cases" + wipe)
        self.assertTrue(result.out.endswith(b"2 cases: 1 passed, 1 hung\n"))

    def test_the_examples_of_the_help_work(self):
        text = self.quill("conform", "--help").out.decode()
        os.makedirs(os.path.join(self.folder, "some/folder"))
        shutil.copy(MODULE, os.path.join(self.folder, "some/folder"))
        lines = re.findall("^  quill (conform.*)$", text, re.MULTILINE)
        self.assertEqual(len(lines), 5)
        for line in lines[2:] if EMULATOR else lines[1:]:  # the others run all cases
            result = self.quill(*line.replace("'", "").split(), cwd=self.folder)
            self.assertEqual((result.code, result.err), (0, b""), line)

    def test_wrong_usage(self):
        for arguments, words in (
                (("--only", "nothing/*"), 'no case matches "nothing/*" (--list'),
                (("--only", "times", "--only", ""), 'no case matches ""'),
                (("--only", "times/\x1b*"), '"times/\\x1b*"'),
                (("--list", "--only", "time"), 'no case matches "time"'),
                (("--only",), "--only"), (("--format", "xml"), 'text or json, not "xml"'),
                (("--timeout", "0"), "--timeout takes a whole number of seconds from 1 to 3600"),
                (("--timeout", "1.5"), 'not "1.5"'), ((MODULE, "other"), "other"),
                (("--all",), "--all"), (("--time", "--only", "times"), "--time runs no cases"),
                (("--time", "--list"), "leave out --list"),
                (("--time", "--failed-only"), "leave out --list"),
                (("--time", "--cases", "my.cases"), "leave out --list")):
            with self.subTest(arguments):
                self.assert_fails(self.quill("conform", *arguments), 2, words)


class BrokenModules(Conforming):
    def fails(self, fault, expected, *more):
        """Compares the cases that do not pass with what is expected of the groups concerned, or
        of a few cases under an emulator, where every process takes its time."""
        if EMULATOR:
            patterns = set(expected) | {"*/no-*"}
        else:
            patterns = {name.split("/")[0] for name in expected} | {"results"}
        arguments = only(*sorted(patterns))
        records, counts = self.conform_json(fixture("broken"), "--failed-only", *arguments, *more,
                                            code=1, env=broken(fault))
        self.assertEqual({one["case"]: one["outcome"] for one in records}, expected)
        self.assertEqual(counts["cases"] - counts["passed"], len(expected))
        return {one["case"]: "\n".join(one["details"]) for one in records}

    def test_without_a_fault_all_cases_pass(self):
        groups = only("descriptor", "layout", "handles", "lifetime") if EMULATOR else []
        lines = self.conform(fixture("broken"), "--failed-only", *groups, env=broken(""))
        self.assertRegex(lines[0], "^([0-9]+) cases: \\1 passed$")

    def test_a_fault_fails_no_other_group(self):
        groups = only("layout", "settings", "delivery") if EMULATOR else []
        records, _ = self.conform_json(fixture("broken"), "--failed-only", *groups, code=1,
                                       env=broken("right-is-left"))
        self.assertEqual([one["case"] for one in records],
                         ["settings/align-right", "settings/all-together",
                          "settings/next-cue-begins-anew",
                          "settings/position-that-was-dropped-is-overruled"])

    def test_descriptor(self):
        for fault, case, detail in (
                ("word", "first-word", "the 32-bit word at offset 0: expected 1, got 2"),
                ("name", "name",
                 'the text at offset 4: expected "quillcaption.so", got "other.so"'),
                ("null-name", "name", "the pointer at offset 4 is null"),
                ("tail", "zero-tail", "the byte at offset 143: expected 0, got 7"),
                ("second-table", "table",
                 "the pointer at offset 8 does not point at WebVtt_Module_Methods"),
                ("unnamed-slot", "slots", "the pointer at offset 20 of the table does not point "
                                          "at _Z30IZorWebVtt_Parser_vSetVideoPTSjm")):
            with self.subTest(fault):
                details = self.fails(fault, {"descriptor/" + case: "failed"})
                self.assertEqual(details, {"descriptor/" + case: detail})

    def test_records(self):
        details = self.fails("negative-lines", {"layout/line": "failed",
                                                "settings/negative-line-number": "failed",
                                                "settings/large-line-number": "failed"})
        self.assertIn("got -6", details["layout/line"])
        self.assertRegex(details["settings/negative-line-number"],
                         r'^settings.cases:[0-9]+: settings "line:-1"\n'
                         r'  expected  cue 1 2 "x\\n" line=-1\n  got       cue 1 2 "x\\n" line=0$')
        self.fails("counts-to-two", {
            "layout/info-block": "failed", "delivery/in-order": "failed",
            "delivery/video-time-is-subtracted-from-the-cues-of-later-chunks": "failed"})

    def test_a_list_without_end(self):
        records, _ = self.conform_json(fixture("broken"), "--only", "times/zero", code=1,
                                       env=broken("circle"))
        self.assertEqual([line.strip() for line in records[0]["details"][1:]],
                         ['expected  cue 0 0 "x\\n"', "got       the list of cues does not end"])

    def test_handles(self):
        self.fails("silent-second-release", {"handles/released": "failed",
                                             "handles/released-in-any-order": "failed",
                                             "handles/second-release": "failed"})

    def test_a_missing_line(self):
        details = self.fails("missing-line", {"settings/without-a-colon": "failed",
                                              "settings/without-a-name": "failed",
                                              "times/second-arrow": "failed"})
        self.assertIn("expected  ! Item is Empty", details["times/second-arrow"])

    def test_exceptions(self):
        details = self.fails("other-exception", {
            name: "failed" for name in (
                "results/exception", "settings/line-without-a-number", "settings/line-of-a-sign",
                "maps/map-without-a-value", "maps/map-with-one-item",
                "maps/map-without-a-value-throws",
                "maps/map-with-one-item-throws-once-that-item-is-read",
                "maps/map-with-a-local-time-only-throws", "maps/map-that-threw-is-the-current-one",
                "maps/header-section-goes-on-behind-a-map-that-threw",
                "delivery/before-an-exception",
                "delivery/cues-before-an-exception-are-delivered",
                "lifetime/release-after-an-exception")})
        self.assertIn("got       throws std::runtime_error: basic_string::at",
                      details["results/exception"])

    def test_unloading(self):
        details = self.fails("never-unloaded", {"lifetime/unmapped": "failed"})
        self.assertIn("still mapped", details["lifetime/unmapped"])

    @unittest.skipIf(SANITIZED, "a sanitizer has a heap of its own")
    def test_leaks(self):
        details = self.fails("leak", {"lifetime/" + name: "failed" for name in LEAKS})
        self.assertRegex(details["lifetime/a-long-life"], "the heap grew by [0-9]{4,} bytes")

    @unittest.skipIf(SANITIZED, "the sanitizer turns the crash into an exit")
    def test_a_crash(self):
        details = self.fails("crash", {"markup/space-reference": "crashed",
                                       "markup/character-references": "crashed"})
        self.assertRegex(details["markup/space-reference"],
                         r'^markup.cases:[0-9]+: payload "a&nbsp;b": the module crashed by SIGSEGV$')

    @unittest.skipIf(SANITIZED, "the sanitizer turns the crash into an exit")
    def test_a_crash_at_the_end(self):
        records, _ = self.conform_json(fixture("broken"), "--only", "times/zero", code=1,
                                       env=broken("crash-at-unload"))
        self.assertEqual([(one["outcome"], one["details"]) for one in records],
                         [("crashed", ["unloading the module: the module crashed by SIGSEGV"])])

    def test_a_hang(self):
        started = time.monotonic()
        details = self.fails("hang", {"markup/mark-references": "hung",
                                      "markup/character-references": "hung"}, "--timeout", "1")
        self.assertIn("did not end in time", details["markup/mark-references"])
        self.assertGreaterEqual(time.monotonic() - started, 1)

    def test_an_end_of_the_process(self):
        details = self.fails("exit", {"times/note": "crashed"})
        self.assertIn("the module ended the process", details["times/note"])

    def test_printing_without_end(self):
        details = self.fails("flood", {"markup/mark-references": "crashed",
                                       "markup/character-references": "crashed"})
        self.assertIn("crashed by SIGXFSZ", details["markup/mark-references"])

    def test_text(self):
        lines = self.conform(fixture("broken"), "--only", "times/second-arrow", "--only",
                             "times/zero", code=1, env=broken("missing-line"))
        self.assertEqual(lines[0], "passed  times/zero")
        self.assertEqual(lines[1], "FAILED  times/second-arrow: A second arrow is a setting "
                                   "without a name.")
        self.assertRegex(lines[2], "^        times.cases:[0-9]+: show ")
        self.assertEqual(lines[3:], ["          expected  ! Item is Empty",
                                     '          expected  cue 1 2 "x\\n"',
                                     '          got       cue 1 2 "x\\n"',
                                     "2 cases: 1 passed, 1 failed"])

    def test_modules_that_cannot_be_loaded(self):
        for path, words in ((fixture("without_descriptor"), "does not export WEBVTT_MODULE_INFO"),
                            (fixture("without_table"), "descriptor has no table"),
                            (fixture("with_empty_slots"), "table has an empty slot"),
                            (fixture("with_unknown_symbol"), "a_function_that_nobody_has"),
                            (self.folder + "/none.so", "cannot read the module"),
                            (self.file("m.so", elf(2, 1, X86_64)), described("64-bit", 1, "x86-64"))):
            with self.subTest(path):
                self.assert_fails(self.quill("conform", path), 3, words)

    def test_what_ends_loading(self):
        for fault, words in (("crash-at-load", "broken.so crashed by SIGSEGV while it was loaded"),
                             ("exit-at-load", "broken.so ended the process while it was loaded"),
                             ("hang-at-load", "broken.so did not end in time while it was loaded")):
            if SANITIZED and fault == "crash-at-load":  # the sanitizer turns it into an exit
                continue
            with self.subTest(fault):
                self.assert_fails(self.quill("conform", fixture("broken"), "--timeout", "1",
                                             env=broken(fault)), 3, words, "copy it again")

    @unittest.skipIf(EMULATOR, "qemu hands no child on whose parent has ended")
    def test_what_it_starts_ends_with_the_case(self):
        # The process that is left has the standard error of quill, whose end the test waits for.
        self.assertEqual(self.conform(fixture("broken"), "--only", "times/note", "--timeout", "3",
                                      env=broken("fork"), code=1)[-1], "1 case: 1 hung")


class Times(Conforming):
    def test_text(self):
        lines = self.conform("--time")
        times = {line[:32].strip(): [float(word) for word in line[32:].replace("us", "").split()]
                 for line in lines if not line.startswith("dialogue")}
        self.assertEqual(list(times), [
            "loading", "the first cue", "usual, chunks of 1460 B", "usual, chunks of 65536 B",
            "crlf, chunks of 65536 B", "no-hours, chunks of 65536 B",
            "four-settings, chunks of 65536 B"])
        self.assertGreater(min(min(row) for row in times.values()), 0)
        # A cue has 70 to 140 bytes, so a megabyte is thousands of them.
        for cue, megabyte in list(times.values())[2:]:
            self.assertTrue(7000 < megabyte / cue < 15000, times)

    def test_json(self):
        times = [json.loads(line) for line in self.conform("--time", "--format", "json")]
        self.assertEqual([one["what"] for one in times],
                         ["loading", "the first cue", "usual", "usual", "crlf", "no-hours",
                          "four-settings"])
        self.assertEqual([list(one)[1:] for one in times],
                         [["us"]] * 2 + [["chunk", "us_a_cue", "us_a_megabyte"]] * 5)

    def test_modules_whose_time_says_nothing(self):
        for fault, words in (("crash", "crashed by SIGSEGV"), ("hang", "did not end in time"),
                             ("counts-to-two", r"delivered \d+ cues of \d+; quill conform without")):
            if SANITIZED and fault == "crash":  # the sanitizer turns it into an exit
                continue
            with self.subTest(fault):
                result = self.quill("conform", "--time", "--timeout", "3", fixture("broken"),
                                    env=broken(fault))
                self.assertEqual((result.code, result.out.count(b"usual")), (1, 0), result)
                self.assertIn("cannot time usual: ", result.err.decode())
                self.assertRegex(result.err.decode(), words)


class CaseFiles(Conforming):
    def run_cases(self, text, code=0):
        return self.conform_json("--cases", self.file("my.cases", text.encode()), code=code)[0]

    def test_the_examples_of_the_readme(self):
        with open(os.path.join(CASES, "README.md"), encoding="utf-8") as file:
            examples = re.findall("^```text[^\n]*\n(.*?)^```$", file.read(), re.MULTILINE | re.DOTALL)
        whole, bytes_alone = examples
        self.assertEqual([one["case"] for one in self.run_cases(whole)], ["my/hours"])
        case = "== repeated\nNested tags go.\nopen\n" + bytes_alone + (
            '  ! Buffer Exhausted\n  ! FINISHED\n  = 0\ntake\n  cue 1 2 "x\\n"\n')
        self.assertEqual([one["outcome"] for one in self.run_cases(case)], ["passed"])

    def test_every_difference_is_found(self):
        fine = 'open\nshow "00:01.000 --> 00:02.000 a:b\\nx\\n\\n"\n  cue 1 2 "x\\n"\n'
        for wrong in (fine.replace("cue 1 2", "cue 1 3"), fine.replace('x\\n"\n', 'y\\n"\n', 1),
                      fine.replace('  cue 1 2 "x\\n"\n', ""), fine + "  no cue\n",
                      fine + "  tag 1\n", fine.replace("\n  cue", " \n  = 0\n  cue"),
                      fine.replace("\n  cue", "\n  ! Item is Empty\n  cue"),
                      fine.replace("open", "open\n  = 0"), fine.replace("open", "start"),
                      fine.replace('x\\n"\n', 'x\\n" line=100\n', 2), fine + "release\nrelease\n",
                      fine + "create-null\n  = 0\n", fine + "use b\n"):
            with self.subTest(wrong):
                self.assertNotEqual(wrong, fine)
                records = self.run_cases(f"== a\nFine.\n{fine}== b\nWrong.\n{wrong}", code=1)
                self.assertEqual([one["outcome"] for one in records], ["passed", "failed"])
                self.assertEqual(len([line for line in records[1]["details"]
                                      if line.startswith(self.folder)]), 1)

    def test_mistakes(self):
        start = "# A remark.\n\n== a\nWhy.\n"
        for text, words in (
                ("", "holds no case"), ("# Only a remark.\n", "holds no case"),
                ("open\n", ":1: a line before the first case"),
                ("== a\n", ":1: the case has no calls"),
                ("== a\nWhy.\n\n== b\nWhy.\nopen\n", ":1: the case has no calls"),
                ("== a\nopen\n", ":2: the line below the name"),
                ("== a b\nWhy.\nopen\n", ":1: the name of a case has no spaces"),
                (start + "open\n== a\nWhy.\nopen\n", ":6: there is a case of that name already"),
                (start + "  = 0\n", ":5: an indented line without a call"),
                (start + "fead \"x\"\n", ':5: there is no call "fead"'),
                (start + "feed x\nopen\n", ":5: feed needs bytes in double quotes"),
                (start + "feed\n", ":5: feed needs bytes"), (start + 'feed "x\n', ":5: feed needs"),
                (start + 'feed "\\q"\n', ":5: feed needs"), (start + 'feed "\\x1"\n', ":5: feed"),
                (start + 'feed "x"*\n', ":5: feed"), (start + 'feed "x"*99999999\n', ":5: feed"),
                (start + 'feed "x" y\n', ":5: feed needs"), (start + "pts\n", ":5: pts needs a whole"),
                (start + "pts -1\n", ":5: pts"), (start + "pts 4294967296\n", ":5: pts"),
                (start + "pts 1 2\n", ':5: pts takes no "2"'),
                (start + "register 10\n", ":5: register needs a tag from 0 to 9"),
                (start + "use\n", ":5: use needs the name"),
                (start + 'pieces "x"\n', ":5: pieces needs a whole number"),
                (start + "take 1\n", ':5: take takes no "1"'),
                (start + "open a b\n", ':5: open takes no "b"')):
            with self.subTest(text):
                result = self.quill("conform", "--cases", self.file("my.cases", text.encode()))
                self.assert_fails(result, 2, "my.cases", words)

    def test_files_that_cannot_be_read(self):
        for path, words in ((self.folder + "/none", "No such file"), (self.folder, "directory")):
            self.assert_fails(self.quill("conform", "--cases", path), 2, path, words)

    def test_a_line_of_spaces_is_empty(self):
        self.assertEqual([one["outcome"] for one in self.run_cases(
            "   \n== a\n \nWhy.\nopen\n  \nrelease\n   \n")], ["passed"])

    def test_names_cannot_reach_the_terminal(self):
        path = self.file("my.cases", b"== a\x1b[2Jb\nWhy\x9b.\nopen\n  no\n")
        for arguments in ((), ("--list",)):
            with self.subTest(arguments):
                shown = self.quill("conform", "--cases", path, *arguments).out
                self.assertIn(rb"my/a\x1b[2Jb: Why\x9b.", shown)
                self.assertNotIn(b"\x1b", shown)

    def test_of_many_lines_those_are_told_that_differ(self):
        expected = "".join(f"  | line {number}, which is only here to be long\n"
                           for number in range(70))
        text = '== a\nA flood.\nstart\nfeed "flood 100000\\n"\n  | chunk of 13\n' + expected
        details = self.conform_json(fixture("scripted"), "--cases",
                                    self.file("my.cases", text.encode()), code=1)[0][0]["details"]
        self.assertEqual(details[1], "  expected  (71 lines that agree)")
        self.assertEqual(details[2:4], ["  got       (71 lines that agree)",
                                        "  got       | line 70, which is only here to be long"])
        self.assertEqual(details[-1], "  got       (and 99891 more)")
        self.assertEqual(len(details), 3 + 40 + 1)

    def test_a_module_of_another_kind(self):
        text = '== a\nA script.\nstart\nfeed "print a\\\\x0d\\nprint b\\nreturn 1\\n"\n  x\n'
        records = self.conform_json(fixture("scripted"), "--cases",
                                    self.file("my.cases", text.encode()), code=1)[0]
        self.assertEqual([line.strip() for line in records[0]["details"][1:]],
                         ["expected  x", "got       | chunk of 29", "got       | a\\r",
                          "got       | b", "got       = 1"])


if __name__ == "__main__":
    unittest.main()

"""Every mistake of a host is found: with its code, at its call, and with a way out."""

import ast
import re
import signal
import unittest

from hosts import GUARD, MISTAKES, ONLY_WITHOUT_SANITIZER, SANITIZED, SOURCE, mistake, run

HEAD = re.compile(r"/\* (H\d+) at call (\d+), (\w+): ")
LINE = re.compile(r"quillcaption-guard: (H\d+) at call (\d+), (\w+), (?:(?:parser|handle) \w+, )?"
                  r"thread \d+: .*\. What to do: .*\.$")
SUM = re.compile(r"quillcaption-guard: \d+ calls?, \d+ parsers?, \d+ cues?, \d+ mistakes? \((.*)\)$")

# How a host ends that does not return from main.
CRASHES = {"H119": signal.SIGSEGV, "H120": signal.SIGABRT,
           "H122": signal.SIGSEGV, "H123": signal.SIGSEGV}
# What comes of a mistake besides: who unloads in the midst of a call has released nothing.
COMES_WITH = {"H119": ["H118"]}
SETTINGS = {"H121": {"QUILLCAPTION_GUARD_SLOW_MS": "400"}}


def run_mistake(name, **variables):
    """How it ended, and what was said."""
    done = run(mistake(name), GUARD, **variables)
    return done.returncode, done.stderr.decode().splitlines()


class MistakesTest(unittest.TestCase):
    maxDiff = None

    def test_every_code_has_a_host(self):
        table = (SOURCE / "guard/mistakes.cpp").read_text()
        codes = re.findall(r'"(H\d+)"', table)
        self.assertEqual(codes, [f"H{number}" for number in range(101, 101 + len(codes))])
        self.assertEqual(sorted({path.stem[:4] for path in MISTAKES}), codes)

    def test_the_page_says_what_the_guard_says(self):
        source = (SOURCE / "guard/mistakes.cpp").read_text().split("kTexts = {{")[1].split("}};")[0]
        # Texts in C and in Python look the same.
        source = source.replace('{"H', '("H').replace("},\n", "),\n")
        said = {code: [sentence, way_out] for code, sentence, way_out in ast.literal_eval(f"[{source}]")}
        page = (SOURCE / "docs/guard.md").read_text()
        table = re.findall(r"^\| \[(H\d+)\]\(\.\./examples/mistakes/(\w+)\.c\) \| (.*) \| (.*) \|$",
                           page, re.MULTILINE)
        self.assertEqual({row[0]: list(row[2:]) for row in table}, said)
        self.assertEqual([row[1][:4] for row in table], [row[0] for row in table])

    def test_each_is_found_at_its_call(self):
        for path in MISTAKES:
            if SANITIZED and path.stem in ONLY_WITHOUT_SANITIZER:
                continue
            with self.subTest(path.stem):
                wanted = HEAD.match(path.read_text()).groups()
                self.assertEqual(wanted[0], path.stem[:4])
                code, lines = run_mistake(path.stem, **SETTINGS.get(wanted[0], {}))
                found = [LINE.match(line) for line in lines if re.search(r": H\d+ at ", line)]
                self.assertNotIn(None, found, lines)
                self.assertEqual(found[0].groups(), wanted, lines)
                self.assertEqual([one.group(1) for one in found[1:]],
                                 COMES_WITH.get(wanted[0], []), lines)
                self.check_end(wanted[0], code, lines)

    def check_end(self, mistake, code, lines):
        if mistake not in CRASHES:
            self.assertEqual(code, 0, lines)
            self.assertEqual(SUM.match(lines[-1]).group(1), f"{mistake} 1", lines)
        elif not SANITIZED:
            # Emulators end by the signal as well, shells by 128 and its number.
            self.assertIn(code, (-CRASHES[mistake], 128 + CRASHES[mistake]), lines)
        else:
            self.assertNotEqual(code, 0, lines)

    def test_the_place_in_a_delivery_is_named(self):
        for name, place in (("H122_record_changed", "record 1 of 1, field pcText, the text"),
                            ("H123_record_kept", "record 2 of 3, field dStartTime"),
                            ("H123_text_kept", "record 1 of 1, field pcText, the text")):
            with self.subTest(name):
                self.assertIn(f" ({place}). What to do: ", run_mistake(name)[1][0])

    def test_the_process_ends_where_asked_for(self):
        for name in ("H101_no_callback", "H114_cues_waiting", "H118_never_released"):
            with self.subTest(name):
                code, lines = run_mistake(name, QUILLCAPTION_GUARD_ON_MISTAKE="abort")
                self.assertIn(code, (-signal.SIGABRT, 128 + signal.SIGABRT))
                self.assertEqual([line.split()[1] for line in lines if "guard: " in line], [name[:4]])


if __name__ == "__main__":
    unittest.main()

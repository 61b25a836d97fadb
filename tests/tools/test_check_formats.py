"""The formats of quill check for the machines of others, and the colours of the one for people."""

import json
import os
import re
import subprocess
import unittest
import urllib.parse

from quill_runner import EMULATOR, QuillTest

HERE = os.path.dirname(os.path.abspath(__file__))
SCHEMA = os.path.join(HERE, "sarif", "sarif-2.1.0.json")
# Debian's python3-jsonschema has it.
VALIDATOR = "/usr/bin/jsonschema"

GOOD = b"WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"
# A cue that is changed, a loss, a cue that is lost with it, a remark and a line as a whole.
TRACK = (b"WEBVTT\n\n00:01.000 --> 00:02.000 align:center\nHello\n\n"
         b"00:03.000 --> 00:04.000\n<x>\n\n00:05.000 --> 00:06.000\nTaken.\n\n")
REMARK = GOOD.replace(b"Hello", "Ã© é &copy;".encode())


class Formats(QuillTest):
    def setUp(self):
        super().setUp()
        self.file("t.vtt", TRACK)

    def check(self, *arguments, **how):
        return self.quill("check", *arguments, cwd=self.folder, **how)

    def sarif(self, *arguments, **how):
        """The one run of a document that the schema takes."""
        result = self.check("--format", "sarif", *arguments, **how)
        document = json.loads(result.out)
        if not EMULATOR:  # it is the same there
            path = self.file("out.sarif", result.out)
            done = subprocess.run([VALIDATOR, "-i", path, SCHEMA], capture_output=True, check=False)
            self.assertEqual((done.returncode, done.stdout), (0, b""), done.stderr[-999:])
        return result, document["runs"][0]

    def test_the_schema_is_able_to_refuse(self):
        path = self.file("wrong", self.check("--format", "sarif", "t.vtt").out.replace(
            b'"startLine":3', b'"startLine":0'))
        self.assertNotEqual(subprocess.run([VALIDATOR, "-i", path, SCHEMA], capture_output=True,
                                           check=False).returncode, 0)

    def test_sarif(self):
        result, run = self.sarif("t.vtt")
        self.assertEqual((result.code, result.err), (1, b""))
        self.assertEqual(run["tool"]["driver"]["name"], "quill check")
        self.assertEqual([(one["ruleId"], one["level"]) for one in run["results"]],
                         [("Q408", "warning"), ("Q109", "error"), ("Q202", "error")])
        for one in run["results"]:
            self.assertEqual(run["tool"]["driver"]["rules"][one["ruleIndex"]]["id"], one["ruleId"])
        self.assertEqual(run["results"][0]["message"]["text"],
                         '"align:center" is taken for start; write "align:middle"')
        places = [one["locations"][0]["physicalLocation"] for one in run["results"]]
        self.assertEqual([place["region"] for place in places],
                         [{"startLine": 3, "startColumn": 25}, {"startLine": 7, "startColumn": 1},
                          {"startLine": 9}])
        self.assertEqual({place["artifactLocation"]["uri"] for place in places}, {"t.vtt"})
        cause = run["results"][2]["relatedLocations"][0]["physicalLocation"]
        self.assertEqual(cause["region"], {"startLine": 7})
        self.assertEqual(run["invocations"], [{"executionSuccessful": True}])

    def test_sarif_of_nothing(self):
        _, run = self.sarif(self.file("good.vtt", GOOD))
        self.assertEqual(run["results"], [])

    def test_sarif_of_many_tracks(self):
        name = "a b%ä:.vtt"
        self.file(name, TRACK)
        for number in range(40):
            self.file(f"{number}.vtt", GOOD if number % 2 else TRACK)
        result, run = self.sarif("missing.vtt", ".", "--jobs", "3")
        self.assertEqual(result.code, 2)
        self.assertEqual(len(run["results"]), 1 + 3 * 22)
        self.assertEqual(run["results"][0]["ruleId"], "unchecked")
        self.assertEqual(run["results"][0]["message"]["text"],
                         "missing.vtt: No such file or directory")
        uris = {urllib.parse.unquote(one["locations"][0]["physicalLocation"]["artifactLocation"]
                                     ["uri"]) for one in run["results"]}
        self.assertIn("./" + name, uris)
        self.assertEqual(run["invocations"], [{"executionSuccessful": False}])

    def test_sarif_of_a_place_that_is_named_whole(self):
        path = self.file("t.vtt", TRACK)
        _, run = self.sarif(path)
        self.assertEqual(run["results"][0]["locations"][0]["physicalLocation"]["artifactLocation"],
                         {"uri": "file://" + path})

    def test_columns_count_characters(self):
        track = self.file("r.vtt", REMARK)
        lines = [json.loads(line) for line in self.check("--format", "json", track).out.splitlines()]
        self.assertEqual([(line["code"], line["column"]) for line in lines[:-1]],
                         [("Q434", 1), ("Q413", 6)])

    def test_github(self):
        self.file("a,b:%.vtt", b"WEBVTT\n\n100% alone\n\n")
        self.assertEqual(self.check("--format", "github", "t.vtt", "missing.vtt", "a,b:%.vtt").out
                         .decode().splitlines(), [
            '::warning file=t.vtt,line=3,col=25,title=Q408 align-keyword::"align:center" is taken '
            'for start; write "align:middle"',
            '::error file=t.vtt,line=7,col=1,title=Q109 unknown-tag::unknown start tag "<x>"; '
            "remove the tag, or write &lt; for its bracket",
            "::error file=t.vtt,line=9,title=Q202 behind-tag::the cue at 00:00:05.000 is lost with "
            "its chunk, which line 7 ended; correct that block, or feed other chunks",
            "::error file=missing.vtt::missing.vtt: No such file or directory",
            '::error file=a%2Cb%3A%25.vtt,line=3,title=Q106 lone-line::a line on its own, "100%25 '
            'alone"; remove the blank line that cuts it off, or the line'])

    def test_github_folds(self):
        self.file("t.vtt", b"WEBVTT\n\n" + b"".join(b"line %d\n\n" % number for number in range(9)))
        lines = self.check("--format", "github", "t.vtt").out.decode().splitlines()
        self.assertEqual(lines[3:], ["::error file=t.vtt,line=9,title=Q106 lone-line::and 6 more "
                                     "like these, lines 9 to 19; --all shows each"])
        self.assertEqual(len(self.check("--format", "github", "--all", "t.vtt").out.splitlines()), 9)

    def test_codes_are_listed_in_two_formats(self):
        for name in ("github", "sarif"):
            self.assert_fails(self.check("--codes", "--format", name), 2, "text and json")

    def colours(self, when):
        """What stands between the codes of a terminal, by code."""
        text = self.check("--color", when, "--quiet", "t.vtt").out.decode()
        return re.findall(r"\x1b\[([\d;]+)m(.*?)\x1b\[0m", text)

    def test_colours_wherever_they_are_wanted(self):
        self.assertEqual(self.colours("always"), [
            ("1;33", "changed"), ("1", '"align:center"'), ("1", '"align:middle"'),
            ("1;31", "lost"), ("1", '"<x>"'), ("1;31", "lost")])
        self.assertEqual(self.colours("never"), [])
        self.assertEqual(self.colours("auto"), [])

    def test_a_quotation_that_holds_marks(self):
        self.file("t.vtt", b'WEBVTT\n\nsay "one", "two\n\n')
        self.assertIn(("1", '"say "one"'), self.colours("always"))

    def test_wrong_choices(self):
        for arguments, words in ((("--color", "yes"), '--color takes auto, always or never, not "yes"'),
                                 (("--format", "xml"),
                                  '--format takes text, json, github or sarif, not "xml"')):
            self.assert_fails(self.check(*arguments, "t.vtt"), 2, words)


if __name__ == "__main__":
    unittest.main()

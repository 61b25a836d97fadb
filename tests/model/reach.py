"""Counts what generated scripts reach, so that a grammar gone dull is noticed."""

import re
from collections import Counter

MARKS = {name: re.compile(pattern) for name, pattern in (
    ("record: any", r"cue "),
    ("record: vertical", r"cue .* vertical [12]"),
    ("record: aligned", r"cue .* align [0234]"),
    ("record: line is a percentage", r"cue .* snap 0"),
    ("record: line at a limit of 32 bits", r"cue .* line (-2147483648|2147483647) "),
    ("record: size or position above 100", r"cue .* (size|position) (10[1-9]|1[1-9]\d|2\d\d) "),
    ("record: negative time", r"cue .* (start|end) [89a-f][0-9a-f]{15} "),
    ("record: text of several lines", r"cue .* text \"[^\"]*\\n[^\"]*\\n"),
    ("record: text with a stray >", r"cue .* text \"[^\"]*>"),
    ("record: empty text", r"cue .* text \"\""),
    ("delivery: empty", r"event .* cues 0 "),
    ("delivery: several records", r"event .* cues ([2-9]|\d\d)"),
    ("result: 0", r"ret 0$"),
    ("result: 1", r"ret 1$"),
    ("result: 2", r"ret 2$"),
)}

# A printed line is named by its fixed words: what the track put into it is left out.
CUT = tuple((re.compile(pattern), words) for pattern, words in (
    (r"<.*?(>( detected.*)?$|$)", r"<...>\2"),
    (r"Item (?!is Empty).*", "Item ... value is empty!"),
    (r"(value string|input is) .*", r"\1 ..."),
    (r"dPos (nan|-?inf)", r"dPos \1"),
    (r"(dPos|LINE|size|data is) -?\d[\d.]*", r"\1 N")))


class Reach:
    """How many scripts of a run contained each thing."""

    def __init__(self):
        self.scripts = 0
        self.counts = Counter()

    def add(self, report):
        self.scripts += 1
        seen = set()
        for line in (line for call in report for line in call):
            if line.startswith("out "):
                seen.update(self.printed(line))
            elif line.startswith("throw"):
                seen.add(line)
            else:
                seen.update(name for name, mark in MARKS.items() if mark.match(line))
        self.counts.update(seen)

    @staticmethod
    def printed(line):
        for text in line[len('out "'):-1].split("\\n"):
            for pattern, words in CUT:
                text = pattern.sub(words, text)
            if text.startswith(("[WEBVTT", "input is", "Not a valid", "data is")):
                yield "printed: " + text

    def table(self):
        width = max(map(len, self.counts), default=0)
        return "\n".join(f"{name:{width}}  {count:6}  {100 * count / self.scripts:5.1f} %"
                         for name, count in sorted(self.counts.items()))

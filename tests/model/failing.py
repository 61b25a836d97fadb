"""Makes every single allocation of a script's calls fail, and holds the module to what it may do then.

The model does not know the module's allocations. It knows the places where memory is needed, and what
is lost at each (model/memory.py). A run in which an allocation failed must be, to its last byte and to
the last call, the model's run in which one of these places failed; and of two allocations of a call the
later one fails at the same place or at a later one. Only when a single allocation fails may all be as if
it had not: the module may find another way.
"""

import copy

from generate import generate
from script import call

MOST_BYTES = 1500
MOST_CALLS = 40
KINDS = ("once", "from")

# Longer than what the module keeps at hand for a line or a block, with all that a block can end in.
LONG = b"words and more words of a long line, "
TIMES = b"00:01.000 --> 00:02.000"
HEADERS = (b"Region: id=" + LONG.replace(b" ", b"_") * 8 + b" width=40% lines=x\r\n"
           b"X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\r\n"
           b"a header line of " + LONG * 8 + b"\n\n" + TIMES + b"\nx\n\n")
PARTS = (
    HEADERS,
    TIMES + b" align:end\r\n" + (LONG + b"\r\n") * 12 + b"\r\n",
    TIMES + b"\n" + (LONG + b"\n") * 12 + b"\n",
    TIMES + b"\r" + (LONG + b"\r") * 6 + b"\r",
    TIMES + b"\n" + LONG * 9 + b"\n\n",
    TIMES + b" size:50%\n<c.loud.and.clear>" + LONG * 4 + b"</c> &amp;\n\n" + TIMES + b"\nx\n\n",
    TIMES + b" line:5\n<lang " + LONG + b">x</lang></no " + LONG + b">" + LONG * 5 + b"y\n\n",
    TIMES + b" line:-\n" + LONG * 8 + b"\n\n" + TIMES + b"\nx\n\n",
    TIMES + b"\n" + LONG * 8 + b"<a tag that is not known " + LONG + b">\n\n" + TIMES + b"\nx\n\n",
)
SIZES = (23, 97, 130, 170, 211, 300, 1000)


def long_scripts():
    """(name, calls) of each of these parts behind a first line, in chunks of several sizes."""
    for number, part in enumerate(PARTS):
        front = b"WEBVTT\n" if part is HEADERS else b"WEBVTT\n\n"
        for size in SIZES:
            calls = [call("create", "a"), call("callback", "a", number=1),
                     call("parse", "a", data=front)]
            for start in range(0, len(part), size):
                calls.append(call("parse", "a", data=part[start:start + size]))
            calls += [call("parse", "a", data=b"\n\n\n" + TIMES + b"\nlast\n\n"),
                      call("result", "a"), call("release", "a")]
            yield f"part {number} in chunks of {size}", calls


def small_scripts(seed, first, count):
    """(name, calls) of generated scripts that are not too long to be played very often."""
    index = first
    while count > 0:
        calls = generate(seed, index)
        size = sum(len(one.data or b"") for one in calls)
        if size <= MOST_BYTES and len(calls) <= MOST_CALLS:
            yield f"seed {seed}, script {index}", calls
            count -= 1
        index += 1


def take_allocations(report):
    """The report of a call without what it says about allocations, and their number."""
    lines = [line for line in report if not line.startswith("allocations ")]
    counts = [line.split() for line in report if line.startswith("allocations ")]
    return lines, int(counts[0][1]) if counts else 0


class Outcomes:
    """What may come of a script from one call on, by the place that fails in that call; 0 is none."""

    def __init__(self, module, calls):
        self.calls = calls
        self.rests = {}
        self.modules = []
        self.reports = []
        place, reached = 0, True
        while reached:
            played = copy.deepcopy(module)
            played.memory.start(place)
            report = played.play_call(calls[0])
            reached = played.memory.passed >= place
            if reached:
                self.modules.append(played)
                self.reports.append(report)
            place += 1

    def fits(self, place, reports):
        if self.reports[place] != reports[0]:
            return False
        if place not in self.rests:
            module = self.modules[place]
            module.memory.start()
            self.rests[place] = module.play(self.calls[1:])
        return self.rests[place] == reports[1:]

    def find(self, reports, first):
        """The first place from there on that explains the reports; None if there is none."""
        return next((place for place in range(first, len(self.reports))
                     if self.fits(place, reports)), None)


class Disagreement(Exception):
    """No place explains what came of a script in which an allocation fails."""

    def __init__(self, calls, outcomes, actual):
        super().__init__("no place explains this")
        self.calls, self.outcomes, self.actual = calls, outcomes, actual

    def explain(self, format_call):
        """What the call with the failure gave, and the first later call that no place explains."""
        wanted = [place for place, report in enumerate(self.outcomes.reports)
                  if report == self.actual[0]]
        if not wanted:
            return "\n".join(["the call with the failure gave", *self.actual[0],
                              "and the model", *map(str, self.outcomes.reports)])
        lines = []
        for place in wanted:
            self.outcomes.fits(place, self.actual)
            rest = [self.outcomes.reports[place], *self.outcomes.rests[place]]
            lines.append(f"a failure at place {place} explains all but this:")
            lines += [f"{format_call(one)}\n  expected  {want}\n  actual    {got}"
                      for one, want, got in zip(self.outcomes.calls, rest, self.actual)
                      if want != got][:3]
        return "\n".join([*lines, "(or the places are out of order)"])


def with_plan(calls, at, kind, number):
    return calls[:at] + [call("fail", kind, number=number)] + calls[at:]


def check(calls, player, make_module):
    """How many runs with a failing allocation agree. Raises Disagreement at the first that does not."""
    needing = [at for at, one in enumerate(calls) if one.verb in ("create", "parse")]
    counted = player.play([with_plan(calls, at, "once", 0) for at in needing])
    plans = [(at, kind, number) for at, report in zip(needing, counted) for kind in KINDS
             for number in range(1, take_allocations(report[at + 1])[1] + 1)]
    reports = player.play([with_plan(calls, *plan) for plan in plans])
    module, outcomes, place, last = make_module(), None, 0, None
    played = 0
    for (at, kind, number), report in zip(plans, reports):
        if last is None or last[0] != at:
            module.play(calls[played:at])
            played = at
            outcomes = Outcomes(module, calls[at:])
        if last != (at, kind):
            place = 1
        last = (at, kind)
        actual = [take_allocations(lines)[0] for lines in report[at + 1:]]
        found = outcomes.find(actual, place)
        if found is None and kind == "once" and outcomes.fits(0, actual):
            continue
        if found is None:
            raise Disagreement(with_plan(calls, at, kind, number), outcomes, actual)
        place = found
    return len(plans)

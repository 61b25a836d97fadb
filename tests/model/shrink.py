"""Makes a failing script as small as possible while it still fails."""

from script import Duties

HARMLESS = b"x"


def shrink(calls, fails, budget=4000):
    """The smallest script found. `fails` plays one; it is asked at most `budget` times."""
    return Shrinker(fails, budget).shrink(calls)


class Shrinker:
    def __init__(self, fails, budget):
        self.fails = fails
        self.budget = budget

    def shrink(self, calls):
        """Repeats all ways to make it smaller until none of them helps any more."""
        before = None
        while calls != before and self.budget > 0:
            before = calls
            calls = self.drop_calls(calls)
            calls = self.merge_chunks(calls)
            calls = self.drop_bytes(calls)
            calls = self.calm_bytes(calls)
        return calls

    def still_fails(self, calls):
        if self.budget <= 0:
            return False
        self.budget -= 1
        return self.fails(calls)

    def drop_calls(self, calls):
        return self.drop_spans(calls, self.without_dropped)

    def without_dropped(self, kept):
        """The calls that are left, if they still fail, else None.

        What a host may not do any more without a dropped call (use a parser that nobody
        created) goes too.
        """
        duties = Duties()
        kept = [one for one in kept if not duties.breach(one)]
        return kept if self.still_fails(kept) else None

    @staticmethod
    def drop_spans(items, attempt):
        """Tries to leave out spans of half the length, a quarter, and so on down to one item."""
        size = max(len(items) // 2, 1)
        while size:
            start = 0
            while start < len(items):
                smaller = attempt(items[:start] + items[start + size:])
                if smaller is None:
                    start += size
                else:
                    items = smaller
            size //= 2
        return items

    def merge_chunks(self, calls):
        """Joins each chunk with the parser's next one, at the place of the one or the other."""
        first = 0
        while first < len(calls):
            second = next_chunk(calls, first)
            calls = second and self.merged(calls, first, second) or calls
            first += 1
        return calls

    def merged(self, calls, first, second):
        chunk = calls[first]._replace(data=calls[first].data + calls[second].data)
        for place, other in ((second, first), (first, second)):
            candidate = list(calls)
            candidate[place] = chunk
            del candidate[other]
            if self.still_fails(candidate):
                return candidate
        return None

    def drop_bytes(self, calls):
        for at in range(len(calls)):
            if calls[at].verb == "parse":
                data = self.drop_spans(calls[at].data,
                                       lambda kept, at=at: self.with_data(calls, at, kept))
                calls = replaced(calls, at, data)
        return calls

    def with_data(self, calls, at, data):
        return data if data and self.still_fails(replaced(calls, at, data)) else None

    def calm_bytes(self, calls):
        """Puts a harmless letter in the place of each byte that does not matter."""
        for at in range(len(calls)):
            if calls[at].verb != "parse":
                continue
            for i in range(len(calls[at].data)):
                data = calls[at].data
                calmed = data[:i] + HARMLESS + data[i + 1:]
                if calmed != data and self.with_data(calls, at, calmed):
                    calls = replaced(calls, at, calmed)
        return calls


def next_chunk(calls, at):
    """Index of the next chunk for the parser that call `at` feeds; None if there is none."""
    if calls[at].verb != "parse":
        return None
    return next((i for i in range(at + 1, len(calls))
                 if calls[i].verb == "parse" and calls[i].handle == calls[at].handle), None)


def replaced(calls, at, data):
    return calls[:at] + [calls[at]._replace(data=data)] + calls[at + 1:]

"""The settings behind a cue's end time, as far as a record shows them."""

from .failures import AT, OutOfRange
from .text import pop_item, split_at
from .values import get_percentage, str_to_double

START, MIDDLE, END, LEFT, RIGHT = range(5)
ALIGNMENTS = {b"start": START, b"middle": MIDDLE, b"end": END, b"left": LEFT, b"right": RIGHT}
VERTICALS = {b"lr": 1, b"rl": 2}


class Settings:
    def __init__(self, out):
        self.out = out
        self.vertical = 0
        self.line = 100.0
        self.snap_to_lines = True
        self.size = 100.0
        self.position = 50.0
        self.position_set = False
        self.text_align = MIDDLE

    def parse(self, text):
        """A whole settings list. A position that is not given follows the text alignment."""
        last = False
        while not last:
            item, text, last = pop_item(text)
            self.parse_item(item)
        if not self.position_set:
            if self.text_align in (START, LEFT):
                self.position = 0.0
            elif self.text_align in (END, RIGHT):
                self.position = 100.0

    def parse_item(self, item):
        if len(item) <= 2:
            return
        name, value = split_at(item, b":")
        if value is None or not name:
            self.out.error(b"Item is Empty")
        elif not value:
            self.out.error(b"Item %s value is empty!" % name)
        elif name == b"vertical":
            self.vertical = VERTICALS.get(value, self.vertical)
        elif name == b"line":
            self.parse_line(value)
        elif name == b"size":
            self.parse_size(value)
        elif name == b"position":
            self.parse_position(value)
        elif name == b"align":
            self.text_align = ALIGNMENTS.get(value, START)

    def parse_line(self, value):
        # Before anything is looked at: a line setting that is dropped still snaps.
        self.snap_to_lines = True
        number, _ = split_at(value, b",")
        if not number:
            raise OutOfRange(AT)
        sign = 1.0
        if number.startswith(b"-"):
            number, sign = number[1:], -1.0
            if not number:
                raise OutOfRange(AT)
        if number.endswith(b"%"):
            percent = get_percentage(number, self.out)
            if percent is None:
                return
            percent *= sign
            if percent < 0.0 or percent > 100.0:
                # This message ends in a line feed of its own, so an empty line follows.
                self.out.error(b"dPos %f out of range [0.0, 100.0]\n" % percent)
                return
            self.snap_to_lines = False
            self.line = percent
        else:
            line = str_to_double(number, self.out)
            if line is not None:
                self.line = line * sign

    def parse_size(self, value):
        size = get_percentage(value, self.out)
        if size is None:
            self.out.error(b"Invalid SIZE value string " + value)
        else:
            self.size = size

    def parse_position(self, value):
        number, _ = split_at(value, b",")
        position = get_percentage(number, self.out)
        # Written so that not-a-number, which is neither below 0 nor above 100, is taken.
        if position is None or position < 0.0 or position > 100.0:
            return
        self.position = position
        self.position_set = True

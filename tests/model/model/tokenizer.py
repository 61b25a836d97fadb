"""Cuts one token off the front of a payload.

Eight states. Each call of a state's function looks at the characters from `position` on until
the token is ready or the state changes. The odd ways to end near the last character are meant:
hosts see them as stray characters in the text.
"""

STRING, START_TAG, END_TAG, TIMESTAMP, NOTHING = "string", "start", "end", "timestamp", "nothing"

REFERENCES = {
    b"&amp": b"&",
    b"&lt": b"<",
    b"&gt": b">",
    b"&lrm": b"\xe2\x80\x8e",
    b"&rlm": b"\xe2\x80\x8f",
    b"&nbsp": b"\xc2\xa0",
}


class Tokenizer:
    def __init__(self, text):
        self.text = text
        self.position = 0      # in the end: how many characters the token took
        self.stop = False      # the end of the text or a closing ">" was met
        self.state = self.data
        self.kind = None       # set when the token is ready
        self.reference = b""   # a character reference not yet closed
        self.result = b""      # the text, or the name of the tag

    def run(self):
        while self.kind is None:
            self.state()
        return self.kind, self.result, self.position

    def current(self):
        """The character at the position; at the end none, and the stop is set."""
        if self.position >= len(self.text):
            self.stop = True
        return self.text[self.position:self.position + 1]

    def advance(self):
        self.position += 1
        if self.position == len(self.text):
            self.stop = True

    def data(self):
        while self.state == self.data:
            c = self.current()
            if self.stop:
                self.kind = STRING
                return
            if c == b"<" and self.result:
                self.kind = STRING
                return
            if c == b"&":
                self.state, self.reference = self.escape, c
            elif c == b"<":
                self.state = self.tag
            else:
                self.result += c
            self.advance()

    def escape(self):
        while self.state == self.escape:
            c = self.current()
            if self.stop or c == b"<":
                self.result += self.reference
                self.kind = STRING
                return
            if c == b"&":
                self.result += self.reference
                self.reference = c
            elif c.isalnum():
                self.reference += c
            elif c == b";":
                self.result += REFERENCES.get(self.reference, self.reference + c)
                self.state = self.data
            else:
                # The "&" and the name so far vanish.
                self.result += c
                self.state = self.data
            self.advance()

    def tag(self):
        """The one character behind "<"."""
        c = self.current()
        if self.stop:
            self.kind = START_TAG
            return
        if c in (b"\t", b"\n", b"\f", b" "):
            self.state = self.annotation
        elif c == b".":
            self.state = self.tag_class
        elif c == b"/":
            self.state = self.end_tag
        elif c.isdigit():
            self.state = self.timestamp
            self.result += c
        elif c == b">":
            self.stop = True
        else:
            self.state = self.start_tag
            return
        # The payload's last character is looked at but not taken.
        if self.position == len(self.text) - 1:
            self.stop = True
        else:
            self.position += 1

    def start_tag(self):
        while self.state == self.start_tag:
            c = self.current()
            if self.stop:
                self.kind = START_TAG
                return
            if c in (b"\t", b"\n", b"\f", b" "):
                self.state = self.annotation
            elif c == b".":
                self.state = self.tag_class
            elif c == b">":
                self.stop = True
            else:
                self.result += c
            # One character early: the payload's last one is never part of a start tag, unless
            # it is the first letter of the name.
            self.position += 1
            if self.position == len(self.text) - 1:
                self.stop = True

    def tag_class(self):
        """Class names are recorded in the cue, where no host can see them."""
        while not self.stop:
            c = self.current()
            if c == b"\n":
                self.kind = NOTHING
            elif c in (b"\t", b"\f", b" "):
                self.state = self.annotation
            elif c == b">":
                self.stop = True
            self.advance()
            if self.kind or self.state != self.tag_class:
                return
        self.kind = START_TAG

    def annotation(self):
        while not self.stop:
            self.stop = self.current() == b">"
            self.advance()
        self.kind = START_TAG

    def end_tag(self):
        self.read_name()
        self.kind = END_TAG

    def timestamp(self):
        self.read_name()
        self.kind = TIMESTAMP

    def read_name(self):
        """Everything up to ">" or the end."""
        while not self.stop:
            c = self.current()
            if c == b">":
                self.stop = True
            else:
                self.result += c
            self.advance()

"""Lines out of chunks, and what is carried from one chunk to the next."""

from .failures import OutOfMemory
from .text import c_string

LF, CR = b"\n", b"\r"


class LineCollector:
    """The unread part of the current chunk and the text carried over from earlier ones."""

    def __init__(self, out, memory):
        self.out = out
        self.memory = memory
        self.unread = b""
        self.pending_cr = False  # a chunk ended with a carriage return
        self.carried = None      # None, or a text without zero bytes, which may be empty
        self.line_count = 0

    def take_chunk(self, chunk):
        """A line feed right behind a carriage return of an earlier chunk is dropped.

        A chunk that begins with anything else leaves the flag as it is, so the carriage return
        can still swallow a line feed many chunks later.
        """
        if self.pending_cr and chunk.startswith(LF):
            self.pending_cr = False
            chunk = chunk[1:]
        self.unread = chunk

    def collect_line(self):
        """The next complete line, ended by a line feed; None when there is none left.

        A zero byte ends the line for everyone who looks at it, its line feed included. A line
        for which there is no memory stays unread.
        """
        ends = [i for i in (self.unread.find(LF), self.unread.find(CR)) if i >= 0]
        if not ends:
            return None
        length = min(ends)
        line, rest = self.unread[:length], self.unread[length + 1:]
        if self.unread[length:length + 1] == CR:
            if not rest:
                self.pending_cr = True
            elif rest.startswith(LF):
                rest = rest[1:]
        if self.memory.fails():
            self.out.error(b"Alloc %d B memory failed" % (length + 1))
            raise OutOfMemory
        if not rest:
            self.out.error(b"Buffer Exhausted")
        self.unread = rest
        self.line_count += 1
        return c_string(line + LF)

    def take_carried(self):
        """The carried text, None if there is none; it is gone afterwards."""
        carried, self.carried = self.carried, None
        return carried

    def carry(self, prefix):
        """Carry the prefix and the unread tail, replacing what was carried before.

        The tail's bytes are kept as they came, but are read back up to the first zero byte.
        """
        text = prefix + self.unread
        self.carried = None
        if text and self.memory.fails():
            raise OutOfMemory
        self.carried = c_string(text) if text else None

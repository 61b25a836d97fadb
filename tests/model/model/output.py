"""What the module writes on standard output."""

PREFIX = b"[WEBVTT] ERR:: "


class Output:
    """Collects the bytes in the order in which they are written, whichever stream they take."""

    def __init__(self):
        self._bytes = bytearray()
        self.on_step = None

    def step(self):
        """Memory may run out here, and in front of whatever is written."""
        if self.on_step:
            self.on_step()

    def write(self, data):
        self.step()
        self._bytes += data

    def line(self, text):
        """A trace line, as the value parsers and the timestamp map write them."""
        self.write(text + b"\n")

    def error(self, message):
        """An error line. Good news ("FINISHED") wears the same prefix."""
        self.write(PREFIX + message + b"\n")

    def take(self):
        """The bytes written since the last take."""
        taken = bytes(self._bytes)
        self._bytes.clear()
        return taken

"""The exceptions, as far as anyone can tell them apart."""


class InputFailure(Exception):
    """The module's runtime or invalid-argument exception. Caught around one cue block."""


class OutOfMemory(Exception):
    """The module's bad-allocation exception. An unknown start tag raises it too.

    Where the module does not catch it, a host sees the standard library's.
    """


class NoMemory(Exception):
    """The standard library's own error. The module never catches it: the host does."""


class OutOfRange(Exception):
    """The standard library's out-of-range error. The module never catches it: the host does."""

    def __init__(self, what):
        super().__init__(what)
        self.what = what


AT = "basic_string::at"
SUBSTR = "basic_string::substr"

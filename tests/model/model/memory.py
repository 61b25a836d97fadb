"""Where the module needs memory, and that it may have none at one of these places."""


class Memory:
    """Counts the places that a call passes; the one that fails has a number from 1 on.

    A place is a purpose, not an allocation: the module may have its memory already, and passes the
    place without asking. But if an allocation of its fails, it fails at one of these.
    """

    def __init__(self):
        self.start()

    def start(self, failing=0):
        """For the next call."""
        self.failing = failing
        self.passed = 0

    def fails(self):
        self.passed += 1
        return self.passed == self.failing

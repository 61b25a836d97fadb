"""What the tests of the guard have in common. The environment gives them:

GUARD the guard's file, GUARD_SOURCE the top folder, GUARD_MISTAKES the folder of the built hosts of
examples/mistakes, GUARD_EMULATOR what runs programs of the target, if anything, GUARD_SANITIZE the
sanitizers of the build, if any, GUARD_COUNTS 1 where lines are counted. What a test needs besides, it
names itself.
"""

import os
import pathlib
import subprocess
import tempfile
import unittest

GUARD = os.environ["GUARD"]
SOURCE = pathlib.Path(os.environ["GUARD_SOURCE"])
SAMPLES = SOURCE / "samples"
EMULATOR = os.environ["GUARD_EMULATOR"].split()
SANITIZED = "address" in os.environ["GUARD_SANITIZE"]

# Each mistake's host, in C.
MISTAKES = sorted((SOURCE / "examples/mistakes").glob("*.c"))
# A sanitizer has a heap of its own, which knows by itself what was not its, and gives no address
# again soon.
ONLY_WITHOUT_SANITIZER = {"H104_given_again", "H122_record_freed"}


def mistake(name):
    """The built host of that name."""
    return pathlib.Path(os.environ["GUARD_MISTAKES"]) / name


def run(*command, cwd=None, preexec=None, **variables):
    """Runs a program of the target. Hosts that make mistakes leave memory behind."""
    return subprocess.run([*EMULATOR, *map(str, command)], check=False, timeout=60,
                          capture_output=True, cwd=cwd, preexec_fn=preexec,
                          env={**os.environ, "ASAN_OPTIONS": "detect_leaks=0", **variables})


class FolderTest(unittest.TestCase):
    """With a folder of its own, and a place for a log in it."""
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.log = self.folder / "session.log"

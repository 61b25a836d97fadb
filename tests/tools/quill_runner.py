"""Runs quill the way a user does. Where it is and what to test it with comes from the environment,
which ctest sets (tests/tools/CMakeLists.txt lists it): QUILL, QUILL_SANITIZE, QUILL_SLOW, what single tests
need and, for a build for another machine, QUILL_EMULATOR."""

import collections
import os
import re
import select
import subprocess
import tempfile
import time
import unittest

QUILL = os.environ["QUILL"]
MODULE = os.path.join(os.path.dirname(QUILL), "quillcaption.so")
EMULATOR = os.environ.get("QUILL_EMULATOR", "").split()

# A sanitizer reports a crash itself, and keeps a heap of its own.
SANITIZED = bool(os.environ.get("QUILL_SANITIZE"))

# An emulator, a sanitizer and a build without optimisation take several times as long. Of what a test
# repeats with ever other input, a part will do there.
SLOW = os.environ["QUILL_SLOW"] == "1"

# Seconds, longer than any run takes, so that a hang is a failure and not the end of the tests. On a busy
# machine all cases of quill conform have taken more than 60 under an emulator.
PATIENCE = 240 if EMULATOR else 60

Result = collections.namedtuple("Result", "code out err")


def fixture(name):
    return os.path.join(os.environ["QUILL_FIXTURES"], name + ".so")


def broken(fault):
    """What makes the module "broken" do one thing wrong, as an environment."""
    return dict(os.environ, BROKEN_MODULE_WRAPS=MODULE, BROKEN_MODULE_FAULT=fault)


def place(finding):
    """Where a finding that came as json is, as text has it: line, or line and column."""
    return ":".join(str(finding[key]) for key in ("line", "column") if key in finding)


def command(*arguments, quill=QUILL):
    return EMULATOR + [quill] + [str(argument) for argument in arguments]


class QuillTest(unittest.TestCase):
    """Has a folder of its own, and checks of every run that it did not crash."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def file(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def quill(self, *arguments, stdin=b"", quill=QUILL, **how):
        """Runs quill to its end. Its outputs may be given in `how`, else they are collected."""
        how.setdefault("stdout", subprocess.PIPE)
        how.setdefault("stderr", subprocess.PIPE)
        done = subprocess.run(command(*arguments, quill=quill), input=stdin, timeout=PATIENCE,
                              check=False, **how)
        return self.checked(Result(done.returncode, done.stdout, done.stderr or b""))

    def cues(self, track, *arguments, **how):
        """Runs `quill cues` on a track that is given as bytes, from a file."""
        return self.quill("cues", *arguments, self.file("track.vtt", track), **how)

    def scripted(self, track, *arguments, **how):
        """The same with the module whose behaviour the track dictates."""
        return self.cues(track, "--module", fixture("scripted"), *arguments, **how)

    def start(self, *arguments, **how):
        """Starts quill with pipes on all sides, for tests that talk with it while it runs."""
        process = subprocess.Popen(command(*arguments), bufsize=0,
                                   **{"stdin": subprocess.PIPE, "stdout": subprocess.PIPE,
                                      "stderr": subprocess.PIPE, **how})
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        process.kill()
        process.wait()
        for pipe in (process.stdin, process.stdout, process.stderr):
            if pipe:
                pipe.close()

    def read_until(self, pipe, wanted):
        """Reads from a process that is still running until its output ends with `wanted`."""
        got = b""
        deadline = time.monotonic() + PATIENCE
        while not got.endswith(wanted):
            ready, _, _ = select.select([pipe], [], [], max(0, deadline - time.monotonic()))
            piece = os.read(pipe.fileno(), 65536) if ready else b""
            if not piece:
                self.fail(f"{wanted!r} did not come, only {got!r}")
            got += piece
        return got

    def finish(self, process):
        """Waits for the end of a process whose standard input was closed or is not read."""
        out = process.stdout.read() if process.stdout and not process.stdout.closed else None
        err = process.stderr.read()
        return self.checked(Result(process.wait(PATIENCE), out, err))

    def checked(self, result):
        self.assertGreaterEqual(result.code, 0, f"killed by a signal: {result.err!r}")
        self.assertNotIn(b"Sanitizer", result.err)
        self.assertNotIn(b"runtime error", result.err)
        return result

    def messages(self, result):
        """What quill itself said, without its name."""
        return re.findall("^quill: (.*)$", result.err.decode(), re.MULTILINE)

    def assert_fails(self, result, code, *words):
        """One message that holds all the words, and nothing on standard output."""
        self.assertEqual(result.code, code, result.err)
        messages = self.messages(result)
        self.assertEqual(len(messages), 1, result.err)
        for word in words:
            self.assertIn(word, messages[0])
        self.assertFalse(result.out)

"""docs/catalogue.md on two hosts of GNU parallel's own: the same totals as one run, also when the
run was stopped between."""

import json
import os
import re
import shutil
import subprocess
import unittest

from quill_runner import EMULATOR, QUILL, QuillTest

PAGE = os.path.join(os.environ["QUILL_DOCS"], "catalogue.md")
GOOD = b"WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"
LOST = GOOD.replace(b"Hello", b"<x>") + b"alone\n\n"

# What parallel calls instead of ssh: the "host" is this machine, and notes what it was given.
HOST = """#!/bin/sh
host=$1
shift 2  # and "--"
echo x >> "$HOSTS/$host"
exec sh -c "$*"
"""


def commands():
    """The commands of the page by the word that they begin with."""
    with open(PAGE, encoding="utf-8") as page:
        blocks = re.findall(r"```console\n(.*?)```", page.read(), re.DOTALL)
    lines = re.findall(r"^\$ (.*(?:\n> .*)*)", "".join(blocks), re.MULTILINE)
    return {command.split()[0]: command.replace("\n> ", "\n") for command in reversed(lines)}


@unittest.skipIf(EMULATOR, "the machines that this is for are the test's own")
class Hosts(QuillTest):
    def setUp(self):
        super().setUp()
        for name in ("samples", "build", "hosts", "bin"):
            os.mkdir(os.path.join(self.folder, name))
        os.symlink(QUILL, os.path.join(self.folder, "bin", "quill"))
        shell = self.file("host", HOST.encode())
        os.chmod(shell, 0o755)
        self.environment = dict(
            os.environ, SHELL="/bin/bash",  # without one, parallel says nothing and does nothing
            PARALLEL_SSH=shell, HOSTS=os.path.join(self.folder, "hosts"),
            PARALLEL_HOME=os.path.join(self.folder, "hosts"), hosts="1/alpha,1/beta",
            PATH=os.path.join(self.folder, "bin") + os.pathsep + os.environ["PATH"])
        for number in range(15):
            self.file(f"samples/{number:02}.vtt", GOOD if number % 3 else LOST)
        self.file("samples/it's 100%.vtt", LOST)
        self.commands = commands()

    def run_command(self, name, code=0):
        done = subprocess.run(["bash", "-c", self.commands[name]], cwd=self.folder, timeout=200,
                              env=self.environment, capture_output=True, check=False)
        self.assertEqual(done.returncode, code, done.stderr)

    def totals(self):
        self.run_command("jq")
        with open(os.path.join(self.folder, "build/totals.json"), encoding="utf-8") as file:
            return json.load(file)

    def expected(self):
        """What one run over everything says."""
        result = self.quill("check", "--format", "json", "samples", cwd=self.folder)
        last = json.loads(result.out.splitlines()[-1])
        return {"tracks": last["total"]["tracks"], "failed": last["total"]["failed"],
                "cues_delivered": last["sums"]["cues_delivered"],
                "lost": last["sums"]["lost"]["cues"], "codes": last["sums"]["codes"]}

    def test_the_totals_are_those_of_one_run(self):
        os.symlink("nowhere", os.path.join(self.folder, "samples", "broken.vtt"))
        self.run_command("find")
        self.run_command("parallel", code=1)  # which a track that cannot be checked is
        for host in ("alpha", "beta"):
            self.assertTrue(os.path.exists(os.path.join(self.folder, "hosts", host)), host)
        expected = self.expected()
        self.assertEqual(self.totals(), expected)
        self.assertEqual((expected["tracks"], expected["lost"], expected["failed"]), (16, 6, 1))
        # What is done is not done again.
        self.run_command("parallel")
        self.assertEqual(self.totals(), expected)

    def test_a_run_that_was_stopped_goes_on(self):
        self.run_command("find")
        whole = self.commands["parallel"]
        # A host that breaks down at its second job ends the run, as a power cut would.
        self.file("host", HOST.replace("exec", '[ $(wc -l < "$HOSTS/$host") -lt 2 ] || kill -9 $PARALLEL_PID\n'
                                       "exec").encode())
        self.commands["parallel"] = "(" + whole + "); true"
        self.run_command("parallel")
        self.assertLess(self.totals()["tracks"], 16)
        self.file("host", HOST.encode())
        self.commands["parallel"] = whole
        self.run_command("parallel")
        self.assertEqual(self.totals(), self.expected())


class Packages(unittest.TestCase):
    def test_they_are_there(self):
        for name in ("parallel", "jq"):
            self.assertTrue(shutil.which(name), f"scripts/setup test installs {name}")


if __name__ == "__main__":
    unittest.main()

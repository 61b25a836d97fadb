"""An installation of the build that is tested, in a folder of its own.

What ctest says in the environment: INSTALL_BUILD and INSTALL_SOURCE are the folders, INSTALL_CMAKE
and INSTALL_CPACK the programs, INSTALL_CC and INSTALL_CXX the compilers with their flags,
INSTALL_TOOLCHAIN the toolchain file, INSTALL_EMULATOR what runs programs of the target, if anything.
"""

import os
import pathlib
import subprocess
import tempfile
import unittest

BUILD = os.environ["INSTALL_BUILD"]
SOURCE = pathlib.Path(os.environ["INSTALL_SOURCE"])
CMAKE = os.environ["INSTALL_CMAKE"]
TOOLCHAIN = os.environ["INSTALL_TOOLCHAIN"]
FOR_THE_TARGET = [f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN}"] if TOOLCHAIN else []
EMULATOR = os.environ["INSTALL_EMULATOR"].split()
VERSION = os.environ["INSTALL_VERSION"]
DIALOGUE = SOURCE / "samples/dialogue.vtt"


def files_below(folder):
    """All files below a folder, relative to it."""
    folder = pathlib.Path(folder)
    return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file())


class InstallTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()

    def run_program(self, *command, **how):
        """Standard output of a program; the test fails with its output when it does."""
        done = subprocess.run([str(word) for word in command], check=False, timeout=100,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, **how)
        self.assertEqual(done.returncode, 0, (done.stdout + done.stderr).decode())
        return done.stdout.decode()

    def install(self, prefix, *options, **how):
        """cmake --install into a prefix below the test's folder; returns that folder."""
        prefix = self.folder / prefix
        self.run_program(CMAKE, "--install", BUILD, "--prefix", prefix, *options, **how)
        return prefix

    def assert_plays(self, *command):
        """The command shows the first caption of the sample in one of the two ways."""
        shown = self.run_program(*EMULATOR, *command)
        self.assertIn("The ferry is late again.\n", shown)

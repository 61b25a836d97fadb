"""What a compiler for the wrong target is told: by the public header, and by the configure step.

QUILLCAPTION_SOURCE is the source tree. Where the machine's own compiler is not a 64-bit one there is
nothing to refuse, and the tests are skipped.
"""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["QUILLCAPTION_SOURCE"])


def run(*command):
    environment = {name: value for name, value in os.environ.items()
                   if name not in ("CC", "CXX", "CFLAGS", "CXXFLAGS", "CMAKE_TOOLCHAIN_FILE")}
    environment["LC_ALL"] = "C"
    return subprocess.run([str(word) for word in command], env=environment,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def compiles_for_64_bits(compiler):
    if shutil.which(compiler) is None:
        return False
    return "__LP64__" in run(compiler, "-dM", "-E", "-x", "c", "/dev/null").stdout


@unittest.skipUnless(compiles_for_64_bits("gcc") and compiles_for_64_bits("g++"),
                     "the machine's own compiler is not a 64-bit one")
class Refusals(unittest.TestCase):
    def test_the_header_refuses_with_one_sentence(self):
        header = SOURCE / "include" / "quillcaption" / "quillcaption.h"
        for compiler, language, standard in (("gcc", "c", "c11"), ("g++", "c++", "c++17")):
            with self.subTest(language):
                result = run(compiler, "-fsyntax-only", "-x", language, f"-std={standard}", header)
                self.assertNotEqual(result.returncode, 0)
                self.assertEqual(re.findall(r"error: (.*)", result.stderr), [
                    '#error "quillcaption supports 32-bit (ILP32) targets only: compile for one, '
                    'for example with -m32"'])

    def configure(self, *options):
        with tempfile.TemporaryDirectory() as folder:
            result = run("cmake", "-G", "Ninja", "-S", SOURCE, "-B", folder,
                         "-DQUILLCAPTION_TESTS=OFF", "-DQUILLCAPTION_TOOLS=OFF", *options)
            commands = pathlib.Path(folder) / "compile_commands.json"
            result.commands = commands.read_text() if commands.exists() else ""
        # CMake breaks lines where it likes.
        result.text = " ".join(result.stderr.split())
        return result

    def test_the_configure_step_refuses_with_one_sentence(self):
        result = self.configure("-DCMAKE_C_COMPILER=gcc", "-DCMAKE_CXX_COMPILER=g++")
        self.assertNotEqual(result.returncode, 0)
        self.assertEqual(result.stderr.count("CMake Error"), 1, result.stderr)
        self.assertRegex(result.text, r"does not compile for a 32-bit \(ILP32\) target: .*"
                                      r"preset i386 or armhf")

    def test_without_a_compiler_of_ones_own_it_picks_i386(self):
        machine = run("uname", "-m").stdout.strip()
        if machine != "x86_64":
            self.skipTest("i386 is picked on x86-64 only")
        result = self.configure()
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn(" -m32 ", result.commands)

    def test_a_missing_package_is_named(self):
        """A compiler that knows the target but has no standard library for it."""
        result = self.configure("-DCMAKE_TOOLCHAIN_FILE=" +
                                str(SOURCE / "cmake" / "toolchains" / "i386.cmake"),
                                "-DCMAKE_CXX_FLAGS=-m32 -nostdinc++")
        self.assertNotEqual(result.returncode, 0)
        self.assertEqual(result.stderr.count("CMake Error"), 1, result.stderr)
        self.assertRegex(result.text, r"lacks its 32-bit standard library: .*g\+\+-<major>-multilib")


if __name__ == "__main__":
    unittest.main()

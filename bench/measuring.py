"""Runs the bench programs and counts their instructions; shared by the scripts of this folder.

i386 programs are counted by valgrind's callgrind, which takes the instructions of the one function
that matters. ARM programs run under qemu-arm with a small plugin, compiled here, that counts them
all; what lies outside that function is found by a run that leaves it out, and subtracted.
Both counts repeat from run to run, on a busy machine too.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

TREE = Path(__file__).resolve().parent.parent
MEASURED = "bench_measured"
# What dialogue is played: {name: (style of the track, subject)}, as the program "dialogue" knows
# them. The two limits come first; the module is counted in chunks of so many bytes.
LIMITS = {"scan": ("usual", "scan"), "copy": ("usual", "copy")}
DIALOGUES = {"64KB": ("usual", 65536), "1460B": ("usual", 1460), "crlf": ("crlf", 65536),
             "no-hours": ("no-hours", 65536), "four-settings": ("four-settings", 65536)}

ARM = 40  # the machine in an ELF header
HARD_FLOAT = 0x400  # among ARM's flags there


class Failure(Exception):
    """Something that the user must fix; told in one line."""
    status = 2


class Unable(Failure):
    """Something that cannot be measured here; ctest takes it for a test that is skipped."""
    status = 77


def run(command, **options):
    """Runs a command and returns the completed process; its output is kept."""
    try:
        done = subprocess.run([str(word) for word in command], capture_output=True, text=True,
                              stdin=subprocess.DEVNULL, check=False, **options)
    except FileNotFoundError as error:
        kind = Unable if error.filename == "valgrind" else Failure
        raise kind(f"{error.filename} is not here: scripts/setup test installs it") from error
    if done.returncode != 0:
        raise Failure(f"{' '.join(map(str, command))} ended with {done.returncode}:\n"
                      f"{done.stderr}{done.stdout}")
    return done


def numbers(text):
    """The "name number" lines that a bench program prints."""
    return {name: float(value) if "." in value else int(value)
            for name, value in (line.rsplit(" ", 1) for line in text.splitlines())}


class Build:
    """A build folder with the bench programs in it."""

    def __init__(self, folder):
        self.folder = Path(folder).resolve()
        self.programs = self.folder / "bench"
        if not (self.programs / "dialogue").exists():
            raise Failure(f"{self.folder} holds no bench programs: build it with "
                          "-DQUILLCAPTION_BENCH=ON")
        self.module = self.folder / "quillcaption.so"
        self.is_arm = elf_number(self.module, 18, 2) == ARM
        self._plugin = None

    @property
    def target(self):
        if not self.is_arm:
            return "i386"
        return "armhf" if elf_number(self.module, 36, 4) & HARD_FLOAT else "armel"

    def play(self, program, *arguments):
        """Runs a bench program and returns what it prints."""
        return self._run([self.folder / "run", self.programs / program, *arguments]).stdout

    def _run(self, command, **environment):
        """Runs a command in the build's folder, where the programs load the module by a name that is
        equally long for every build: where the heap's blocks lie depends on it, and counts on that."""
        return run(command, cwd=self.folder,
                   env={**os.environ, "QUILLCAPTION_MODULE": f"./{self.module.name}", **environment})

    def count(self, program, *arguments):
        """Counts the instructions of the part that matters. Returns (count, what was printed)."""
        return (self._count_arm if self.is_arm else self._count_i386)(program, arguments)

    def count_dialogue(self, style_and_subject, size):
        """Counts the instructions of one of LIMITS or DIALOGUES. Returns (a byte, a cue, fed)."""
        style, subject = style_and_subject
        count, fed = self.count("dialogue", "--style", style, "--only", subject, "--size", size)
        return count / fed["bytes"], count / fed["cues"], fed

    def time_dialogues(self, size):
        """The processor time of LIMITS and DIALOGUES in one run: {name: nanoseconds a byte}. Not of
        ARM programs, whose time under qemu is qemu's."""
        kinds = {name: f"{style}:{subject}"
                 for name, (style, subject) in (LIMITS | DIALOGUES).items()}
        words = [word for kind in kinds.values() for word in ("--time", kind)]
        times = numbers(self.play("dialogue", *words, "--size", size))
        return {name: times[kind] for name, kind in kinds.items()}

    def count_bytes_of_shapes(self, divisor):
        """What a byte of each shape costs, at a part of its n: {shape: instructions}. What the
        module prints is not counted, and its calls are counted apart. i386 only."""
        with tempfile.TemporaryDirectory() as folder:
            dump = Path(folder) / "out"
            done = self._run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={dump}",
                              f"--toggle-collect={MEASURED}", f"--dump-after={MEASURED}",
                              self.programs / "shape", "--all", divisor])
            shapes = [line.split("\t") for line in done.stdout.splitlines()]
            counts = [int(re.search(r"^totals: (\d+)$", Path(f"{dump}.{number}").read_text("utf-8"),
                                    re.M).group(1)) for number in range(1, 2 * len(shapes) + 1)]
        return {name: (whole - calls) / int(size) for (size, name), whole, calls
                in zip(shapes, counts[::2], counts[1::2])}

    def _count_i386(self, program, arguments):
        done = self._run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
                          f"--toggle-collect={MEASURED}", self.programs / program, *arguments])
        collected = int(re.search(r"Collected : (\d+)", done.stderr).group(1))
        if collected == 0:
            raise Failure(f"{program} has no function {MEASURED} that callgrind could find")
        return collected, numbers(done.stdout)

    def _count_arm(self, program, arguments):
        def count_all(passes):
            done = self._run([self.folder / "run", self.programs / program, *arguments,
                              "--passes", passes], QEMU_PLUGIN=self.plugin())
            counted = re.search(r"^instructions (\d+)$", done.stderr, re.M)
            if counted is None:
                raise Unable("this machine's qemu-arm takes no plugins, so nothing is counted")
            return int(counted.group(1)), done.stdout
        outside, _ = count_all(0)
        everything, printed = count_all(1)
        return everything - outside, numbers(printed)

    def plugin(self):
        """The plugin's file, compiled for this machine when first asked for."""
        if self._plugin is None:
            self._plugin = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
            run(["cc", "-shared", "-fPIC", "-O2", "-o", Path(self._plugin.name) / "counter.so",
                 TREE / "bench" / "instruction_counter.c"])
        return Path(self._plugin.name) / "counter.so"


def elf_number(path, offset, size):
    """A number in the header of a 32-bit ELF file: its machine is at 18, the machine's flags at 36."""
    with open(path, "rb") as file:
        return int.from_bytes(file.read(52)[offset:offset + size], "little")


def parser_for(script_doc):
    """An argument parser with the options that every script has."""
    parser = argparse.ArgumentParser(description=script_doc,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", metavar="DIR", default=TREE / "build" / "i386",
                        help="the build folder to measure (build/i386)")
    return parser


def main(body):
    """Runs a script's body; its result is the exit status."""
    sys.stdout.reconfigure(line_buffering=True)
    os.environ.pop("LD_BIND_NOW", None)
    try:
        sys.exit(body())
    except Failure as failure:
        print(f"{Path(sys.argv[0]).name}: {failure}", file=sys.stderr)
        sys.exit(failure.status)
    except KeyboardInterrupt:
        sys.exit(130)

"""Runs the player program, which makes a script's calls through the loaded module."""

import shlex
import subprocess

from script import format_script

ENDINGS = ("ret", "done", "throw")
BATCH_TIMEOUT = 600  # seconds: only a parser that hangs takes that long
SCRIPT_TIMEOUT = 60


class PlayerError(Exception):
    """The player could not do its work at all."""


class Player:
    def __init__(self, program, module, emulator=""):
        self.command = shlex.split(emulator) + [program, module]

    def play_one(self, calls):
        return self.play([calls])[0]

    def play(self, scripts):
        """One report for each script: the lines of each call, as model.module.Module gives them.

        Scripts behind a crash are played again in a new process. A crash itself becomes the last
        "call" of the script in which it happened.
        """
        reports = []
        while len(reports) < len(scripts):
            rest = scripts[len(reports):]
            played, crash = self.run(rest)
            if crash and len(played) == len(rest):
                # Every script came to its end, and then the process failed, as after a leak.
                if len(rest) > 1:
                    return reports + [self.play_one(calls) for calls in rest]
                played[-1].append([crash])
            elif len(played) < len(rest) and not crash:
                raise PlayerError("the player stopped early without an error")
            reports += played
        return reports

    def run(self, scripts):
        """(reports up to the first crash, what happened or None)."""
        batch = "".join(f"script {number}\n{format_script(calls)}end\n"
                        for number, calls in enumerate(scripts))
        timeout = BATCH_TIMEOUT if len(scripts) > 1 else SCRIPT_TIMEOUT
        try:
            done = subprocess.run(self.command, input=batch.encode(), capture_output=True,
                                  timeout=timeout, check=False)
            output, errors, code = done.stdout, done.stderr, done.returncode
        except subprocess.TimeoutExpired as late:
            output, errors, code = late.stdout or b"", b"", None
        except OSError as error:
            raise PlayerError(f"cannot run {self.command[0]}: {error.strerror}") from error
        if code == 2:
            raise PlayerError(errors.decode(errors="replace").strip())
        crash = None
        if code is None:
            crash = f"no end within {timeout} s"
        elif code != 0:
            crash = f"the player ended with {code}: {errors.decode(errors='replace').strip()}"
        reports, unfinished = split_report(output.decode("ascii", errors="replace"))
        if crash and unfinished is not None:
            reports.append(unfinished + [[crash]])
        return reports, crash


def split_report(text):
    """(reports of the finished scripts, report of the unfinished one or None)."""
    finished, current, lines = [], None, []
    for line in text.splitlines():
        if line.startswith("script "):
            current, lines = [], []
        elif line == "end":
            finished.append(current)
            current = None
        else:
            lines.append(line)
            if line.startswith(ENDINGS):
                current.append(lines)
                lines = []
    if current is not None and lines:
        current.append(lines)
    return finished, current

"""What quill says of a module that crashes, hangs or ends the process, and that it ends with a known
code whatever a module does."""

import os
import resource
import signal
import time
import unittest

import damaged_modules
from quill_runner import MODULE, PATIENCE, SANITIZED, QuillTest, broken, fixture

# The broken module does one thing wrong when it sees a certain text, which stands in line 7.
TRACK = (b"WEBVTT\n\n00:01.000 --> 00:02.000\nfine\n\n"
         b"00:02.000 --> 00:03.000\n%s\n\n00:03.000 --> 00:04.000\nfine\n\n")
TEXTS = {"crash": b"&nbsp;", "exit": b"NOTE", "hang": b"&lrm;"}
ENDS = {"crash": "crashed by SIGSEGV", "exit": "ended the process", "hang": "hung"}
WAY_OUT = "; build the module again, or copy it again, and try it with quill conform"
COMMANDS = (("cues",), ("check",), ("check", "--chunk", "16"), ("fix", "--dry-run"), ("report",))


def children_of(process):
    with open(f"/proc/{process}/task/{process}/children", encoding="ascii") as file:
        return [int(child) for child in file.read().split()]


class Apart(QuillTest):
    def run_broken(self, fault, *arguments, **how):
        limit = ("--timeout", "1") if fault.startswith("hang") else ()
        return self.quill(*arguments, "--module", fixture("broken"), *limit, env=broken(fault), **how)


class OfModules(Apart):
    def test_what_ends_a_call(self):
        for fault, text in TEXTS.items():
            if SANITIZED and fault == "crash":  # which the sanitizer reports as its own find
                continue
            track = self.file("track.vtt", TRACK % text)
            for command in COMMANDS if fault == "exit" else COMMANDS[:2]:
                with self.subTest(fault=fault, command=command):
                    result = self.run_broken(fault, *command, track)
                    self.assert_fails(result, 3, f"broken.so {ENDS[fault]} in pfnParse on the block "
                                      f"at line 6 of {track}{WAY_OUT}")
                    self.assertEqual("--timeout gives" in self.messages(result)[0], fault == "hang")

    def test_what_ends_loading_and_unloading(self):
        track = self.file("track.vtt", TRACK % b"x")
        for fault, words in (("crash-at-load", "crashed by SIGSEGV while it was loaded; build"),
                             ("exit-at-load", "ended the process while it was loaded; build"),
                             ("hang-at-load", "while it was loaded; build"),
                             ("crash-at-unload", "crashed by SIGSEGV while it was unloaded; build"),
                             ("hang-at-unload", "hung while it was unloaded; build"),
                             ("crash-at-the-end", "crashed by SIGSEGV at the end of the process")):
            if SANITIZED and fault.startswith("crash"):
                continue
            for command in ("cues", "check"):
                if (fault, command) == ("crash-at-the-end", "check"):  # whose processes leave it out
                    continue
                with self.subTest(fault=fault, command=command):
                    result = self.run_broken(fault, command, track)
                    self.assertEqual(result.code, 3)
                    self.assertIn(words, self.messages(result)[-1])

    def test_what_it_starts_ends_with_it(self):
        # The process that is left has the standard error of quill, whose end the test waits for.
        result = self.run_broken("fork", "cues", self.file("track.vtt", TRACK % b"NOTE"))
        self.assertEqual((result.code, result.out.count(b"-->")), (0, 3))

    def test_nothing_is_written_of_a_module_that_does_not_load(self):
        result = self.run_broken("exit-at-load", "check", "--format", "sarif",
                                 self.file("track.vtt", TRACK % b"x"), self.file("other.vtt", b"x"))
        self.assert_fails(result, 3, "ended the process while it was loaded")

    def test_standard_input_has_no_second_time(self):
        track = TRACK % TEXTS["exit"]
        result = self.run_broken("exit", "cues", "-", stdin=track)
        self.assert_fails(result, 3, "broken.so ended the process in pfnParse on bytes 0 to "
                          f"{len(track) - 1} of standard input{WAY_OUT}")

    def test_what_came_before_stays(self):
        track = self.file("track.vtt", TRACK % TEXTS["exit"])
        result = self.run_broken("exit", "cues", "--chunk", "44", track)
        self.assertEqual((result.code, result.out),
                         (3, b"00:00:01.000 --> 00:00:02.000\n  fine\n\n"))

    def test_a_verdict_of_inspect_comes_in_time(self):
        started = time.monotonic()
        self.quill("inspect")
        usual = time.monotonic() - started  # next to nothing, unless the machine is busy
        started = time.monotonic()
        result = self.quill("inspect", fixture("broken"), env=broken("hang-at-load"))
        self.assertEqual(result.code, 3)
        self.assertIn(b"load: the module did not end in time while it was loaded", result.out)
        self.assertLess(time.monotonic() - started, 10 + 3 * usual)

    def test_damaged_files(self):
        with open(MODULE, "rb") as file:
            module = file.read()
        path = self.file("m.so", module[:1500])
        for command in ("cues", "check"):
            with self.subTest(command):
                result = self.quill(command, "--module", path, self.file("track.vtt", TRACK % b"x"))
                self.assert_fails(result, 3, "m.so is damaged: ", "outside of the file; build it again")

    def test_versions_in_a_circle_take_no_time(self):
        # A table of versions whose records overlap was read once for each of their bytes.
        self.assertLess(damaged_modules.seconds_of_inspecting(self.folder), 5)

    @unittest.skipIf(SANITIZED, "the sanitizer has words and exit codes of its own")
    def test_copies_that_are_damaged_anywhere(self):
        outcomes = damaged_modules.try_all(range(16), self.folder)
        self.assertEqual(damaged_modules.faults_of(outcomes), [])


class OfUsers(Apart):
    """A process more changes nothing for who uses quill."""

    def test_signals_end_both_processes(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGKILL):
            with self.subTest(number):
                process = self.start("cues", "--quiet", "-")
                process.stdin.write(TRACK % b"x")
                self.read_until(process.stdout, b"fine\n\n")
                children = children_of(process.pid)
                self.assertEqual(len(children), 1)
                os.kill(process.pid, number)
                self.assertEqual(process.wait(PATIENCE), -number)
                self.assertEqual(process.stdout.read(), b"")  # the other process has closed it too
                self.assertEqual(process.stderr.read(), b"")

    def test_a_signal_for_the_other_process_is_passed_on(self):
        process = self.start("cues", "--quiet", "-")
        process.stdin.write(TRACK % b"x")
        self.read_until(process.stdout, b"fine\n\n")
        os.kill(children_of(process.pid)[0], signal.SIGTERM)
        self.assertEqual((process.wait(PATIENCE), process.stderr.read()), (-signal.SIGTERM, b""))

    def test_the_limit_is_not_for_the_input(self):
        process = self.start("cues", "--timeout", "1", "-")
        process.stdin.write(TRACK[:40])
        time.sleep(2.5)
        process.stdin.write((TRACK % b"x")[40:])
        process.stdin.close()
        result = self.finish(process)
        self.assertEqual((result.code, result.out.count(b"-->")), (0, 3))

    @unittest.skipIf(SANITIZED, "the sanitizer needs descriptors as well")
    def test_too_few_descriptors_are_not_the_modules_fault(self):
        track = self.file("track.vtt", TRACK % b"x")
        for arguments in (("conform", "--only", "times"), ("check", track), ("cues", track)):
            for most in range(4, 9):
                with self.subTest(arguments=arguments, most=most):
                    result = self.quill(*arguments, preexec_fn=lambda most=most: resource.setrlimit(
                        resource.RLIMIT_NOFILE, (most, most)))
                    self.assertIn(result.code, (0, 2), result)
                    if result.code == 2:
                        self.assertRegex(self.messages(result)[-1], "Too many open files")

    @unittest.skipIf(SANITIZED, "the counts of lines are files as well")
    def test_a_limit_on_the_size_of_files(self):
        track = self.file("track.vtt", TRACK % b"x")
        with open(self.file("out", b""), "wb") as out:
            result = self.quill("cues", "--quiet", track, stdout=out, preexec_fn=lambda:
                                resource.setrlimit(resource.RLIMIT_FSIZE, (60, 60)))
        self.assertEqual((result.code, self.messages(result)),
                         (2, ["standard output: File too large; cues written: 1"]))


if __name__ == "__main__":
    unittest.main()

"""quill inspect: what it says of the module, of broken ones and of those for other machines."""

import concurrent.futures
import json
import os
import re
import shutil
import struct
import subprocess
import sys
import time
import unittest

from quill_runner import EMULATOR, MODULE, QUILL, SANITIZED, QuillTest, broken, fixture
from test_module import I386, MIPS, NAMES, ORDERS, X86_64, described, elf, own_header

FINE = "all is as the contract says"
FINE_AS_FILE = "what the file shows is as it must be"
PROGRAM = "a program, no caption module: only what starting it needs is looked at"
ENTRY_POINTS = (
    "IZorWebVtt_Parser_Create(unsigned int*)", "IZorWebVtt_Parser_Release(unsigned int)",
    "IZorWebVtt_Parser_rsltParse(unsigned int, void const*, unsigned int)",
    "IZorWebVtt_Parser_vSetWebvttEventNty("
    "unsigned int, void*, void (*)(WEBVTT_EVENT_T, void*, void*))",
    "IZorWebVtt_Parser_vGetParseResult(unsigned int)",
    "IZorWebVtt_Parser_vSetVideoPTS(unsigned int, unsigned long)")
SLOTS = ("pfnCreate", "pfnRelease", "pfnParse", "pfnSetEventNty", "pfnGetParseResult",
         "pfnSetVideoPTS")


def content(path):
    with open(path, "rb") as file:
        return file.read()


def readelf(*arguments):
    return subprocess.run(["readelf", "-W", *arguments], capture_output=True, text=True,
                          check=True).stdout


def highest(versions):
    """{"GLIBC": "2.34"} from "GLIBC_2.4", "GLIBC_2.34"."""
    found = {}
    for family, version in (name.rsplit("_", 1) for name in versions):
        numbers = [int(number) for number in version.split(".")]
        found[family] = max(found.get(family, [0]), numbers)
    return {family: ".".join(map(str, numbers)) for family, numbers in found.items()}


class Inspecting(QuillTest):
    def inspect(self, *arguments, code=0, **how):
        """(report, its problems): of text the lines behind the empty one."""
        result = self.quill("inspect", *arguments, **how)
        self.assertEqual(result.code, code, result)
        self.assertEqual(result.err, b"")
        report, _, problems = result.out.decode().partition("\n\n")
        return report, problems.splitlines()

    def inspect_json(self, *arguments, code=0, **how):
        result = self.quill("inspect", "--format", "json", *arguments, **how)
        self.assertEqual((result.code, result.err), (code, b""))
        self.assertEqual(result.out.count(b"\n"), 1)
        return json.loads(result.out)


class OfTheModule(Inspecting):
    def test_text(self):
        report, problems = self.inspect()
        self.assertEqual(problems, [FINE])
        name = NAMES[own_header()[2]]
        for line in (f"module      {MODULE}", f"file        32-bit {ORDERS[own_header()[1]]} {name}, shared object",
                     "exports     8", "            WEBVTT_MODULE_INFO, object of 144 bytes",
                     "            WebVtt_Module_Methods, object of 24 bytes",
                     "descriptor  WEBVTT_MODULE_INFO", "  offset 0  word 1",
                     "  offset 4  name quillcaption.so", "  offset 8  table WebVtt_Module_Methods",
                     "  offset 12 132 bytes, all zero", "table       WebVtt_Module_Methods"):
            self.assertIn(line, report.splitlines())
        for number, (slot, function) in enumerate(zip(SLOTS, ENTRY_POINTS)):
            self.assertIn(f"  offset {4 * number:<2} {slot} = {function}", report.splitlines())

    def test_json(self):
        report = self.inspect_json()
        self.assertEqual(list(report), ["module", "file", "processor", "loading", "needed",
                                        "versions", "exports", "sysroot", "loaded", "descriptor",
                                        "table", "notes", "problems"])
        self.assertEqual(report["file"], {"bits": 32, "byte_order": ORDERS[own_header()[1]],
                                          "machine": NAMES[own_header()[2]],
                                          "type": "shared object"})
        self.assertEqual((report["loaded"], report["sysroot"], report["notes"], report["problems"]),
                         (True, None, [], []))
        self.assertEqual(report["descriptor"], {"word": 1, "name": "quillcaption.so",
                                                "table": "WebVtt_Module_Methods",
                                                "zero_tail": True})
        self.assertEqual([(slot["slot"], slot["offset"], slot["function"])
                          for slot in report["table"]],
                         list(zip(SLOTS, range(0, 24, 4), ENTRY_POINTS)))

    def test_it_agrees_with_readelf(self):
        report = self.inspect_json()
        needed = re.findall(r"\(NEEDED\).*\[(.*)\]", readelf("-d", MODULE))
        self.assertEqual(report["needed"], needed)
        loaded = [(int(start, 16), int(start, 16) + int(size, 16)) for start, size in re.findall(
            r"LOAD +0x\w+ (0x\w+) 0x\w+ 0x\w+ (0x\w+)", readelf("-l", MODULE))]
        self.assertEqual(report["loading"]["memory"], max(end for _, end in loaded) - min(loaded)[0])
        versions = re.findall(r"Name: (\w+_[0-9.]+)", readelf("-V", MODULE))
        self.assertEqual(report["versions"], highest(versions))
        symbols = re.findall(r"(\d+) (OBJECT|FUNC) +(?:GLOBAL|WEAK) +DEFAULT +\d+ (\S+)",
                             readelf("--dyn-syms", MODULE))
        kinds = {"OBJECT": "object", "FUNC": "function"}
        self.assertEqual(sorted((one["symbol"], one["kind"], one["size"])
                                for one in report["exports"]),
                         sorted((name, kinds[kind], int(size)) for size, kind, name in symbols))

    def test_one_that_is_named(self):
        shutil.copy(MODULE, os.path.join(self.folder, "other name"))
        report, problems = self.inspect("other name", cwd=self.folder)
        self.assertEqual(problems, [FINE])
        self.assertIn("module      other name", report)

    def test_the_examples_of_the_help_work(self):
        text = self.quill("inspect", "--help").out.decode()
        os.makedirs(os.path.join(self.folder, "some/folder"))
        shutil.copy(MODULE, os.path.join(self.folder, "some/folder"))
        lines = re.findall("^  quill (inspect.*)$", text, re.MULTILINE)
        self.assertEqual(len(lines), 4)
        for line in lines:
            if "--sysroot /" in line and EMULATOR:
                continue  # the libraries are not this machine's own
            result = self.quill(*line.split(), cwd=self.folder)
            self.assertEqual((result.code, result.err), (0, b""), line)

    def test_wrong_usage(self):
        for arguments, words in ((("--format", "xml"), '--format takes text or json, not "xml"'),
                                 ((MODULE, "other"), "other"), (("--module", MODULE), "--module")):
            self.assert_fails(self.quill("inspect", *arguments), 2, words, "--help")


class OfBrokenModules(Inspecting):
    def test_what_is_wrong_is_named(self):
        for fault, code, problem in (
                ("", 0, FINE),
                ("word", 1, "descriptor: the word at offset 0 is 2, not 1"),
                ("name", 1, 'descriptor: the name at offset 4 is "other.so", '
                            'not "quillcaption.so"'),
                ("null-name", 1, 'descriptor: the name at offset 4 is null, not "quillcaption.so"'),
                ("tail", 1, "descriptor: the byte at offset 143 is 7, not 0"),
                ("second-table", 1, "descriptor: the pointer at offset 8 does not point at "
                                    "WebVtt_Module_Methods"),
                ("unnamed-slot", 1, "table: pfnSetVideoPTS at offset 20 does not point at " +
                                    ENTRY_POINTS[5]),
                ("empty-slot", 1, "table: pfnSetVideoPTS at offset 20 is empty")):
            with self.subTest(fault):
                _, problems = self.inspect(fixture("broken"), code=code, env=broken(fault))
                self.assertEqual(problems, [problem])

    def test_swapped_slots(self):
        report, problems = self.inspect(fixture("broken"), code=1, env=broken("swapped-slots"))
        self.assertIn(f"  offset 4  pfnRelease = {ENTRY_POINTS[4]}", report)
        self.assertEqual(problems, [
            f"table: pfnRelease at offset 4 points at {ENTRY_POINTS[4]}, not at {ENTRY_POINTS[1]}",
            f"table: pfnGetParseResult at offset 16 points at {ENTRY_POINTS[1]}, "
            f"not at {ENTRY_POINTS[4]}"])

    @unittest.skipIf(SANITIZED, "the sanitizer turns the crash into an exit")
    def test_crashes_are_told(self):
        for fault, code, problem in (
                ("wild-name", 3, "load: the module crashed by SIGSEGV while it was loaded and its "
                                 "descriptor was read"),
                ("crash-at-load", 3, "load: the module crashed by SIGSEGV while it was loaded and "
                                     "its descriptor was read"),
                ("crash-at-unload", 1, "unload: the module crashed by SIGSEGV while it was "
                                       "unloaded")):
            with self.subTest(fault):
                result = self.quill("inspect", fixture("broken"), env=broken(fault))
                self.assertEqual(result.code, code)
                self.assertEqual(result.out.decode().splitlines()[-1], problem)

    def test_hangs_end_in_time(self):
        words = "did not end in time while it was"
        faults = (("hang-at-load", 3, f"load: the module {words} loaded and its descriptor was read"),
                  ("hang-at-unload", 1, f"unload: the module {words} unloaded"))
        began = time.monotonic()
        with concurrent.futures.ThreadPoolExecutor() as pool:
            results = list(pool.map(lambda fault: self.quill("inspect", fixture("broken"), env=broken(fault[0])),
                                    faults))
        self.assertLess(time.monotonic() - began, 25)  # ten, and what a busy machine takes
        for result, (_, code, problem) in zip(results, faults):
            self.assertEqual((result.code, result.out.decode().splitlines()[-1]), (code, problem))

    def test_modules_that_lack_something(self):
        for name, code, problem in (
                ("without_descriptor", 1, "exports: WEBVTT_MODULE_INFO is missing: this is no "
                                          "caption module"),
                ("without_table", 1, "descriptor: the pointer at offset 8 is null, not "
                                     "WebVtt_Module_Methods"),
                ("with_unknown_symbol", 3, "a_function_that_nobody_has")):
            with self.subTest(name):
                _, problems = self.inspect(fixture(name), code=code)
                self.assertIn(problem, "\n".join(problems))

    def test_both_kinds_of_hash_tables(self):
        self.assertIn("(HASH)", readelf("-d", fixture("with_old_hash_table")))
        for name in ("without_table", "with_old_hash_table"):
            with self.subTest(name):
                report, _ = self.inspect(fixture(name), code=1)
                self.assertIn("            WEBVTT_MODULE_INFO, object of 144 bytes", report)

    def test_what_a_module_prints_is_kept_away(self):
        report, _ = self.inspect(fixture("scripted"), code=1)
        self.assertNotIn("loaded\n", report)

    def test_names_cannot_reach_the_terminal(self):
        name = b"WebVtt_Module_Methods"
        path = self.file("m.so", content(MODULE).replace(name, b"\x1b[2J" + name[4:]))
        result = self.quill("inspect", path)
        self.assertNotIn(b"\x1b", result.out)
        self.assertIn(rb"\x1b[2Jtt_Module_Methods", result.out)
        self.assertIn("exports: WebVtt_Module_Methods is missing", result.out.decode())
        self.assertNotIn(b"\x1b", self.quill("inspect", "--format", "json", path).out)


class OfOtherFiles(Inspecting):
    def test_files_that_cannot_be_read(self):
        for path, words in ((self.folder + "/none.so", "cannot read the module"),
                            (self.folder, "not a regular file"), ("/dev/null", "not a regular file"),
                            (self.file("a.so", b""), "not an ELF file"),
                            (self.file("b.so", b"#!/bin/sh\n"), "not an ELF file")):
            with self.subTest(path):
                self.assert_fails(self.quill("inspect", path), 3, path, words)

    def building_machine_of(self, path):
        """The name of the machine of a program or library that this Python uses."""
        start = content(path)[:20]
        if start[4] != 2:
            self.skipTest("this Python is no 64-bit program")
        return {X86_64: "x86-64", 183: "AArch64"}[struct.unpack("<H", start[18:])[0]]

    def test_a_program_of_the_building_machine(self):
        path = os.path.realpath(sys.executable)
        machine = self.building_machine_of(path)
        report, problems = self.inspect(path)
        self.assertIn(f"file        64-bit little-endian {machine}, ", report)
        self.assertIn(f"note        {PROGRAM}", report.splitlines())
        self.assertEqual(problems, [FINE_AS_FILE])
        found = self.inspect_json(path)
        self.assertEqual((found["file"]["bits"], found["loaded"], found["descriptor"]), (64, None, None))
        self.assertEqual(found["needed"], re.findall(r"\(NEEDED\).*\[(.*)\]", readelf("-d", path)))
        self.assertIn("libc.so.6", found["needed"])
        self.assertGreaterEqual(float(found["versions"]["GLIBC"]), 2)

    def test_a_library_of_the_building_machine(self):
        with open("/proc/self/maps", encoding="utf-8") as file:
            path = re.search("/.*/libc[.-].*", file.read()).group()
        machine = self.building_machine_of(path)
        report, problems = self.inspect(path, code=1)
        self.assertEqual(problems, [
            "exports: WEBVTT_MODULE_INFO is missing: this is no caption module",
            "machine: it is a 64-bit file, and a module's hosts are 32-bit programs"])
        self.assertIn(f"note        not loaded: it is a {described('64-bit', 1, machine)} file, this quill a "
                      f"32-bit ({NAMES[own_header()[2]]}) program; ", report)
        found = self.inspect_json(path, code=1)
        more = len(found["exports"]) - 20
        self.assertGreater(more, 1000)
        self.assertIn(f"            and {more} more, which --format json lists", report)
        self.assertIn({"symbol": "malloc", "kind": "function"},
                      [{key: one[key] for key in ("symbol", "kind")} for one in found["exports"]])

    def test_other_machines(self):
        own = own_header()
        others = [(header, size, name) for header, size, name in (
            ((1, 2, MIPS), "32-bit", "MIPS"), ((1, 1, MIPS), "32-bit", "MIPS"),
            ((2, 1, X86_64), "64-bit", "x86-64"), ((1, 1, I386), "32-bit", "i386"))
            if header != own]
        self.assertGreaterEqual(len(others), 3)
        for header, size, name in others:
            with self.subTest(header):
                report, problems = self.inspect(self.file("m.so", elf(*header)), code=3)
                self.assertIn(f"file        {size} {ORDERS[header[1]]} {name}", report)
                self.assertIn(f"not loaded: it is a {described(size, header[1], name)} file, "
                              f"this quill a 32-bit ({NAMES[own[2]]}) program", report)
                self.assertEqual(problems[0], "load: it has no dynamic section, without which no loader "
                                              "takes a library")

    def test_an_unknown_class(self):
        report, problems = self.inspect(self.file("m.so", elf(7, 1, I386)), code=3)
        self.assertIn("?-bit little-endian", report)
        self.assertEqual(problems[-1], "file: damaged: the ELF header is of neither class")

    def test_truncated_modules(self):
        whole = content(MODULE)
        # What is behind the loaded part, such as debugging information, may be missing.
        loaded = max(int(offset, 16) + int(size, 16) for offset, size in re.findall(
            r"LOAD +(0x\w+) 0x\w+ 0x\w+ (0x\w+)", readelf("-l", MODULE)))
        for size in (20, 40, 52, 100, 500, 1500, 3000, loaded // 2, loaded - 1):
            with self.subTest(size):
                report, problems = self.inspect(self.file("m.so", whole[:size]), code=3)
                self.assertIn(f"file        32-bit {ORDERS[own_header()[1]]}", report)
                self.assertRegex("\n".join(problems), "^file: damaged: .* outside of the file$")

    def test_quill_itself(self):
        report, problems = self.inspect(QUILL)
        self.assertIn("libc.so.6", report)
        self.assertIn(f"note        {PROGRAM}", report.splitlines())
        self.assertEqual(problems, [FINE_AS_FILE])


if __name__ == "__main__":
    unittest.main()

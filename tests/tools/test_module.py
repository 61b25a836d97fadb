"""How quill finds, checks and loads the module."""

import os
import shutil
import struct
import subprocess
import unittest

from quill_runner import MODULE, QUILL, QuillTest, command, fixture

TRACK = b"WEBVTT\n\n00:01.000 --> 00:02.000\nx\n\n"
CUE_AS_TEXT = b"00:00:01.000 --> 00:00:02.000\n  x\n\n"

I386, ARM, MIPS, POWERPC, X86_64, AARCH64 = 3, 40, 8, 20, 62, 183
NAMES = {I386: "i386", ARM: "ARM", MIPS: "MIPS", POWERPC: "PowerPC"}
ORDERS = {1: "little-endian", 2: "big-endian"}


def own_header():
    """Class, byte order and machine of the quill that is tested."""
    with open(QUILL, "rb") as file:
        start = file.read(20)
    order = "<" if start[5] == 1 else ">"
    return start[4], start[5], struct.unpack(order + "H", start[18:20])[0]


def elf(bits_class, byte_order, machine):
    order = "<" if byte_order == 1 else ">"
    return (b"\x7fELF" + bytes([bits_class, byte_order, 1]) + bytes(9) +
            struct.pack(order + "HH", 3, machine) + bytes(100))


def described(size, byte_order, name):
    """How quill calls a module: it says the byte order only when that is not its own."""
    order = "" if byte_order == own_header()[1] else " " + ORDERS[byte_order]
    return f"{size}{order} ({name})"


class Loading(QuillTest):
    def setUp(self):
        super().setUp()
        self.track = self.file("track.vtt", TRACK)

    def assert_not_loaded(self, path, *words):
        result = self.quill("cues", "--module", path, self.track)
        self.assert_fails(result, 3, *words)

    def test_a_module_that_is_named(self):
        copy = shutil.copy(MODULE, os.path.join(self.folder, "other name"))
        self.assertEqual(self.quill("cues", "--module", copy, self.track).out, CUE_AS_TEXT)
        result = self.quill("cues", "--module", "other name", self.track, cwd=self.folder)
        self.assertEqual(result.out, CUE_AS_TEXT)

    def test_the_module_beside_quill_comes_first(self):
        quill = shutil.copy(QUILL, self.folder)
        shutil.copy(fixture("scripted"), os.path.join(self.folder, "quillcaption.so"))
        result = self.quill("cues", self.track, quill=quill)
        self.assertIn(b"chunk of", result.err)

    def test_the_module_of_an_installation(self):
        quill_folder = os.path.join(self.folder, "bin")
        module_folder = os.path.join(quill_folder, os.environ["QUILL_MODULE_DIR"])
        os.mkdir(quill_folder)
        quill = shutil.copy(QUILL, quill_folder)
        result = self.quill("cues", self.track, quill=quill)
        self.assert_fails(result, 3, "no module", quill_folder + "/quillcaption.so",
                          os.environ["QUILL_MODULE_DIR"] + "/quillcaption.so", "--module")
        os.makedirs(module_folder)
        shutil.copy(MODULE, module_folder)
        result = self.quill("cues", self.track, quill=quill)
        self.assertEqual((result.code, result.out), (0, CUE_AS_TEXT))

    def test_files_that_cannot_be_read(self):
        self.assert_not_loaded(self.folder + "/none.so", "cannot read the module " + self.folder,
                               "none.so: No such file or directory")
        pipe = os.path.join(self.folder, "pipe")
        os.mkfifo(pipe)
        for path in (self.folder, pipe, "/dev/null"):
            with self.subTest(path):
                self.assert_not_loaded(path, path + " is not a module: it is not a regular file")

    def test_files_that_are_no_elf_files(self):
        for content in (b"", b"\x7fELF", b"#!/bin/sh\n" * 100, elf(*own_header())[:19]):
            with self.subTest(content[:10]):
                self.assert_not_loaded(self.file("m.so", content), "m.so is not a module",
                                       "not an ELF file")

    def test_modules_for_other_machines(self):
        own = own_header()
        own_name = NAMES[own[2]]
        others = [(header, size, name) for header, size, name in (
            ((2, 1, X86_64), "64-bit", "x86-64"), ((2, 1, AARCH64), "64-bit", "AArch64"),
            ((1, 1, X86_64), "32-bit", "x86-64"), ((2,) + own[1:], "64-bit", own_name),
            ((1, 1, MIPS), "32-bit", "MIPS"), ((1, 2, MIPS), "32-bit", "MIPS"),
            ((1, 1, 4711), "32-bit", "machine 4711"), ((1, 1, I386), "32-bit", "i386"),
            ((7, 1, own[2]), "neither 32- nor 64-bit", own_name)) if header != own]
        self.assertGreaterEqual(len(others), 8)
        for header, size, name in others:
            with self.subTest(header):
                self.assert_not_loaded(
                    self.file("m.so", elf(*header)),
                    f"m.so is a {described(size, header[1], name)}",
                    f"this quill is a 32-bit ({own_name}) program: use a quillcaption.so built "
                    f"for {own_name}, or the quill that was built beside it")

    def test_an_elf_file_of_this_machine_that_is_no_module(self):
        self.assert_not_loaded(self.file("m.so", elf(*own_header())), "cannot load the module")
        self.assert_not_loaded(fixture("with_unknown_symbol"), "cannot load the module",
                               "a_function_that_nobody_has")

    def test_modules_that_lack_something(self):
        self.assert_not_loaded(fixture("without_descriptor"), "without_descriptor.so",
                               "does not export WEBVTT_MODULE_INFO")
        self.assert_not_loaded(fixture("without_table"), "descriptor has no table")
        self.assert_not_loaded(fixture("with_empty_slots"), "table has an empty slot")

    def test_quill_is_not_linked_with_the_module(self):
        tables = subprocess.run(["readelf", "-W", "--syms", "--dynamic", QUILL],
                                capture_output=True, text=True, check=True).stdout
        self.assertIn("libc.so.6", tables)
        for word in ("IZorWebVtt", "WebVTTParser", "quillcaption.so"):
            self.assertNotIn(word, tables)


if __name__ == "__main__":
    unittest.main()

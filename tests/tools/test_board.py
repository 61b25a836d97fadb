"""quill inspect --sysroot: whether a board would load a file of whatever machine."""

import json
import os
import re
import resource
import shutil
import struct
import subprocess
import unittest

import elf_maker
from elf_maker import ARM, CONTRACT, MIPS, POWERPC, attributes, elf_file
from quill_runner import EMULATOR, PATIENCE, QUILL, SANITIZED, QuillTest

FINE = "what the file shows is as it must be"
COPIES = int(os.environ.get("QUILL_DAMAGED_COPIES", "100"))  # more in a campaign
OWN = "build it with the board's own toolchain"
C_LIBRARY = {"exports": {"strlen": 0}, "names": [(elf_maker.SONAME, "libc.so.6")],
             "offers": ["GLIBC_2.4", "GLIBC_2.9", "GLIBC_2.31"]}
MODULE = {"needed": ["libc.so.6"], "versions": [("libc.so.6", ["GLIBC_2.4"])], "imports": ["strlen"]}
HARD, SOFT = ({"sections": [(0x70000003, attributes("aeabi", {6: 10, 7: 65, 9: 2, 10: 4, 12: 1, 28: passing}))]}
              for passing in (1, 0))
ARMV6 = {"sections": [(0x70000003, attributes("aeabi", {6: 6}))]}


def abi_flags(float_abi):
    return {"flags": 0x70001000, "machine": MIPS, "segments": [(0x70000003, bytes(7) + bytes([float_abi]) + bytes(16))]}


def power(float_abi, order=">"):
    return {"flags": 0, "machine": POWERPC, "order": order,
            "sections": [(0x6ffffff5, attributes("gnu", {4: float_abi, 8: 2}, order))]}


def parts_of(path):
    """Where a 32-bit file's headers lie, and what loaders and the processor's description are read from."""
    with open(path, "rb") as file:
        start = file.read(52)
    order = "<" if start[5] == 1 else ">"
    table, sections = struct.unpack_from(order + "I", start, 32)[0], struct.unpack_from(order + "HH", start, 46)
    listed = subprocess.run(["readelf", "-SW", path], capture_output=True, text=True, check=True).stdout
    found = re.findall(r"\] (\S+) +\S+ +\S+ (\S+) (\S+) ", listed)
    return [(0, 52 + 32 * 8), (table, table + sections[0] * sections[1])] + [
        (int(offset, 16), int(offset, 16) + int(size, 16)) for name, offset, size in found
        if re.search(r"dyn|hash|gnu.version|attributes|abiflags", name)]


class Boards(QuillTest):
    def put(self, path, content):
        """A file of the board, or a link to where the text says."""
        place = os.path.join(self.folder, "board", path)
        os.makedirs(os.path.dirname(place), exist_ok=True)
        if isinstance(content, str):
            os.symlink(content, place)
        else:
            with open(place, "wb") as file:
                file.write(content)
        return place

    def board(self, files):
        shutil.rmtree(os.path.join(self.folder, "board"), ignore_errors=True)
        os.mkdir(os.path.join(self.folder, "board"))
        for path, content in files.items():
            self.put(path, content)

    def ask(self, path, code=0, board="board"):
        """(report, its problems), as JSON."""
        arguments = ["--sysroot", board] if board else []
        result = self.quill("inspect", "--format", "json", *arguments, path, cwd=self.folder)
        self.assertEqual((result.code, result.err), (code, b""), result)
        report = json.loads(result.out)
        return report, report["problems"]

    def damage(self, damaged, module, parts=(), board="board"):
        """How many ended in which verdict."""
        parts = parts or [(0, os.path.getsize(damaged))]
        done = subprocess.run([*EMULATOR, os.environ["QUILL_DAMAGED_INSPECTIONS"], str(COPIES), "1", damaged, module,
                               board, *(f"{start}-{end}" for start, end in parts)],
                              cwd=self.folder, stdout=subprocess.PIPE, timeout=PATIENCE + COPIES, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout

    def module(self, **how):
        return self.file("m.so", elf_file(**{**MODULE, **how}))


class OfTheFile(Boards):
    """Without a board."""

    def test_what_it_says(self):
        for how, code, problems in (
                ({}, 0, []),
                ({"stack": 7}, 1, ["stack: it wants an executable stack; link with -Wl,-z,noexecstack"]),
                ({"stack": None}, 0, []), ({"stack": 7, **abi_flags(1)}, 0, []),
                ({"entries": [(elf_maker.TEXTREL, 0)]}, 1,
                 ["relocations: the loader has to write into its code; compile with -fPIC, link with -Wl,-z,text"]),
                ({"entries": [(elf_maker.FLAGS, 4)]}, 1,
                 ["relocations: the loader has to write into its code; compile with -fPIC, link with -Wl,-z,text"]),
                ({"hash_table": elf_maker.GNU_HASH}, 0, []),
                ({"entries": [(elf_maker.FLAGS_1, 0x40)]}, 3,
                 ["load: it is marked to refuse dlopen; link without -Wl,-z,nodlopen"]),
                ({"kind": 1}, 3, ["load: no loader takes a file of its type (object file)"]),
                ({"hash_table": None}, 3, ["load: it has no hash table, without which no symbol of it is found; link "
                                        "with -Wl,--hash-style=both",
                                        "exports: WEBVTT_MODULE_INFO is missing: this is no caption module"]),
                ({"exports": {**CONTRACT, "WEBVTT_MODULE_INFO": 140}}, 1,
                 ["exports: WEBVTT_MODULE_INFO has 140 bytes, not 144"]),
                ({"order": ">"}, 0, []),
                ({"exports": {}, "interpreter": "/lib/ld.so"}, 0, [])):
            with self.subTest(how):
                self.assertEqual(self.ask(self.module(**how), code, None)[1], problems)

    def test_the_processor_in_words(self):
        for how, words in (
                (HARD, ["ARMv7-A", "Thumb-2", "VFPv3-D16", "NEON", "hard-float ABI", "EABI 5"]),
                (SOFT, ["ARMv7-A", "Thumb-2", "VFPv3-D16", "NEON", "soft-float ABI", "EABI 5"]),
                ({"sections": [(0x70000003, HARD["sections"][0][1] + bytes(8))]},  # up to what is damaged
                 ["ARMv7-A", "Thumb-2", "VFPv3-D16", "NEON", "hard-float ABI", "EABI 5"]),
                ({"flags": 0x05000400}, ["hard-float ABI", "EABI 5"]),
                ({"flags": 0x05000200}, ["soft-float ABI", "EABI 5"]),
                ({"flags": 0}, ["no EABI"]),
                (abi_flags(5), ["MIPS32r2", "o32 ABI", "hard-float ABI (FPXX)", "legacy NaN"]),
                ({"machine": MIPS, "flags": 0x96000420},
                 ["MIPS32r6", "microMIPS", "MIPS16", "n32 ABI", "NaN of 2008"]),
                (power(1), ["hard-float ABI", "AltiVec"]), (power(2), ["soft-float ABI", "AltiVec"]),
                ({"machine": 3}, [])):
            with self.subTest(how):
                # What is for this machine is loaded, crashes, and a sanitizer reports that itself.
                code = 3 if how.get("machine") == 3 else 0
                if code == 0 or not (EMULATOR or SANITIZED):
                    self.assertEqual(self.ask(self.module(**how), code, None)[0]["processor"], words)

    def test_damaged_attributes_are_passed_over(self):
        table = HARD["sections"][0][1]
        for damaged in (b"", b"A", table[:20], table[:1] + b"\xff" * 4 + table[5:],
                        table[:11] + b"\1\xff\xff\xff\xff" + b"\x80" * 60, table[:1] + bytes(4) + table[5:],
                        table[:16] + b"\4unended"):
            with self.subTest(damaged):
                report, _ = self.ask(self.module(sections=[(0x70000003, damaged)]), 0, None)
                self.assertEqual(report["processor"][-1], "EABI 5")


class OfTheBoard(Boards):
    def test_what_fits_and_what_does_not(self):
        ask = ("libc.so.6", ["GLIBC_2.4", "GLIBC_2.34"])
        for how, library, code, problems in (
                ({}, {}, 0, []),
                ({"versions": [ask]}, {}, 3,
                 [f"version: the file needs GLIBC_2.34, and /lib/libc.so.6 has GLIBC up to 2.31; {OWN}"]),
                ({"versions": [("libc.so.6", ["GLIBC_ABI_DT_RELR"])]}, {}, 3,
                 [f"version: the file needs GLIBC_ABI_DT_RELR, and /lib/libc.so.6 has none of them; {OWN}"]),
                ({"versions": [ask]}, {"offers": []}, 0, []),
                ({"versions": [ask], "weak": ["GLIBC_2.34"]}, {}, 0, []),
                ({"hash_table": elf_maker.GNU_HASH}, {"offers": ["GLIBC_2.4", "GLIBC_2.5"]}, 0, []),
                ({"hash_table": elf_maker.GNU_HASH}, {"offers": ["GLIBC_2.4"]}, 3,
                 ["hash table: glibc 2.4 finds no symbol in one of the GNU kind (2.5 does); link with "
                  "-Wl,--hash-style=both"]),
                ({"entries": [(elf_maker.RELR, 0)]}, {}, 3,
                 ["relocations: they are packed, which glibc 2.31 cannot read (2.36 can); link with "
                  "-Wl,-z,nopack-relative-relocs"]),
                ({"entries": [(elf_maker.RELR, 0)]}, {"offers": ["GLIBC_2.4", "GLIBC_ABI_DT_RELR"]}, 0, []),
                ({"stack": 7}, {"offers": ["GLIBC_2.4", "GLIBC_2.41"]}, 3,
                 ["stack: it wants an executable stack; link with -Wl,-z,noexecstack",
                  "stack: glibc 2.41 loads no library that wants an executable stack; link with "
                  "-Wl,-z,noexecstack"]),
                ({"imports": ["strlen", "a", "b", "c", "d"]}, {}, 3,
                 [f"symbols: none of its libraries has a, b, c and 1 more; {OWN}"]),
                (HARD, SOFT, 3,
                 ["processor: the file does not go with /lib/libc.so.6: it has the hard-float ABI, the library the "
                  f"soft-float ABI; {OWN}"]),
                (HARD, HARD, 0, []), (HARD, {}, 0, []),
                (abi_flags(1), abi_flags(5), 0, []), (abi_flags(6), abi_flags(7), 0, []),
                (abi_flags(1), abi_flags(6), 3,
                 ["processor: the file does not go with /lib/libc.so.6: it has the hard-float ABI (FP32), the library "
                  f"the hard-float ABI (FP64); {OWN}"]),
                ({**abi_flags(1), "flags": 0x70001400}, abi_flags(1), 3,
                 ["processor: the file does not go with /lib/libc.so.6: it has the NaN of 2008, the library the legacy "
                  f"NaN; {OWN}"]),
                ({**abi_flags(1), "flags": 0x70000020}, abi_flags(1), 3,
                 ["processor: the file does not go with /lib/libc.so.6: it has the n32 ABI, the library the o32 ABI; "
                  + OWN]),
                (power(1), power(2), 3,
                 ["processor: the file does not go with /lib/libc.so.6: it has the hard-float ABI, the library the "
                  f"soft-float ABI; {OWN}"])):
            with self.subTest(how=how, library=library):
                self.board({"lib/libc.so.6": elf_file(**{**C_LIBRARY, **library})})
                self.assertEqual(self.ask(self.module(**how), code)[1], problems)

    def test_text(self):
        self.board({"lib/libc.so.6": elf_file(**C_LIBRARY)})
        result = self.quill("inspect", "--sysroot", "board", self.module(**HARD), cwd=self.folder)
        lines = result.out.decode().splitlines()
        self.assertEqual((result.code, lines[-1]), (0, FINE))
        for line in ("processor   ARMv7-A, Thumb-2, VFPv3-D16, NEON, hard-float ABI, EABI 5",
                     "board       board, C library glibc 2.31",
                     "            libc.so.6: /lib/libc.so.6",
                     "              needs GLIBC 2.4: board has 2.31, fits",
                     "note        not loaded: with --sysroot the board is asked about, not this machine"):
            self.assertIn(line, lines)

    def test_where_libraries_are_found(self):
        library = elf_file(**C_LIBRARY)
        other = elf_file(**{**C_LIBRARY, "machine": POWERPC})
        wide = library[:4] + b"\2" + library[5:]
        big_endian = elf_file(**{**C_LIBRARY, "order": ">"})
        for files, how, path in (
                ({"usr/lib/arm-linux-gnueabihf/libc.so.6": library}, {}, "/usr/lib/arm-linux-gnueabihf/libc.so.6"),
                ({"usr/lib/powerpc-linux-gnu/libc.so.6": other, "usr/lib/libc.so.6": library}, {}, "/usr/lib/libc.so.6"),
                ({"lib/libc.so.6": wide, "usr/lib/libc.so.6": library}, {}, "/usr/lib/libc.so.6"),
                ({"lib/libc.so.6": big_endian, "usr/lib/libc.so.6": library}, {}, "/usr/lib/libc.so.6"),
                ({"etc/ld.so.conf": b"# opt\ninclude ld.so.conf.d/*.conf\ninclude ld.so.conf\n",
                  "etc/ld.so.conf.d/a.conf": b"/opt/a, /opt/b # here\n", "opt/b/libc.so.6": library}, {},
                 "/opt/b/libc.so.6"),
                ({"opt/libc.so.6": library}, {"names": [(elf_maker.RUNPATH, "/none:/opt")]}, "/opt/libc.so.6"),
                ({"opt/libc.so.6": library}, {"names": [(elf_maker.RPATH, "/opt")]}, "/opt/libc.so.6"),
                ({"usr/lib/real/libc-2.31.so": library, "usr/lib/libc.so.6": "/lib/c", "lib": "usr/lib",
                  "usr/lib/c": "../../../../usr/lib/real/libc-2.31.so"}, {}, "/lib/libc.so.6"),
                ({"opt/l.so": library}, {"needed": ["/opt/l.so"], "versions": []}, "/opt/l.so")):
            with self.subTest(files=list(files)):
                self.board(files)
                report, _ = self.ask(self.module(**how))
                self.assertEqual([one["path"] for one in report["sysroot"]["libraries"]], [path])

    def test_a_module_of_the_board_looks_beside_itself(self):
        self.board({"opt/p/libc.so.6": elf_file(**C_LIBRARY)})
        path = self.put("opt/m.so", elf_file(**{**MODULE, "names": [(elf_maker.RUNPATH, "$ORIGIN/p")]}))
        report, _ = self.ask(path)
        self.assertEqual(report["sysroot"]["libraries"][0]["path"], "/opt/p/libc.so.6")

    def test_links_do_not_lead_out(self):
        outside = self.file("libc.so.6", elf_file(**C_LIBRARY))
        for link in (outside, "../../libc.so.6", "libc.so.6", "../lib/libc.so.6/"):
            with self.subTest(link):
                self.board({"lib/libc.so.6": link})
                _, problems = self.ask(self.module(), 3)
                self.assertEqual(problems, ["library: libc.so.6, which the file needs, is not in board for this machine: "
                                            "add it to the board's image, or build with the board's own toolchain"])

    def test_libraries_of_libraries(self):
        c_plus_plus = {"exports": {"f": 0}, "needed": ["libc.so.6", "libm.so.6"],
                       "versions": [("libc.so.6", ["GLIBC_2.38"])]}
        self.board({"lib/libstdc++.so.6": elf_file(**c_plus_plus), "lib/libc.so.6": elf_file(**C_LIBRARY)})
        report, problems = self.ask(self.module(needed=["libstdc++.so.6"], versions=[]), 3)
        self.assertEqual(problems, [
            "library: libm.so.6, which /lib/libstdc++.so.6 needs, is not in board for this machine: add it to the "
            "board's image, or build with the board's own toolchain",
            "version: /lib/libstdc++.so.6 needs GLIBC_2.38, and /lib/libc.so.6 has GLIBC up to 2.31; build that "
            "library with the board's own toolchain"])
        self.assertEqual(report["sysroot"]["libraries"], [
            {"name": "libstdc++.so.6", "path": "/lib/libstdc++.so.6", "needed_by": None},
            {"name": "libc.so.6", "path": "/lib/libc.so.6", "needed_by": "/lib/libstdc++.so.6"},
            {"name": "libm.so.6", "path": None, "needed_by": "/lib/libstdc++.so.6"}])

    def test_other_c_libraries(self):
        whole = elf_file(exports={"strlen": 0})
        self.board({"lib/ld-musl-armhf.so.1": whole})
        report, problems = self.ask(self.module())
        self.assertEqual((report["sysroot"]["c_library"], problems), ("musl", []))
        self.assertIn("the board's C library is musl (/lib/ld-musl-armhf.so.1)", report["notes"])
        _, problems = self.ask(self.module(imports=["__strlen_chk"]), 3)
        self.assertEqual(problems, [f"symbols: none of its libraries has __strlen_chk; {OWN}"])
        self.board({"lib/ld-uClibc.so.1": whole, "lib/libc.so.1": whole})
        report, problems = self.ask(self.module(), 3)
        self.assertEqual(report["sysroot"]["c_library"], "uClibc")
        self.assertIn("library: libc.so.6, which the file needs, is not in board", problems[0])

    def test_programs(self):
        program = {"exports": {}, "interpreter": "/lib/ld-linux.so.3", "kind": 2}
        self.board({"lib/libc.so.6": elf_file(**C_LIBRARY), "lib/ld-linux.so.3": elf_file()})
        self.assertEqual(self.ask(self.module(**program))[1], [])
        self.board({"lib/libc.so.6": elf_file(**C_LIBRARY), "lib/ld-musl-arm.so.1": elf_file()})
        self.assertEqual(self.ask(self.module(**program), 3)[1], [
            "loader: /lib/ld-linux.so.3, which starts the program, is not in board, which has /lib/ld-musl-arm.so.1: "
            "build the program with the board's own toolchain"])

    def test_an_older_processor(self):
        self.board({"lib/libc.so.6": elf_file(**{**C_LIBRARY, **ARMV6})})
        report, _ = self.ask(self.module(**SOFT))
        self.assertEqual(report["notes"][0], "the file is for ARMv7, /lib/libc.so.6 for ARMv6: an older processor than "
                                             "the file's cannot run it")


class OfHostileBoards(Boards):
    def test_damaged_libraries(self):
        whole = elf_file(**C_LIBRARY)
        for content, words in ((b"/* linker script */", "is not a library: it is not an ELF file"),
                               (whole[:200], "/lib/libc.so.6 is damaged: ")):
            with self.subTest(words):
                self.board({"lib/libc.so.6": content})
                _, problems = self.ask(self.module(), 3)
                self.assertEqual(len(problems), 1)
                self.assertIn("library: ", problems[0])
                self.assertIn(words, problems[0])
        self.board({"lib/x": b""})
        os.mkfifo(os.path.join(self.folder, "board/lib/libc.so.6"))
        _, problems = self.ask(self.module(), 3)
        self.assertIn("is not a library: it is not a regular file", problems[0])

    def test_every_truncation(self):
        whole = elf_file(**{**C_LIBRARY, **HARD})
        for size in range(0, len(whole), 41):
            self.board({"lib/libc.so.6": whole[:size]})
            self.assertEqual(len(self.ask(self.module(), 3)[1]), 1, size)

    def test_circles_end(self):
        library = {**C_LIBRARY, "needed": ["libc.so.6"]}
        self.board({"lib/libc.so.6": elf_file(**library), "etc/ld.so.conf": b"include *.conf\n" * 3000,
                    "etc/b.conf": "b.conf", "etc/c.conf": "/etc"})
        before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
        self.assertEqual(self.ask(self.module())[1], [])
        self.assertLess(resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before, 10)

    def test_no_folder(self):
        for folder in ("none", "m.so"):
            result = self.quill("inspect", "--sysroot", folder, self.module(), cwd=self.folder)
            self.assert_fails(result, 2, f'--sysroot takes a folder with the board\'s files, not "{folder}"')


class OfDamage(Boards):
    """Of the module and of the board's library, anywhere: hundreds of copies in one process."""

    def test_made_files(self):
        for machine in (HARD, {**abi_flags(5), "sections": [(0x6ffffff5, attributes("gnu", {4: 5}))]}, power(1)):
            with self.subTest(machine):
                self.board({"lib/libc.so.6": elf_file(**{**C_LIBRARY, **machine})})
                module = self.module(**machine)
                library = os.path.join(self.folder, "board/lib/libc.so.6")
                self.assertRegex(self.damage(module, module), f"(?s) file\n.* {FINE}\n")
                self.assertRegex(self.damage(library, module), f"(?s) library\n.* {FINE}\n")
                self.assertEqual(self.ask(module)[1], [])  # each was put back


class OfRealBoards(Boards):
    """The libraries that cross compilers bring, where they are installed."""

    def test_of_cross_compilers(self):
        source = self.file("m.c", "".join(
            f"char {name}[{size}];\n" if size else f"void {name}(void) {{}}\n" for name, size in CONTRACT.items())
            .encode() + b"#include <stdio.h>\nvoid f(void) { printf(\"%f\", 1.5); }\n")
        tried = 0
        for triple, words in (("arm-linux-gnueabihf", ["ARMv7-A", "hard-float ABI", "EABI 5"]),
                              ("mipsel-linux-gnu", ["MIPS32r2", "o32 ABI", "hard-float ABI (FPXX)", "legacy NaN"]),
                              ("powerpc-linux-gnu", ["hard-float ABI"])):
            compiler = shutil.which(triple + "-gcc")
            if compiler is None:
                continue
            tried += 1
            with self.subTest(triple):
                subprocess.run([compiler, "-shared", "-fPIC", "-o", "real.so", source], cwd=self.folder, check=True)
                library = subprocess.run([compiler, "-print-file-name=libc.so.6"], capture_output=True, text=True,
                                         check=True).stdout.strip()
                board = os.path.dirname(os.path.dirname(os.path.realpath(library)))
                report, problems = self.ask("real.so", 0, board)
                self.assertEqual(problems, [])
                self.assertLessEqual(set(words), set(report["processor"]))
                self.assertTrue(all(version["fits"] for version in report["sysroot"]["versions"]))
                self.assertRegex(report["sysroot"]["c_library"], "^glibc 2")
                verdicts = self.damage("real.so", "real.so", parts_of(os.path.join(self.folder, "real.so")), board)
                self.assertIn(FINE, verdicts)
        if tried == 0:
            self.skipTest("there is no cross compiler")

    def test_of_this_machine(self):
        if os.environ.get("QUILL_EMULATOR"):
            self.skipTest("the libraries are not this machine's own")
        report, problems = self.ask(QUILL, 0, "/")
        self.assertEqual(problems, [])
        self.assertIsNotNone(report["sysroot"]["c_library"])


if __name__ == "__main__":
    unittest.main()

"""The packages that CPack makes: for the right machine, complete, and fit to be run."""

import os
import re
import tarfile
import unittest

from installation import BUILD, DIALOGUE, VERSION, InstallTest, files_below

ARCHITECTURE = os.environ["INSTALL_ARCHITECTURE"]
CPACK = os.environ["INSTALL_CPACK"]
READELF = os.environ["INSTALL_READELF"]
MACHINES = {"i386": "Intel 80386", "armhf": "ARM", "mipsel": "MIPS R3000", "powerpc": "PowerPC"}
# The release of GCC that first had version 3.4.N of libstdc++'s interface.
GCC_OF_GLIBCXX = {21: 5, 22: 6, 23: 7, 24: 7, 25: 8, 26: 9, 27: 9, 28: 10, 29: 11, 30: 12, 31: 13,
                  32: 13, 33: 14}


class Packages(InstallTest):
    def make(self, kind):
        """The one package of a kind, made anew."""
        self.run_program(CPACK, "-G", kind, "-B", self.folder, cwd=BUILD)
        found = [name for name in files_below(self.folder) if name.endswith((".deb", ".tar.gz"))
                 and not name.startswith("_CPack")]
        self.assertEqual(len(found), 1)
        return found[0]

    def field(self, package, name):
        return self.run_program("dpkg-deb", "--field", self.folder / package, name).strip()

    def installed(self):
        """The files of an ordinary installation."""
        return files_below(self.install("expected"))

    def assert_runs(self, prefix):
        self.assert_plays(prefix / "bin/quill", "cues", DIALOGUE)
        for program in ("bin/quill", "lib/quillcaption/quillcaption.so"):
            header = self.run_program(READELF, "--file-header", prefix / program)
            self.assertIn(f" {MACHINES[ARCHITECTURE]}\n", header)
            sections = self.run_program(READELF, "--section-headers", prefix / program)
            self.assertNotIn(".symtab", sections)

    def test_debian_package(self):
        package = self.make("DEB")
        self.assertEqual(package, f"quillcaption_{VERSION}_{ARCHITECTURE}.deb")
        self.assertEqual(self.field(package, "Architecture"), ARCHITECTURE)
        self.assertEqual(self.field(package, "Version"), VERSION)
        self.run_program("dpkg-deb", "--extract", self.folder / package, self.folder / "root")
        self.assertEqual(files_below(self.folder / "root/usr"), self.installed())
        self.assertEqual([path.name for path in (self.folder / "root").iterdir()], ["usr"])
        self.assert_runs(self.folder / "root/usr")

    def test_debian_package_asks_for_new_enough_libraries(self):
        package = self.make("DEB")
        depends = dict(re.findall(r"(\S+) \(>= ([\d.]+)\)", self.field(package, "Depends")))
        self.assertEqual(sorted(depends), ["libc6", "libgcc-s1", "libstdc++6"])
        prefix = self.install("prefix")
        asked = "".join(self.run_program(READELF, "--wide", "--dyn-syms", prefix / program)
                        for program in ("bin/quill", "lib/quillcaption/quillcaption.so",
                                        "lib/quillcaption/quillcaption-guard.so"))
        libc = [tuple(map(int, text.split("."))) for text in re.findall(r"@GLIBC_([\d.]+)", asked)]
        self.assertLessEqual(max(libc), tuple(map(int, depends["libc6"].split("."))))
        libstdcxx = [GCC_OF_GLIBCXX[int(text)] for text in re.findall(r"@GLIBCXX_3\.4\.(\d+)", asked)
                     if int(text) > 20]
        self.assertLessEqual(max(libstdcxx), int(depends["libstdc++6"]))

    def test_archive(self):
        package = self.make("TGZ")
        name = f"quillcaption-{VERSION}-{ARCHITECTURE}"
        self.assertEqual(package, f"{name}.tar.gz")
        with tarfile.open(self.folder / package) as archive:
            archive.extractall(self.folder / "unpacked")
        self.assertEqual(files_below(self.folder / "unpacked" / name), self.installed())
        self.assert_runs(self.folder / "unpacked" / name)


if __name__ == "__main__":
    unittest.main()

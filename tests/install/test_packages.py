"""The packages that CPack makes: for the right machine, complete, and fit to be run."""

import os
import pathlib
import re
import tarfile
import tempfile
import unittest

from installation import BUILD, DIALOGUE, VERSION, InstallTest, files_below

ARCHITECTURE = os.environ["INSTALL_ARCHITECTURE"]
CPACK = os.environ["INSTALL_CPACK"]
READELF = os.environ["INSTALL_READELF"]
MACHINES = {"i386": "Intel 80386", "armhf": "ARM", "armel": "ARM", "mipsel": "MIPS R3000",
            "powerpc": "PowerPC"}
# The release of GCC that first had version 3.4.N of libstdc++'s interface.
GCC_OF_GLIBCXX = {21: 5, 22: 6, 23: 7, 24: 7, 25: 8, 26: 9, 27: 9, 28: 10, 29: 11, 30: 12, 31: 13,
                  32: 13, 33: 14}


# Component, package, whether it is of one architecture, and the packages that it needs beside libraries.
PACKAGES = [
    ("module", "quillcaption", True, set()),
    ("guard", "quillcaption-guard", True, {"quillcaption"}),
    ("header", "quillcaption-dev", True, set()),
    ("tools", "quillcaption-tools", True, {"quillcaption"}),
    ("docs", "quillcaption-doc", False, set()),
]
LIBRARIES = {"libc6", "libgcc-s1", "libstdc++6"}


class Packages(InstallTest):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.made = pathlib.Path(folder.name)

    def make(self, kind):
        """The packages of a kind, made once."""
        folder = self.made / kind
        if not folder.exists():
            self.pack(kind, folder)
        return [name for name in files_below(folder) if name.endswith((".deb", ".tar.gz"))
                and not name.startswith("_CPack")]

    def pack(self, kind, folder):
        self.run_program(CPACK, "-G", kind, "-B", folder, cwd=BUILD,
                         env={**os.environ, "SOURCE_DATE_EPOCH": "1700000000"})

    def field(self, package, name):
        return self.run_program("dpkg-deb", "--field", self.made / "DEB" / package, name).strip()

    def extract(self, package, folder):
        self.run_program("dpkg-deb", "--extract", self.made / "DEB" / package,
                         self.folder / folder)
        return self.folder / folder

    def assert_runs(self, prefix):
        self.assert_plays(prefix / "bin/quill", "cues", DIALOGUE)
        for program in ("bin/quill", "lib/quillcaption/quillcaption.so"):
            header = self.run_program(READELF, "--file-header", prefix / program)
            self.assertIn(f" {MACHINES[ARCHITECTURE]}\n", header)
            sections = self.run_program(READELF, "--section-headers", prefix / program)
            self.assertNotIn(".symtab", sections)

    def test_a_debian_package_for_each_component(self):
        made = {name.split("_")[0]: name for name in self.make("DEB")}
        for component, name, of_one_architecture, needs in PACKAGES:
            with self.subTest(name):
                package = made.pop(name)
                architecture = ARCHITECTURE if of_one_architecture else "all"
                self.assertEqual(package, f"{name}_{VERSION}_{architecture}.deb")
                self.assertEqual(self.field(package, "Architecture"), architecture)
                self.assertEqual(self.field(package, "Version"), VERSION)
                depends = {word.split()[0] for word in self.field(package, "Depends").split(", ")
                           if word}
                self.assertEqual(depends - LIBRARIES, needs)
                self.assertEqual(bool(depends & LIBRARIES), component in ("module", "guard", "tools"))
                root = self.extract(package, name)
                own = [re.sub(r"(/man1/.*\.1)$", r"\1.gz", file) for file in
                       files_below(self.install(f"of-{name}", "--component", component))]
                added = [f"share/doc/{name}/changelog.gz", f"share/doc/{name}/copyright"]
                found = [file for file in files_below(root / "usr")
                         if not file.startswith("share/lintian/")]
                self.assertEqual(found, sorted(own + added))
                self.assertEqual([path.name for path in root.iterdir()], ["usr"])
                copyright_text = (root / "usr" / added[1]).read_text()
                self.assertIn("has not chosen a licence yet", copyright_text)
                # What is compiled into quill is to be named wherever quill goes.
                self.assertEqual("Niels Lohmann" in copyright_text, component == "tools")
                self.extract(package, "root")
        self.assertEqual(made, {})
        self.assert_runs(self.folder / "root/usr")

    def test_debian_package_asks_for_new_enough_libraries(self):
        self.make("DEB")
        package = f"quillcaption-tools_{VERSION}_{ARCHITECTURE}.deb"
        depends = dict(re.findall(r"(\S+) \(>= ([\d.]+)\)", self.field(package, "Depends")))
        self.assertEqual(set(depends), LIBRARIES)
        prefix = self.install("prefix")
        asked = "".join(self.run_program(READELF, "--wide", "--dyn-syms", prefix / program)
                        for program in ("bin/quill", "lib/quillcaption/quillcaption.so",
                                        "lib/quillcaption/quillcaption-guard.so"))
        libc = [tuple(map(int, text.split("."))) for text in re.findall(r"@GLIBC_([\d.]+)", asked)]
        self.assertLessEqual(max(libc), tuple(map(int, depends["libc6"].split("."))))
        libstdcxx = [GCC_OF_GLIBCXX[int(text)] for text in re.findall(r"@GLIBCXX_3\.4\.(\d+)", asked)
                     if int(text) > 20]
        self.assertLessEqual(max(libstdcxx), int(depends["libstdc++6"]))

    def test_packed_again_they_are_the_same_to_the_byte(self):
        """scripts/check-same-bytes builds again as well."""
        made = self.make("DEB")
        self.pack("DEB", self.folder / "again")
        for name in made:
            with self.subTest(name):
                self.assertEqual((self.folder / "again" / name).read_bytes(),
                                 (self.made / "DEB" / name).read_bytes())

    def test_archive(self):
        package, = self.make("TGZ")
        name = f"quillcaption-{VERSION}-{ARCHITECTURE}"
        self.assertEqual(package, f"{name}.tar.gz")
        with tarfile.open(self.made / "TGZ" / package) as archive:
            owners = {(member.uid, member.gid, member.uname, member.gname) for member in archive}
            self.assertEqual(owners, {(0, 0, "root", "root")})
            archive.extractall(self.folder / "unpacked")
        self.assertEqual(files_below(self.folder / "unpacked" / name), files_below(self.install("expected")))
        self.assert_runs(self.folder / "unpacked" / name)


if __name__ == "__main__":
    unittest.main()

"""What cmake --install puts where: by component, into a prefix, into a staging folder."""

import os
import re
import shutil
import sys
import unittest

from installation import (BUILD, CMAKE, DIALOGUE, FOR_THE_TARGET, SOURCE, InstallTest,
                          files_below)

sys.path.insert(0, str(SOURCE / "tests/docs"))
import pages  # pylint: disable=wrong-import-position

PAGES = sorted(path.name for path in (SOURCE / "man").glob("*.1"))
COMPONENTS = {
    "module": ["lib/quillcaption/quillcaption.so"],
    "guard": ["lib/quillcaption/quillcaption-guard.so"],
    "header": ["include/quillcaption/quillcaption.h",
               "lib/cmake/quillcaption/quillcaption-config-version.cmake",
               "lib/cmake/quillcaption/quillcaption-config.cmake",
               "lib/cmake/quillcaption/quillcaption-targets.cmake",
               "lib/pkgconfig/quillcaption.pc"],
    "tools": ["bin/quill",
              "share/bash-completion/completions/quill",
              "share/fish/vendor_completions.d/quill.fish",
              "share/zsh/vendor-completions/_quill",
              *(f"share/man/man1/{page}" for page in PAGES)],
    "docs": [f"share/doc/quillcaption/{name}" for name in
             ("CHANGELOG.md", "README.md", "SECURITY.md",
              *(f"{folder}/{name}" for folder in ("docs", "examples", "samples")
                for name in files_below(SOURCE / folder)))],
}


class Prefix(InstallTest):
    def test_each_component_by_itself(self):
        for component, files in COMPONENTS.items():
            with self.subTest(component):
                prefix = self.install(component, "--component", component)
                self.assertEqual(files_below(prefix), sorted(files))

    def test_all_components_together(self):
        everything = sorted(sum(COMPONENTS.values(), []))
        self.assertEqual(files_below(self.install("all")), everything)

    def test_a_staging_folder(self):
        self.run_program(CMAKE, "--install", BUILD, "--prefix", "/usr", "--component", "module",
                         env={**os.environ, "DESTDIR": str(self.folder / "stage")})
        self.assertEqual(files_below(self.folder / "stage"),
                         ["usr/lib/quillcaption/quillcaption.so"])

    def test_quill_finds_the_module_and_goes_on_when_both_are_moved(self):
        prefix = self.install("here")
        self.assert_plays(prefix / "bin/quill", "cues", DIALOGUE)
        moved = shutil.move(prefix, self.folder / "there")
        self.assert_plays(moved / "bin/quill", "cues", DIALOGUE)

    def test_other_folders(self):
        """A build that is told where things go tells quill, CMake and pkg-config."""
        build, prefix = self.folder / "build", self.folder / "prefix"
        self.run_program(
            CMAKE, "-G", "Ninja", "-S", SOURCE, "-B", build, f"-DCMAKE_INSTALL_PREFIX={prefix}",
            "-DCMAKE_INSTALL_LIBDIR=lib/board", "-DCMAKE_INSTALL_BINDIR=usr/bin",
            "-DCMAKE_INSTALL_INCLUDEDIR=usr/inc", "-DQUILLCAPTION_TESTS=OFF", *FOR_THE_TARGET)
        self.run_program(CMAKE, "--install", build, "--component", "header")
        self.assertEqual(files_below(prefix),
                         ["lib/board/cmake/quillcaption/quillcaption-config-version.cmake",
                          "lib/board/cmake/quillcaption/quillcaption-config.cmake",
                          "lib/board/cmake/quillcaption/quillcaption-targets.cmake",
                          "lib/board/pkgconfig/quillcaption.pc",
                          "usr/inc/quillcaption/quillcaption.h"])
        self.assertIn("prefix=${pcfiledir}/../../..\nincludedir=${prefix}/usr/inc\n"
                      "moduledir=${prefix}/lib/board/quillcaption\n",
                      (prefix / "lib/board/pkgconfig/quillcaption.pc").read_text())
        self.assertIn('"${PACKAGE_PREFIX_DIR}/lib/board/quillcaption"', (
            prefix / "lib/board/cmake/quillcaption/quillcaption-config.cmake").read_text())
        self.assertIn(r'QUILL_MODULE_DIR=\\\"../../lib/board/quillcaption\\\"',
                      (build / "compile_commands.json").read_text())

    def test_as_a_build_system_calls(self):
        """Told what it tells every package, and installed into its staging folder.

        scripts/check-same-bytes builds so, for Make, without rights to write to the sources.
        """
        build = self.folder / "build"
        self.run_program(
            CMAKE, "-G", "Ninja", "-S", SOURCE, "-B", build, "-DCMAKE_INSTALL_PREFIX=/usr",
            "-DCMAKE_BUILD_TYPE=Release", "-DBUILD_TESTING=OFF", "-DBUILD_SHARED_LIBS=ON",
            "-DQUILLCAPTION_TOOLS=OFF", *FOR_THE_TARGET)
        made = re.findall(r": CXX_(\w+)_LIBRARY_LINKER", (build / "build.ninja").read_text())
        self.assertEqual((made.count("MODULE"), made.count("SHARED")), (2, 0))
        self.assertFalse((build / "tests").exists())
        self.run_program(CMAKE, "--install", build, "--component", "header",
                         env={**os.environ, "DESTDIR": str(self.folder / "stage")})
        self.assertEqual(files_below(self.folder / "stage/usr"), COMPONENTS["header"])

    def test_links_in_the_installed_pages_lead_somewhere(self):
        prefix = self.install("docs", "--component", "docs")
        followed = 0
        for page in prefix.rglob("*.md"):
            for line, path, _ in pages.links(page.read_text()):
                followed += 1
                with self.subTest(f"{page.relative_to(prefix)}:{line}"):
                    self.assertTrue((page.parent / path).exists(), path)
        self.assertGreater(followed, 20)

    def test_no_file_says_where_it_was_built(self):
        prefix = self.install("prefix")
        for name in files_below(prefix):
            content = (prefix / name).read_bytes()
            for folder in (BUILD, str(SOURCE), str(self.folder)):
                with self.subTest(name, folder=folder):
                    self.assertEqual(content.count(folder.encode()), 0)


if __name__ == "__main__":
    unittest.main()

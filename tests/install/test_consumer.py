"""The example host, built against an installation and nothing else, in the two usual ways; and the
host that the header's opening comment shows."""

import os
import re
import shutil
import unittest

from installation import (CMAKE, DIALOGUE, EMULATOR, FOR_THE_TARGET, SOURCE, VERSION, InstallTest,
                          files_below)

CC = os.environ["INSTALL_CC"].split()
CXX = os.environ["INSTALL_CXX"].split()

# Prints what the CMake package says.
ASKING = """
cmake_minimum_required(VERSION 3.25)
project(asking LANGUAGES C)
find_package(quillcaption {wanted} CONFIG)
message("found: ${{quillcaption_FOUND}}")
message("folder: ${{quillcaption_MODULE_DIR}}")
message("module: ${{quillcaption_MODULE}}")
message("considered: ${{quillcaption_CONSIDERED_VERSIONS}}")
"""

# What the header's opening comment leaves to its reader: here a line of the track is a chunk, so
# that what is lost with a chunk is lost by itself.
OPENING_HOST = r"""
#include <dlfcn.h>
#include <cstdio>
#include <exception>
#include "quillcaption/quillcaption.h"

static char my_line[256];
static void *const my_tag = my_line;

static bool my_next_chunk(const char **chunk, unsigned int *size) {{
    if (std::fgets(my_line, sizeof my_line, stdin) == nullptr) {{
        return false;
    }}
    *chunk = my_line;
    for (*size = 0; my_line[*size] != 0; ++*size) {{
    }}
    return true;
}}

static void my_callback(WEBVTT_EVENT_T, void *tag, void *data) {{
    for (auto *cue = static_cast<WebvttDataInfo *>(data)->prCueList; cue; cue = cue->prNext) {{
        std::fprintf(stderr, "%s%s", tag == my_tag ? "" : "another tag", cue->pcText);
    }}
}}

static void play() {{
{opening}
}}

int main() {{
    play();
}}
"""
OPENING_TRACK = b"""WEBVTT

00:01.000 --> 00:02.000
One

00:02.000 --> 00:03.000 line:-
This is lost.

00:03.000 --> 00:04.000
Last"""


class Consumer(InstallTest):
    def setUp(self):
        super().setUp()
        self.prefix = self.install("prefix", "--component", "header")
        self.install("prefix", "--component", "module")
        self.module = self.prefix / "lib/quillcaption/quillcaption.so"
        self.examples = shutil.copytree(SOURCE / "examples", self.folder / "examples")

    def configure(self, source, *options):
        """CMake's words on a project that is configured to find the installation."""
        build = self.folder / "build"
        shutil.rmtree(build, ignore_errors=True)
        # message() writes to standard error.
        return self.run_program("sh", "-c", '"$@" 2>&1', "sh", CMAKE, "-G", "Ninja", "-S", source,
                                "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}", *options)

    def ask(self, wanted, options=FOR_THE_TARGET):
        """What the package says to a project that wants a version of it, by name."""
        source = self.folder / "asking"
        source.mkdir(exist_ok=True)
        (source / "CMakeLists.txt").write_text(ASKING.format(wanted=wanted))
        said = self.configure(source, *options)
        return dict(line.split(": ", 1) for line in said.splitlines()
                    if line.startswith(("found: ", "folder: ", "module: ", "considered: ")))

    def move_prefix(self):
        self.prefix = shutil.move(self.prefix, self.folder / "moved")

    def pkg_config(self, *arguments):
        environment = {**os.environ, "PKG_CONFIG_LIBDIR": str(self.prefix / "lib/pkgconfig")}
        return self.run_program("pkg-config", *arguments, "quillcaption", env=environment).strip()

    def test_by_cmake(self):
        self.configure(self.examples, *FOR_THE_TARGET)
        self.run_program(CMAKE, "--build", self.folder / "build")
        self.assert_plays(self.folder / "build/host", self.module, DIALOGUE)

    def test_by_pkg_config(self):
        flags = self.pkg_config("--cflags").split()
        objects = []
        for compiler, source in ((CC + ["-std=c11"], "host.c"), (CXX, "guarded_parse.cpp")):
            objects.append(self.folder / (source + ".o"))
            self.run_program(*compiler, *flags, "-c", self.examples / source, "-o", objects[-1])
        self.run_program(*CXX, *objects, "-ldl", "-o", self.folder / "host")
        self.assert_plays(self.folder / "host", self.module, DIALOGUE)

    def test_the_opening_comment(self):
        """What it shows compiles, goes on behind a track's exception, and loses no last cue."""
        header = (self.prefix / "include/quillcaption/quillcaption.h").read_text()
        opening = header.split("Calling rules", maxsplit=1)[0]
        shown = "\n".join(re.findall(r"^ \*     (.*)$", opening, re.MULTILINE))
        source = self.folder / "opening.cpp"
        source.write_text(OPENING_HOST.format(opening=shown))
        flags = ["-std=c++17", "-Wall", "-Wextra", "-Werror", f"-I{self.prefix}/include"]
        self.run_program(*CXX, *flags, source, "-ldl", "-o", self.folder / "opening")
        printed = self.run_program("sh", "-c", '"$@" 2>&1 >/dev/null', "sh", *EMULATOR,
                                   self.folder / "opening", cwd=self.module.parent,
                                   input=OPENING_TRACK)
        self.assertEqual(printed, "One\nLast\n")

    def test_pkg_config_names_folders_and_version_and_follows_a_move(self):
        self.move_prefix()
        self.assertEqual(self.pkg_config("--modversion"), VERSION)
        module_folder = self.pkg_config("--variable=moduledir")
        self.assertEqual(files_below(module_folder), ["quillcaption.so"])
        include_folder = self.pkg_config("--variable=includedir")
        self.assertEqual(files_below(include_folder), ["quillcaption/quillcaption.h"])
        self.assertEqual(self.pkg_config("--libs"), "")

    def test_the_cmake_package_names_the_module_and_follows_a_move(self):
        self.move_prefix()
        said = self.ask(VERSION)
        self.assertEqual(said["found"], "1")
        self.assertEqual(said["folder"], str(self.prefix / "lib/quillcaption"))
        self.assertEqual(said["module"], str(self.prefix / "lib/quillcaption/quillcaption.so"))

    def test_the_cmake_package_refuses_what_it_cannot_serve(self):
        major, minor, _ = VERSION.split(".")
        self.assertEqual(self.ask(f"{major}.{minor}")["found"], "1")
        self.assertEqual(self.ask(f"{major}.{int(minor) + 1}")["found"], "0")
        self.assertEqual(self.ask(f"{int(major) + 1}.0")["found"], "0")

    def test_the_cmake_package_refuses_a_64_bit_project(self):
        said = self.ask("", ["-DCMAKE_C_COMPILER=gcc", "-DCMAKE_C_FLAGS=-m64"])
        self.assertEqual((said["found"], said["considered"]), ("0", f"{VERSION} (32bit)"))


if __name__ == "__main__":
    unittest.main()

"""The manual pages: well-formed, and with all that quill --help says."""

import os
import re
import subprocess
import unittest

from installation import BUILD, EMULATOR, SOURCE, InstallTest

QUILL = f"{BUILD}/quill"
PAGES = {path.stem: path for path in (SOURCE / "man").glob("*.1")}


class Manual(InstallTest):
    def help(self, *subcommand):
        return self.run_program(*EMULATOR, QUILL, *subcommand, "--help")

    def subcommands(self):
        listed = self.help().split("Subcommands:\n")[1]
        return re.findall(r"^  (\w+) ", listed, re.MULTILINE)

    def read(self, page):
        """A page as it is shown, without emphasis, a space for every space."""
        text = self.run_program("mandoc", "-T", "utf8", "-O", "width=200", PAGES[page],
                                env={**os.environ, "LC_ALL": "C.UTF-8"})
        return re.sub(r".\x08", "", text)

    def test_lint(self):
        for page, path in PAGES.items():
            with self.subTest(page):
                done = subprocess.run(["mandoc", "-T", "lint", "-W", "style", path], check=False,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
                complaints = [line for line in done.stdout.decode().splitlines()
                              if "referenced manual not found: Xr quill" not in line]
                self.assertEqual(complaints, [])

    def test_pages_refer_to_pages_that_there_are(self):
        self.assertIn("quill", PAGES)
        for page, path in PAGES.items():
            for referred in re.findall(r"^\.Xr (\S+) 1", path.read_text(), re.MULTILINE):
                with self.subTest(page):
                    self.assertIn(referred, PAGES)

    def test_every_subcommand_has_a_page_and_quill_names_it(self):
        overview = self.read("quill")
        for name in self.subcommands():
            with self.subTest(name):
                self.assertIn(f"quill-{name}", PAGES)
                self.assertIn(f"quill-{name}(1)", overview)

    def test_pages_have_the_options_of_the_command_and_no_others(self):
        for name in self.subcommands():
            with self.subTest(name):
                said = set(re.findall(r"^  (?:-\w,)?(--[\w-]+)", self.help(name), re.MULTILINE))
                page = self.read(f"quill-{name}").split("EXAMPLES")[0]
                self.assertEqual(set(re.findall(r"(?<!\w)--[a-z][\w-]*", page)), said)

    def test_pages_have_the_exit_codes_of_the_command(self):
        for name in self.subcommands():
            with self.subTest(name):
                said = re.findall(r"^  (\d)  ", self.help(name).split("Exit codes:\n")[1],
                                  re.MULTILINE)
                statuses = self.read(f"quill-{name}").split("EXIT STATUS")[1].split("EXAMPLES")[0]
                self.assertEqual(re.findall(r"^ +(\d)  ", statuses, re.MULTILINE), said)


if __name__ == "__main__":
    unittest.main()

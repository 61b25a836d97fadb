"""What bash offers for quill, asked as bash asks it, and compared with what quill takes."""

import re
import unittest

from installation import BUILD, EMULATOR, SOURCE, InstallTest

QUILL = f"{BUILD}/quill"

# Asks for the words that may stand where the last argument stands.
ASKING = """
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_quill
printf '%s\\n' "${COMPREPLY[@]}"
"""

# Words of a command line, the last one unfinished, and what is offered in its place.
OFFERS = [
    (["quill", "cu"], ["cues"]),
    (["quill", "c"], ["check", "conform", "cues"]),
    (["quill", "check", "--format", ""], ["json", "text"]),
    (["quill", "check", "--fail-on", ""], ["changed", "lost", "never", "remark"]),
    (["quill", "check", "--fail-on", "remark", "an"], ["another.so"]),
    (["quill", "conform", "--cases", "an"], ["another.so"]),
    (["quill", "conform", "--only", "a"], []),
    (["quill", "conform", "--list", "an"], ["another.so"]),
    (["quill", "inspect", "a"], ["a track.vtt", "another.so"]),
    (["quill", "inspect", "--chunk", ""], []),
    (["quill", "x"], []),
    (["quill", "--v"], ["--version"]),
    (["quill", "cues", "--fo"], ["--format"]),
    (["quill", "cues", "--format", ""], ["json", "srt", "text"]),
    (["quill", "cues", "--format", "j"], ["json"]),
    (["quill", "cues", "--chunk", ""], []),
    (["quill", "cues", "--pts", "1"], []),
    (["quill", "cues", "--module", ""], ["a track.vtt", "another.so"]),
    (["quill", "cues", ""], ["a track.vtt", "another.so"]),
    (["quill", "cues", "--quiet", "a "], ["a track.vtt"]),
    (["quill", "nonsense", ""], []),
    (["quill", "nonsense", "--"], []),
]


class Completion(InstallTest):
    def setUp(self):
        super().setUp()
        for name in ("a track.vtt", "another.so"):
            (self.folder / name).touch()

    def offered(self, *words):
        offered = self.run_program("bash", "--norc", "-euc", ASKING, "bash",
                                   SOURCE / "completions/quill.bash", *words, cwd=self.folder)
        return sorted(offered.splitlines())

    def help(self, *subcommand):
        return self.run_program(*EMULATOR, QUILL, *subcommand, "--help")

    def subcommands(self):
        listed = self.help().split("Subcommands:\n")[1]
        return re.findall(r"^  (\w+) ", listed, re.MULTILINE)

    def test_offers(self):
        for words, offers in OFFERS:
            with self.subTest(words):
                self.assertEqual([word for word in self.offered(*words) if word], offers)

    def test_all_subcommands_are_offered(self):
        offered = self.offered("quill", "")
        self.assertEqual(offered, [page.stem.removeprefix("quill-") for page in
                                   sorted((SOURCE / "man").glob("quill-*.1"))])
        self.assertEqual(sorted(self.subcommands()), offered)

    def test_all_options_are_offered(self):
        for words in ([], *([name] for name in self.subcommands())):
            with self.subTest(words):
                options = re.findall(r"^  (?:-\w,)?(--[\w-]+)", self.help(*words), re.MULTILINE)
                self.assertGreaterEqual(len(options), 2)
                self.assertEqual(self.offered("quill", *words, "--"), sorted(options))

    def test_bash_is_told(self):
        told = self.run_program("bash", "--norc", "-euc", 'source "$1"; complete -p quill', "bash",
                                SOURCE / "completions/quill.bash")
        self.assertEqual(told, "complete -o filenames -F _quill quill\n")


if __name__ == "__main__":
    unittest.main()

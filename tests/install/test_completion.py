"""What shells offer for quill, asked as the shells ask it, and compared with what quill takes.

The completion is installed. Debian's bash-completion finds and reads it at the first TAB;
INSTALL_BASH_COMPLETION is the file that bash-completion is started by. So do zsh and fish, whose
completions ask that of bash; where one of them is missing, a line says so.
"""

import os
import re
import shutil
import unittest

from installation import BUILD, EMULATOR, SOURCE, InstallTest

QUILL = f"{BUILD}/quill"
BASH_COMPLETION = os.environ["INSTALL_BASH_COMPLETION"]

# As bash does at a TAB: calls the loader for commands without a completion, which answers 124 when
# it has found one, and then what that has registered. Prints the words that are offered.
ASKING = """
source "$1" && shift || exit
registered() { [[ $(complete -p "$1") =~ -F\\ ([^ ]+) ]] && function=${BASH_REMATCH[1]}; }
registered -D && $function quill quill ''
[ $? = 124 ] && registered quill || exit
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
$function quill "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\\n' "${COMPREPLY[@]}"
"""

# Words of a command line, the last one unfinished, and what is offered in its place.
OFFERS = [
    (["quill", "cu"], ["cues"]),
    (["quill", "c"], ["check", "conform", "cues"]),
    (["quill", "check", "--format", ""], ["github", "json", "sarif", "text"]),
    (["quill", "check", "--color", "a"], ["always", "auto"]),
    (["quill", "check", "--fail-on", ""], ["changed", "lost", "never", "remark"]),
    (["quill", "check", "--fail-on", "remark", "an"], ["another.so"]),
    (["quill", "conform", "--cases", "an"], ["another.so"]),
    (["quill", "conform", "--only", "a"], []),
    (["quill", "conform", "--list", "an"], ["another.so"]),
    (["quill", "fix", "-o", "an"], ["another.so"]),
    (["quill", "fix", "--only", "a"], []),
    (["quill", "report", "--video", "an"], ["another.so"]),
    (["quill", "report", "--log", "an"], ["another.so"]),
    (["quill", "inspect", "a"], ["a track.vtt", "another.so"]),
    (["quill", "inspect", "--chunk", ""], []),
    (["quill", "replay", "--track", "an"], ["another.so"]),
    (["quill", "replay", "--parser", ""], []),
    (["quill", "replay", "--show", "an"], ["another.so"]),
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


# zsh's own search finds the function for quill; it is called as the line editor does.
ASKING_ZSH = """
autoload -Uz compinit && compinit -D -u && [[ $_comps[quill] = _quill ]] || exit
compadd() { [[ "$1 $2" = "-f --" ]] && shift 2 && print -rl -- "$@" }
while IFS= read -r line; do
    words=("${(@ps:\x1f:)line}") CURRENT=$#words
    _quill
    print "\x1e"
done
"""
ASKING_FISH = """while read line; complete -C "$line"; printf '\\x1e\\n'; end"""


class Completion(InstallTest):
    def setUp(self):
        super().setUp()
        self.prefix = self.install("prefix", "--component", "tools")
        self.place = self.folder / "place"
        self.place.mkdir()
        for name in ("a track.vtt", "another.so"):
            (self.place / name).touch()

    def offered(self, *words):
        offered = self.run_program("bash", "--norc", "-c", ASKING, "bash", BASH_COMPLETION, *words,
                                   cwd=self.place, env={**os.environ, "HOME": str(self.folder),
                                                        "XDG_DATA_DIRS": f"{self.prefix}/share"})
        return sorted(offered.splitlines())

    def offered_by_another(self, *command, lines, **environment):
        """What a shell that is told of the installation in its own way offers for each line."""
        offered = self.run_program(*command, cwd=self.place, input="".join(lines).encode(), env={
            **os.environ, "HOME": str(self.folder), "XDG_CONFIG_HOME": str(self.folder),
            "PATH": f"{self.prefix}/bin:{os.environ['PATH']}", **environment})
        return [sorted(part.strip("\n").split("\n")) if part.strip("\n") else []
                for part in offered.split("\x1e\n")[:-1]]

    def assert_offers(self, table, offered):
        self.assertEqual(len(offered), len(table))
        for (words, offers), found in zip(table, offered):
            with self.subTest(words):
                self.assertEqual(found, offers)

    @unittest.skipUnless(shutil.which("zsh"), "needs zsh (scripts/setup packages installs it)")
    def test_zsh_offers_the_same(self):
        folders = self.run_program("zsh", "-fc", "print $FPATH").strip()
        self.assert_offers(OFFERS, self.offered_by_another(
            "zsh", "-fc", ASKING_ZSH, lines=["\x1f".join(words) + "\n" for words, _ in OFFERS],
            FPATH=f"{self.prefix}/share/zsh/vendor-completions:{folders}"))

    @unittest.skipUnless(shutil.which("fish"), "needs fish (scripts/setup packages installs it)")
    def test_fish_offers_the_same(self):
        (self.place / "folder").mkdir()
        table = [(words, [*offers, "folder/"] if "another.so" in offers and not words[-1] else offers)
                 for words, offers in OFFERS] + [(["quill", "inspect", "fol"], ["folder/"])]
        lines = [" ".join(word.replace(" ", "\\ ") for word in words) + "\n" for words, _ in table]
        self.assert_offers(table, self.offered_by_another(
            "fish", "-c", ASKING_FISH, lines=lines, XDG_DATA_DIRS=f"{self.prefix}/share"))

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

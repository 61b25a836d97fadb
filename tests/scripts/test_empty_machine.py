"""scripts/empty-machine: what it refuses, and that it leaves nothing behind, however it ends.

The Debian in it is played by a few programs of this machine, kept where the script looks for the
Debian that it has made before; the tree by the scripts alone.
"""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = TREE / "scripts" / "empty-machine"
PROGRAMS = ["bash", "cat", "env", "sleep"]


def may_make_namespaces():
    tried = subprocess.run(["unshare", "--mount", "--pid", "--fork", "--mount-proc", "true"],
                           stderr=subprocess.DEVNULL, check=False)
    return tried.returncode == 0


def run(*arguments, **options):
    return subprocess.run([SCRIPT, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, text=True, check=False, timeout=60, **options)


class Arguments(unittest.TestCase):
    def test_what_is_wrong_is_named(self):
        for wrong in ("sid", "--users", "apt-get"):
            result = run(wrong)
            self.assertEqual(result.returncode, 2)
            self.assertIn(f"empty-machine: {wrong} is not understood\n", result.stderr)
            self.assertIn("scripts/empty-machine [bookworm|trixie]", result.stderr)
            self.assertEqual(result.stdout, "")

    def test_an_architecture_or_folder_that_is_not_there(self):
        result = run("--arch", "sparc")
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertIn("empty-machine: there is no empty Debian for 'sparc'\n", result.stderr)
        result = run("--folder", "/nowhere/to/be/found")
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn("empty-machine: --folder needs a folder that there is\n", result.stderr)

    def test_help_ends_well(self):
        result = run("trixie", "--help")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        for word in ("--user ", "--archive ", "--fresh ", "Exit codes"):
            self.assertIn(word, result.stdout)


def heed_interrupts():
    """A process that was started in the background ignores them, and its children do."""
    signal.signal(signal.SIGINT, signal.SIG_DFL)


def make_root(folder):
    """A root with PROGRAMS and the libraries that they name."""
    files = {pathlib.Path(shutil.which(name)) for name in PROGRAMS}
    for program in list(files):
        listed = subprocess.run(["ldd", program], stdout=subprocess.PIPE, text=True, check=True)
        files |= {pathlib.Path(name) for name in re.findall(r"(/\S+) \(0x", listed.stdout)}
    for file in files:
        target = folder / file.relative_to("/")
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(file, target)
    for name in ("dev", "etc", "proc"):
        (folder / name).mkdir()
    (folder / "etc" / "passwd").write_text("root:x:0:0:root:/:/bin/bash\n")


@unittest.skipUnless(may_make_namespaces(), "needs root's rights")
class Machine(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        cls.addClassCleanup(cls.folder.cleanup)
        cls.cache = pathlib.Path(cls.folder.name) / "quillcaption"
        cls.tree = pathlib.Path(cls.folder.name) / "tree"
        shutil.copytree(TREE / "scripts", cls.tree / "scripts")
        (cls.tree / "build").mkdir()
        (cls.tree / "build" / "left_out").touch()
        root = cls.cache / "root"
        make_root(root)
        subprocess.run(["tar", "-C", root, "-czf", cls.cache / "trixie.tar.gz", "."], check=True)
        shutil.rmtree(root)

    def setUp(self):
        self.environment = {**os.environ, "XDG_CACHE_HOME": self.folder.name}

    def play(self, command, *options, signalled=None):
        """Runs a bash command there, signals once it says "ready", and sees that nothing is left."""
        mounts = pathlib.Path("/proc/self/mounts").read_text()
        reading, writing = os.pipe()  # whatever is started there holds the writing end
        try:
            with subprocess.Popen([self.tree / "scripts" / "empty-machine", "trixie", *options,
                                   "--", "bash", "-c", command],
                                  env=self.environment, pass_fds=[writing], text=True,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  start_new_session=True, preexec_fn=heed_interrupts) as process:
                os.close(writing)
                if signalled:
                    self.assertEqual(process.stdout.readline(), "ready\n")
                    signalled(process.pid)
                output, _ = process.communicate(timeout=60)
            os.set_blocking(reading, False)
            self.assertEqual(os.read(reading, 1), b"", "a process is left behind")
        finally:
            os.close(reading)
        self.assertEqual(pathlib.Path("/proc/self/mounts").read_text(), mounts)
        self.assertEqual(sorted(path.name for path in self.cache.iterdir()),
                         ["trixie-packages", "trixie.tar.gz"])
        return process.returncode, output

    def test_says_when_there_can_be_none(self):
        """The kernel refuses its namespaces, as in many containers."""
        programs = pathlib.Path(self.folder.name) / "programs"
        programs.mkdir()
        (programs / "unshare").symlink_to("/bin/false")
        self.environment["PATH"] = f"{programs}:{os.environ['PATH']}"
        self.assertEqual(self.play("echo not reached", "--archive"), (1, ""))

    def test_gives_what_the_command_gives(self):
        self.environment["FOREIGN"] = "of this machine"
        self.assertEqual(self.play("echo $FOREIGN here; exit 7", "--archive"), (7, "here\n"))

    def test_copies_the_tree(self):
        command = "test ! -e build -a ! -e .git && cat scripts/empty-machine"
        self.assertEqual(self.play(command, "--archive"), (0, SCRIPT.read_text()))

    def test_copies_another_folder(self):
        folder = self.tree / "build"
        self.assertEqual(self.play("echo *", "--folder", folder), (0, "left_out\n"))

    @unittest.skipUnless(shutil.which("git"), "needs git")
    def test_copies_a_clone(self):
        for command in (["init", "--quiet"], ["add", "scripts/test"],
                        ["-c", "user.name=n", "-c", "user.email=e", "commit", "--quiet", "-m", "m"]):
            subprocess.run(["git", *command], cwd=self.tree, check=True)
        self.addCleanup(shutil.rmtree, self.tree / ".git")
        (self.tree / ".gitignore").write_text("/build/\n")
        self.addCleanup((self.tree / ".gitignore").unlink)
        command = "test -e .git/index -a ! -e build && echo scripts/*-machine scripts/tes?"
        self.assertEqual(self.play(command), (0, "scripts/empty-machine scripts/test\n"))

    def test_ends_what_the_command_left_running(self):
        self.assertEqual(self.play("sleep 1000 & echo done", "--archive"), (0, "done\n"))

    def test_ends_at_once_when_told_to(self):
        stubborn = "trap '' HUP INT TERM; echo ready; sleep 1000"
        for number, send in ((signal.SIGINT, os.killpg),  # as a terminal does for Ctrl-C
                             (signal.SIGINT, os.kill), (signal.SIGTERM, os.kill),
                             (signal.SIGHUP, os.kill)):
            with self.subTest(number, to=send.__name__):
                status, _ = self.play(stubborn, "--archive", signalled=lambda pid: send(pid, number))
                self.assertEqual(status, 128 + number)


if __name__ == "__main__":
    unittest.main()

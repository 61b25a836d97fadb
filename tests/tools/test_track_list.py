"""The tracks that a command is given by folders and by lists, shown by what quill check says of them."""

import json
import os
import unittest

from quill_runner import QuillTest

GOOD = b"WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"
# In the order of their names.
BELOW = ("A.VTT", "a.vtt", "b.webvtt", "c/a.vtt", "c/d/a.vtt", "c/z.vtt", "d.vtt")
BESIDE = ("b.srt", "c/vtt", "e/notes.txt", "f.vtt.bak")


class TrackList(QuillTest):
    def setUp(self):
        super().setUp()
        for name in BELOW + BESIDE:
            os.makedirs(os.path.dirname(os.path.join(self.folder, name)), exist_ok=True)
            self.file(name, GOOD)

    def names(self, *arguments, code=0, messages=(), **how):
        """The tracks that were checked, in the order of the output."""
        result = self.quill("check", "--format", "json", *arguments, cwd=self.folder, **how)
        self.assertEqual((result.code, self.messages(result)), (code, list(messages)))
        lines = map(json.loads, result.out.splitlines())
        return [line["track"] for line in lines if "track" in line and "sums" in line]

    def test_a_folder(self):
        self.assertEqual(self.names("."), ["./" + name for name in BELOW])
        self.assertEqual(self.names("c"), ["c/a.vtt", "c/d/a.vtt", "c/z.vtt"])
        self.assertEqual(self.names("c/"), ["c/a.vtt", "c/d/a.vtt", "c/z.vtt"])

    def test_the_order_of_the_arguments_counts_first(self):
        self.assertEqual(self.names("d.vtt", "c/d", "b.srt", "a.vtt"),
                         ["d.vtt", "c/d/a.vtt", "b.srt", "a.vtt"])

    def test_a_link_to_a_folder_is_followed_when_it_is_named_only(self):
        os.symlink(self.folder, os.path.join(self.folder, "c", "up"))
        os.symlink("../a.vtt", os.path.join(self.folder, "c", "linked.vtt"))
        below = ["c/a.vtt", "c/d/a.vtt", "c/linked.vtt", "c/z.vtt"]
        self.assertEqual(self.names("c"), below)
        self.assertEqual(self.names("c/up/c"), ["c/up/" + name for name in below])

    def test_a_list(self):
        self.file("list", b"d.vtt\n\nc/d\na.vtt")
        listed = ["d.vtt", "c/d/a.vtt", "a.vtt"]
        self.assertEqual(self.names("--files-from", "list"), listed)
        self.assertEqual(self.names("--files-from", "-", stdin=b"d.vtt\n\nc/d\na.vtt"), listed)
        self.assertEqual(self.names("b.srt", "--files-from", "list"), ["b.srt"] + listed)

    def test_an_empty_list_is_a_list(self):
        self.assertEqual(self.names("--files-from", "-"), [])

    def test_a_list_that_is_not_there(self):
        self.assertEqual(self.names("a.vtt", "--files-from", "none", code=2, messages=[
            "none: No such file or directory"]), ["a.vtt"])

    def test_a_folder_without_a_track(self):
        self.assertEqual(self.names("e", "a.vtt", code=2, messages=[
            "e: no *.vtt and no *.webvtt below this folder"]), ["a.vtt"])

    @unittest.skipIf(os.geteuid() == 0, "root may read every folder")
    def test_a_folder_that_cannot_be_read(self):
        os.chmod(os.path.join(self.folder, "c/d"), 0)
        self.addCleanup(os.chmod, os.path.join(self.folder, "c/d"), 0o700)
        self.assertEqual(self.names("c", code=2, messages=["c/d: Permission denied"]),
                         ["c/a.vtt", "c/z.vtt"])

    def test_a_link_that_leads_nowhere_is_said(self):
        os.symlink("nowhere", os.path.join(self.folder, "c", "b.vtt"))
        self.assertEqual(self.names("c", code=2, messages=[
            "c/b.vtt: No such file or directory"]), ["c/a.vtt", "c/d/a.vtt", "c/z.vtt"])

    def test_a_pipe_below_a_folder_is_not_waited_for(self):
        os.mkfifo(os.path.join(self.folder, "c", "b.vtt"))
        self.assertEqual(self.names("c"), ["c/a.vtt", "c/d/a.vtt", "c/z.vtt"])

    def test_a_folder_whose_name_ends_like_a_track(self):
        os.mkdir(os.path.join(self.folder, "c", "x.vtt"))
        os.symlink("d", os.path.join(self.folder, "c", "y.vtt"))
        self.assertEqual(self.names("c"), ["c/a.vtt", "c/d/a.vtt", "c/z.vtt"])


if __name__ == "__main__":
    unittest.main()

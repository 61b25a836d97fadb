"""The test of the documents, tried with pages that are right and pages that are not."""

import importlib.machinery
import importlib.util
import pathlib
import sys
import tempfile
import unittest

FOLDER = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(FOLDER))
LOADER = importlib.machinery.SourceFileLoader("run", str(FOLDER / "run"))
run = importlib.util.module_from_spec(importlib.util.spec_from_loader("run", LOADER))
LOADER.exec_module(run)

# A page, and a word of each mistake that it has.
PAGES = [
    ("Nothing to test.\n", []),
    ("```console\n$ echo a\na\n```\n", []),
    ("```console\n$ echo a\nb\n```\n", ["something else"]),
    ("```console\n$ echo a\n```\n", []),
    ("```console\n$ echo a; echo b >&2; echo c\na\nb\nc\n```\n", []),
    ("```console\n$ seq 9\n1\n...\n9\n```\n", []),
    ("```console\n$ seq 9\n...\n```\n", []),
    ("```console\n$ seq 9\n1\n...\n8\n```\n", ["something else"]),
    ("```console\n$ seq 9\n1\n2\n```\n", ["something else"]),
    ("```console\n$ true\nx\n```\n", ["something else"]),
    ("```console\n$ echo one \\\n    two\none two\n```\n", []),
    ("```console\n$ cat << E\n> a\n> E\na\n```\n", []),
    ("```console\n$ x=5  # a remark\n$ echo $x\n5\n```\n", []),
    ("```console\n$ printf a\na\n$ printf b\nb\n```\n", []),
    ("```console\n$ false\n```\n", ["ended with 1"]),
    ("```console\n$ false\n$ echo $?\n1\n```\n", []),
    ("```console\n$ false\n$ echo $?\n2\n```\n", ["something else"]),
    ("```console\n$ exit 0\n$ echo a\n```\n", ["shell ended"]),
    ("```console\nno command\n```\n", ["begins with"]),
    ("```console\n```\n", ["without a command"]),
    ("```console\n$ scripts/test --and more\nanything\n```\n", []),
    ("```console\n$ fuzz/runner\n```\n", ["no fuzz/runner"]),
    ("```console\n$ touch a; mkdir b; touch b/c build/d\n```\n", ["leave a in", "leave b/c in"]),
    ("```text\n$ echo a\n```\n", ["use console"]),
    ("```text\nno command\n```\n", []),
    ("```vtt\nWEBVTT\n```\n", []),
    ("```json\n$ echo a\n```\n", ["use console"]),
    ("```\nanything\n```\n", ["a block is one of"]),
    ("```sh\necho\n```\n", ["a block is one of"]),
    ("```text\nnot closed\n", ["never closed"]),
    ("Text:\n\n    echo a\n", ["indented code"]),
    ("- item\n\n  more of it\n\n      echo a\n", ["indented code"]),
    ("1. item\n\n   - inner\n\n     more of it\n", []),
    ("- item\n\n  ```console\n  $ echo a\n  b\n  ```\n", ["something else"]),
    ("```text a.txt\nx\n```\n\n```console\n$ cat a.txt\nx\n```\n", []),
    ("```c\nint a;\n```\n", ["needs the name"]),
    ("```c a.c\nint a;\n```\n", []),
    ("```c a.c\nint a\n```\n", ["does not compile"]),
    ("```cpp a.cpp\n#include <string>\nstd::string a;\n```\n", []),
    ("```cpp a.cpp\nauto a = nullptr;\n```\n", []),
    ("```c examples/host.c\n#include <dlfcn.h>\n#include <stdio.h>\n```\n", []),
    ("```c examples/host.c\n#include <stdio.h>\n#include <dlfcn.h>\n```\n", ["no excerpt"]),
    ("[a](README.md) and [b](README.md#building)\n", []),
    ("[a](READYOU.md)\n", ["there is no READYOU.md"]),
    ("[a](README.md#bilding)\n", ["no heading for #bilding"]),
    ("# A page, this\n[a](#a-page-this) [b](#another)\n", ["no heading for #another"]),
]


class Pages(unittest.TestCase):
    def mistakes(self, text):
        with tempfile.TemporaryDirectory() as folder:
            page = run.Page("README.md", pathlib.Path(folder))
            page.text = text
            (page.scratch / "build").mkdir()
            return page.test()

    def test_pages(self):
        for text, expected in PAGES:
            with self.subTest(text):
                found = self.mistakes(text)
                self.assertEqual(len(found), len(expected), found)
                for mistake, word in zip(found, expected):
                    self.assertIn(word, mistake)

    def test_rows_that_leave_out_nothing(self):
        everything = set(run.NOT_RUN)
        self.assertEqual(list(run.stale_rows(everything)), [])
        one = run.NOT_RUN[0]
        self.assertEqual(list(run.stale_rows(everything - {one})), [
            f"tests/docs/not_run.py: no page has a command that begins with: {one[0]}"])


if __name__ == "__main__":
    unittest.main()

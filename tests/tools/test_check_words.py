"""The module's own words that quill check goes by: they stand in one file, and in the module."""

import os
import re
import unittest

from quill_runner import MODULE

ROOM = os.environ["QUILL_CHECK_ROOM"]
WORDS = "module_words.h"

# Texts that the module puts together: what it holds of them.
PIECES = {"kSecondLine": ("Invalid Input String of %s Line", "2nd")}


def read(name):
    with open(os.path.join(ROOM, name), encoding="utf-8") as file:
        return file.read()


class Words(unittest.TestCase):
    def test_the_module_holds_each_of_them(self):
        words = re.findall(r'string_view (\w+) =\s*"(.*)";', read(WORDS))
        self.assertEqual(len(words), read(WORDS).count("constexpr"))
        with open(MODULE, "rb") as file:
            module = file.read()
        for name, text in words:
            with self.subTest(name):
                form, *pieces = PIECES.get(name, (text,))
                self.assertEqual(form % tuple(pieces) if pieces else form, text)
                for piece in (form, *pieces):
                    self.assertTrue(piece.encode() in module, piece)

    def test_no_other_file_looks_for_a_text_in_what_was_printed(self):
        for name in sorted(os.listdir(ROOM)):
            with self.subTest(name):
                self.assertEqual(re.findall(r'printed(?:\.find\(|,\s*)"', read(name)), [])


if __name__ == "__main__":
    unittest.main()

"""The rooms of tools/: calls go down only, and every room has its own namespace."""

import pathlib
import re
import unittest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"

# What each room may include besides itself. A room that is not named here is a command's: it stands
# on what the commands share, and knows no other command.
SHARED = {"console", "host"}
MAY_INCLUDE = {
    "console": set(),
    "host": {"console"},
    "replay": SHARED | {"check"},  # which judges what was fed
    "fix": SHARED | {"check"},  # which judges what a fix has come to
    "report": SHARED | {"check", "cues", "replay"},  # which say what the page shows
}


def rooms():
    return sorted(folder for folder in TOOLS.iterdir() if folder.is_dir())


def sources(room):
    return sorted(path for path in room.rglob("*") if path.suffix in (".h", ".cpp"))


class RoomsTest(unittest.TestCase):
    def test_there_are_rooms(self):
        self.assertLess(SHARED, {room.name for room in rooms()})
        self.assertEqual([path.name for path in TOOLS.glob("*.cpp")], ["main.cpp"])

    def test_calls_go_down_only(self):
        for room in rooms():
            allowed = MAY_INCLUDE.get(room.name, SHARED) | {room.name}
            for path in sources(room):
                included = set(re.findall(r'#include "tools/(\w+)/', path.read_text("utf-8")))
                self.assertLessEqual(included, allowed, path.relative_to(TOOLS))

    def test_every_room_has_a_namespace_of_its_own(self):
        for room in rooms():
            for path in sources(room):
                opened = re.findall(r"^namespace (quill\S*) {", path.read_text("utf-8"), re.M)
                self.assertEqual(opened, [f"quill::{room.name}"], path.relative_to(TOOLS))


if __name__ == "__main__":
    unittest.main()

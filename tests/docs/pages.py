"""What a page in Markdown holds that can be tested: its blocks, their commands, its links.

A block's opening line says what it is, and may name a file:

    ```console            commands, each after "$ ", and what they print
    ```text               anything that is no command; likewise vtt and json
    ```text live.vtt      a file that later commands of the page find under this name
    ```c player.c         the same, and it is compiled
    ```c examples/host.c  an excerpt of a file of the tree, letter by letter

In what a command prints, a line "..." stands for any lines. A line after "> " goes on with a command.
"""

import dataclasses
import re

TEXTS = ("text", "vtt", "json")
CODE = ("c", "cpp", "cmake")
LANGUAGES = ("console", *TEXTS, *CODE)
FENCE = re.compile(r"^( *)(`{3,}|~{3,})(.*)$")
LIST_ITEM = re.compile(r"^( *(?:[-*+]|\d+[.)]) +)")


class Mistake(Exception):
    """Something in a page that is not as it has to be; the text says where and what."""


@dataclasses.dataclass
class Block:
    line: int  # of its opening
    language: str
    name: str  # of a file, or empty
    lines: list

    def text(self):
        return "".join(line + "\n" for line in self.lines)


@dataclasses.dataclass
class Command:
    line: int
    text: str
    printed: list  # expected lines


def blocks(text):
    """All fenced blocks. Raises Mistake for one that cannot be tested, and for indented code."""
    found, opening, block, content_indent, blank = [], None, None, 0, True
    for number, line in enumerate(text.splitlines(), 1):
        fence = FENCE.match(line)
        if block is not None:
            if fence and fence[2].startswith(opening[2]) and not fence[3].strip():
                found.append(block)
                block, blank = None, True
            else:
                block.lines.append(line.removeprefix(opening[1]))
        elif fence:
            opening, block = fence, open_block(number, fence[3].split())
        else:
            indent = len(line) - len(line.lstrip())
            item = LIST_ITEM.match(line)
            if line.strip() and blank and indent >= content_indent + 4:
                raise Mistake(f"{number}: indented code, which nobody tests: use a fence")
            if item:
                content_indent = len(item[1])
            elif line.strip() and indent == 0:
                content_indent = 0
            blank = not line.strip()
    if block is not None:
        raise Mistake(f"{block.line}: this block is never closed")
    return found


def open_block(number, words):
    language, name = (words + ["", ""])[:2]
    if language not in LANGUAGES or len(words) > 2:
        raise Mistake(f"{number}: a block is one of {', '.join(LANGUAGES)}, with or without the "
                      f"name of a file, not \"{' '.join(words)}\"")
    if language in CODE and not name:
        raise Mistake(f"{number}: a block of {language} needs the name of a file: a new one, or one "
                      "that it is an excerpt of")
    return Block(number, language, name, [])


def commands(block):
    """The commands of a console block."""
    found, continued = [], False
    for number, line in enumerate(block.lines, block.line + 1):
        if line.startswith("$ "):
            found.append(Command(number, line[2:], []))
        elif not found:
            raise Mistake(f"{number}: a console block begins with \"$ \" and a command")
        elif continued or (line.startswith("> ") and not found[-1].printed):
            found[-1].text += "\n" + line.removeprefix("> ")
        else:
            found[-1].printed.append(line.rstrip())
        continued = line.endswith("\\") and not found[-1].printed
    if not found:
        raise Mistake(f"{block.line}: a console block without a command")
    return found


def holds_a_command(block):
    return block.language in TEXTS and any(line.startswith("$ ") for line in block.lines)


def agrees(printed, expected):
    """Whether lines are the expected ones, of which a "..." stands for any."""
    pattern = "".join("(?:.*\n)*?" if line == "..." else re.escape(line) + "\n"
                      for line in expected)
    return re.fullmatch(pattern, "".join(line.rstrip() + "\n" for line in printed)) is not None


def links(text):
    """Line, file and anchor of every link that leads to a file or inside the page."""
    fenced = False
    for number, line in enumerate(text.splitlines(), 1):
        fenced ^= bool(FENCE.match(line))
        for target in re.findall(r"\]\(([^)\s]+)\)", "" if fenced else line):
            if not re.match(r"\w+:", target):
                path, _, anchor = target.partition("#")
                yield number, path, anchor


def anchors(text):
    """The anchors that the headings of a page have."""
    headings = re.findall(r"^#+ +(.*?) *$", text, re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}

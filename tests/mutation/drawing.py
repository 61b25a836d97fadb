"""Draws faults by itself: what a slip of the hand makes of operators, borders, constants, conditions,
statements and local variables, wherever src/ has one. The compiler's own parser finds the places."""

import pathlib
import random
import re
import subprocess
import tempfile

from clang import cindex
from clang.cindex import CursorKind, TypeKind

from building import standard_headers
from faults import FaultError, make_drawn
from switching import compiler_flags

OPERATORS = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "==": ["!="], "!=": ["=="], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"],
    "&": ["|"], "|": ["&"], "<<": [">>"], ">>": ["<<"], "&&": ["||"], "||": ["&&"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "|=": ["&="], "&=": ["|="],
    "++": ["--"], "--": ["++"],
}
STATEMENTS = {CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT, CursorKind.RETURN_STMT}
BODIES = {CursorKind.COMPOUND_STMT, CursorKind.IF_STMT, CursorKind.FOR_STMT, CursorKind.WHILE_STMT,
          CursorKind.DO_STMT, CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT,
          CursorKind.CXX_FOR_RANGE_STMT}
FUNCTIONS = {CursorKind.FUNCTION_DECL, CursorKind.FUNCTION_TEMPLATE, CursorKind.CXX_METHOD}
REFERENCES = {CursorKind.DECL_REF_EXPR, CursorKind.OVERLOADED_DECL_REF, CursorKind.MEMBER_REF_EXPR}
# Spots that only the compiler looks at.
SKIPPED = {CursorKind.STATIC_ASSERT, CursorKind.ALIGNED_ATTR}


class Reader:
    """The places of one file."""

    def __init__(self, path):
        self.path, self.text = str(path), path.read_text("utf-8")
        self.places = []  # each with the function that it is in
        self.constant = False  # within what the compiler computes
        self.function = ""  # within this one
        self.named = set()  # all that is called or read

    def read(self, cursor):
        for child in cursor.get_children():
            location = child.location
            if (location.file and location.file.name == self.path
                    and child.kind not in SKIPPED
                    and not self.text.startswith("assert(", child.extent.start.offset)):
                self.visit(child, cursor)

    def visit(self, cursor, parent):
        if cursor.kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.operator(cursor, *cursor.get_children())
        elif cursor.kind == CursorKind.CALL_EXPR and cursor.spelling in ("operator==", "operator!="):
            children = list(cursor.get_children())
            if len(children) == 3:
                self.operator(cursor, children[0], children[2])
        elif cursor.kind == CursorKind.UNARY_OPERATOR:
            self.unary(cursor)
        elif cursor.kind in LITERALS:
            self.literal(cursor, LITERALS[cursor.kind])
        elif cursor.kind in (CursorKind.IF_STMT, CursorKind.CONDITIONAL_OPERATOR):
            self.condition(next(iter(cursor.get_children())))
        elif cursor.kind == CursorKind.DECL_STMT and parent.kind == CursorKind.COMPOUND_STMT:
            self.local(cursor)
        if parent.kind in BODIES:
            self.statement(cursor, parent)
        if cursor.kind in REFERENCES:
            self.named.add(cursor.spelling)
        was, self.constant = (self.constant, self.function), self.constant or self.is_constant(cursor)
        if cursor.kind in FUNCTIONS:
            self.function = cursor.spelling
        self.read(cursor)
        self.constant, self.function = was

    def is_constant(self, cursor):
        begin = cursor.extent.start.offset
        return (cursor.kind == CursorKind.ENUM_CONSTANT_DECL
                or (cursor.kind in (CursorKind.VAR_DECL, CursorKind.FUNCTION_DECL)
                    and "constexpr" in self.text[begin:cursor.location.offset].split()))

    def span(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def add(self, kind, span, at, old, new, form="expression"):
        """A place: old at an offset becomes new; the span is what can be switched as a whole."""
        if self.text.startswith(old, at) and span[0] <= at and at + len(old) <= span[1]:
            line = self.text.count("\n", 0, at) + 1
            form = "" if self.constant else form
            self.places.append((self.function, (kind, span, at, old, new, form, line)))

    def operator(self, cursor, left, right):
        begin, end = left.extent.end.offset, right.extent.start.offset
        between = re.fullmatch(r"\s*([-+*/%&|<>=!^]+)[\s(]*", self.text[begin:end])
        if not between:
            return
        span, at, sign = self.span(cursor), begin + between.start(1), between[1]
        if sign == "-" and right.type.get_canonical().kind == TypeKind.POINTER:
            return  # there is no sum of pointers
        for new in OPERATORS.get(sign, []):
            self.add("operator", span, at, sign, new)
        if sign in ("&&", "||"):
            whole = self.text[span[0]:span[1]]
            for side in (left, right):
                self.add("condition", span, span[0], whole, self.text[slice(*self.span(side))])

    def unary(self, cursor):
        span = self.span(cursor)
        whole = self.text[span[0]:span[1]]
        for sign in ("++", "--"):
            if whole.startswith(sign):
                self.add("operator", span, span[0], sign, OPERATORS[sign][0])
            elif whole.endswith(sign):
                self.add("operator", span, span[1] - 2, sign, OPERATORS[sign][0])
        if whole[0] == "!" or (whole[0] == "-" and whole[1] != "-"):
            self.add("operator", span, span[0], whole[0], "")

    def literal(self, cursor, changes):
        span = self.span(cursor)
        old = self.text[span[0]:span[1]]
        for new in changes(old):
            self.add("constant", span, span[0], old, new)

    def condition(self, cursor):
        if cursor.kind.is_expression():
            span = self.span(cursor)
            for new in ("true", "false"):
                self.add("condition", span, span[0], self.text[span[0]:span[1]], new)

    def statement(self, cursor, parent):
        begin, end = self.span(cursor)
        if not (cursor.kind.is_expression() or cursor.kind in STATEMENTS):
            return
        if parent.kind == CursorKind.FOR_STMT and end != parent.extent.end.offset:
            return  # what stands between its brackets
        if cursor.kind == CursorKind.RETURN_STMT and list(cursor.get_children()):
            return
        ending = re.compile(r"\s*;").match(self.text, end)
        if ending:  # else it is a condition
            self.add("statement", (begin, ending.end()), begin, self.text[begin:ending.end()], ";",
                     "statement")

    def local(self, cursor):
        begin, end = self.span(cursor)
        word = re.compile(r"\w+").match(self.text, begin)
        if word and word[0] not in ("static", "static_assert", "using", "constexpr", "struct"):
            self.add("static", (begin, end), begin, word[0], f"static {word[0]}", "")


# ---- Constants ----


def other_integer(old):
    digits, suffix = re.fullmatch(r"(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)", old).groups() \
        if re.fullmatch(r"(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)", old) else ("", "")
    if digits:
        value = int(digits, 0) if digits[:2].lower() == "0x" else int(digits)
        yield f"{value + 1}{suffix}"
        if value > 0:
            yield f"{value - 1}{suffix}"


def other_decimal(old):
    if re.fullmatch(r"\d+\.\d+", old):
        yield str(float(old) + 1)


def other_character(old):
    if len(old) == 3 and old[0] == "'":
        yield f"'{chr(ord(old[1]) + 1)}'" if old[1].isalnum() else "'x'"
    elif old.startswith("'\\"):
        yield {"'\\0'": "'\\1'", "'\\n'": "'\\r'", "'\\r'": "'\\n'"}.get(old, "'x'")


def other_truth(old):
    yield {"true": "false", "false": "true"}.get(old, old)


def other_string(old):
    """Another last letter of the last word."""
    word = re.search(r"(?<![\\%\w.*])[A-Za-z]{2,}(?=[^A-Za-z]*\"$)", old)
    if word and old[0] == '"':
        last = word.end() - 1
        yield old[:last] + ("x" if old[last] != "x" else "y") + old[last + 1:]


LITERALS = {
    CursorKind.INTEGER_LITERAL: other_integer,
    CursorKind.FLOATING_LITERAL: other_decimal,
    CursorKind.CHARACTER_LITERAL: other_character,
    CursorKind.CXX_BOOL_LITERAL_EXPR: other_truth,
    CursorKind.STRING_LITERAL: other_string,
}

# ---- All of them, and some ----


def all_faults(root):
    """Every fault that can be drawn in src/, in the order of the files."""
    files = sorted(str(path.relative_to(root / "src")) for path in (root / "src").rglob("*")
                   if path.suffix in (".h", ".cpp"))
    try:
        index = cindex.Index.create()
    except cindex.LibclangError as error:
        raise ImportError(error) from error
    # Assertions are no part of the module, nor is what they alone call.
    arguments = ["-x", "c++", "-DNDEBUG", *compiler_flags(root)]
    readers = []
    with tempfile.TemporaryDirectory() as folder:
        standard = pathlib.Path(folder, "standard.h")  # read once instead of once a file
        standard.write_text(standard_headers(root / "src"), "utf-8")
        parse(index, standard, arguments).save(f"{folder}/standard.pch")
        arguments += ["-include-pch", f"{folder}/standard.pch"]
        for name in files:
            reader = Reader(root / "src" / name)
            reader.read(parse(index, root / "src" / name, arguments).cursor)
            readers.append(reader)
    asserted = {name for reader in readers for name in re.findall(
        r"(\w+)\(", "".join(re.findall(r"\bassert\((.*?)\);", reader.text, re.DOTALL)))}
    asserted -= {name for reader in readers for name in reader.named}
    faults = []
    for name, reader in zip(files, readers):
        places = {place for function, place in reader.places if function not in asserted}
        for place in sorted(places, key=lambda place: place[2:5] + place[1:2]):
            faults.append(make_drawn(len(faults) + 1, name, reader.text, place))
    return faults


def parse(index, path, arguments):
    unit = index.parse(str(path), arguments)
    for problem in unit.diagnostics:
        if problem.severity >= cindex.Diagnostic.Error:
            raise FaultError(f"{path} cannot be read: {problem.spelling}")
    return unit


def draw(faults, count, seed):
    """So many of them: one on every line before there is a second one on any."""
    chance = random.Random(seed)
    lines = {}
    for fault in chance.sample(faults, len(faults)):
        lines.setdefault((fault.file, fault.line), []).append(fault)
    drawn = []
    while lines and len(drawn) < count:
        for line in chance.sample(sorted(lines), len(lines)):
            drawn.append(lines[line].pop())
            if not lines[line]:
                del lines[line]
            if len(drawn) == count:
                break
    return sorted(drawn, key=lambda fault: fault.number)


def git(root, *words):
    try:
        done = subprocess.run(["git", "-C", root, *words], capture_output=True, text=True)
    except FileNotFoundError as error:
        raise FaultError("git, which says what has changed, is not installed") from error
    if done.returncode != 0:
        raise FaultError(f"what has changed is not known: {done.stderr.strip()}; --changed BASE "
                         "(scripts/test --mutate BASE) takes any commit that this clone has")
    return done.stdout


def on_changed_lines(faults, root, base):
    """Those on lines that are not the same in the commit from which the tree was branched off."""
    new = git(root, "ls-files", "--others", "--exclude-standard", "--", "src").splitlines()
    changed = {(fault.file, fault.line) for fault in faults if f"src/{fault.file}" in new}
    name = ""
    for line in git(root, "diff", "-U0", "--no-color", "--no-ext-diff", "--no-prefix", "--merge-base",
                    base, "--", "src").splitlines():
        if line.startswith("+++ "):
            name = line.removeprefix("+++ src/")
        found = re.match(r"@@ -\S+ \+(\d+)(?:,(\d+))? @@", line)
        if found:
            first, count = int(found[1]), int(found[2] or 1)
            changed |= {(name, number) for number in range(first, first + count)}
    return [fault for fault in faults if (fault.file, fault.line) in changed]

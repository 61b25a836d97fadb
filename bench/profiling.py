"""Reads a callgrind file and says which source file of the module the instructions belong to."""

import re
from collections import defaultdict

MODULE = "quillcaption.so"
# What the library calls of a function are counted as: the heap's, or the library's.
HEAP = re.compile(r"^(operator (new|delete)|malloc$|free$|realloc$|calloc$)")

# Where i386 code finds out its own address, which no source line stands for.
ADDRESSING = "(position-independent addressing)"


class Function:
    """One function: its own instructions, and those of the functions that it calls."""

    def __init__(self, name, binary, file):
        self.name = name
        self.in_module = binary.endswith(MODULE)
        self.is_heap = not self.in_module and bool(HEAP.match(name))
        self.file = file
        self.own = 0
        self.calls = defaultdict(int)  # called function: its instructions, with all it calls


class Profile:
    """A callgrind file. Names are given once in it and later by number."""

    def __init__(self, path):
        self.functions = {}
        self._names = defaultdict(dict)
        self._binary = self._file = ""
        self._read(path)

    @property
    def total(self):
        return sum(function.own for function in self.functions.values())

    def _name(self, kind, text):
        number, _, name = text.partition(" ")
        names = self._names[kind]
        if name:
            names[number] = name
        return names.get(number, text)

    def _function(self, name, binary, file):
        return self.functions.setdefault((binary, name), Function(name, binary, file))

    def _read(self, path):
        current = None
        called = {}
        after_calls = False
        with open(path, encoding="utf-8", errors="replace") as lines:
            for line in lines:
                key, equals, value = line.rstrip("\n").partition("=")
                if equals and re.fullmatch(r"c?(ob|fl|fi|fe|fn)", key):
                    kind = key[-2:] if key[-2:] in ("ob", "fn") else "file"
                    name = self._name(kind, value)
                    if key.startswith("c"):
                        called[kind] = name
                    elif key == "ob":
                        self._binary = name
                    elif key == "fl":
                        self._file = name
                    elif key == "fn":
                        current = self._function(name, self._binary, self._file)
                elif key == "calls":
                    after_calls = True
                elif re.match(r"[-+*\d]", line) and current is not None:
                    cost = int(line.split()[1]) if len(line.split()) > 1 else 0
                    if after_calls:
                        target = self._function(called["fn"], called.get("ob", self._binary),
                                                called.get("file", self._file))
                        current.calls[target] += cost
                        called, after_calls = {}, False
                    else:
                        current.own += cost

    def heap_share(self, function, above=()):
        """Which part of a library function's instructions, with all it calls, are the heap's."""
        if function.is_heap:
            return 1.0
        if function.in_module or function in above:
            return 0.0
        everything = function.own + sum(function.calls.values())
        heap = sum(cost * self.heap_share(called, (*above, function))
                   for called, cost in function.calls.items())
        return heap / everything if everything else 0.0

    def by_file(self):
        """{source file: [own instructions, the library's, the heap's]} of the module."""
        files = defaultdict(lambda: [0.0, 0.0, 0.0])
        for function in self.functions.values():
            if not function.in_module:
                continue
            row = files[source_name(function)]
            row[0] += function.own
            for called, cost in function.calls.items():
                if not called.in_module:
                    heap = self.heap_share(called) * cost
                    row[1] += cost - heap
                    row[2] += heap
        return files

    def largest(self, count):
        """The module's functions with the most instructions of their own."""
        own = [function for function in self.functions.values() if function.in_module]
        return sorted(own, key=lambda function: -function.own)[:count]


def source_name(function):
    """A path from src/ on; a header of the standard library by its name."""
    if function.file == "???":
        return ADDRESSING
    inside = function.file.rpartition("/src/")[2]
    return inside if inside != function.file else function.file.rpartition("/")[2]

"""The script format: one host call a line.

    # a comment
    create a                    make a parser; "a" now names its handle
    create_null                 Create with a null pointer
    callback a 7                register the callback with tag 7
    callback_null a 8           register a null function with tag 8
    parse a "WEBVTT\\n\\x00"      feed a chunk, at least one byte; \\n \\r \\t \\" \\\\ \\xNN
    parse_null a 3000000000     feed a null pointer with that size
    parse_size0 a               feed a good pointer with size 0
    pts a 180000                set the video time
    result a                    ask for the cues
    result_feeding a "x"        ask for them, and have the callback feed a chunk
    release a                   give the parser back
    fail once 3                 in the next call, the third allocation fails
    fail from 3                 in the next call, the third and all behind it fail

A handle may also be a number such as 0x0 or 0xdeadbeef, which the module never gave out.
"""

import re
from collections import namedtuple

from model.report import quote

Call = namedtuple("Call", "verb handle number data")

WITH_NUMBER = ("callback", "callback_null", "parse_null", "pts", "fail")
WITH_BYTES = ("parse", "result_feeding")
WITHOUT = ("create", "parse_size0", "result", "release")

LINE = re.compile(r'(\w+)(?: (\w+))?(?: (\d+|"(?:[^"\\]|\\.)*"))?')
ESCAPE = re.compile(rb'\\(x[0-9a-f]{2}|[nrt"\\])')
SHORT = {b"n": b"\n", b"r": b"\r", b"t": b"\t"}


class ScriptError(Exception):
    pass


def call(verb, handle=None, number=None, data=None):
    return Call(verb, handle, number, data)


def unquote(text):
    def unescape(match):
        code = match.group(1)
        return bytes([int(code[1:], 16)]) if code[0:1] == b"x" else SHORT.get(code, code)
    return ESCAPE.sub(unescape, text[1:-1].encode("latin-1"))


def parse_call(line):
    match = LINE.fullmatch(line)
    verb, handle, argument = match.groups() if match else (None, None, None)
    if verb == "create_null" and not handle:
        return call(verb)
    if handle and verb in WITHOUT and argument is None:
        return call(verb, handle)
    if handle and verb in WITH_NUMBER and argument and argument.isdigit():
        return call(verb, handle, number=int(argument))
    if handle and verb in WITH_BYTES and argument and argument.startswith('"') and len(argument) > 2:
        return call(verb, handle, data=unquote(argument))
    raise ScriptError(f"not a call: {line}")


def parse_script(text):
    lines = (line.strip() for line in text.splitlines())
    calls = [parse_call(line) for line in lines if line and not line.startswith("#")]
    complaint = breach(calls)
    if complaint:
        raise ScriptError(complaint)
    return calls


def format_call(one):
    words = [one.verb]
    if one.handle is not None:
        words.append(one.handle)
    if one.number is not None:
        words.append(str(one.number))
    if one.data is not None:
        words.append(quote(one.data))
    return " ".join(words)


def format_script(calls):
    return "".join(format_call(one) + "\n" for one in calls)


def is_stray(handle):
    return handle.startswith("0x")


class Duties:
    """What a host must heed, followed call by call.

    A name is created once and before its use; the callback is registered before the first
    result; a released handle is not used any more once a later parser may have its address.
    """

    def __init__(self):
        self.live, self.released, self.stale, self.registered = set(), set(), set(), set()

    def breach(self, one):
        """Which duty this call neglects; None when it may be made, which is then noted."""
        name = one.handle
        if one.verb == "create":
            if name in self.live | self.released | self.stale or is_stray(name):
                return f"{name} is created twice, or no name"
            self.live.add(name)
            # A handle released earlier may be this parser's address.
            self.stale |= self.released
            self.released.clear()
        elif name is None or one.verb == "fail" or is_stray(name) or name in self.released:
            return None
        elif name not in self.live:
            return f"{name} is not created, or used when another parser may have its handle"
        elif one.verb == "callback":
            self.registered.add(name)
        elif one.verb in ("result", "result_feeding") and name not in self.registered:
            return f"{name} has no callback"
        elif one.verb == "release":
            self.live.remove(name)
            self.released.add(name)
        return None


def breach(calls):
    """The first neglected duty of a whole script; None when it may be played."""
    duties = Duties()
    return next(filter(None, map(duties.breach, calls)), None)

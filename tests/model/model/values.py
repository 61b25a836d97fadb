"""Texts that stand for numbers. Every parser answers None for a text that it rejects."""

import math

from .text import signed32, split_at, unsigned32

DIGITS = b"0123456789"


def divide(digit, divisor):
    """IEEE division of two whole numbers; Python itself would refuse the divisor 0."""
    if divisor == 0:
        return math.nan if digit == 0 else math.inf
    return digit / divisor


def str_to_double(text, out):
    """Digits with at most one point. A bad byte leaves two trace lines; an empty text none."""
    if not text:
        return None
    whole, fraction, digits_behind, seen_point = 0, 0.0, 0, False
    for byte in text:
        if byte in DIGITS and not seen_point:
            whole = unsigned32(whole * 10 + byte - ord("0"))
        elif byte in DIGITS:
            digits_behind += 1
            # The power wraps in 32 bits: no power of ten from the 10th digit on, 0 from the 32nd.
            power = signed32(pow(10, digits_behind, 2 ** 32))
            fraction += divide(byte - ord("0"), power)
        elif byte == ord(".") and not seen_point:
            seen_point = True
        else:
            out.line(b"input is " + text)
            out.line(b"Not a valid data string")
            return None
    return fraction + signed32(whole)


def get_percentage(text, out):
    """A number and a closing percent sign. The range is the caller's business."""
    if len(text) < 2 or not text.endswith(b"%"):
        return None
    return str_to_double(text[:-1], out)


def str_to_uint(text):
    """Digits only, wrapping at 32 bits."""
    if not text:
        return None
    number = 0
    for byte in text:
        if byte not in DIGITS:
            return None
        number = unsigned32(number * 10 + byte - ord("0"))
    return number


def str_to_ulong(text, out):
    """As str_to_uint, but every text that is not empty leaves a trace."""
    number = str_to_uint(text)
    if text:
        out.line(b"data is %d" % (number or 0))
    return number


def get_anchorpoint(text, out):
    """Two percentages joined by a comma. Nobody outside sees the numbers, only the traces."""
    x, y = split_at(text, b",")
    if x and y:
        get_percentage(x, out)
        get_percentage(y, out)


def get_timestamp(text, out):
    """[hours:]minutes:ss.fff in seconds; the seconds are whatever six bytes make a number."""
    if len(text) <= 8 or text[-7:-6] != b":":
        return None
    seconds = str_to_double(text[-6:], out)
    if seconds is None or seconds >= 60.0:
        return None
    first, second = split_at(text[:-7], b":")
    hours, minutes = 0, str_to_uint(first)
    if minutes is None:
        return None
    if second:
        if len(second) != 2:
            return None
        hours, minutes = minutes, str_to_uint(second)
    if minutes is None or minutes > 59:
        return None
    return float(unsigned32(hours * 3600 + minutes * 60)) + seconds

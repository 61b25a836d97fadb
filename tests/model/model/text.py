"""Byte strings, and the widths of the machine's numbers."""

import math


def c_string(data):
    """`data` as a zero-terminated text is seen: up to its first zero byte."""
    return data.split(b"\0", 1)[0]


def split_at(text, delimiter):
    """(text before the first delimiter, text behind it or None when there is no delimiter)."""
    before, found, behind = text.partition(delimiter)
    return before, (behind if found else None)


def trim(text):
    """Spaces only: a tab, a carriage return or a line feed at an end stays."""
    return text.strip(b" ")


def pop_item(rest):
    """One pass over a list separated by spaces: (item, rest, whether it was the last).

    Only the item is taken off the front, so the space behind it makes an empty item of its own
    in the next pass, which takes that space away.
    """
    item, behind = split_at(rest, b" ")
    if behind is None:
        return item, b"", True
    return item, rest[len(item) or 1:], False


def unsigned32(number):
    return number & 0xFFFFFFFF


def signed32(number):
    return ((number + 0x80000000) & 0xFFFFFFFF) - 0x80000000


def saturate(number, low, high):
    """A double cut toward zero into low..high; not-a-number gives 0."""
    if math.isnan(number):
        return 0
    if number <= low:
        return low
    if number >= high:
        return high
    return int(number)


def double_to_signed32(number):
    return saturate(number, -0x80000000, 0x7FFFFFFF)


def double_to_byte(number):
    """First to unsigned 32 bits, then the low eight of them."""
    return saturate(number, 0, 0xFFFFFFFF) & 0xFF

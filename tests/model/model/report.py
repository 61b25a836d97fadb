"""How bytes, times and records are spelt in a report."""

import struct

SPELLING = [chr(byte) if 0x20 <= byte < 0x7F else f"\\x{byte:02x}" for byte in range(256)]
for _byte, _spelling in zip(b"\n\r\t\"\\", ("\\n", "\\r", "\\t", '\\"', "\\\\")):
    SPELLING[_byte] = _spelling


def quote(data):
    """Bytes as scripts and reports spell them: printable ASCII as it is, the rest escaped."""
    return '"' + "".join(map(SPELLING.__getitem__, data)) + '"'


def bits(number):
    """A double as the sixteen hexadecimal digits of its bits."""
    return struct.pack(">d", number).hex()


def report_delivery(tag, records):
    """The lines for one run of the callback."""
    lines = [f"event 0 tag {tag} cues {len(records)} reserved 0"]
    for r in records:
        lines.append(
            f"cue aux null start {bits(r.start)} end {bits(r.end)} text {quote(r.text)}"
            f" line {r.line} reserved 0 snap {r.snap} position {r.position} size {r.size}"
            f" align {r.align} vertical {r.vertical}")
    return lines

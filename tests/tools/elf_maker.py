"""Makes small 32-bit shared objects of any machine, with just what a loader looks at."""

import struct

I386, MIPS, POWERPC, ARM = 3, 8, 20, 40
CONTRACT = {"WEBVTT_MODULE_INFO": 144, "WebVtt_Module_Methods": 24} | {
    name: 0 for name in ("_Z24IZorWebVtt_Parser_CreatePj", "_Z25IZorWebVtt_Parser_Releasej",
                         "_Z27IZorWebVtt_Parser_rsltParsejPKvj",
                         "_Z36IZorWebVtt_Parser_vSetWebvttEventNtyjPvPFv14WEBVTT_EVENT_TS_S_E",
                         "_Z33IZorWebVtt_Parser_vGetParseResultj",
                         "_Z30IZorWebVtt_Parser_vSetVideoPTSjm")}
STRTAB, SYMTAB, STRSZ, SONAME, RPATH, TEXTREL, HASH, RUNPATH, RELR = 5, 6, 10, 14, 15, 22, 4, 29, 36
GNU_HASH, VERDEF, VERDEFNUM, VERNEED, VERNEEDNUM = 0x6ffffef5, 0x6ffffffc, 0x6ffffffd, 0x6ffffffe, 0x6fffffff
FLAGS, FLAGS_1 = 30, 0x6ffffffb


def attributes(vendor, tags, order="<"):
    """The section that says what a file was compiled for; all tags and numbers are below 128."""
    body = bytes(byte for pair in tags.items() for byte in pair)
    name = vendor.encode() + b"\0"
    scope = b"\1" + struct.pack(order + "I", 5 + len(body)) + body
    return b"A" + struct.pack(order + "I", 4 + len(name) + len(scope)) + name + scope


def elf_file(machine=ARM, *, order="<", kind=3, flags=0x05000000, needed=(), versions=(), weak=(), offers=(),
             exports=None, imports=(), stack=6, interpreter=None, entries=(), names=(), hash_table=HASH,
             sections=(), segments=()):
    """versions: (library, (name, ...)), weak: some of these names; names: (tag, text) and entries:
    (tag, number) of the dynamic section; sections and segments: (type, bytes)."""
    strings = bytearray(b"\0")

    def name(text):
        strings.extend(text.encode() + b"\0")
        return len(strings) - len(text) - 1

    def pack(form, *values):
        return struct.pack(order + form, *values)

    exports = CONTRACT if exports is None else exports
    dynamic = [(1, name(library)) for library in needed] + [(tag, name(text)) for tag, text in names]
    symbols = pack("IIIBBH", 0, 0, 0, 0, 0, 0)
    for symbol, size in exports.items():
        symbols += pack("IIIBBH", name(symbol), 64, size, 0x11 if size else 0x12, 0, 1)
    for symbol in imports:
        symbols += pack("IIIBBH", name(symbol), 0, 0, 0x12, 0, 0)
    needs = b""
    for number, (library, asked) in enumerate(versions):
        size = 16 * (1 + len(asked))
        needs += pack("HHIII", 1, len(asked), name(library), 16, 0 if number == len(versions) - 1 else size)
        for place, version in enumerate(asked, 1):
            needs += pack("IHHII", 0, 2 if version in weak else 0, 2, name(version), 0 if place == len(asked) else 16)
    own = b"".join(pack("HHHHIIIII", 1, 0, place, 1, 0, 20, 0 if place == len(offers) else 28, name(version), 0)
                   for place, version in enumerate(offers, 1))
    tables = [(STRTAB, bytes(strings)), (SYMTAB, symbols), (VERNEED, needs), (VERDEF, own)]
    count = len(symbols) // 16
    if hash_table == HASH:
        tables.append((HASH, pack("II", 1, count) + bytes(4 + 4 * count)))
    elif hash_table == GNU_HASH:  # one list of all symbols, whose last one is marked
        tables.append((GNU_HASH, pack("6I", 1, 1, 1, 0, 0xffffffff, 1) + bytes(4 * (count - 2)) + pack("I", 1)))
    extra = ([(3, interpreter.encode() + b"\0")] if interpreter else []) + list(segments)
    headers = 3 + len(extra)
    content = bytearray(52 + 32 * headers)

    def place_of(data):
        content.extend(bytes(-len(content) % 4) + data)
        return len(content) - len(data)

    dynamic += [(tag, place_of(data)) for tag, data in tables if data]
    dynamic += [(STRSZ, len(strings)), (VERNEEDNUM, len(versions)), (VERDEFNUM, len(offers)), *entries, (0, 0)]
    dynamic_at = place_of(b"".join(pack("II", *entry) for entry in dynamic))
    table = [(2, dynamic_at, 8 * len(dynamic), 6)]
    table += [(number, place_of(data), len(data), 4) for number, data in extra]
    placed = [(number, place_of(data), len(data)) for number, data in sections]
    section_table = place_of(b"".join(pack("10I", 0, number, 0, 0, at, size, 0, 0, 1, 0)
                                      for number, at, size in placed))
    table = [(1, 0, len(content), 5), *table] + ([] if stack is None else [(0x6474e551, 0, 0, stack)])
    content[:52] = b"\x7fELF\1" + bytes([1 if order == "<" else 2, 1]) + bytes(9) + pack(
        "HHIIIIIHHHHHH", kind, machine, 1, 0, 52, section_table if placed else 0, flags, 52, 32, len(table), 40,
        len(placed), 0)
    content[52:52 + 32 * len(table)] = b"".join(
        pack("8I", number, at, at, at, size, size, mode, 4) for number, at, size, mode in table)
    return bytes(content)

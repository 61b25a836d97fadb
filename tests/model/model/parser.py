"""One parser: the parse states, the three readers, and the queue of records."""

from collections import namedtuple

from .cue import Cue
from .failures import InputFailure, NoMemory, OutOfMemory
from .headers import REGION, TIMESTAMP_MAP, TimestampMap, parse_region
from .lines import LineCollector
from .text import double_to_byte, double_to_signed32, signed32

DONE, IN_HEADER, ERROR = 0, 1, 2  # results of a chunk
BLOCK_DONE = 1                    # result of the cue reader: one block handled, maybe more left
LINES_PER_BLOCK = 10

BOM = b"\xef\xbb\xbf"
# Three of the signatures run on into the ones behind them, so that only a line that repeats
# itself begins with them. (The first holds a line feed in its middle: no line can match it.)
SIGNATURES = (
    BOM + b"WEBVTT " + BOM + b"WEBVTT\tWEBVTT\n",
    BOM + b"WEBVTT\tWEBVTT\n",
    b"WEBVTT\n",
    b"WEBVTT ",
    b"WEBVTT\t",
)

Record = namedtuple("Record", "start end text line snap position size align vertical")


class Parser:
    def __init__(self, out, memory):
        self.out = out
        self.memory = memory
        self.lines = LineCollector(out, memory)
        self.read_chunk = self.read_signature  # the parse state
        self.timestamp_map = None
        self.video_ticks = 0
        self.callback_tag = None
        self.queue = []

    # -- what the host calls ---------------------------------------------------------------

    def parse(self, chunk, size):
        """Feed one chunk; `chunk` is None for a null pointer."""
        if chunk is None or size == 0:
            self.out.error(b"Invalid input, buffer size %d" % signed32(size))
            return IN_HEADER
        self.lines.take_chunk(chunk)
        return self.read_chunk()

    def set_callback(self, tag, is_null):
        if not is_null:
            self.callback_tag = tag

    def take_result(self):
        """(tag, records): what the callback is given. Without a callback a host must not ask."""
        assert self.callback_tag is not None
        records, self.queue = self.queue, []
        return self.callback_tag, records

    # -- the parse states: each reads on from where the one before it stopped ---------------

    def ignore_chunk(self):
        """The track was rejected."""
        return DONE

    def read_signature(self):
        if not self.signature_is_good():
            self.out.error(b"It is NOT a valid WebVTT track, Parse abort!")
            self.read_chunk = self.ignore_chunk
            return ERROR
        self.read_chunk = self.read_headers
        return self.read_headers()

    def signature_is_good(self):
        line = self.lines.collect_line()
        if line is None or len(line) <= 5:
            return False
        if not line.startswith(SIGNATURES):
            self.out.error(b"Invalid magic number")
            return False
        return True

    def read_headers(self):
        """Header lines up to the first blank one. What a map's parse raises leaves the module."""
        map_seen = False  # in this call only: the next chunk may bring another map
        while True:
            try:
                line = self.lines.collect_line()
            except OutOfMemory:
                return self.give_up_headers()
            if line is None:
                self.lines.carry(b"")  # what was carried before is lost
                return IN_HEADER
            if self.memory.fails():
                self.out.error(b"pcDataBuffer == NULL after new")
                return self.give_up_headers()
            header = (self.lines.take_carried() or b"") + line
            if len(header) == 1:
                self.read_chunk = self.read_cues
                return self.read_cues()
            if header.startswith(REGION):
                self.need_memory_for(lambda: parse_region(header, self.out))
            elif header.startswith(TIMESTAMP_MAP) and not map_seen:
                map_seen = True
                self.need_memory()
                self.timestamp_map = TimestampMap(self.out)
                self.need_memory_for(lambda: self.timestamp_map.parse(header))

    def give_up_headers(self):
        """What was carried of a header line becomes the beginning of the first block."""
        self.out.error(b"Parse Meta Header Failed, ignore and continue parse")
        self.read_chunk = self.read_cues
        return ERROR

    def read_cues(self):
        """Blocks up to the end of the chunk, unless one of them ends the reading."""
        result = DONE  # of the block before
        while True:
            try:
                result = self.read_block()
            except InputFailure:
                # The result of the block before stands: the first block of a chunk that fails
                # so ends the call, a later one does not.
                self.out.error(b"Error occured at LINE %d" % self.lines.line_count)
            except OutOfMemory:
                self.out.error(b"out of memory")
                return ERROR
            if result == DONE:
                self.out.error(b"FINISHED")
                return DONE
            if result == ERROR:
                self.out.error(b"return result 2")
                return ERROR

    def read_block(self):
        """Collect one cue block and make a cue of it, or carry an unfinished one."""
        carried = self.lines.carried
        has_content = carried is not None
        at_line_start = not has_content or carried.endswith(b"\n")
        line_count = carried.count(b"\n") if has_content else 0
        text = carried or b""
        complete = False
        while not complete:
            try:
                line = self.lines.collect_line()
            except OutOfMemory:
                return ERROR  # what was carried is still there
            if line is None:
                break
            is_blank = len(line) <= 1
            if is_blank and not has_content:
                continue
            if is_blank and at_line_start:
                complete = True
            else:
                # A blank line here ends the unfinished line that was carried over.
                text += line
                line_count += 1
                has_content = at_line_start = True
                complete = line_count >= LINES_PER_BLOCK
        self.lines.take_carried()
        if not complete:
            self.lines.carry(text)
            return DONE
        if self.memory.fails():  # for the text
            raise OutOfMemory
        cue = Cue(self.out)
        if self.need_memory_for(lambda: cue.parse(text)):
            if self.memory.fails():  # for the record
                raise OutOfMemory
            self.queue.append(self.make_record(cue))
        else:
            self.out.error(b"Cue Parse Failed" + b"!" * 29)
        return BLOCK_DONE

    # -- memory for values and texts ---------------------------------------------------------

    def need_memory(self):
        if self.memory.fails():
            raise NoMemory

    def need_memory_for(self, action):
        """It may need some at any time: before whatever it prints, and before what it raises."""
        self.out.on_step = self.need_memory
        try:
            return action()
        finally:
            self.out.on_step = None
            self.need_memory()

    # -- records -----------------------------------------------------------------------------

    def make_record(self, cue):
        offset = self.timestamp_map.offset() if self.timestamp_map else 0.0
        video_seconds = float(self.video_ticks // 90000)
        settings = cue.settings
        return Record(
            start=(offset + cue.start) - video_seconds,
            end=(offset + cue.end) - video_seconds,
            text=cue.payload.plain_text(),
            line=double_to_signed32(settings.line),
            snap=int(settings.snap_to_lines),
            position=double_to_byte(settings.position),
            size=double_to_byte(settings.size),
            align=settings.text_align,
            vertical=settings.vertical)

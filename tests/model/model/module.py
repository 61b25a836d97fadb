"""The loaded module: six functions and a list of live parsers, played from a script.

`play` answers with what a host observes, in the words of the player program: for each call the
bytes that came out on standard output, the events of the callback, and how the call ended.
"""

from .failures import NoMemory, OutOfMemory, OutOfRange
from .memory import Memory
from .output import Output
from .parser import ERROR, Parser
from .report import quote, report_delivery

FUNCTIONS = {
    "create_null": "Create",
    "release": "Release",
    "parse": "rsltParse",
    "parse_null": "rsltParse",
    "parse_size0": "rsltParse",
    "callback": "vSetWebvttEventNty",
    "callback_null": "vSetWebvttEventNty",
    "result": "vGetParseResult",
    "result_feeding": "vGetParseResult",
    "pts": "vSetVideoPTS",
}


class Module:
    parser_class = Parser  # tests put a faulty one here

    def __init__(self):
        self.out = Output()
        self.memory = Memory()
        self.parsers = {}  # by the name that the script gave to the handle

    def play(self, calls):
        """One list of report lines for each call."""
        return [self.play_call(call) for call in calls]

    def play_call(self, call):
        events = []
        try:
            ending = self.make_call(call, events)
        except OutOfRange as error:
            ending = f'throw std::out_of_range "{error.what}"'
        except (NoMemory, OutOfMemory):
            ending = 'throw std::bad_alloc "std::bad_alloc"'
        # No function writes anything behind its callback, so the output comes first.
        return self.take_output() + events + [ending]

    def take_output(self):
        written = self.out.take()
        return [f"out {quote(written)}"] if written else []

    def make_call(self, call, events):
        """How the call ended: "ret" with a result, or "done" where there is none."""
        if call.verb == "fail":
            return "done"
        if call.verb == "create":
            if self.memory.fails():
                return f"ret {ERROR} handle missing"
            self.parsers[call.handle] = self.parser_class(self.out, self.memory)
            return "ret 0 handle new"
        parser = self.parsers.get(call.handle)
        if parser is None:  # unknown, released or null, or no place to store a handle
            name = "IZorWebVtt_Parser_" + FUNCTIONS[call.verb]
            self.out.write(b"[WEBVTT API:%s] handle MUST not be NULL\n" % name.encode())
            has_result = call.verb == "create_null" or call.verb.startswith("parse")
            return f"ret {ERROR}" if has_result else "done"
        if call.verb == "parse":
            return f"ret {parser.parse(call.data, len(call.data))}"
        if call.verb == "parse_null":
            return f"ret {parser.parse(None, call.number)}"
        if call.verb == "parse_size0":
            return f"ret {parser.parse(b'', 0)}"
        if call.verb in ("callback", "callback_null"):
            parser.set_callback(call.number, is_null=call.verb == "callback_null")
        elif call.verb == "pts":
            parser.video_ticks = call.number
        elif call.verb == "release":
            del self.parsers[call.handle]
        elif call.verb == "result":
            events += report_delivery(*parser.take_result())
        elif call.verb == "result_feeding":
            events += report_delivery(*parser.take_result())
            *lines, ending = self.play_call(call._replace(verb="parse"))
            events += [*lines, f"fed {ending}"]
            parser.take_result()  # a cue that the callback itself completes is never delivered
        return "done"

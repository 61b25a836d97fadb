"""The tree of a payload's markup, and the plain text in it."""

from . import tokenizer
from .failures import InputFailure, OutOfMemory
from .values import get_timestamp

TAGS = (b"c", b"i", b"b", b"u", b"ruby", b"rt", b"v", b"lang")


class Node:
    """A tag's name, or None for the root and for text."""

    def __init__(self, tag=None, text=b"", parent=None):
        self.tag = tag
        self.text = text
        self.parent = parent
        self.children = []


class PayloadTree:
    def __init__(self, out):
        self.out = out
        self.root = Node()
        self.current = self.root  # the innermost open tag

    def parse(self, payload):
        if not payload:
            raise InputFailure
        while payload:
            kind, result, taken = tokenizer.Tokenizer(payload).run()
            if kind == tokenizer.STRING:
                self.current.children.append(Node(text=result))
            elif kind == tokenizer.START_TAG:
                self.open(result)
            elif kind == tokenizer.END_TAG:
                self.close(result)
            elif kind == tokenizer.TIMESTAMP:
                self.check_timestamp(result)
            payload = payload[taken:]

    def open(self, name):
        if name not in TAGS:
            self.out.error(b"unexcepted start tag <%s> detected. Ignored" % name)
            # Whatever the message says, the rest of the chunk is lost.
            raise OutOfMemory
        node = Node(tag=name, parent=self.current)
        self.current.children.append(node)
        self.current = node

    def close(self, name):
        """Only the innermost open tag can be closed; closing another one is ignored."""
        if name not in TAGS:
            self.out.error(b"unexcepted end tag <%s> detected. Ignored" % name)
        elif name == self.current.tag:
            self.current = self.current.parent

    def check_timestamp(self, text):
        """A timestamp tag has no place in the plain text: it is only checked."""
        if get_timestamp(text, self.out) is None:
            self.out.error(b"Invalid time stamp tag <%s> detected. Ignored" % text)

    def plain_text(self):
        """The texts in document order, with nothing between them."""
        collected, waiting = b"", [self.root]
        while waiting:
            node = waiting.pop()
            collected += node.text
            waiting += reversed(node.children)
        return collected

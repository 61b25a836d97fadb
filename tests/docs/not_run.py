"""Commands in the documents that the test of the documents does not run, each with the reason.

A command is left out when it begins with the text of a row. A row that leaves out no command any
more is a failure, and so is one whose script is gone. A command that is left out still has to
exist: its first word is looked up in the tree when it has a slash.
"""

BUILDS = "builds and tests, as continuous integration does"
GSTREAMER = "needs GStreamer for i386; scripts/check-gstreamer runs it"
HOURS = "takes minutes to hours"
ON_A_BOARD = "uses packages that are installed: scripts/check-packages runs it"

NOT_RUN = [
    ("scripts/demo", "installs packages and builds"),
    ("scripts/test", "installs packages, builds and tests"),
    ("cmake --preset", BUILDS),
    ("ctest --preset", BUILDS),
    ("cmake --build build/board", "takes a minute; the preset armhf builds the same"),
    ("(cd build/board && cpack)", "needs that build; the tests of the installation make packages"),
    ("cmake --install build/board --component module", "the same; they install it"),
    ("scripts/empty-machine", "makes a Debian to build and test in"),
    ("fuzz/run", HOURS),
    ("scripts/setup fuzz", "installs packages"),
    ("scripts/coverage", BUILDS),
    ("tests/mutation/run", HOURS),
    ("bench/", "the figures belong to the machine; bench.gate holds the ratios"),
    ("build/i386/quill conform --time", "the times belong to the machine; tools.conform takes them too"),
    ("build/i386/bench/", "the figures belong to the machine; bench.memory holds the limits"),
    ("cmake -S . -B build/profile", "builds, for a profile that people read"),
    ("cmake --build build/profile", "the same"),
    ("scripts/campaign", HOURS),
    ("scripts/check-report", "installs a browser"),
    ("dpkg --install", ON_A_BOARD),
    ("cd /usr/share/doc/quillcaption", ON_A_BOARD),
    ("quill cues --quiet dialogue.vtt", ON_A_BOARD),
    ("quill cues --quiet --module /usr/lib", ON_A_BOARD),
    ("quill replay session.log", ON_A_BOARD),
    ("quill replay --show session.log", ON_A_BOARD),
    ("gst-inspect-1.0", GSTREAMER),
    ("gst-launch-1.0", GSTREAMER),
]

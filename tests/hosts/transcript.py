"""The form of a transcript: its steps, what they are expected to print, and bytes as text.

What the form is, is told in run_transcripts.py.
"""
import re
import shlex
import time

BEGINS_STEP = re.compile(r"[$>] ")
COMMENT = re.compile(r"#( |$)")
NOT_OUTPUT = re.compile(r"[$>#!] |#$|\[\d+\]$|\.\.\.$")
WILD = {"{any}": r".*?", "{hundreds}": r"[1-9]\d{2,}", "{stamp}": r"20\d{6}-\d{6}",
        "{seconds}": r"(?:3[89]|4[0-2])\d{8}", "{time}": r"20\d\d-\d\d-\d\d[T ]\d\d:\d\d:\d\d"}
SECONDS_FROM_1904_TO_1970 = 2082844800
ESCAPE = re.compile(rb"\\(x[0-9A-Fa-f]{2}|.)")


class Wrong(Exception):
    """A step that cannot be done."""


class Step:
    """A command or a step of the runner's own, and what it is expected to print."""

    def __init__(self, head, line):
        self.head, self.line = head, line
        self.body, self.expected = [], []
        self.got, self.is_met = None, False

    @property
    def words(self):
        return shlex.split(self.line[2:])

    def settle(self, got, captured):
        """Holds what was printed against what is expected; `captured` are texts by {=NAME}."""
        self.got = got
        match = re.fullmatch(pattern_of(self.expected, captured), joined(got))
        self.is_met = match is not None
        captured.update(match.groupdict() if match else {})

    def lines(self):
        """What the transcript says, or should say if the program is right."""
        is_right = self.is_met or self.got is None
        return self.head + [self.line] + self.body + (
            self.expected if is_right else [generalized(line) for line in self.got])


def joined(lines):
    return "".join(line + "\n" for line in lines)


def generalized(line):
    """A line of output without the times of this day."""
    for name in ("{time}", "{stamp}", "{seconds}"):
        line = re.sub(rf"(?<!\d){WILD[name]}(?!\d)",
                      lambda match, name=name: name if is_of_today(match[0]) else match[0], line)
    return line


def is_of_today(text):
    digits = re.sub(r"\D", "", text)
    if len(digits) == len("3878153930"):
        return abs(int(digits) - time.time() - SECONDS_FROM_1904_TO_1970) < 2 * 24 * 60 * 60
    return digits.startswith(time.strftime("%Y%m%d"))


def pattern_of(expected, captured):
    known = {name: re.escape(text) for name, text in captured.items()}

    def pattern_of_word(word):
        if not word.startswith("{="):
            return WILD.get(word) or re.escape(word)
        name = word[2:-1]
        first = known.get(name)
        known[name] = first or f"(?P={name})"
        return first or f"(?P<{name}>.*?)"

    return "".join(
        r"(?:.*\n)*?" if line == "..." else
        "".join(map(pattern_of_word, re.split(r"(\{=?\w+\})", line))) + r"\n"
        for line in expected)


def parse(text):
    """The steps of a transcript, and what stands behind the last of them."""
    steps, head = [], []
    for line in text.splitlines():
        if BEGINS_STEP.match(line):
            steps.append(Step(head, line))
            head = []
        elif not line or COMMENT.match(line):
            head.append(line)
        elif not steps or any(COMMENT.match(other) for other in head):
            raise Wrong(f"no command stands above: {line}")
        else:
            take(steps[-1], head + [line])
            head = []
    return steps, head


def take(step, lines):
    for line in lines:
        is_body = step.line.startswith("> file ") and (not line or line.startswith("    "))
        (step.body if is_body else step.expected).append(line)


def shown(data):
    """Bytes as the lines of a transcript."""
    text = data.decode("utf-8", "surrogateescape").replace("\ufeff", r"\xEF\xBB\xBF")
    text = re.sub(r"[\x00-\x09\x0b-\x1f\x7f\udc80-\udcff]", shown_byte, text)
    lines = text.split("\n")
    lines[-1:] = [lines[-1] + "\\"] if lines[-1] else []
    return ["\\" + line if NOT_OUTPUT.match(line) else line for line in lines]


def shown_byte(match):
    code = ord(match[0]) & 0xFF
    return {0: "\\0", 9: "\\t", 13: "\\r"}.get(code, f"\\x{code:02X}")


def bytes_of(text):
    codes = {b"r": b"\r", b"n": b"\n", b"t": b"\t", b"0": b"\0"}
    return ESCAPE.sub(lambda m: bytes.fromhex(m[1][1:].decode()) if len(m[1]) == 3
                      else codes.get(m[1], m[1]), text.encode())


def body_bytes(lines):
    """What a `> file` holds."""
    data = b""
    for line in lines:
        line = line[4:]
        is_open = re.search(r"(?<!\\)(\\\\)*\\$", line)
        data += bytes_of(line[:-1] if is_open else line + "\n")
    return data

"""What can be changed in a line of C++: the part of mutate.py that reads source text.

A file is first blanked: comments, the insides of texts and characters, preprocessor lines and
static assertions become spaces, so that every place keeps its column. A walk over the braces then
tells for each character where it stands: in a function's body, in an initializer, in a class, an
enum or a namespace. Statements change in bodies only; outside them only initial values do. What
does not compile after all is found out by the compiler, and another change is drawn for it.
"""
import re
from dataclasses import dataclass

BODY, INITIALIZER, CLASS, ENUM, NAMESPACE = "body", "initializer", "class", "enum", "namespace"


@dataclass(frozen=True)
class Change:
    """One line of one file, before and after. `line` counts from 1."""

    path: str
    line: int
    kind: str
    before: str
    after: str

    @property
    def name(self):
        return self.path.rsplit("/", 1)[-1]


# --- Blanking -------------------------------------------------------------------------------------

NO_CODE = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"(?P<end>[^(\s]*)\(.*?\)(?P=end)"|"(?:\\.|[^"\\\n])*"'
    r"|(?<![0-9A-Za-z_])'(?:\\.|[^'\\\n])*'|^[ \t]*#(?:\\\n|[^\n])*", re.S | re.M)
ASSERTION = re.compile(r"\bstatic_assert\s*\(.*?\)\s*;", re.S)


def spaces(text):
    return re.sub(r"[^\n]", " ", text)


def without_inside(match):
    """The quotes of a text stay, so that it still counts as an operand."""
    text = match.group()
    if text[0] in "\"'":
        return text[0] + spaces(text[1:-1]) + text[-1]
    return spaces(text)


def blanked(source):
    code = NO_CODE.sub(without_inside, source)
    return ASSERTION.sub(lambda match: spaces(match.group()), code)


# --- Where a character stands --------------------------------------------------------------------

FUNCTION_END = re.compile(
    r"(\)|\bconst|\boverride|\bfinal|\bnoexcept|\bmutable|\belse|\bdo|\btry|\])$")

CLASS_HEAD = re.compile(r"(typedef )?(template\s*<.*>\s*)?(class|struct|union)\b")


def collapsed(head):
    """The text before a brace with all brackets emptied."""
    shorter = None
    while shorter != head:
        shorter, head = head, re.sub(r"\((?!\))[^()]*\)", "()", head)
    return re.sub(r"->[^()]*$", "", head).strip()


def scope_of(head, around):
    """What the brace behind `head` opens; `around` is what it stands in."""
    plain = collapsed(head)
    if re.search(r"\bnamespace\b|^extern\b", plain):
        return NAMESPACE
    if re.match(r"(typedef )?enum\b", plain):
        return ENUM
    if CLASS_HEAD.match(plain) and "()" not in plain:
        return CLASS
    if around == INITIALIZER or re.search(r"(=|,|\(|\breturn)$", plain):
        return BODY if FUNCTION_END.search(plain) and "[" in plain else INITIALIZER
    if FUNCTION_END.search(plain) or (not plain and around != NAMESPACE) or plain.endswith(":"):
        return BODY
    return INITIALIZER


def scopes(code):
    """For each character of blanked code the scope it stands in."""
    stack, heads, result = [NAMESPACE], [0], []
    start, depth = 0, 0
    for at, c in enumerate(code):
        if c == "}" and len(stack) > 1:
            stack.pop()
            depth = heads.pop()
            start = at + 1
        result.append(stack[-1])
        if c == "{":
            stack.append(scope_of(code[start:at].strip(), stack[-1]))
            heads.append(depth)
            start, depth = at + 1, 0
        elif c == "(":
            depth += 1
        elif c == ")":
            depth -= 1
        elif c == ";" and depth == 0:
            start = at + 1
    return result


# --- The changes of one line ---------------------------------------------------------------------

OTHER_OPERATORS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"],
    ">=": [">", "<"], "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["+"], "/": ["*"], "%": ["/"],
    "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"],
    "+=": ["-="], "-=": ["+="], "|=": ["&="], "&=": ["|="], "<<=": [">>="], ">>=": ["<<="],
}
KIND_OF_OPERATOR = {
    **dict.fromkeys(["==", "!=", "<", ">", "<=", ">="], "comparison"),
    **dict.fromkeys(["&&", "||"], "and/or"),
}
# clang-format puts a space on both sides of a binary operator and of no bracket of a template.
OPERATOR = re.compile(r"(?<= )(==|!=|<<=|>>=|<<|>>|<=|>=|<|>|&&|\|\||[-+|&]=|[-+*/%&|^])(?= |$)")
INTEGER = re.compile(r"(?<![\w.'])(0[xX][0-9A-Fa-f]+|\d+)([uUlLzZ]*)(?![\w.'])")
FLAG = re.compile(r"\b(true|false)\b")
NEGATION = re.compile(r"(?<![\w)\]])!(?=[\w(:*])")
INDEX = re.compile(r"[\w)\]]\[([^\[\]]+)\](?!\s*\{)")
EXTREME = re.compile(r"\bstd::(min|max)\b")
CONDITION = re.compile(r"^\s*(?:\} )?(?:else )?(if|while) (?:constexpr )?\((.*)\) \{?$")
TERNARY = re.compile(r" (\?) \S")
TRUTH = re.compile(r"^\s*(?:const )?bool \w+ = (\S.*);$")
PLAIN_VALUE = re.compile(r"true|false|nullptr|\*this")
RETURN = re.compile(r"^\s*(?:\{ )?return (\S.*);$")
CALL = re.compile(
    r"^\s*(?!return\b|throw\b|delete\b|else\b|case\b)[\w:>.\-\[\]*()&]*[\w>\]]\(.*\);$")
ASSIGNMENT = re.compile(r"^\s*[\w.\->\[\]()*:]+ (?:[-+*/|&^]|<<|>>)?= .*;$")
STEP = re.compile(r"^\s*(\+\+|--)[\w.\->\[\]]+;$")
JUMP = re.compile(r"^\s*(break|continue|return);$")
ARRAY_DECLARATION = re.compile(r"^\s*(?:(?:const|static|constexpr|inline) )*[\w:<>]+[*&]? \w+\[")
INITIAL_VALUE = re.compile(r"^[^()]*[^()=!<>+\-*/|&] = ")
MEMBER_INITIALIZERS = re.compile(r"(?:^|\)(?: noexcept)?)\s*: [\w:<>, ]+[({]")
DECLARATION = re.compile(
    r"^\s*(using|typedef|friend|template|namespace|enum|public:|private:|protected:|extern)\b")


def next_integers(digits):
    """The text of an integer, one more and one less."""
    if digits[:2] in ("0x", "0X"):
        form, base = "0x{:0%dX}" % (len(digits) - 2), 16
    elif len(digits) > 1 and digits[0] == "0":
        form, base = "0{:o}", 8
    else:
        form, base = "{}", 10
    value = int(digits, base)
    return [form.format(n) for n in (value + 1, value - 1) if n >= 0]


def is_balanced(text):
    depth = 0
    for c in text:
        depth += {"(": 1, "[": 1, "{": 1, ")": -1, "]": -1, "}": -1}.get(c, 0)
        if depth < 0:
            return False
    return depth == 0


class Line:
    """One line of code with what is known of it, and the changes that it allows."""

    def __init__(self, raw, code, places, starts_statement):
        self.raw, self.code, self.places = raw, code, places
        self.starts_statement = starts_statement
        self.found = []

    def changes(self):
        """Pairs of kind and changed line, each changed line once."""
        if not self.code.strip() or DECLARATION.match(self.code):
            return []
        self.replace_values()
        self.replace_in_bodies()
        if self.starts_statement and self.places[len(self.code) - len(self.code.lstrip())] == BODY:
            self.replace_statement()
        once = {}
        for kind, after in self.found:
            if after != self.raw:
                once.setdefault(after, kind)
        return [(kind, after) for after, kind in once.items()]

    def put(self, kind, start, end, text):
        self.found.append((kind, self.raw[:start] + text + self.raw[end:]))

    def is_value(self, at):
        """Whether a value at this column is the product's doing, not part of a declaration."""
        if self.places[at] in (BODY, INITIALIZER):
            return True
        if self.places[at] in (CLASS, NAMESPACE):
            before = self.code[:at]
            return bool(INITIAL_VALUE.match(before) or MEMBER_INITIALIZERS.search(before))
        return False

    def replace_values(self):
        for match in INTEGER.finditer(self.code):
            is_size = ARRAY_DECLARATION.match(self.code[:match.start()])
            if self.is_value(match.start()) and not is_size:
                for digits in next_integers(match.group(1)):
                    self.put("integer", match.start(1), match.end(1), digits)
        for match in FLAG.finditer(self.code):
            if self.is_value(match.start()):
                flipped = "false" if match.group() == "true" else "true"
                is_answer = self.code[:match.start()].endswith("return ")
                kind = "return flipped" if is_answer else "flag flipped"
                self.put(kind, match.start(), match.end(), flipped)

    def in_body(self, pattern):
        return (match for match in pattern.finditer(self.code)
                if self.places[match.start(match.lastindex or 0)] == BODY)

    def replace_in_bodies(self):
        for match in OPERATOR.finditer(self.code):
            if self.is_value(match.start()) and not self.is_output(match):
                kind = KIND_OF_OPERATOR.get(match.group(), "arithmetic")
                for other in OTHER_OPERATORS[match.group()]:
                    self.put(kind, match.start(), match.end(), other)
        for match in self.in_body(NEGATION):
            self.put("negation dropped", match.start(), match.end(), "")
        for match in self.in_body(INDEX):
            if not ARRAY_DECLARATION.match(self.code[: match.end()]):
                for step in (" + 1", " - 1"):
                    self.put("index", match.end(1), match.end(1), step)
        for match in self.in_body(EXTREME):
            other = "max" if match.group(1) == "min" else "min"
            self.put("extreme", match.start(1), match.end(1), other)
        for match in self.in_body(TERNARY):
            self.put("condition forced", match.start(1), match.end(1), "&& false ?")
            self.put("condition forced", match.start(1), match.end(1), "|| true ?")

    def is_output(self, match):
        """A shift beside a text is a stream's."""
        around = self.code[max(0, match.start() - 2): match.end() + 2]
        return match.group() in ("<<", ">>") and ('"' in around or self.code.count("<<") > 1)

    def replace_statement(self):
        self.replace_condition()
        code, indent = self.code.rstrip(), len(self.code) - len(self.code.lstrip())
        if not is_balanced(code):
            return
        if match := RETURN.match(code):
            self.negate(match, "return negated")
        if match := TRUTH.match(code):
            self.negate(match, "value negated")
        for pattern, kind in ((CALL, "call dropped"), (ASSIGNMENT, "assignment dropped"),
                              (STEP, "step dropped"), (JUMP, "jump dropped")):
            if pattern.match(code):
                self.put(kind, indent, len(code), ";")
        if match := STEP.match(code):
            other = "--" if match.group(1) == "++" else "++"
            self.put("step turned", match.start(1), match.end(1), other)
        if (match := JUMP.match(code)) and match.group(1) == "continue":
            self.put("jump", match.start(1), match.end(1), "break")

    def replace_condition(self):
        match = CONDITION.match(self.code.rstrip())
        if not match or not is_balanced(match.group(2)):
            return
        behind_declaration = match.group(2).rfind("; ") + 2 if "; " in match.group(2) else 0
        start = match.start(2) + behind_declaration
        self.put("condition negated", start, match.end(2), f"!({self.raw[start:match.end(2)]})")
        self.put("condition forced", start, match.end(2), "false")
        if match.group(1) == "if":
            self.put("condition forced", start, match.end(2), "true")

    def negate(self, match, kind):
        value = match.group(1)
        if PLAIN_VALUE.fullmatch(value) or INTEGER.fullmatch(value) or " ? " in value:
            return
        raw = self.raw[match.start(1): match.end(1)]
        self.put(kind, match.start(1), match.end(1), f"!({raw})")


def changes_of(path, source):
    """All changes that the lines of one file allow: a list for each line that has any."""
    code = blanked(source)
    places = scopes(code)
    result, at, last = [], 0, ";"
    for number, (raw, plain) in enumerate(zip(source.split("\n"), code.split("\n")), 1):
        line = Line(raw, plain, places[at: at + len(plain)] + [NAMESPACE], last in ";{}:")
        found = [Change(path, number, kind, raw, after) for kind, after in line.changes()]
        if found:
            result.append(found)
        at += len(plain) + 1
        last = plain.rstrip()[-1:] or last
    return result


def code_lines(source):
    """How many lines hold code."""
    return sum(1 for line in NO_CODE.sub(without_inside, source).split("\n") if line.strip())

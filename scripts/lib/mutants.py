# SPDX-License-Identifier: MIT
"""One-token changes to C++ sources, each of which should turn a test red."""
import dataclasses
import hashlib
import re

# Binary operators stand between blanks, which brackets of templates do not.
BINARY = {
    "==": ["!="],
    "!=": ["=="],
    "<": ["<=", ">="],
    "<=": ["<", ">"],
    ">": [">=", "<="],
    ">=": [">", "<"],
    "&&": ["||"],
    "||": ["&&"],
    "+": ["-"],
    "-": ["+"],
    "*": ["/"],
    "/": ["*"],
    "%": ["*"],
    "&": ["|"],
    "|": ["&"],
    "<<": [">>"],
    ">>": ["<<"],
    "+=": ["-="],
    "-=": ["+="],
    "|=": ["&="],
    "&=": ["|="],
    ">>=": ["<<="],
    "<<=": [">>="],
}
WORDS = [
    ("true", "false"),
    ("std::min", "std::max"),
    ("std::all_of", "std::any_of"),
    ("ORB_OK", "ORB_FAILURE"),
    ("kVarint", "kLengthDelimited"),
    ("MessageUse::kOwn", "MessageUse::kShare"),
    ("Sending::kWrittenBack", "Sending::kDirect"),
    ("ORB_HTTP_ERROR", "ORB_GENERIC_ERROR"),
    ("KALDEX_Array::DOUBLE", "KALDEX_Array::SINGLE"),
    ("KALDEX_Array::INT16", "KALDEX_Array::UINT16"),
    ("KALDEX_Array::CELL", "KALDEX_Array::STRUCT"),
    ("KALDEX_Array::CHAR", "KALDEX_Array::LOGICAL"),
    ("KALDEX_Array::SPARSE", "KALDEX_Array::CHAR"),
    ("orbREAL", "orbCOMPLEX"),
]
NOT_CODE = re.compile(
    r"""//[^\n]* | /\*.*?\*/ | ^[ ]*\#(?:[^\n\\]|\\.|\\\n)* | ^template\ <.*?>\n
        | \bstatic_assert\(.*?; | \bvirtual\ [^;{]*;""",
    re.DOTALL | re.MULTILINE | re.VERBOSE,
)
TEXT = re.compile(r"\"(?:[^\"\\\n]|\\.)*\"|'(?:[^'\\\n]|\\.)+'")
NUMBER = re.compile(r"(?<![\w.'])(0x[0-9A-Fa-f]+|\d+)([uUlL]*)(?![\w.'])")
STATEMENT = re.compile(r"(?<=[;{})])(\s+)((?:[\w:*]|->|\.\w)[^;{}]*;)")
# A declaration cannot go without the uses of its name.
NOT_REMOVED = re.compile(
    r"(?:return|using|break|continue|case|default|public|private|const|constexpr|static"
    r"|auto|inline|explicit|friend|struct|class|enum|namespace)\b"
    r"|[\w:]+(?:<[^;]*?>)?[ *&]+[\w:]+ *[=({;,<]"
)


@dataclasses.dataclass(frozen=True)
class Mutant:
    """What stands at an offset of a file and what it becomes."""

    file: str
    offset: int
    before: str
    after: str
    line: int
    line_text: str
    id: str

    @property
    def change(self):
        short = " ".join(self.before.split())
        return f"{short} -> {self.after.strip() or 'nothing'}"

    def apply(self, text):
        end = self.offset + len(self.before)
        return text[: self.offset] + self.after + text[end:]


def _blanked(match):
    return re.sub(r"[^\n]", " ", match.group())


def _closing(code, opening):
    depth = 0
    for at in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[at], 0)
        if depth == 0:
            return at
    raise ValueError("a bracket is not closed")


def _operators(code):
    for match in re.finditer(r"(?<= )([-+*/%&|<>=!]{1,3})(?=[ \n])", code):
        for after in BINARY.get(match.group(), []):
            yield match.start(), match.group(), after
    for match in re.finditer(r"\+\+|--", code):
        yield match.start(), match.group(), "--" if match.group() == "++" else "++"
    for match in re.finditer(r"(?<=[ (])!(?=[\w(*])", code):
        yield match.start(), "!", ""


def _numbers(code):
    for match in NUMBER.finditer(code):
        value = int(match.group(1), 0)
        for other in (value + 1, value - 1):
            if other >= 0:
                text = f"0x{other:X}" if match.group().startswith("0x") else str(other)
                yield match.start(), match.group(), text + match.group(2)


def _words(code):
    for pair in WORDS:
        for before, after in (pair, pair[::-1]):
            for match in re.finditer(rf"(?<![\w:]){before}\b", code):
                yield match.start(), before, after


def _conditions(code):
    for match in re.finditer(r"\b(?:if|while) (?=\()", code):
        start = match.end()
        condition = code[start : _closing(code, start) + 1]
        # Of a single comparison or negation, turning the operator is the same change.
        if not re.search(r"&&|\|\|", condition) and re.search(r"[!=]=|\(!", condition):
            continue
        yield start, condition, f"(!{condition})"


def _statements(code):
    for match in STATEMENT.finditer(code):
        statement = match.group(2)
        if statement.count("(") != statement.count(")"):  # the head of a loop
            continue
        if NOT_REMOVED.match(statement) or not re.search(r"\(| [-+|]?= |\+\+", statement):
            continue
        yield match.start(2), statement, re.sub(r"[^\n;]", " ", statement[:-1]) + ";"


def _texts(text, code):
    for match in TEXT.finditer(text):
        # What is blank in the code was a comment or a line of the preprocessor.
        if code[match.start()] == '"' and len(match.group()) > 2:
            yield match.start(), match.group(), '"~' + match.group()[1:]


def of_file(name, text):
    """All mutants of one file, in the order of their places."""
    without_comments = NOT_CODE.sub(_blanked, text)
    code = TEXT.sub(
        lambda match: match.group()[0] + " " * (len(match.group()) - 2) + '"',
        without_comments,
    )
    found = set()
    for kind in (_operators, _numbers, _words, _conditions, _statements):
        found.update(
            (at, text[at : at + len(before)], after) for at, before, after in kind(code)
        )
    found.update(_texts(text, code))
    mutants, times = [], {}
    for offset, before, after in sorted(found):
        start = text.rfind("\n", 0, offset) + 1
        line_text = text[start : text.index("\n", offset)].strip()
        key = f"{name}\n{line_text}\n{before}\n{after}"
        times[key] = times.get(key, 0) + 1
        digest = hashlib.sha256(f"{key}\n{times[key]}".encode()).hexdigest()[:8]
        line = text.count("\n", 0, offset) + 1
        mutants.append(Mutant(name, offset, before, after, line, line_text, digest))
    return mutants

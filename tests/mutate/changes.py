"""Small changes to a C++ source, each like a common mistake.

The source is read as text formatted by clang-format: comparison operators have spaces on both
sides, template brackets have none, and branches have braces. Comments, string literals and
preprocessor lines are not changed. A construct that is mistaken for another (a declaration that
looks like a call) results in a change that does not compile, which only costs time. """

import dataclasses
import re

LITERALS = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<line>^[ ]*\#(?:[^\n]*\\\n)*[^\n]*)
      | (?P<raw>R"(?P<mark>\w*)\(.*?\)(?P=mark)")
      | (?P<number>\b\d[\w']*)
      | (?P<text>"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)+')""",
    re.VERBOSE | re.DOTALL | re.MULTILINE)

BOUNDARIES = {" < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > "}
NEGATIONS = {" == ": " != ", " != ": " == ", " && ": " || ", " || ": " && ",
             "true": "false", "false": "true", " ? ": " == false ? "}
NO_CALLS = {"if", "for", "while", "switch", "return", "sizeof", "alignof", "alignas", "decltype",
            "noexcept", "catch", "static_assert", "defined", "requires", "operator"}
NO_STATEMENTS = re.compile(
    r"(return|using|case|default|goto|static_assert|namespace|template|friend|typedef|public|"
    r"private|protected|struct|class|enum|union|const|constexpr|constinit|static|auto|extern|"
    r"explicit|virtual|inline|else|if|for|while|do|switch|try|catch)\b")
STATEMENT = re.compile(
    r"(break|continue|throw\b.*|(\+\+|--).*"
    r"|\**[\w:]+(<[^;=]*>)?\s*(\.|->|\(|\[|[-+*/|&^]?= |<<=|>>=|\+\+|--).*);$", re.DOTALL)
# Statements that no test can miss: a container's capacity, a prefetch, an argument list's end. In
# COMMUTATIVE, functions of two arguments whose order does not matter.
WITHOUT_EFFECT = re.compile(r"^ *([\w.\[\]]|->)*\b(va_end|reserve|__builtin_prefetch)\(",
                            re.MULTILINE)
COMMUTATIVE = {"min", "max"}
DECLARATION = re.compile(r"^(const )?[\w:]+(<.*>)?( const)?( |[&*]+ ?|\.\.\. )[&*]*\w+( = .*)?$",
                         re.DOTALL)
EMPTY = {"", "{}", "0", "false", "nullptr", "std::nullopt", '""'}


@dataclasses.dataclass(frozen=True)
class Change:
    """Replaces source[start:end] with `new`."""
    kind: str
    start: int
    end: int
    new: str

    def apply(self, source):
        """Returns the changed source."""
        return source[:self.start] + self.new + source[self.end:]

    def line(self, source):
        """The number of its line, from 1."""
        return source.count("\n", 0, self.start) + 1

    def describe(self, source):
        """One line with the kind, the old text and the new text."""
        old = " ".join(source[self.start:self.end].split())
        new = " ".join(self.new.split())
        return f"{self.kind}: {old} -> {new}" if new else f"{self.kind}: {old}"


def code_of(source):
    """The source with comments and preprocessor lines replaced by as many blanks, and the
    characters of string literals masked."""
    def blank(match):
        text = match[0]
        if match["number"]:
            return text
        if match["text"] or match["raw"]:
            return text[0] + "_" * (len(text) - 2) + text[-1]
        return re.sub(r"[^\n]", " ", text)
    return LITERALS.sub(blank, source)


def end_of_group(code, at):
    """The position after the bracket that closes the one at `at`; None if it is not closed."""
    depth = 0
    for i in range(at, len(code)):
        if code[i] in "([{":
            depth += 1
        elif code[i] in ")]}":
            depth -= 1
            if depth == 0:
                return i + 1
    return None


def boundaries(code, _):
    """Moves the boundary of a range by one."""
    for match in re.finditer(r" [<>]=? ", code):
        yield Change("boundary", match.start(), match.end(), BOUNDARIES[match[0]])


def negations(code, source):
    """Inverts a condition or a part of it."""
    for match in re.finditer(r" [!=]= | && | \|\| |\btrue\b|\bfalse\b| \? ", code):
        yield Change("negation", match.start(), match.end(), NEGATIONS[match[0]])
    for match in re.finditer(r"(?<![\w)])!(?=[\w(:*])", code):
        yield Change("negation", match.start(), match.end(), "")
    for match in re.finditer(r"\b(?:if|while) \(", code):
        end = end_of_group(code, match.end() - 1)
        if end:
            start = max(match.end(), code.rfind("; ", match.end(), end) + 2)
            if not DECLARATION.match(code[start:end - 1]):
                yield Change("negation", start, end - 1, f"!({source[start:end - 1]})")


def constants(code, _):
    """Increases or decreases a number by one."""
    number = r"(?<![\w.'])(0[xX][\da-fA-F']+|\d[\d']*(\.\d*)?)([uUlLzZfF]*)(?![\w.'])"
    for match in re.finditer(number, code):
        for sign in "+-":
            yield Change("constant", match.start(), match.end(), f"({match[0]} {sign} 1)")


def statements(code, _):
    """Removes a statement: a call, an assignment, a jump."""
    for match in re.finditer(r"^ +(?=\S)", code, re.MULTILINE):
        before = code[:match.start()].rstrip()
        if not before or before[-1] not in ";{}:" or NO_STATEMENTS.match(code, match.end()):
            continue
        end = end_of_statement(code, match.end())
        text = code[match.end():end]
        if end and STATEMENT.match(text) and not re.search(
                r"(= default|= delete|\) const|\) override|noexcept);$", text):
            yield Change("removed statement", match.end(), end, ";" if before[-1] == ":" else "")


def end_of_statement(code, at):
    """The position after the semicolon of the statement at `at`; None if it has a block."""
    while at < len(code) and code[at] not in "{}":
        if code[at] in "([":
            at = end_of_group(code, at) or len(code)
            continue
        at += 1
        if code[at - 1] == ";":
            return at
    return None


def branches(code, _):
    """Removes a branch that only leaves the function or loop."""
    for match in re.finditer(r"(?<!else )\bif \(", code):
        condition = end_of_group(code, match.end() - 1)
        if not condition or code[condition:condition + 2] != " {":
            continue
        end = end_of_group(code, condition + 1)
        if end and re.fullmatch(r" \{\s*(return|throw|break|continue)\b[^;]*;\s*\}",
                                code[condition:end]) and code[end:end + 5] != " else":
            yield Change("removed branch", match.start(), end, "")


def arguments(code, source):
    """Swaps two adjacent arguments."""
    for match in re.finditer(r"\b(\w+)(<[\w:]+>)?\(", code):
        end = end_of_group(code, match.end() - 1)
        if match[1] in NO_CALLS or not end:
            continue
        places = arguments_between(code, match.end(), end - 1)
        if any(DECLARATION.match(code[start:stop]) for start, stop in places) or (
                match[1] in COMMUTATIVE and len(places) == 2):
            continue
        for (start, stop), (next_start, next_stop) in zip(places, places[1:]):
            one, other = source[start:stop], source[next_start:next_stop]
            if one != other:
                yield Change("swapped arguments", start, next_stop,
                             other + source[stop:next_start] + one)


def arguments_between(code, start, end):
    """The start and end of each argument in code[start:end], without surrounding blanks."""
    places, at, begin = [], start, start
    while at <= end:
        if at == end or code[at] == ",":
            text = code[begin:at]
            if text.strip():
                places.append((begin + len(text) - len(text.lstrip()), begin + len(text.rstrip())))
            begin = at + 1
        elif code[at] in "([{":
            at = (end_of_group(code, at) or end) - 1
        at += 1
    return places


def return_values(code, _):
    """Returns an empty value: zero, false, an empty object."""
    for match in re.finditer(r"\breturn (?=\S)", code):
        end = match.end()
        while end < len(code) and code[end] != ";":
            end = (end_of_group(code, end) or len(code)) if code[end] in "([{" else end + 1
        if code[match.end():end] not in EMPTY:
            yield Change("return value", match.end(), end, "{}")


KINDS = (boundaries, negations, constants, statements, branches, arguments, return_values)


def changes_of(source):
    """Every change of a source, in a fixed order."""
    code = code_of(source)
    without_effect = [range(match.start(), (end_of_group(code, match.end() - 1) or match.end()) + 1)
                      for match in WITHOUT_EFFECT.finditer(code)]
    return [change for kind in KINDS for change in kind(code, source)
            if not any(change.start in statement and change.end - 1 in statement
                       for statement in without_effect)]

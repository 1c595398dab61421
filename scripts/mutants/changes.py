# SPDX-License-Identifier: Apache-2.0
"""The changes that are tried. Each function takes a Place and yields (begin, end, text)."""
import re

from clang.cindex import CursorKind as Kind

SWAPS = {
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"],
    "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["|"], "&&": ["||"], "||": ["&&"],
    # The bound moved, and the relation turned round.
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["/="],
    "<<=": [">>="], ">>=": ["<<="], "&=": ["|="], "|=": ["&="], "^=": ["|="], "++": ["--"], "--": ["++"],
}  # fmt: skip
RELATIONS = {"<", "<=", ">", ">=", "==", "!="}
# Statements that can go. A declaration or a return would only stop the compiler.
REMOVABLE = {
    Kind.CALL_EXPR, Kind.BINARY_OPERATOR, Kind.COMPOUND_ASSIGNMENT_OPERATOR, Kind.UNARY_OPERATOR, Kind.UNEXPOSED_EXPR,
    Kind.CXX_DELETE_EXPR, Kind.CXX_STATIC_CAST_EXPR, Kind.CXX_THROW_EXPR, Kind.BREAK_STMT, Kind.CONTINUE_STMT,
    Kind.ASM_STMT,
}  # fmt: skip
LOOPS = {Kind.FOR_STMT, Kind.CXX_FOR_RANGE_STMT, Kind.WHILE_STMT, Kind.CASE_STMT, Kind.DEFAULT_STMT}
PLAIN_RESULTS = {"{}", '""', "0", "false", "true", "nullptr", "*this", "gtString()", "std::string()", "wxString()"}


class Place:
    """A node of the syntax tree in its source."""

    def __init__(self, cursor, source, tree):
        self.cursor, self.kind, self.source, self.tree = cursor, cursor.kind, source, tree
        self.begin, self.end = cursor.extent.start.offset, cursor.extent.end.offset
        self.children = list(cursor.get_children())

    def inner(self, cursor):
        return Place(cursor, self.source, self.tree)

    def text(self, begin=None, end=None):
        return self.source[self.begin if begin is None else begin : self.end if end is None else end].decode()

    def operator_between(self, left, right):
        return self.text(left.extent.end.offset, right.extent.start.offset).strip()


def operators(place):
    """An operator becomes another one, or goes."""
    kind, children = place.kind, place.children
    between = None
    if kind in (Kind.BINARY_OPERATOR, Kind.COMPOUND_ASSIGNMENT_OPERATOR) and len(children) == 2:
        between = [(children[0].extent.end.offset, children[1].extent.start.offset)]
    elif kind == Kind.CALL_EXPR and re.match(r"operator\W", place.cursor.spelling):
        own = [c for c in children if c.spelling == place.cursor.spelling]
        between = [(c.extent.start.offset, c.extent.end.offset) for c in own]
    elif kind == Kind.UNARY_OPERATOR and children:
        inner = place.inner(children[0])
        if place.text(end=inner.begin).strip() in ("!", "~", "-"):
            yield place.begin, place.begin + 1, ""
        else:
            between = [(place.begin, inner.begin) if place.begin < inner.begin else (inner.end, place.end)]
    for begin, end in between or []:
        text = place.text(begin, end)
        begin += len(text) - len(text.lstrip())
        for other in SWAPS.get(text.strip(), []):
            yield begin, begin + len(text.strip()), other


def literals(place):
    """A number becomes the next one and the one before, a letter the next one, true false."""
    text = place.text()
    if place.kind == Kind.INTEGER_LITERAL and (found := re.match(r"(0[xX][0-9a-fA-F]+|[0-9]+)([uUlL]*)$", text)):
        form = hex if found[1][:2].lower() == "0x" else str
        value = int(found[1], 16 if form is hex else 10)
        for other in [value + 1, value - 1] if value else [1]:
            yield place.begin, place.end, form(other) + found[2]
    elif place.kind == Kind.FLOATING_LITERAL:
        yield place.begin, place.end, f"2 * {text}"
    elif place.kind == Kind.CHARACTER_LITERAL and re.match(r"'[0-9A-Za-z ]'$", text):
        yield place.begin, place.end, f"'{chr(ord(text[1]) + 1)}'"
    elif place.kind == Kind.CXX_BOOL_LITERAL_EXPR and text in ("true", "false"):
        yield place.begin, place.end, "false" if text == "true" else "true"


def enumerators(place):
    """One of our enumerators becomes the next one of its enumeration."""
    declared = place.cursor.referenced
    if place.kind != Kind.DECL_REF_EXPR or declared is None or declared.kind != Kind.ENUM_CONSTANT_DECL:
        return
    if declared.location.file is None or not declared.location.file.name.startswith(place.tree):
        return
    name, all_of_them = declared.spelling, list(declared.semantic_parent.get_children())
    at = next(i for i, c in enumerate(all_of_them) if c.spelling == name)
    following = all_of_them[(at + 1) % len(all_of_them)]
    if following.enum_value != declared.enum_value and place.text().endswith(name):
        yield place.end - len(name), place.end, following.spelling


def arguments(place):
    """Two neighbours of one type change places; the last one goes if the parameter has a default."""
    if place.kind != Kind.CALL_EXPR or place.cursor.spelling.startswith("operator"):
        return
    given = [place.inner(c) for c in place.cursor.get_arguments() if c is not None]
    given = [a for a in given if place.begin < a.begin < a.end <= place.end]
    for one, two in zip(given, given[1:]):
        same_type = types_of(one) == types_of(two)
        if same_type and one.end <= two.begin and one.text() != two.text():
            yield one.begin, two.end, two.text() + place.text(one.end, two.begin) + one.text()
    callee = place.cursor.referenced
    parameters = list(callee.get_arguments()) if callee is not None else []
    if given and len(given) <= len(parameters):
        default = [c for c in parameters[len(given) - 1].get_children() if c.kind.is_expression()]
        if default and (len(given) == 1 or given[-2].end <= given[-1].begin):
            yield given[-2].end if len(given) > 1 else given[-1].begin, given[-1].end, ""


def types_of(argument):
    return argument.cursor.type.get_canonical().spelling.replace("const ", "").rstrip("& ")


def results(place):
    """A function returns an empty value."""
    if place.kind == Kind.RETURN_STMT:
        if not place.children:
            yield place.begin, place.end, ""
        elif place.inner(place.children[0]).text() not in PLAIN_RESULTS:
            yield place.children[0].extent.start.offset, place.children[0].extent.end.offset, "{}"


def conditions(place):
    """A condition is negated, where no operator in it is turned round already."""
    if place.kind not in (Kind.IF_STMT, Kind.WHILE_STMT, Kind.CONDITIONAL_OPERATOR):
        return
    expressions = [c for c in place.children if not c.kind.is_statement() and not c.kind.is_declaration()]
    if not expressions:
        return
    inner = place.inner(expressions[0])
    while inner.kind in (Kind.UNEXPOSED_EXPR, Kind.PAREN_EXPR) and len(inner.children) == 1:
        inner = place.inner(inner.children[0])
    is_relation = inner.kind == Kind.BINARY_OPERATOR and inner.operator_between(*inner.children) in RELATIONS
    if inner.text() and not is_relation and not inner.text().startswith("!"):
        yield inner.begin, inner.end, f"!({inner.text()})"


def statements(place):
    """A statement goes: a call, an assignment, a jump, or a guard that is declared and not mentioned again."""
    if place.kind == Kind.COMPOUND_STMT:
        candidates = place.children
    elif place.kind == Kind.IF_STMT:
        candidates = place.children[1:]
    else:
        candidates = place.children[-1:] if place.kind in LOOPS else []
    for child in candidates:
        statement = place.inner(child)
        if child.kind in REMOVABLE or (child.kind == Kind.DECL_STMT and is_guard(statement, place)):
            yield statement.begin, statement.end, ";" if child.kind == Kind.DECL_STMT else ""


def is_guard(statement, block):
    names = [c for c in statement.children if c.kind == Kind.VAR_DECL]
    used = {c.spelling for c in block.cursor.walk_preorder() if c.kind == Kind.DECL_REF_EXPR}
    return len(names) == 1 and names[0].spelling not in used and re.search(r"[({]", statement.text())


ALL = [operators, literals, enumerators, arguments, results, conditions, statements]

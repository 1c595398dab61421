# SPDX-License-Identifier: Apache-2.0
"""The mutants of one source, found by the compiler's own understanding of it."""
import clang.cindex
from clang.cindex import CursorKind as Kind

from . import changes
from .mutant import mutant_of, numbered

FUNCTIONS = {
    Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR, Kind.FUNCTION_TEMPLATE,
    Kind.CONVERSION_FUNCTION,
}  # fmt: skip


class SourceError(Exception):
    pass


def mutants_of(tree, file, arguments):
    """arguments: what the compiler is told besides, for includes, definitions and the standard."""
    path = str(tree / file)
    source = (tree / file).read_bytes()
    unit = clang.cindex.Index.create().parse(path, args=[*arguments, "-x", "c++"])
    errors = [d for d in unit.diagnostics if d.severity >= clang.cindex.Diagnostic.Error]
    if errors:
        raise SourceError(f"{file} cannot be parsed: {errors[0]}")
    found = {}

    def visit(cursor, function):
        location = cursor.location
        if location.file is None or location.file.name != path or cursor.kind == Kind.STATIC_ASSERT:
            return
        if cursor.kind in FUNCTIONS:
            function = cursor.spelling.split("<")[0]
        place = changes.Place(cursor, source, str(tree))
        for change in changes.ALL:
            for begin, end, text in change(place):
                if begin < end and source[begin:end].decode() != text:
                    found.setdefault((begin, end, text), mutant_of(file, source, function, begin, end, text))
        for child in place.children:
            # Another label of a switch is a second one of the same kind, which is no program.
            is_label = cursor.kind == Kind.CASE_STMT and child is place.children[0]
            if not is_label:
                visit(child, function)

    for cursor in unit.cursor.get_children():
        visit(cursor, "")
    return numbered(found.values())

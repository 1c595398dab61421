#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Looks at the texts of the window and at their translations.

    translations.py CASE SOURCE-FOLDER

textsAreMarked: every text of the sources that people read is given to the catalogues.
templateIsCurrent: po/countersign.pot has the texts that the sources have.
cataloguesAreComplete: every catalogue has all of them, none fuzzy, with the same places for values and the same keys.
desktopFilesAreTranslated: what the desktop shows of the application is there in every language.
mistakesAreFound: each of these finds what it looks for, in texts of its own.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

# What a text is given to. The others' second text is one, too.
MARKS = {"_", "wxTRANSLATE", "wxGETTEXT_IN_CONTEXT", "hoCounted", "hoTranslated", "hoTranslatedPlural"}

# Shown, and the same in every language; or not shown. A file's name stands before what is allowed there alone.
ALLOWED = {
    "Countersign",
    "hoAssertionController.cpp:this one was asked for in the Developer menu",
    "hoAssertionController.cpp:OnFailAssertion",
    "POSIX",
    "hoCatalogues.cpp:C",
    "hoCatalogues.cpp:LC_MESSAGES",
    "hoCatalogues.cpp:LANGUAGE",
    "hoDocumentListCtrl.cpp:A name of usual length.document",
    "hoNewKeyDialog.cpp:X",
    # For the command line alone, which is in English.
    "hoMessages.cpp:BAD",
    "hoMessages.cpp:another key",
    "hoMessages.cpp:not a signature",
    "hoMessages.cpp:not signed",
    "hoMessages.cpp:changed while read",
    "hoMessages.cpp:not tested",
    "hoMessages.cpp:everybody with the public key can read what is encrypted with the private one",
}

TOKEN = re.compile(
    r'//[^\n]*|/\*.*?\*/|(?P<raw>R"(?P<end>[^(]*)\(.*?\)(?P=end)")|(?P<text>"(?:[^"\\\n]|\\.)*")'
    r"|'(?:[^'\\\n]|\\.)+'|(?P<name>[A-Za-z_]\w*)|(?P<open>[(\[{])|(?P<close>[)\]}])|^\s*#\s*include[^\n]*|\n|.",
    re.DOTALL | re.MULTILINE,
)


def texts_of(source):
    """Pairs of a text (joined where it is in pieces) and the names of the calls that it is an argument of."""
    calls, last, piece = [], "", None
    for token in TOKEN.finditer(source):
        if token["text"] is not None:
            piece = (piece or "") + token["text"][1:-1]
            continue
        if not token[0].strip() or token[0].startswith(("//", "/*")):
            continue
        if piece is not None:
            yield piece, list(calls)
            piece = None
        if token["open"]:
            calls.append(last if token[0] == "(" else "")
        elif token["close"] and calls:
            calls.pop()
        last = token["name"] or ""


def is_for_people(text):
    """Whether a text looks like one that people read: words, or a word with a capital."""
    bare = re.sub(r"\\.|%[0-9]*\$?[sdxu]", " ", text).replace("&", "")
    if not re.search(r"[A-Za-z]{2}", bare) or text.startswith("<"):
        return bool(re.search(r"%\S*s.*%\S*s", text) and re.search(r"[^%0-9$s]", text))
    return bool(re.search(r"[A-Za-z]\S* +\S*[A-Za-z]", bare) or re.match(r"\W*[A-Z]", bare) or text.startswith(" ")
                or text.endswith(" ") or text.endswith("..."))


def unmarked(name, source):
    found = []
    for text, calls in texts_of(source):
        is_marked = bool(calls) and calls[-1] in MARKS
        if is_marked or text in ALLOWED or f"{name}:{text}" in ALLOWED or not is_for_people(text):
            continue
        if any(call in ("SetName", "getenv", "strftime", "setlocale") for call in calls):
            continue
        found.append(f'{name}: "{text}" is not marked for translation')
    return found


def sources_with_texts(root):
    return sorted([*root.glob("host/*.cpp"), *root.glob("host/window/*.cpp"), *root.glob("host/window/*.h"),
                   *root.glob("host/messages/*.cpp")])


def texts_are_marked(root):
    files = sources_with_texts(root)
    if len(files) < 40:
        return ["the sources were not found"]
    return [fault for file in files for fault in unmarked(file.name, file.read_text(encoding="utf-8"))]


def need(program):
    if shutil.which(program) is None:
        print(f"skipped: there is no {program} (package gettext)")
        sys.exit(77)


def template_is_current(root):
    need("xgettext")
    with tempfile.TemporaryDirectory() as folder:
        made = pathlib.Path(folder) / "made.pot"
        subprocess.run([root / "scripts/translations.sh", "--template", made], check=True)
        made = made.read_text(encoding="utf-8")
    kept = (root / "po/countersign.pot").read_text(encoding="utf-8")
    version = subprocess.run(["xgettext", "--version"], check=True, capture_output=True, text=True).stdout
    if not re.search(r" 0\.21\b", version.splitlines()[0]):
        # Another release than Debian 12's wraps and marks the same texts in its own way.
        made, kept = ({key: plural for key, (_, plural, _) in entries(text).items() if key[1]} for text in (made, kept))
    if made != kept:
        return ["po/countersign.pot is not what scripts/translations.sh makes of the sources"]
    return []


def unquoted(lines):
    text = "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', lines))
    return re.sub(r"\\(.)", lambda match: {"n": "\n", "t": "\t"}.get(match[1], match[1]), text)


def entries(text):
    """Of a catalogue: (context, text) to (flags, plural, translations)."""
    found = {}
    for block in re.split(r"\n\s*\n", text):
        block = "\n".join(line for line in block.splitlines() if not line.startswith(("#~", "#|")))
        parts = re.findall(r'^(msg\w+(?:\[\d\])?)((?:\s*"(?:[^"\\]|\\.)*")+)', block, re.MULTILINE)
        if not parts:
            continue
        fields = {name: unquoted(lines) for name, lines in parts}
        flags = " ".join(re.findall(r"^#,(.*)", block, re.MULTILINE))
        translations = [value for name, value in fields.items() if name.startswith("msgstr")]
        found[fields.get("msgctxt"), fields["msgid"]] = (flags, fields.get("msgid_plural"), translations)
    return found


def places(text):
    """The values that a text has places for, by number."""
    found = re.findall(r"%(?:(\d)\$)?s|%%", text)
    numbered = [number for number in found if number]
    return sorted(numbered) or [str(i + 1) for i in range(len(re.findall(r"%s", text)))]


def faults_of_translation(text, plural, translations):
    faults = []
    for translation in translations:
        if not translation:
            return ["has no translation"]
        if places(translation) != places(text) and places(translation) != places(plural or text):
            faults.append(f"has other places for values in '{translation}'")
        if translation.partition("\t")[1:] != text.partition("\t")[1:]:
            faults.append(f"has another key in '{translation}'")
        mnemonics = [len(re.findall(r"&[^&\s]", label.replace("&&", ""))) for label in (text, translation)]
        if mnemonics[0] != mnemonics[1]:
            faults.append(f"has {mnemonics[1]} mnemonics in '{translation}'")
        # Kinds of files: names and patterns in turn.
        if "|*" in text and translation.split("|")[1::2] != text.split("|")[1::2]:
            faults.append(f"has other patterns of files in '{translation}'")
        if len(text) > 1 and not text[-1].isspace() and translation[-1].isspace():
            faults.append(f"ends in a blank in '{translation}'")
    return faults


def faults_of_catalogue(name, template, catalogue):
    faults = []
    for key, (_, plural, _) in template.items():
        if key[1] == "":
            continue
        if key not in catalogue:
            faults.append(f"{name}: '{key[1]}' is not there")
            continue
        flags, _, translations = catalogue[key]
        if "fuzzy" in flags:
            faults.append(f"{name}: '{key[1]}' is fuzzy")
        faults += [f"{name}: '{key[1]}' {fault}" for fault in faults_of_translation(key[1], plural, translations)]
    faults += [f"{name}: '{text}' is no text of the sources" for context, text in catalogue.keys() - template.keys()]
    return faults


def languages(root):
    return (root / "po/LINGUAS").read_text(encoding="utf-8").split()


def catalogues_are_complete(root):
    need("msgfmt")
    template = entries((root / "po/countersign.pot").read_text(encoding="utf-8"))
    faults = []
    if len(template) < 100:
        faults.append("the template has few texts")
    if sorted(languages(root)) != sorted(file.stem for file in (root / "po").glob("*.po")):
        faults.append("po/LINGUAS does not name the catalogues that are there")
    for language in languages(root):
        file = root / f"po/{language}.po"
        checked = subprocess.run(["msgfmt", "--check", "-o", "/dev/null", file], capture_output=True, text=True)
        if checked.returncode != 0 or checked.stderr:
            faults.append(checked.stderr)
        faults += faults_of_catalogue(file.name, template, entries(file.read_text(encoding="utf-8")))
    return faults


def desktop_files_are_translated(root):
    faults = []
    name = root / "desktop/org.countersign.Countersign"
    entry = pathlib.Path(f"{name}.desktop").read_text(encoding="utf-8")
    actions = sorted(root.glob("desktop/actions/*"))
    mime = pathlib.Path(f"{name}.mime.xml").read_text(encoding="utf-8")
    metainfo = pathlib.Path(f"{name}.metainfo.xml").read_text(encoding="utf-8")
    for language in languages(root):
        for key in ("GenericName", "Comment", "Keywords"):
            if not re.search(rf"^{key}\[{language}\]=.+", entry, re.MULTILINE):
                faults.append(f"the desktop entry has no {key}[{language}]")
        for file in actions:
            text = file.read_text(encoding="utf-8")
            for key in ("Name", "Comment", "Tooltip"):
                amount = len(re.findall(rf"^{key}=(?!Countersign$)", text, re.MULTILINE))
                if amount != len(re.findall(rf"^{key}\[{language}\]=.+", text, re.MULTILINE)):
                    faults.append(f"{file.name} has not as many {key}[{language}] as {key}")
        if f'<comment xml:lang="{language}">' not in mime:
            faults.append(f"the type of signatures has no comment in {language}")
        for element in ("summary", "p", "caption", "keyword"):
            amount = len(re.findall(rf"<{element}>", metainfo.partition("<releases>")[0]))
            if amount != metainfo.count(f'<{element} xml:lang="{language}">'):
                faults.append(f"the metainfo has not as many elements '{element}' in {language} as in English")
    return faults


def mistakes_are_found(_):
    faults = []

    def expect(what, found, is_fault):
        if bool(found) != is_fault:
            faults.append(f"{what}: {found or 'nothing is found'}")

    expect("a marked text", unmarked("a.cpp", 'f(_("Open it"));'), False)
    expect("a text in pieces", unmarked("a.cpp", 'f(_("Open "\n  "it"), x);'), False)
    expect("a sentence", unmarked("a.cpp", 'say("Open it");'), True)
    expect("a label", unmarked("a.cpp", 'say("&Open");'), True)
    expect("a piece of a sentence", unmarked("a.cpp", 'say(name + " is open");'), True)
    expect("two values", unmarked("a.cpp", 'say(hoFilledText("%s, %s", {a, b}));'), True)
    expect("a text beside a marked one", unmarked("a.cpp", 'f(_("Open it"), "Close it");'), True)
    expect("a comment", unmarked("a.cpp", '// say("Open it")\nf(1);'), False)
    expect("a name", unmarked("a.cpp", 'p->SetName("Open it"); set("keyFolder");'), False)
    expect("a good translation", faults_of_translation("&Open %s\tCtrl+O", None, ["%s &offen\tCtrl+O"]), False)
    expect("no translation", faults_of_translation("Open", None, [""]), True)
    expect("another place", faults_of_translation("Open %s", None, ["Offen"]), True)
    expect("a place too many", faults_of_translation("%1$s of %2$s", None, ["%2$s %1$s %3$s"]), True)
    expect("places in another order", faults_of_translation("%s of %s", None, ["%2$s, %1$s"]), False)
    expect("another key", faults_of_translation("Open\tCtrl+O", None, ["Offen\tStrg+O"]), True)
    expect("no mnemonic", faults_of_translation("&Open", None, ["Offen"]), True)
    expect("another pattern", faults_of_translation("All|*", None, ["Alle|*.*"]), True)
    template = entries('msgid "a"\nmsgstr ""\n\nmsgid "b"\nmsgstr ""')
    expect("all is there", faults_of_catalogue("x", template, entries('msgid "a"\nmsgstr "A"\n\nmsgid "b"\nmsgstr "B"')),
           False)
    expect("a missing text", faults_of_catalogue("x", template, entries('msgid "a"\nmsgstr "A"')), True)
    expect("a fuzzy text", faults_of_catalogue("x", template, entries(
        '#, fuzzy\nmsgid "a"\nmsgstr "A"\n\nmsgid "b"\nmsgstr "B"')), True)
    return faults


CASES = {
    "textsAreMarked": texts_are_marked,
    "templateIsCurrent": template_is_current,
    "cataloguesAreComplete": catalogues_are_complete,
    "desktopFilesAreTranslated": desktop_files_are_translated,
    "mistakesAreFound": mistakes_are_found,
}


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in CASES:
        sys.exit(__doc__)
    faults = CASES[sys.argv[1]](pathlib.Path(sys.argv[2]))
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


main()

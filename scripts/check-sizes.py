#!/usr/bin/env python3
"""Lists the classes of more than 400 lines and the functions of more than 60 in product code; fails when there are any.

    check-sizes.py [SOURCE_DIR]

A class counts with everything of its name: header, source and any further source whose name begins with it and that
has no header of its own. A function counts from the first line of its declaration to its closing brace.
"""
import collections
import os
import re
import sys

FOLDERS = ["hostsdk", "host", "sim", "plugins", "tools"]
CLASS_LINES = 400
FUNCTION_LINES = 60

# Comments, strings (raw ones too) and characters: braces in them are no code.
NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.S)
PREPROCESSOR = re.compile(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", re.M)
# What stands before a declaration without ending it: access labels, macros of Qt and of the SIMD library.
LEADING = re.compile(r"\s*(?:(?:public|protected|private|signals)(?: slots)?:(?!:)|[A-Z][A-Z_]{3,}(?:\([^()]*\))?(?=\s))")
SCOPE = re.compile(r"(?:^|\s)(?:namespace|class|struct|union|enum)\b(?!.*\)\s*(?:const|noexcept|override)*$)|extern\s*$", re.S)


def blank(match):
    """Spaces in place of text; line numbers stay as they are."""
    return re.sub(r"[^\n]", " ", match.group(0))


def functions(text):
    """Yields first line, number of lines and name of each function that is defined at namespace or class scope."""
    code = PREPROCESSOR.sub(blank, NOT_CODE.sub(blank, text))
    scopes = []  # of the open braces: "scope", "function", "initializer" or "other"
    begin = 0    # of the declaration that is being read
    opened = 0   # begin of the function that is being read
    for match in re.finditer(r"[{};]", code):
        char, at = match.group(0), match.start()
        inside = scopes and scopes[-1] != "scope"
        if char == "{":
            head = code[begin:at]
            if inside:
                scopes.append("other")
            elif SCOPE.search(head) and not re.search(r"\)\s*$", head):
                scopes.append("scope")
                begin = at + 1
            elif head.count("(") != head.count(")") or "(" not in head:
                scopes.append("other")
            elif re.search(r"\)\s*(?:noexcept\s*)?:(?!:).*[\w>]\s*$", head, re.S):
                scopes.append("initializer")  # of a member, before the body of a constructor
            else:
                scopes.append("function")
                opened = begin
        elif char == "}":
            kind = scopes.pop() if scopes else "scope"
            if kind == "function":
                while (leading := LEADING.match(code, opened)) is not None:
                    opened = leading.end()
                opened += len(code[opened:]) - len(code[opened:].lstrip())
                first, last = code.count("\n", 0, opened) + 1, code.count("\n", 0, at) + 1
                yield first, last - first + 1, " ".join(code[opened:].split("(")[0].split())
            if kind == "scope" or kind == "function":
                begin = at + 1
        elif not inside:
            begin = at + 1
    if scopes:
        raise ValueError(f"{len(scopes)} braces are not closed")


def main():
    os.chdir(sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    found = []
    seen = 0
    classes = collections.defaultdict(int)
    sources = []
    for folder in FOLDERS:
        for path, _, names in os.walk(folder):
            sources += [os.path.join(path, name) for name in names if name.endswith((".h", ".cpp"))]
    sources.sort()
    stems = {os.path.basename(source)[:-2] for source in sources if source.endswith(".h")}
    for source in sources:
        with open(source, encoding="utf-8") as file:
            text = file.read()
        stem = os.path.splitext(os.path.basename(source))[0]
        owners = [stem] if stem in stems else [other for other in stems if stem.startswith(other)]
        if owners:
            classes[max(owners, key=len)] += text.count("\n")
        try:
            for line, count, name in functions(text):
                seen += 1
                if count > FUNCTION_LINES:
                    found.append(f"{source}:{line}: {name} has {count} lines, at most {FUNCTION_LINES} are allowed.")
        except ValueError as error:
            found.append(f"{source}: {error}; this script cannot read the file.")
    for stem, count in sorted(classes.items()):
        if count > CLASS_LINES:
            found.append(f"{stem} has {count} lines, header and sources together; at most {CLASS_LINES} are allowed.")
    print("\n".join(found) if found else f"{len(classes)} classes and {seen} functions are small enough.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())

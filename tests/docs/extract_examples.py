#!/usr/bin/env python3
"""Turns the C++ examples of documentation pages into a test program.

Usage: extract_examples.py OUTPUT.cpp PAGE.md ...

The ```cpp blocks of a page are one test, run in order on a fresh tree named Tree: a block may use what a block before
it declared. Blocks that begin with "class", "struct" or "#include" stand before the test. A block with a main function
is a program of its own: it is compiled, but not run.
"""
import pathlib
import re
import sys

BLOCK = re.compile(r"^```cpp\n(.*?)^```$", re.MULTILINE | re.DOTALL)
HEADER = """// Made from the documentation by tests/docs/extract_examples.py.
#include "tests/docs/DocsTest.h"

#include <QApplication>
"""


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def example(path, text, match):
    """The code of a block, with its place in the page for the compiler's messages."""
    return f'#line {line_of(text, match.start(1))} "{path}"\n{match.group(1)}'


def page_code(path):
    text = path.read_text(encoding="utf-8")
    name = re.sub(r"\W", "_", path.stem)
    outside, inside = [], []
    for match in BLOCK.finditer(text):
        code = match.group(1)
        if re.search(r"^int main\(", code, re.MULTILINE):
            program = example(path, text, match)
            outside.append(f"namespace {name}_program {{\n{program.replace('int main(', 'int Main(', 1)}}}\n")
        elif re.match(r"class\b|struct\b|#include\b", code):
            outside.append(example(path, text, match))
        else:
            inside.append(example(path, text, match))
    # Includes must stand outside of namespaces.
    includes = sorted({line for part in outside for line in part.splitlines() if line.startswith("#include")})
    outside = [re.sub(r"^#include.*$", "", part, flags=re.MULTILINE) for part in outside]
    if not inside and not outside:
        return ""
    test = [f"TEST_F(Guide, {name}) {{", *inside, "}"] if inside else []
    return "\n".join([*includes, f"namespace quill::docs::{name} {{", *outside, *test, "}", ""])


def main():
    output, pages = pathlib.Path(sys.argv[1]), [pathlib.Path(page) for page in sys.argv[2:]]
    code = HEADER + "\n".join(page_code(page) for page in pages)
    output.write_text(code, encoding="utf-8")


if __name__ == "__main__":
    main()

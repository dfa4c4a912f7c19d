#!/usr/bin/env python3
"""Writes host/base/CaseFold.inc: the simple case folding of Unicode as ranges.

Run it again with a newer Python to follow a newer Unicode version.
"""
import pathlib
import unicodedata

OUTPUT = pathlib.Path(__file__).resolve().parent.parent / "host" / "base" / "CaseFold.inc"


def fold(code):
    """The simple folding of one code point: the full one if it is a single character, else the lower case."""
    character = chr(code)
    for folded in (character.casefold(), character.lower()):
        if len(folded) == 1:
            return ord(folded)
    return code


def ranges():
    """Runs of code points with one step and one distance to their folding."""
    runs = []
    for code in range(0x80, 0x110000):
        if 0xD800 <= code <= 0xDFFF or fold(code) == code:
            continue
        delta = fold(code) - code
        if runs:
            first, last, step, run_delta = runs[-1]
            gap = code - last
            if delta == run_delta and gap <= 2 and (first == last or gap == step):
                runs[-1] = (first, code, gap, delta)
                continue
        runs.append((code, code, 1, delta))
    return runs


def main():
    lines = [
        f"// Simple case folding of Unicode {unicodedata.unidata_version} above ASCII, written by"
        " scripts/make-case-fold.py.",
        "// Every Step-th code point from First to Last folds to itself plus Delta.",
        "#include <cstdint>",
        "",
        "namespace quill {",
        "",
        "struct TCaseFoldRange {",
        "    char32_t First;",
        "    char32_t Last;",
        "    std::uint32_t Step;",
        "    std::int32_t Delta;",
        "};",
        "",
        "inline constexpr TCaseFoldRange CaseFoldRanges[] = {",
    ]
    lines += [f"    {{0x{a:04X}, 0x{b:04X}, {step}, {delta}}}," for a, b, step, delta in ranges()]
    lines += ["};", "", "} // namespace quill", ""]
    OUTPUT.write_text("\n".join(lines))


if __name__ == "__main__":
    main()

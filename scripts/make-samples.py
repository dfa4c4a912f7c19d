#!/usr/bin/env python3
"""Writes the outline of the world's countries, and checks every sample outline.

Usage: make-samples.py            writes examples/data/world.nodes from the lists of Debian's
                                  package iso-codes (/usr/share/iso-codes/json)
       make-samples.py --check    exits with 1 unless every outline in examples/data is in the
                                  form that a save of the loaded outline gives
"""

import csv
import json
import pathlib
import re
import sys
import unicodedata

DATA = pathlib.Path(__file__).resolve().parent.parent / "examples" / "data"
ISO_CODES = pathlib.Path("/usr/share/iso-codes/json")

# The options of a nodes file, by bit: five of them put a number in front of the texts.
IMAGE_INDEX, SELECTED_INDEX, STATE_INDEX, CELLS, EXPANDS, HIDDENS, UNIQUE_TAGS = (
    1 << bit for bit in range(7))
NUMBERS = (IMAGE_INDEX, SELECTED_INDEX, STATE_INDEX, EXPANDS, HIDDENS, UNIQUE_TAGS)

# The geographic regions of the UN standard M49, with the ISO codes of what lies in them.
REGIONS = {
    ("Africa", "002"): {
        ("Northern Africa", "015"): "DZ EG EH LY MA SD TN",
        ("Eastern Africa", "014"): "BI KM DJ ER ET TF IO KE MG MW MU YT MZ RE RW SC SO SS UG TZ"
                                   " ZM ZW",
        ("Middle Africa", "017"): "AO CM CF TD CG CD GQ GA ST",
        ("Southern Africa", "018"): "BW SZ LS NA ZA",
        ("Western Africa", "011"): "BJ BF CV CI GM GH GN GW LR ML MR NE NG SH SN SL TG",
    },
    ("Americas", "019"): {
        ("Caribbean", "029"): "AI AG AW BS BB BQ VG KY CU CW DM DO GD GP HT JM MQ MS PR BL KN LC"
                              " MF VC SX TT TC VI",
        ("Central America", "013"): "BZ CR SV GT HN MX NI PA",
        ("Northern America", "021"): "BM CA GL PM US",
        ("South America", "005"): "AR BO BV BR CL CO EC FK GF GY PY PE GS SR UY VE",
    },
    ("Antarctica", "010"): {None: "AQ"},
    ("Asia", "142"): {
        ("Central Asia", "143"): "KZ KG TJ TM UZ",
        ("Eastern Asia", "030"): "CN HK MO KP JP MN KR TW",
        ("South-eastern Asia", "035"): "BN KH ID LA MY MM PH SG TH TL VN",
        ("Southern Asia", "034"): "AF BD BT IN IR MV NP PK LK",
        ("Western Asia", "145"): "AM AZ BH CY GE IQ IL JO KW LB OM QA SA PS SY TR AE YE",
    },
    ("Europe", "150"): {
        ("Eastern Europe", "151"): "BY BG CZ HU PL MD RO RU SK UA",
        ("Northern Europe", "154"): "AX DK EE FO FI GG IS IE IM JE LV LT NO SJ SE GB",
        ("Southern Europe", "039"): "AL AD BA HR GI GR VA IT MT ME MK PT SM RS SI ES",
        ("Western Europe", "155"): "AT BE FR DE LI LU MC NL CH",
    },
    ("Oceania", "009"): {
        ("Australia and New Zealand", "053"): "AU CX CC HM NZ NF",
        ("Melanesia", "054"): "FJ NC PG SB VU",
        ("Micronesia", "057"): "GU KI MH FM NR MP PW UM",
        ("Polynesia", "061"): "AS CK PF NU PN WS TK TO TV WF",
    },
}

# What is open when the file is opened: enough to show every level in the first window.
EXPANDED = {"002", "015", "019", "021", "CA", "150", "155", "CH"}

DOCUMENT, FOLDER, FOLDER_OPEN, GLOBE = 2, 0, 1, 10  # places in the list of icons


def comma_text(items):
    def quoted(item):
        if any(c <= " " or c in ',"' for c in item):
            return '"' + item.replace('"', '""') + '"'
        return item

    return ",".join(map(quoted, items))


# ---------------------------------------------------------------------------------------
# The world.


def sort_key(node):
    """Letters without their accents, as an index of an atlas is ordered."""
    name = unicodedata.normalize("NFKD", node["name"])
    return "".join(c for c in name if c.isalnum() or c == " ").casefold()


def plain_name(name):
    """A name without the list's marks: '*' and a second name in brackets."""
    return re.sub(r"\s*(\*|\[.*\])$", "", name).strip()


def capital(text):
    return text[:1].upper() + text[1:]


def countries():
    """ISO code -> node of a country with its subdivisions."""
    nodes = {}
    for entry in json.loads((ISO_CODES / "iso_3166-1.json").read_text())["3166-1"]:
        code = entry["alpha_2"]
        nodes[code] = {
            "name": entry.get("common_name", entry["name"]), "code": f"{code}, {entry['alpha_3']}",
            "kind": "Country or area", "details": capital(entry.get("official_name", "")),
            "children": [], "expanded": code in EXPANDED}
        if nodes[code]["details"] == nodes[code]["name"]:
            nodes[code]["details"] = ""
    parents = {}
    for entry in json.loads((ISO_CODES / "iso_3166-2.json").read_text())["3166-2"]:
        code = entry["code"]
        nodes[code] = {"name": plain_name(entry["name"]), "code": code, "kind": capital(entry["type"]),
                       "details": "", "children": [], "expanded": False}
        country = code[:2]
        parent = entry.get("parent", country)
        parents[code] = parent if "-" in parent or parent == country else f"{country}-{parent}"
    for code, parent in parents.items():
        nodes[parent]["children"].append(nodes[code])
    for node in nodes.values():
        node["children"].sort(key=sort_key)
        node["image"] = FOLDER if node["children"] else DOCUMENT
    return {code: node for code, node in nodes.items() if "-" not in code}


def world():
    """The top-level nodes."""
    known = countries()

    def group(title, children, kind, details):
        return {"name": title[0], "code": title[1], "kind": kind, "details": details,
                "children": sorted(children, key=sort_key), "image": GLOBE,
                "expanded": title[1] in EXPANDED}

    top = []
    for title, parts in REGIONS.items():
        children, count = [], 0
        for part, codes in parts.items():
            members = [known.pop(code) for code in codes.split()]
            count += len(members)
            children += members if part is None else [
                group(part, members, "Subregion", f"{len(members)} countries and areas")]
        noun = "countries and areas" if count != 1 else "area"
        top.append(group(title, children, "Region", f"{count} {noun}"))
    if known:
        raise SystemExit(f"no region holds {', '.join(sorted(known))}")
    return top


def world_file():
    lines = [f"SaveOptions:{IMAGE_INDEX | SELECTED_INDEX | CELLS | EXPANDS}"]

    def write(node, level):
        selected = FOLDER_OPEN if node["image"] == FOLDER else node["image"]
        cells = [node["name"], node["code"], node["kind"], node["details"]]
        if not cells[-1]:
            cells.pop()
        numbers = [str(node["image"]), str(selected), str(int(node["expanded"]))]
        lines.append("\t" * level + comma_text(numbers + cells))
        for child in node["children"]:
            write(child, level + 1)

    for node in world():
        write(node, 0)
    return "".join(line + "\r\n" for line in lines)


# ---------------------------------------------------------------------------------------
# The check.


def check(path):
    """Prints what keeps an outline from being saved as it was loaded. Returns the line count."""
    text = path.read_bytes().decode("utf-8")
    problems = []
    lines = text.split("\r\n")
    if lines.pop() != "" or any("\r" in line or "\n" in line for line in lines):
        problems.append("lines end with other than carriage return and line feed")
    header = re.fullmatch(r"SaveOptions:(\d+)", lines[0])
    mask = int(header[1]) if header else -1
    if not 0 <= mask <= 127:
        problems.append("no header")
        mask = 0
    numbers = [bit for bit in NUMBERS if mask & bit]
    previous, tags = -1, set()
    for number, line in enumerate(lines[1:], 2):
        record = line.lstrip("\t")
        level = len(line) - len(record)
        items = next(csv.reader([record]), [])
        values, cells = items[: len(numbers)], items[len(numbers) :]
        if level > previous + 1:
            problems.append(f"line {number}: level {level} after level {previous}")
        if comma_text(items) != record:
            problems.append(f"line {number}: reads back as {comma_text(items)}")
        if not cells or not cells[0] or not cells[-1] or (len(cells) > 1 and not mask & CELLS):
            problems.append(f"line {number}: empty text, last cell empty, or unexpected cells")
        if any(not re.fullmatch(r"-1|0|[1-9]\d*", value) for value in values):
            problems.append(f"line {number}: {values} are not all numbers")
        else:
            value = dict(zip(numbers, map(int, values)))
            if value.get(EXPANDS, 0) > 1 or value.get(HIDDENS, 0) > 1:
                problems.append(f"line {number}: a flag is neither 0 nor 1")
            if UNIQUE_TAGS in value:
                if value[UNIQUE_TAGS] in tags:
                    problems.append(f"line {number}: tag {value[UNIQUE_TAGS]} occurs twice")
                tags.add(value[UNIQUE_TAGS])
        previous = level
    for problem in problems:
        print(f"{path.name}: {problem}")
    return not problems, len(lines) - 1


def main():
    if sys.argv[1:] != ["--check"]:
        (DATA / "world.nodes").write_bytes(world_file().encode("utf-8"))
    good = True
    for path in sorted(DATA.glob("*.nodes")):
        fine, count = check(path)
        good &= fine
        print(f"{path.name}: {count} nodes, {path.stat().st_size} bytes")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())

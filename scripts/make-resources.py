#!/usr/bin/env python3
"""Draws the bitmap resources (res/) and the example icons (examples/data/icons/).

The glyphs at scale 1 are pixel art, given as text below. Their versions for scale 2
and the icons are vector drawings, sampled at each size, so that a larger picture gains
detail instead of larger pixels. Needs nothing but the standard library.

Usage: make-resources.py            writes every file
       make-resources.py --check    exits with 1 if a file differs from what would be written
"""

import math
import pathlib
import sys

sys.dont_write_bytecode = True  # leave no cache beside the script

from drawing import (Drawing, bezier, bmp, circle, common, ellipse, inset, line, mirrored, pixels,
                     png, polygon, rect, rgb, ring, stroke, union, vertical, without)

ROOT = pathlib.Path(__file__).resolve().parent.parent
RES = ROOT / "res"
ICONS = ROOT / "examples" / "data" / "icons"

# ---------------------------------------------------------------------------------------
# Colours. White is the transparent colour of the resources, so "paper", the inside of a
# box, is a shade below it: it stays opaque and keeps a tick readable on dark backgrounds.

INK = rgb("202020")
BORDER = rgb("6E6E6E")
CORNER = rgb("B8B8B8")  # softens the inside of a circle's border
SHADE = rgb("E6E6E6")  # the shadow below the upper left border
PAPER = rgb("FDFDFD")

GRAY_INK = rgb("8C8C8C")
GRAY_BORDER = rgb("A6A6A6")
GRAY_CORNER = rgb("C8C8C8")
GRAY_SHADE = rgb("DCDCDC")
GRAY_PAPER = rgb("ECECEC")

# The double check mark is drawn on boxes of any palette: a blue that reads on light and dark.
MARK = rgb("1F6FD6")
MARK_DARK = rgb("134A94")

GOLD_EDGE = rgb("9A6B12")
GOLD = rgb("F2C14E")
GOLD_LIGHT = rgb("FBE3A0")
GOLD_DARK = rgb("DDA233")


# ---------------------------------------------------------------------------------------
# Pixel art for scale 1. A dot is transparent.

BOX = """
bbbbbbbbbbbbb
bsssssssssssb
bsppppppppppb
bsppppppppppb
bsppppppppppb
bsppppppppppb
bsppppppppppb
bsppppppppppb
bsppppppppppb
bsppppppppppb
bsppppppppppb
bsppppppppppb
bbbbbbbbbbbbb
"""

CIRCLE = """
....bbbbb....
..bbcssscbb..
.bcspppppscb.
.bspppppppsb.
bcpppppppppcb
bspppppppppsb
bspppppppppsb
bspppppppppsb
bcpppppppppcb
.bpppppppppb.
.bcpppppppcb.
..bbcpppcbb..
....bbbbb....
"""

TICK = """
......k
.....kk
k...kkk
kk.kkk.
kkkkk..
.kkk...
..k....
"""

DOT = """
.kkk.
kkkkk
kkkkk
kkkkk
.kkk.
"""

DOUBLE_TICK = """
.......m.
..m...mm.
..mm.mm..
...mmm...
....m..m.
..m...mm.
..mm.mm..
...mmm...
....m....
"""

BUTTON = """
bbbbbbbbbbb
bpppppppppb
bpppppppppb
bpppppppppb
bpppppppppb
bpppppppppb
bpppppppppb
bpppppppppb
bpppppppppb
bpppppppppb
bbbbbbbbbbb
"""

MINUS = "kkkkk"

PLUS = """
..k..
..k..
kkkkk
..k..
..k..
"""

FOLDER_CLOSED = """
................
................
.oooooo.........
oLLLLLLo........
oLggggggoooooo..
oggggggggggggGo.
oooooooooooooGo.
oLLLLLLLLLLLLoo.
oLgggggggggggGo.
oLgggggggggggGo.
oLgggggggggggGo.
oLgggggggggggGo.
oLgggggggggggGo.
oGGGGGGGGGGGGGo.
.ooooooooooooo..
................
"""

FOLDER_OPEN = """
................
................
.oooooo.........
oLLLLLLo........
oLggggggooooo...
oLggggggggggGo..
oLggooooooooooo.
oLgoLLLLLLLLLLo.
oLgoLgggggggggo.
oLoLgggggggggo..
oLoLgggggggggo..
ooLggggggggGo...
ooLggggggggGo...
ooGGGGGGGGGGo...
.oooooooooooo...
................
"""

ARROW = """
mm.........
mmm........
mmmm.......
mmmmm......
mmmmmm.....
mmmmmmm....
mmmmmm.....
mmmmm......
mmmm.......
mmm........
mm.........
"""

PENCIL = """
........kk..
.......krrk.
......kyrrrk
.....kYyyrrk
....kYggyyk.
...kYggGGk..
..kYggGGk...
.kwYgGGk....
.kwwgGk.....
.kwwwk......
.kkkk.......
............
"""

ASTERISK = """
.....m.....
.m...m...m.
..m..m..m..
...m.m.m...
....mmm....
mmmmmmmmmmm
....mmm....
...m.m.m...
..m..m..m..
.m...m...m.
.....m.....
"""

DRAG_RIGHT = """
....n....
....nn...
....nmn..
nnnnnmmn.
nmmmmmmmn
nnnnnmmn.
....nmn..
....nn...
....n....
"""

NORMAL = {"b": BORDER, "c": CORNER, "s": SHADE, "p": PAPER, "k": INK, "m": MARK}
GRAYED = {"b": GRAY_BORDER, "c": GRAY_CORNER, "s": GRAY_SHADE, "p": GRAY_PAPER,
          "k": GRAY_INK, "m": GRAY_INK}
FOLDER = {"o": GOLD_EDGE, "g": GOLD, "L": GOLD_LIGHT, "G": GOLD_DARK}
INDICATOR = {"m": MARK, "n": MARK_DARK, "k": rgb("4A4A4A"), "w": rgb("F3D9B1"),
             "y": rgb("C9CDD2"), "r": rgb("E0707A"), "g": GOLD, "Y": GOLD_LIGHT,
             "G": GOLD_DARK}


# ---------------------------------------------------------------------------------------
# The resources at scale 2, in units of their scale 1 pixels.


def tick_shape(x, y, width, arm, thickness):
    """A tick with its upper left corner at (x, y): both arms rise at 45 degrees.

    `arm` is the width of the short arm, `thickness` is measured vertically."""
    low = y + width - arm
    return polygon([(x, low - arm), (x + arm, low), (x + width, y), (x + width, y + thickness),
                    (x + arm, low + thickness), (x, low - arm + thickness)])


def double_tick_shape(x, y):
    return union(tick_shape(x, y, 6, 2, 2), tick_shape(x, y + 3.5, 6, 2, 2))


def box_2x(colours, mark=None):
    d = Drawing(15, 30)
    box = rect(1, 1, 14, 14, 1)
    d.outlined(box, colours["b"], colours["s"], 1)
    d.fill(rect(2.5, 2.5, 13, 13, 0.25), colours["p"])
    if mark == "tick":
        d.fill(tick_shape(4, 4, 7, 2.5, 2.5), colours["k"])
    elif mark == "double":
        d.fill(double_tick_shape(4.5, 2.75), colours["m"])
    return d.opaque()


def circle_2x(colours, dot=False):
    d = Drawing(15, 30)
    d.outlined(circle(7.5, 7.5, 6.5), colours["b"], colours["s"], 1)
    d.fill(common(circle(7.5, 7.5, 5.5), circle(7.75, 7.9, 5.4)), colours["p"])
    if dot:
        d.fill(circle(7.5, 7.5, 2.75), colours["k"])
    return d.opaque()


def button_2x(plus):
    d = Drawing(15, 30)
    d.outlined(rect(2, 2, 13, 13, 1), BORDER, PAPER, 0.5)
    d.fill(rect(5, 7, 10, 8), INK)
    if plus:
        d.fill(rect(7, 5, 8, 10), INK)
    return d.opaque()


def mark_2x(colour):
    """Drawn pixel by pixel: a diagonal with hard edges has to keep its thickness."""
    rows = [[None] * 18 for _ in range(18)]
    for top in (0, 7):
        for x in range(12):
            y = top + 7 - abs(x - 4)
            for row in rows[y : y + 4]:
                row[3 + x] = colour
    return rows


def folder_shapes(d, is_open):
    """A folder in a square of 16 units; its right column and its lower row stay free."""
    back = union(rect(0, 2, 7.5, 8, 1), rect(0, 4, 14 if is_open else 15, 15, 1))
    d.outlined(back, GOLD_EDGE, vertical(GOLD_LIGHT, GOLD_DARK, 2, 14))
    if is_open:
        front = polygon([(3.5, 7), (15, 7), (12.5, 15), (1, 15)])
        d.outlined(front, GOLD_EDGE, vertical(GOLD_LIGHT, GOLD, 7, 14))
    else:
        d.outlined(rect(0, 6, 15, 15, 1), GOLD_EDGE, vertical(GOLD_LIGHT, GOLD, 6, 14))


def folder_2x(is_open):
    d = Drawing(16, 32)
    folder_shapes(d, is_open)
    return d.opaque()


def arrow_2x():
    d = Drawing(11, 22)
    d.fill(polygon([(0, 0), (1.5, 0), (7, 5.5), (1.5, 11), (0, 11)]), MARK)
    return d.opaque()


def pencil_2x():
    d = Drawing(12, 24)
    dark, wood = INDICATOR["k"], INDICATOR["w"]
    body = polygon([(0.2, 11.8), (1.6, 7.6), (8.4, 0.8), (9.2, 0.8), (11.2, 2.8), (11.2, 3.6),
                    (4.4, 10.4)])
    d.outlined(body, dark, GOLD, 0.9)
    inner = inset(body, 0.9)
    d.fill(common(inner, line(2.0, 8.2, 9.2, 1.0, 1.4)), GOLD_LIGHT)
    d.fill(common(inner, line(4.0, 10.2, 11.2, 3.0, 1.6)), GOLD_DARK)
    d.fill(common(inner, polygon([(0, 12), (2.4, 7.2), (4.8, 9.6)])), wood)
    d.fill(common(inner, polygon([(6.4, 2.2), (7.6, 1.0), (11.0, 4.4), (9.8, 5.6)])),
           INDICATOR["y"])
    d.fill(common(inner, polygon([(7.4, 1.2), (12, -3), (16, 2), (10.8, 4.6)])), INDICATOR["r"])
    d.fill(common(body, polygon([(0, 12), (0.4, 9.9), (2.1, 11.6)])), dark)
    return d.opaque()


def asterisk_2x():
    d = Drawing(11, 22)
    for i in range(4):
        angle = math.pi * i / 4
        reach = 5.0 if i % 2 == 0 else 4.9
        dx, dy = reach * math.cos(angle), reach * math.sin(angle)
        d.fill(line(5.5 - dx, 5.5 - dy, 5.5 + dx, 5.5 + dy, 1.1), MARK)
    d.fill(circle(5.5, 5.5, 2.2), MARK)
    return d.opaque()


def drag_2x(left):
    d = Drawing(9, 18)
    points = [(9, 4.5), (4.5, 9), (4, 9), (4, 6), (0, 6), (0, 3), (4, 3), (4, 0), (4.5, 0)]
    shape = polygon([(9 - x, y) for x, y in points] if left else points)
    d.outlined(shape, MARK_DARK, MARK, 0.8)
    return d.opaque()


def resources():
    """Name -> (picture at scale 1, picture at scale 2)."""
    box, disc, tick, dot = BOX, CIRCLE, TICK, DOT
    n, g = NORMAL, GRAYED
    blank = [[None] * 15 for _ in range(15)]
    blank_2x = [[None] * 30 for _ in range(30)]
    return {
        "EXPANDED": (pixels(15, (BUTTON, n), (MINUS, n)), button_2x(False)),
        "COLLAPSED": (pixels(15, (BUTTON, n), (PLUS, n)), button_2x(True)),
        "FOPEN": (pixels(16, (FOLDER_OPEN, FOLDER)), folder_2x(True)),
        "FCLOSED": (pixels(16, (FOLDER_CLOSED, FOLDER)), folder_2x(False)),
        "EMPTY": (blank, blank_2x),
        "CHECKED": (pixels(15, (box, n), (tick, n)), box_2x(n, "tick")),
        "UNCHECKED": (pixels(15, (box, n)), box_2x(n)),
        "GRAYED": (pixels(15, (box, g), (tick, g)), box_2x(g, "tick")),
        "OPTIONED": (pixels(15, (disc, n), (dot, n)), circle_2x(n, True)),
        "UNOPTIONED": (pixels(15, (disc, n)), circle_2x(n)),
        "GRAYEDUNCHECKED": (pixels(15, (box, g)), box_2x(g)),
        "GRAYEDOPTIONED": (pixels(15, (disc, g), (dot, g)), circle_2x(g, True)),
        "GRAYEDUNOPTIONED": (pixels(15, (disc, g)), circle_2x(g)),
        "DOUBLECHECKED": (pixels(15, (box, n), (DOUBLE_TICK, n)), box_2x(n, "double")),
        "GRAYEDDOUBLECHECKED": (pixels(15, (box, g), (DOUBLE_TICK, g)), box_2x(g, "double")),
        "DCIMG": (pixels(9, (DOUBLE_TICK, n)), mark_2x(MARK)),
        "GDCIMG": (pixels(9, (DOUBLE_TICK, g)), mark_2x(GRAY_INK)),
        "ARROW": (pixels(11, (ARROW, INDICATOR)), arrow_2x()),
        "EDIT": (pixels(12, (PENCIL, INDICATOR)), pencil_2x()),
        "INSERT": (pixels(11, (ASTERISK, INDICATOR)), asterisk_2x()),
        "DRAGLEFTARROW": (pixels(9, (mirrored(DRAG_RIGHT), INDICATOR)), drag_2x(True)),
        "DRAGRIGHTARROW": (pixels(9, (DRAG_RIGHT, INDICATOR)), drag_2x(False)),
    }


# ---------------------------------------------------------------------------------------
# The icons of the example programs, in units of a 16-pixel square.

SLATE = rgb("5B6B7F")
SHEET = vertical(rgb("FFFFFF"), rgb("E9EEF4"), 1, 15)
BLUE = rgb("3B7DD8")
GREEN = rgb("4C9F50")
GREEN_DARK = rgb("2E6E35")


def icon_sheet(d):
    """A sheet of paper with a folded corner."""
    d.outlined(polygon([(2, 0), (9, 0), (14, 5), (14, 16), (2, 16)]), SLATE, SHEET)
    d.outlined(polygon([(9, 0), (14, 5), (9, 5)]), SLATE, rgb("D3DCE7"))


def icon_folder(d):
    folder_shapes(d, False)


def icon_folder_open(d):
    folder_shapes(d, True)


def icon_document(d):
    icon_sheet(d)
    for y, right in ((7, 12), (9, 12), (11, 12), (13, 9)):
        d.fill(rect(4, y, right, y + 1), rgb("8FA3BA"))


def icon_picture(d):
    frame = rect(0, 2, 16, 14, 1)
    d.outlined(frame, SLATE, rgb("FFFFFF"))
    view = rect(2, 4, 14, 12)
    d.fill(view, vertical(rgb("8EC8F5"), rgb("D8EEFC"), 4, 12))
    d.fill(circle(11, 6.5, 1.5), rgb("FFD54A"))
    d.fill(common(view, polygon([(1, 13), (5.5, 6.5), (10, 13)])), GREEN)
    d.fill(common(view, polygon([(6.5, 13), (10.5, 8.5), (15, 13)])), rgb("6FBF6A"))


def icon_archive(d):
    d.outlined(rect(1, 5, 15, 15, 1), rgb("7A5230"), vertical(rgb("D9A774"), rgb("C08A55"), 5, 15))
    d.outlined(rect(0, 1, 16, 6, 1), rgb("7A5230"), vertical(rgb("E8BF92"), rgb("D5A26E"), 1, 6))
    d.outlined(rect(5, 8, 11, 11, 1), rgb("7A5230"), rgb("F6E7D3"))


def icon_code(d):
    d.outlined(rect(0, 1, 16, 15, 1.5), rgb("2B3542"), vertical(rgb("45546A"), rgb("343F50"), 1, 15))
    d.fill(stroke([(5.5, 5), (2.7, 8), (5.5, 11)], 1.4), rgb("8FD3FF"))
    d.fill(stroke([(10.5, 5), (13.3, 8), (10.5, 11)], 1.4), rgb("8FD3FF"))
    d.fill(line(9.1, 4, 6.9, 12, 1.3), rgb("FFC66D"))


def icon_music(d):
    ink = vertical(rgb("9A63D6"), rgb("6C3BA8"), 1, 15)
    heads = union(ellipse(4, 13, 3, 2.3), ellipse(12, 11, 3, 2.3))
    stems = union(rect(5.4, 3, 7, 13), rect(13.4, 1, 15, 11))
    beam = polygon([(5.4, 3), (15, 0.6), (15, 3.8), (5.4, 6.2)])
    d.fill(union(heads, stems, beam), ink)


def icon_link(d):
    """Two links of a chain along the rising diagonal, and the bar where they meet."""
    left = common(ring(rect(-1.5, 4.6, 9, 11.4, 3.4), 2), rect(-2, 4, 6.4, 12))
    right = common(ring(rect(7, 4.6, 17.5, 11.4, 3.4), 2), rect(9.6, 4, 18, 12))
    chain = union(left, right, line(5.2, 8, 10.8, 8, 2))
    s = math.sqrt(0.5)

    def turned(x, y):
        u, v = x - 8, y - 8
        return chain((u - v) * s + 8, (u + v) * s + 8)

    d.fill(turned, vertical(rgb("4C8EE6"), rgb("2A62B4"), 1, 15))


def icon_star(d):
    points = []
    for i in range(10):
        radius = 8.3 if i % 2 == 0 else 3.6
        angle = math.pi * (i / 5 - 0.5)
        points.append((8 + radius * math.cos(angle), 8.6 + radius * math.sin(angle)))
    d.outlined(polygon(points), rgb("B07A10"), vertical(rgb("FFE27A"), rgb("F5B32B"), 1, 15))


def icon_heart(d):
    points = (bezier((8, 15), (4, 11.5), (0, 8.6), (0, 5.2)) +
              bezier((0, 5.2), (0, 2.7), (1.9, 1), (4.2, 1)) +
              bezier((4.2, 1), (5.9, 1), (7.2, 1.9), (8, 3.3)))
    points += [(16 - x, y) for x, y in [(8, 3.3)] + points[:0:-1]]
    d.outlined(polygon(points), rgb("A3232F"), vertical(rgb("F4737C"), rgb("D93A48"), 1, 15))


def icon_globe(d):
    ball = circle(8, 8, 7.75)
    d.outlined(ball, rgb("1F5B9E"), vertical(rgb("7FC4F2"), rgb("3E8EDB"), 1, 15))
    net = [rect(0, 7.5, 16, 8.5), rect(7.5, 0, 8.5, 16), ring(ellipse(8, 8, 4, 7.75), 1),
           rect(0, 3.6, 16, 4.4), rect(0, 11.6, 16, 12.4)]
    d.fill(common(inset(ball, d.pixel), union(*net)), rgb("EAF6FE"), 0.8)


def icon_leaf(d):
    blade = polygon(bezier((15.5, 0.5), (7, 0.8), (1.6, 3.4), (1.8, 8.6)) +
                    bezier((1.8, 8.6), (1.9, 11.6), (4.2, 13.6), (7, 13.4)) +
                    bezier((7, 13.4), (12.6, 13), (14.8, 7.4), (15.5, 0.5)))
    d.outlined(blade, GREEN_DARK, vertical(rgb("9BD770"), GREEN, 1, 14))
    d.fill(stroke([(0.9, 15.1), (3.4, 11.6), (7.2, 7.6), (11.8, 4.2)], 1.0), GREEN_DARK)


def icon_user(d):
    body = common(ellipse(8, 16.5, 7, 7), rect(0, 8, 16, 16))
    d.outlined(body, rgb("1F5B9E"), vertical(rgb("6FAEEA"), rgb("3B7DD8"), 9, 16))
    d.outlined(circle(8, 4.75, 4.25), rgb("9A6A45"), vertical(rgb("FBDDC0"), rgb("EFC19A"), 1, 9))


def icon_note(d):
    sheet = polygon([(1, 1), (15, 1), (15, 10), (10, 15), (1, 15)])
    d.outlined(sheet, rgb("B08D1E"), vertical(rgb("FFF3A6"), rgb("FBE26B"), 1, 15))
    d.outlined(polygon([(10, 10), (15, 10), (10, 15)]), rgb("B08D1E"), rgb("E5C544"))
    for y, right in ((4, 12), (6, 12), (8, 9)):
        d.fill(rect(4, y, right, y + 1), rgb("BFA13A"))


def icon_quill(d):
    """The program icon, in units of a 64-pixel square: a feather that has just drawn a line."""
    spine = bezier((10, 57), (22, 40), (36, 24), (58, 5), 48)
    vane = polygon(bezier((17.5, 46), (12, 24), (30, 6), (59, 3)) +
                   bezier((59, 3), (60, 24), (46, 46), (21.5, 48.5)) + [(21.5, 48.5)])
    vane = without(vane, polygon([(14.5, 30), (15, 27), (25.5, 34.8)]),
                   polygon([(24, 15), (26, 13), (32.5, 26)]),
                   polygon([(46.5, 40.5), (44, 42.5), (32.5, 33)]))
    below_spine = polygon(spine + [(58, 5), (70, 0), (70, 70), (10, 70)])
    tint = vertical(rgb("57C2C9"), rgb("3C5BC6"), 0, 90)

    d.fill(stroke(bezier((10, 58), (22, 53), (27, 64), (38, 59), 12) +
                  bezier((38, 59), (45, 56), (50, 58), (57, 57), 12), 2.2), rgb("7C8CA3"))
    d.fill(stroke(spine[2:14], 2.6), rgb("8FA9D8"))
    d.fill(vane, lambda x, y: tint(x, y + (64 - x) * 0.6))
    d.fill(common(vane, below_spine), rgb("1F2F7A"), 0.18)
    d.fill(common(inset(vane, 0.5), stroke(spine[6:44], 1.7)), rgb("F4FAFF"))
    d.fill(polygon([(9.2, 58.6), (13.0, 48.8), (17.4, 51.8)]), rgb("43566F"))


ICON_ORDER = ["folder", "folder-open", "document", "picture", "archive", "code", "link", "star",
              "user", "note", "globe", "leaf", "music", "heart"]


def icon_files():
    files = {}
    for name in ICON_ORDER:
        draw = globals()["icon_" + name.replace("-", "_")]
        for size in (16, 32):
            d = Drawing(16, size)
            draw(d)
            files[ICONS / f"{name}-{size}.png"] = png(d.render())
    for name, art in (("folder", FOLDER_CLOSED), ("folder-open", FOLDER_OPEN)):
        files[ICONS / f"{name}-16.png"] = png([[(*p, 1) if p else (0, 0, 0, 0) for p in row]
                                               for row in pixels(16, (art, FOLDER))])
    for size in (64, 128):
        d = Drawing(64, size)
        icon_quill(d)
        files[ICONS / f"quill-{size}.png"] = png(d.render())
    files[ICONS / "order.txt"] = "".join(name + "\n" for name in ICON_ORDER).encode()
    return files


def main():
    files = icon_files()
    for name, (small, large) in resources().items():
        files[RES / f"{name}.bmp"] = bmp(small)
        files[RES / f"{name}@2x.bmp"] = bmp(large)
    check = sys.argv[1:] == ["--check"]
    stale = [path for path, data in files.items()
             if not path.exists() or path.read_bytes() != data]
    if check:
        for path in stale:
            print(f"{path.relative_to(ROOT)} differs from what {pathlib.Path(__file__).name} draws")
        return 1 if stale else 0
    for path in stale:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(files[path])
    print(f"{len(files)} files, {len(stale)} written")
    return 0


if __name__ == "__main__":
    sys.exit(main())

"""Pictures of the outliner while nodes are dragged, taken from the screen with the mouse in mid-drag. Made for looking
at; scripts/screenshots runs it.

drag_pictures.py OUTLINER ROW_PLACES SAMPLE PICTURE [--dark] [--rtl] [--scale N]
"""
import argparse
import os
import shutil
import time

from desktop import BOTTOM, MIDDLE, TOP, Desktop, Program

WIDTH, HEIGHT, GAP = 420, 310, 8
ARROW = "0,0 0,15 4,11 7,17 9,16 7,10 11,10"


def main():
    parser = argparse.ArgumentParser()
    for name in ("outliner", "places", "sample", "picture"):
        parser.add_argument(name)
    parser.add_argument("--dark", action="store_true")
    parser.add_argument("--rtl", action="store_true")
    parser.add_argument("--scale", type=int, default=1)
    args = parser.parse_args()
    picture = os.path.abspath(args.picture)
    options = ["--size", "%dx%d" % (WIDTH, HEIGHT)]
    options += [option for option in ("--dark", "--rtl") if getattr(args, option[2:])]

    with Desktop(args.scale) as desk:
        desk.places = args.places
        frames = []

        def open_outline(name, x):
            path = os.path.join(desk.folder, name)
            for ending in (".nodes", ".columns"):
                shutil.copy(args.sample.replace(".nodes", ending), path.replace(".nodes", ending))
            return Program(desk, "outliner", args.outliner, options, path, x * args.scale, 30 * args.scale)

        left, right = open_outline("release.nodes", 6), open_outline("other.nodes", WIDTH + 16)

        # The mouse tells where a window begins.
        corners = {program: desk.move(0, 0, program.window) for program in (left, right)}

        def frame(title, mouse, programs=(left,)):
            """What is on the screen in the windows, with the arrow of the mouse, which no picture has."""
            time.sleep(0.2)
            name = os.path.join(desk.folder, "frame%d.png" % len(frames))
            desk.run("import", "-window", "root", name)
            shape = "translate %d,%d scale %d,%d polygon %s" % (*mouse, args.scale, args.scale, ARROW)
            desk.run("convert", name, "-fill", "white", "-stroke", "black", "-draw", shape, name)
            size = "%dx%d" % (WIDTH * args.scale, HEIGHT * args.scale)
            parts = []
            for program in programs:
                part = name.replace(".png", "-%d.png" % len(parts))
                desk.run("convert", name, "-crop", size + "+%d+%d" % corners[program], "+repage", part)
                parts.append(part)
            frames.append((title, parts))

        def drag_to(start, program, row, part):
            place = desk.move(*program.at(row, part)[1:], program.window)
            return desk.drag_on(start, *place)

        mouse = desk.press(left.at(3))
        mouse = drag_to(mouse, left, 5, TOP)
        frame("1  Before a node", mouse)
        mouse = drag_to(mouse, left, 5, MIDDLE)
        frame("2  On a node: below it", mouse)
        mouse = drag_to(mouse, left, 5, BOTTOM)
        frame("3  Behind a node", mouse)
        mouse = drag_to(mouse, left, 1, MIDDLE)
        time.sleep(1.2)
        frame("4  Held over a branch, it opens", mouse)
        mouse = drag_to(mouse, right, 4, TOP)
        frame("5  Into the window of another process", mouse, (left, right))
        desk.run("xdotool", "key", "Escape")
        desk.run("xdotool", "mouseup", "1")

        ground = "#78787c"
        gap = str(GAP // 2 * args.scale)
        lines = []
        for title, parts in frames:
            out = parts[0].replace("frame", "titled")
            framed = [word for part in parts for word in ("(", part, "-bordercolor", ground, "-border", gap, ")")]
            desk.run("convert", *framed, "+append", "-background", ground, "-fill", "white", "-font", "DejaVu-Sans",
                     "-pointsize", str(12 * args.scale), "-gravity", "NorthWest",
                     "-splice", "0x%d" % (20 * args.scale), "-annotate", "+%s+%d" % (gap, 4 * args.scale), title, out)
            lines.append(out)
        desk.run("convert", "-background", ground, "(", *lines[:2], "+append", ")", "(", *lines[2:4], "+append", ")",
                 lines[4], "-append", picture)
    print(picture)


main()

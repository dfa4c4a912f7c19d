"""Nodes and files dragged between outliners and the explorer, with the mouse:
drag_test.py OUTLINER EXPLORER ROW_PLACES [--runs N]"""
import argparse
import os

from desktop import BOTTOM, MIDDLE, TOP, Desktop, Program

SIZE = ["--size", "560x300"]
LEFT = 'SaveOptions:8\r\nOne,first\r\nTwo,second\r\n\tInner,deep\r\nThree,third\r\n'
RIGHT = 'SaveOptions:8\r\nAlpha,a\r\nBeta,b\r\n'


def same(expected, found):
    if expected != found:
        raise AssertionError("expected %r, found %r" % (expected, found))


class Outline(Program):
    def saved(self):
        """The lines of the file, once it has been saved."""
        os.remove(self.path)
        self.desk.activate(self.window)
        self.desk.keys("ctrl+s")
        self.desk.wait("the file " + self.path, lambda: os.path.exists(self.path) and os.path.getsize(self.path) > 0)
        with open(self.path, newline="", encoding="utf-8") as file:
            return file.read().split("\r\n")[1:-1]

    def wait_for(self, lines):
        """The file is as expected, at the latest after some tries: what a drop does takes its time."""
        found = []

        def is_so():
            found[:] = self.saved()
            return found == lines
        try:
            self.desk.wait("a change", is_so, 5)
        except AssertionError:
            same(lines, found)


def run(args):
    with Desktop() as desk:
        desk.places = args.places

        def outliner(name, text, x, y):
            path = os.path.join(desk.folder, name)
            with open(path, "w", newline="") as file:
                file.write(text)
            return Outline(desk, "outliner", args.outliner, SIZE + ["--expand-all"], path, x, y)

        left = outliner("left.nodes", LEFT, 10, 40)
        right = outliner("right.nodes", RIGHT, 600, 40)

        # A copy into another process, with all that is below it, between two nodes.
        desk.drag(left.at(1), right.at(1, TOP))
        right.wait_for(["Alpha,a", "Two,second", "\tInner,deep", "Beta,b"])
        left.wait_for(["One,first", "Two,second", "\tInner,deep", "Three,third"])

        # With Shift they move, in one step on each side.
        desk.drag(left.at(0), right.at(0, TOP), "shift")
        right.wait_for(["One,first", "Alpha,a", "Two,second", "\tInner,deep", "Beta,b"])
        left.wait_for(["Two,second", "\tInner,deep", "Three,third"])
        desk.keys("ctrl+z")
        left.wait_for(["One,first", "Two,second", "\tInner,deep", "Three,third"])

        # Inside one window they move without Shift: out of a branch, and not below themselves.
        desk.drag(left.at(2), left.at(3, BOTTOM))
        left.wait_for(["One,first", "Two,second", "Three,third", "Inner,deep"])
        desk.keys("ctrl+z")
        desk.drag(left.at(1), left.at(2, MIDDLE))
        left.wait_for(["One,first", "Two,second", "\tInner,deep", "Three,third"])

        # A file becomes a node, here below another one.
        folder = os.path.join(desk.folder, "files")
        os.mkdir(folder)
        with open(os.path.join(folder, "a note.txt"), "w") as file:
            file.write("12345")
        explorer = Program(desk, "explorer", args.explorer, SIZE, folder, 10, 420)
        desk.drag(explorer.at(1), left.at(3, MIDDLE))
        left.wait_for(["One,first", "Two,second", "\tInner,deep", "Three,third", '\t"a note.txt"'])
        same(["a note.txt"], os.listdir(folder))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("outliner")
    parser.add_argument("explorer")
    parser.add_argument("places")
    parser.add_argument("--runs", type=int, default=1)
    args = parser.parse_args()
    passed = 0
    for number in range(args.runs):
        try:
            run(args)
            passed += 1
        except AssertionError as fault:
            print("run %d: %s" % (number + 1, fault))
    print("%d of %d runs passed" % (passed, args.runs))
    return 0 if passed == args.runs else 1


if __name__ == "__main__":
    raise SystemExit(main())

"""Text, nodes and cells between the outliner and other programs: clipboard_test.py OUTLINER"""
import os
import sys

from desktop import Desktop

NODES = 'SaveOptions:8\r\nOne,first\r\nTwo,second\r\n'


def same(expected, found):
    if expected != found:
        raise AssertionError("expected %r, found %r" % (expected, found))


def main(outliner):
    with Desktop() as desk:
        name = os.path.join(desk.folder, "sample.nodes")
        with open(name, "w", newline="") as file:
            file.write(NODES)
        desk.start([outliner, "--file", name])
        desk.window("sample")

        def saved():
            """The lines of the file, once it has been saved."""
            os.remove(name)
            desk.keys("ctrl+s")
            desk.wait("the file", lambda: os.path.exists(name) and os.path.getsize(name) > 0)
            with open(name, newline="", encoding="utf-8") as file:
                return file.read().split("\r\n")[1:-1]

        # Out of the editor, and into it; line breaks become spaces.
        desk.keys("F2", "ctrl+c")
        desk.wait("the copied text", lambda: desk.clipboard() == b"One")
        desk.copy("grün\nund blau 🎉".encode())
        desk.keys("ctrl+v")
        desk.type(" x")
        desk.keys("Escape")
        same(['"grün und blau 🎉 x",first', "Two,second"], saved())

        # Nodes out as text, and other programs' rows and cells in.
        desk.keys("ctrl+c")
        desk.wait("the copied node", lambda: desk.clipboard().strip() == "grün und blau 🎉 x\tfirst".encode())
        same(True, b"application/x-quill-nodes" in desk.clipboard("TARGETS"))
        desk.keys("Down")
        desk.copy(b'cell\t"two\nlines"\nnext\tb\n')
        desk.keys("ctrl+v")
        same(['"grün und blau 🎉 x",first', "Two,second", 'cell,"two lines"', "next,b"], saved())

        # Pasting what the program itself has put there, after another program has had it.
        desk.keys("Home", "ctrl+x")
        desk.wait("the cut node", lambda: b"first" in desk.clipboard())
        desk.keys("ctrl+v")
        lines = saved()
        same(4, len(lines))
        same('"grün und blau 🎉 x",first', lines[1])


main(sys.argv[1])

#!/usr/bin/env python3
"""Feeds scripts/check-layers (argument 1) small trees and compares what it reports."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = sys.argv.pop(1)


def report(files):
    """The faults that the check finds in a tree of these files (path -> content), without the texts behind places."""
    with tempfile.TemporaryDirectory() as folder:
        for name, content in files.items():
            path = pathlib.Path(folder, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(content)
        result = subprocess.run([sys.executable, CHECK, folder], capture_output=True, text=True, check=False)
    lines = result.stdout.splitlines()
    return "clean" if result.returncode == 0 else [":".join(line.split(":")[:2]) for line in lines]


BASE = {"host/base/Types.h": "", "host/windows/Controls.h": "", "quilltree/FlyNode.h": "", "quilltree/QuillTree.h": ""}


class CheckLayers(unittest.TestCase):
    def check(self, expected, **files):
        renamed = {name.replace("__", "/").replace("_h", ".h").replace("_c", ".cpp"): text for name, text in files.items()}
        self.assertEqual(report({**BASE, **renamed}), expected)

    def test_includes_downwards_are_clean(self):
        self.check("clean", exgrid__Grid_c='#include "host/windows/Controls.h"\n#include <vector>\n')
        self.check("clean", quilltree__TreeRows_c='#include "quilltree/FlyNode.h"\n')
        self.check("clean", host__windows__Edit_c="#include <QWidget>\n#include <QtGui/QPainter>\n")

    def test_includes_upwards_are_faults(self):
        self.check(["host/base/Up.h:2"], host__base__Up_h='\n#include "host/windows/Controls.h"\n')
        self.check(["quilltree/FlyNode.h:1"], quilltree__FlyNode_h='#include "quilltree/QuillTree.h"\n')
        self.check(["exgrid/Grid.cpp:1"], exgrid__Grid_c='#include "quilltree/FlyNode.h"\n')

    def test_qt_stays_in_the_host(self):
        self.check(["exgrid/Grid.cpp:1"], exgrid__Grid_c="#include <QWidget>\n")
        self.check(["host/base/Text.h:1"], host__base__Text_h="#  include <QtCore/QString>\n")
        self.check(["quilltree/QuillTree.h:1"], quilltree__QuillTree_h="#include <qpainter.h>\n")

    def test_includes_name_paths_from_the_root(self):
        self.check(["exgrid/Grid.cpp:1"], exgrid__Grid_c='#include "Grid.h"\n', exgrid__Grid_h="")

    def test_the_tree_control_is_what_its_build_file_lists(self):
        listed = {"quilltree/CMakeLists.txt": "target_sources(quill_controls PRIVATE\n    Sorting.cpp)\n"}
        user = {"quilltree/Sorting.cpp": '#include "quilltree/QuillTree.h"\n'}
        self.assertEqual(report({**BASE, **user}), ["quilltree/Sorting.cpp:1"])
        self.assertEqual(report({**BASE, **user, **listed}), "clean")


if __name__ == "__main__":
    unittest.main()

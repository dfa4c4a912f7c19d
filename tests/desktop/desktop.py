"""A desktop for tests that need other programs: an X server of its own with a window manager, driven by xdotool.

A test that imports this ends with SKIPPED, which CTest takes for a skipped test, where the tools are not installed.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time

SKIPPED = 77
STEP = 0.05  # seconds between two movements of the mouse
TOP, MIDDLE, BOTTOM = 0.1, 0.5, 0.9  # parts of a row, from above
TOOLS = ["Xvfb", "openbox", "wmctrl", "xdotool", "xclip"]


class Desktop:
    """Entered, it is there; left, everything that was started in it is ended."""

    def __init__(self, scale=1):
        self.scale = scale

    def __enter__(self):
        missing = [tool for tool in TOOLS if not shutil.which(tool)]
        if missing:
            print("skipped: not installed here:", ", ".join(missing))
            sys.exit(SKIPPED)
        self.processes = []
        self.folder = tempfile.mkdtemp(prefix="quill-desktop-")
        self.env = dict(os.environ, QT_QPA_PLATFORM="xcb", QT_SCALE_FACTOR=str(self.scale), XDG_RUNTIME_DIR=self.folder,
                        HOME=self.folder, LC_ALL="C.UTF-8")
        os.chmod(self.folder, 0o700)
        read, write = os.pipe()
        self.start(["Xvfb", "-displayfd", str(write), "-screen", "0", "%dx%dx24" % (1200 * self.scale, 800 * self.scale)], pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as answer:
            self.env["DISPLAY"] = ":" + answer.readline().strip()
        self.start(["openbox"])
        # A window that comes before its manager may stay unseen.
        self.wait("the window manager", lambda: b"Openbox" in self.run("wmctrl", "-m"))
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.kill()
            process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def start(self, command, **options):
        process = subprocess.Popen(command, env=self.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)
        self.processes.append(process)
        return process

    def run(self, *command, data=None):
        return subprocess.run(command, env=self.env, input=data, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              timeout=30).stdout

    def wait(self, what, condition, seconds=20):
        """The first true answer of condition; fails when none comes."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            answer = condition()
            if answer:
                return answer
            time.sleep(0.1)
        raise AssertionError("waited in vain for " + what)

    def window(self, name):
        """Waits for a window whose title contains name, and gives it the focus."""
        def find():
            return self.run("xdotool", "search", "--onlyvisible", "--name", name).split()
        window = self.wait("the window " + name, find)[0].decode()
        self.activate(window)
        return window

    def activate(self, window):
        self.run("xdotool", "windowactivate", "--sync", window)

    def move(self, x, y, window=None):
        """To a place on the screen, or in a window; returns where on the screen that is."""
        self.run("xdotool", "mousemove", *(["--window", window] if window else []), str(x), str(y))
        time.sleep(STEP)
        if window:
            place = dict(line.split("=") for line in self.run("xdotool", "getmouselocation", "--shell").decode().split())
            return int(place["X"]), int(place["Y"])
        return x, y

    def press(self, source):
        """Presses the mouse button at a place (window, x, y) and begins to drag."""
        x, y = self.move(*source[1:], source[0])
        self.run("xdotool", "mousedown", "1")
        time.sleep(STEP)
        for step in ((6, 4), (14, 8)):
            self.move(x + step[0], y + step[1])
        return x + 14, y + 8

    def drag_on(self, start, x, y):
        """Drags from a place on the screen to another, step by step."""
        for step in range(1, 6):
            self.move(start[0] + (x - start[0]) * step // 5, start[1] + (y - start[1]) * step // 5)
        self.move(x + 2, y + 1)
        self.move(x, y)
        return x, y

    def drag(self, source, target, key=None):
        """Drags with the left button between places (window, x, y); the key is held when it is dropped."""
        x, y = self.move(*target[1:], target[0])
        start = self.press(source)
        if key:
            self.run("xdotool", "keydown", key)
        try:
            self.drag_on(start, x, y)
            time.sleep(STEP)
            self.run("xdotool", "mouseup", "1")
            time.sleep(0.3)
        finally:
            if key:
                self.run("xdotool", "keyup", key)

    def keys(self, *names):
        for name in names:
            self.run("xdotool", "key", name)
            time.sleep(0.05)

    def type(self, text):
        self.run("xdotool", "type", "--delay", "20", text)
        time.sleep(0.1)

    def copy(self, data, target=None):
        """Another program puts data on the clipboard."""
        command = ["xclip", "-selection", "clipboard", "-in"] + (["-target", target] if target else [])
        # It stays behind to serve the data, so its output is not waited for.
        subprocess.run(command, env=self.env, input=data, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=10)

    def clipboard(self, target="UTF8_STRING"):
        """What another program gets from the clipboard."""
        return self.run("xclip", "-selection", "clipboard", "-out", "-target", target)


class Program:
    """An example program with its window, and the places of the rows that it has when it is opened."""

    def __init__(self, desk, kind, command, options, path, x, y):
        self.desk, self.path, scale = desk, path, float(desk.env["QT_SCALE_FACTOR"])
        places = desk.run(desk.places, *options, kind, path).decode().splitlines()
        self.rows = [[round(int(number) * scale) for number in place.split("\t")[:4]] for place in places]
        if not self.rows:
            raise AssertionError("no rows in " + path)
        # A name without the folder of this run is what its status bar shows.
        desk.start([os.path.abspath(command), *options, os.path.basename(path)], cwd=os.path.dirname(path))
        self.window = desk.window(os.path.basename(path))
        desk.run("xdotool", "windowmove", "--sync", self.window, str(x), str(y))

    def at(self, row, part=MIDDLE):
        """A place in the text of a row, for the mouse."""
        left, right, top, bottom = self.rows[row]
        return self.window, left + min(12, (right - left) // 2), round(top + (bottom - top) * part)

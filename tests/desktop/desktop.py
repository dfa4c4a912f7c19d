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
TOOLS = ["Xvfb", "openbox", "wmctrl", "xdotool", "xclip"]


class Desktop:
    """Entered, it is there; left, everything that was started in it is ended."""

    def __enter__(self):
        missing = [tool for tool in TOOLS if not shutil.which(tool)]
        if missing:
            print("skipped: not installed here:", ", ".join(missing))
            sys.exit(SKIPPED)
        self.processes = []
        self.folder = tempfile.mkdtemp(prefix="quill-desktop-")
        self.env = dict(os.environ, QT_QPA_PLATFORM="xcb", QT_SCALE_FACTOR="1", XDG_RUNTIME_DIR=self.folder,
                        HOME=self.folder, LC_ALL="C.UTF-8")
        os.chmod(self.folder, 0o700)
        read, write = os.pipe()
        self.start(["Xvfb", "-displayfd", str(write), "-screen", "0", "1200x800x24"], pass_fds=[write])
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
        self.run("xdotool", "windowactivate", "--sync", window)
        return window

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

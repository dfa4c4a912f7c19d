#!/usr/bin/env python3
"""Data transfer between real processes under Xvfb, driven by xdotool.

Usage: desktop_test.py PEER [--runs N] [--only TEXT]
PEER is the built quill_transfer_peer. Programs that are missing skip what needs them, with a message; without an X
server nothing can be tested and the exit code is 77. With --runs every case runs N times and is counted.
"""
import argparse
import os
import pathlib
import queue
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

HERE = pathlib.Path(__file__).parent
SKIPPED = 77
STEP = 0.05  # seconds between two movements of the mouse
DROP_COPY, DROP_MOVE, CANCEL = 0, 1, 3

TEXT = r" text=two lines\x0d\x0a\xc3\xa9\xe2\x82\xac"
FILES = r" file=/tmp/a b file=/tmp/\xc3\xa9"
URIS = r"text/uri-list=file:///tmp/a%20b\x0d\x0afile:///tmp/%C3%A9\x0d\x0a"
FILES_AS_TEXT = r" text=/tmp/a b\x0a/tmp/\xc3\xa9"
PRIVATE = r" private=\x00\x01\xff\x0d\x0a"


class Failure(Exception):
    pass


class Program:
    """A child whose lines are read as they come."""

    def __init__(self, *command, env=None):
        self.name = " ".join(pathlib.Path(str(c)).name for c in command)
        self.process = subprocess.Popen([str(c) for c in command], stdout=subprocess.PIPE, text=True, env=env)
        self.lines = queue.Queue()
        threading.Thread(target=self.read, daemon=True).start()

    def read(self):
        for line in self.process.stdout:
            self.lines.put(line.rstrip("\n"))

    def expect(self, start, seconds=10):
        """The rest of the next line that begins with start."""
        seen = []
        end = time.monotonic() + seconds
        while True:
            try:
                line = self.lines.get(timeout=max(0.01, end - time.monotonic()))
            except queue.Empty:
                raise Failure(f"{self.name}: no line {start!r}, only {seen}") from None
            if line.startswith(start):
                return line[len(start):]
            seen.append(line)

    def place(self):
        x, y = self.expect("ready ").split()
        return int(x), int(y)

    def end(self):
        self.process.kill()
        self.process.wait()


class Desktop:
    def __init__(self, folder):
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1000x700x24", "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as stream:
            self.display = ":" + stream.readline().strip()
        self.env = dict(os.environ, DISPLAY=self.display, QT_QPA_PLATFORM="xcb", NO_AT_BRIDGE="1",
                        GDK_BACKEND="x11", XDG_RUNTIME_DIR=str(folder))
        self.env.pop("QT_SCALE_FACTOR", None)
        self.children = []
        if shutil.which("openbox"):
            self.manager = subprocess.Popen(["openbox"], env=self.env, stdout=subprocess.DEVNULL,
                                            stderr=subprocess.DEVNULL)
            time.sleep(0.5)
        else:
            self.manager = None

    def start(self, *command):
        program = Program(*command, env=self.env)
        self.children.append(program)
        return program

    def end_programs(self):
        self.mouse("mouseup", 1)
        for program in self.children:
            program.end()
        self.children.clear()

    def end(self):
        for process in (self.manager, self.server):
            if process:
                process.terminate()
                process.wait()

    def mouse(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.env, check=True)

    def move(self, x, y):
        self.mouse("mousemove", x, y)
        time.sleep(STEP)

    def drag(self, source, target, before_release=None):
        (x, y), (tx, ty) = source, target
        self.move(x, y)
        self.mouse("mousedown", 1)
        time.sleep(STEP)
        for dx, dy in ((6, 4), (14, 8)):
            self.move(x + dx, y + dy)
        for i in range(1, 6):
            self.move(x + (tx - x) * i // 5, y + (ty - y) * i // 5)
        self.move(tx + 2, ty + 1)
        self.move(tx, ty)
        time.sleep(STEP)
        if before_release:
            before_release()
        self.mouse("mouseup", 1)


def must_be(actual, expected, what):
    if actual != expected:
        raise Failure(f"{what}: {actual!r} instead of {expected!r}")


def quill_to_quill(kind, expected):
    def run(desktop, peer):
        source = desktop.start(peer, "source", kind, 60, 80)
        target = desktop.start(peer, "target", 500, 300)
        desktop.drag(source.place(), target.place())
        must_be(target.expect("drop"), " 1" + expected, "dropped")
        result, _, took, _ = source.expect("done ").split()
        must_be(int(result), DROP_COPY, "result")
        if int(took) > 2500:
            raise Failure(f"waited {took} ms")
    return run


def within_one_program(desktop, peer):
    program = desktop.start(peer, "self", "files", 60, 80)
    x, y = program.place()
    desktop.drag((x - 60, y - 40), (x + 50, y + 40))
    must_be(program.expect("drop"), " 1" + FILES_AS_TEXT + FILES + PRIVATE, "dropped")
    must_be(int(program.expect("done ").split()[0]), DROP_COPY, "result")


def move_with_shift(desktop, peer):
    source = desktop.start(peer, "source", "text", 60, 80)
    target = desktop.start(peer, "target", 500, 300)
    places = source.place(), target.place()
    try:
        desktop.drag(*places, before_release=lambda: (
            desktop.mouse("keydown", "shift"), time.sleep(0.1), desktop.move(places[1][0] + 3, places[1][1])))
    finally:
        desktop.mouse("keyup", "shift")
    must_be(target.expect("drop"), " 2" + TEXT, "dropped")
    must_be(int(source.expect("done ").split()[0]), DROP_MOVE, "result")


def escape(desktop, peer):
    source = desktop.start(peer, "source", "text", 60, 80)
    target = desktop.start(peer, "target", 500, 300)
    desktop.drag(source.place(), target.place(), lambda: (desktop.mouse("key", "Escape"), time.sleep(0.2)))
    target.expect("leave")
    must_be(int(source.expect("done ").split()[0]), CANCEL, "result")


def stuck_target(desktop, peer):
    """A target that hangs at the drop costs a bounded wait, and nothing is taken for moved."""
    source = desktop.start(peer, "source", "text", 60, 80)
    target = desktop.start(peer, "target", 500, 300)
    desktop.drag(source.place(), target.place(), lambda: target.process.send_signal(signal.SIGSTOP))
    result, _, took, _ = source.expect("done ", 12).split()
    must_be(int(result), CANCEL, "result")
    if int(took) > 8000:
        raise Failure(f"waited {took} ms")


def dead_source(desktop, peer):
    """A source that dies over the target leaves it able to take the next drag."""
    source = desktop.start(peer, "source", "text", 60, 80)
    target = desktop.start(peer, "target", 500, 300)
    place = target.place()
    desktop.drag(source.place(), place, lambda: (source.end(), time.sleep(0.2)))
    again = desktop.start(peer, "source", "files", 60, 80)
    desktop.drag(again.place(), place)
    must_be(target.expect("drop"), " 1" + FILES_AS_TEXT + FILES, "dropped")


def quill_to_gtk(kind, expected):
    def run(desktop, peer, gtk):
        source = desktop.start(peer, "source", kind, 60, 80)
        target = desktop.start(gtk, "target", 500, 300)
        desktop.drag(source.place(), target.place())
        dropped = target.expect("drop ")
        if not dropped[2:].startswith(expected):
            raise Failure(f"dropped {dropped!r}")
        result = int(source.expect("done ").split()[0])
        must_be(result, {"2": DROP_COPY, "4": DROP_MOVE}[dropped[0]], "result")
    return run


def gtk_to_quill(kind, expected):
    def run(desktop, peer, gtk):
        source = desktop.start(gtk, "source", kind, 60, 80)
        target = desktop.start(peer, "target", 500, 300)
        desktop.drag(source.place(), target.place())
        must_be(target.expect("drop"), " 1" + expected, "dropped")
        source.expect("done action 2")
    return run


def xclip_reads(kind, type_name, expected):
    def run(desktop, peer):
        program = desktop.start(peer, "put", kind)
        program.expect("ready")
        time.sleep(0.1)
        got = subprocess.run(["xclip", "-selection", "clipboard", "-o", "-t", type_name], env=desktop.env,
                             capture_output=True, timeout=10, check=True).stdout
        if not got.startswith(expected):
            raise Failure(f"xclip reads {got!r}")
    return run


def xclip_writes(type_name, content, expected):
    def run(desktop, peer):
        with tempfile.NamedTemporaryFile() as file:
            file.write(content)
            file.flush()
            subprocess.run(["xclip", "-selection", "clipboard", "-i", "-t", type_name, file.name], env=desktop.env,
                           stdout=subprocess.DEVNULL, timeout=10, check=True)
        must_be(desktop.start(peer, "get").expect("got"), expected, "clipboard")
    return run


PRIVATE_TYPE = 'application/x-qt-windows-mime;value="Quill Test"'
CASES = [  # name, programs needed, work
    ("text to Quill", ["xdotool"], quill_to_quill("text", TEXT)),
    ("files to Quill", ["xdotool"], quill_to_quill("files", FILES_AS_TEXT + FILES)),
    ("bitmap to Quill", ["xdotool"], quill_to_quill("bitmap", " bitmap=30x20")),
    ("private format to Quill", ["xdotool"], quill_to_quill("private", PRIVATE)),
    ("within one program", ["xdotool"], within_one_program),
    ("move with Shift", ["xdotool"], move_with_shift),
    ("Escape", ["xdotool"], escape),
    ("stuck target", ["xdotool"], stuck_target),
    ("dead source", ["xdotool"], dead_source),
    ("text to GTK", ["xdotool", "gtk"], quill_to_gtk("text", r"UTF8_STRING=two lines\x0d\x0a\xc3\xa9\xe2\x82\xac")),
    ("files to GTK", ["xdotool", "gtk"], quill_to_gtk("files", URIS)),
    ("bitmap to GTK", ["xdotool", "gtk"], quill_to_gtk("bitmap", r"image/png=\x89PNG")),
    ("text from GTK", ["xdotool", "gtk"], gtk_to_quill("text", r" text=from gtk \xc3\xa9")),
    ("files from GTK", ["xdotool", "gtk"], gtk_to_quill("files", FILES)),
    ("text to xclip", ["xclip"], xclip_reads("text", "UTF8_STRING", "two lines\r\né€".encode())),
    ("files to xclip", ["xclip"], xclip_reads("files", "text/uri-list", b"file:///tmp/a%20b\r\nfile:///tmp/%C3%A9\r\n")),
    ("bitmap to xclip", ["xclip"], xclip_reads("bitmap", "image/png", b"\x89PNG\r\n")),
    ("private format to xclip", ["xclip"], xclip_reads("private", PRIVATE_TYPE, b"\x00\x01\xff\r\n")),
    ("text from xclip", ["xclip"], xclip_writes("UTF8_STRING", "ä\n".encode(), r" text=\xc3\xa4\x0a")),
    ("files from xclip", ["xclip"], xclip_writes("text/uri-list", b"file:///x%20y\r\n", " file=/x y")),
    ("private format from xclip", ["xclip"], xclip_writes(PRIVATE_TYPE, b"\x00\x80", r" private=\x00\x80")),
]


def build_gtk(folder):
    """The GTK program, or None when it cannot be built."""
    compiler = next((c for c in ("cc", "gcc", "clang") if shutil.which(c)), None)
    if not compiler or not shutil.which("pkg-config"):
        return None
    flags = subprocess.run(["pkg-config", "--cflags", "--libs", "gtk+-3.0"], capture_output=True, text=True,
                           check=False)
    if flags.returncode != 0:
        return None
    target = folder / "gtk_peer"
    subprocess.run([compiler, "-w", str(HERE / "gtk_peer.c"), "-o", str(target), *flags.stdout.split()], check=True)
    return target


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("peer")
    parser.add_argument("--runs", type=int, default=1)
    parser.add_argument("--only", default="")
    arguments = parser.parse_args()
    if not shutil.which("Xvfb"):
        print("skipped: Xvfb is missing")
        return SKIPPED
    failed = False
    with tempfile.TemporaryDirectory() as folder:
        gtk = build_gtk(pathlib.Path(folder))
        desktop = Desktop(folder)
        try:
            for name, needs, work in CASES:
                if arguments.only not in name:
                    continue
                missing = [n for n in needs if (gtk is None if n == "gtk" else shutil.which(n) is None)]
                if missing:
                    print(f"{name}: skipped, {', '.join(missing)} missing")
                    continue
                good = 0
                for _ in range(arguments.runs):
                    try:
                        work(desktop, arguments.peer, *([gtk] if "gtk" in needs else []))
                        good += 1
                    except (Failure, subprocess.SubprocessError) as error:
                        print(f"{name}: {error}")
                    finally:
                        desktop.end_programs()
                print(f"{name}: {good} of {arguments.runs}", flush=True)
                failed = failed or good < arguments.runs
        finally:
            desktop.end()
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

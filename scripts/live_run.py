"""Runs the program under a virtual display against the camera server, for benchmarks and long runs."""

import atexit
import collections
import csv
import os
import pathlib
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BIN = ROOT / "build/release/bin"

RECORD_BYTES = 1580  # of a channel in recinfo.bin (docs/settings_format.md)
PORT_OFFSET = 524
MAX_SIZE_OFFSET = 1564

# Controls of the panel: the places that scripts/make_screenshots.sh clicks, from the panel's left.
PANEL_WIDTH = 285
CONTROLS = {"start all": (92, 90), "view 1": (57, 655), "view 4": (147, 655), "view 16": (226, 655)}

Usage = collections.namedtuple("Usage", "seconds megabytes threads descriptors")


def usage(pid):
    """Processor seconds of a process so far, and what it holds now."""
    proc = pathlib.Path("/proc") / str(pid)
    stat = (proc / "stat").read_text().rpartition(")")[2].split()
    ticks = int(stat[11]) + int(stat[12])
    pages = int((proc / "statm").read_text().split()[1])
    return Usage(ticks / os.sysconf("SC_CLK_TCK"), pages * os.sysconf("SC_PAGE_SIZE") / 1048576,
                 len(os.listdir(proc / "task")), len(os.listdir(proc / "fd")))


PROCESSES = []


def spawn(command, **arguments):
    """Starts a process that ends with the script, however that ends."""
    process = subprocess.Popen([str(part) for part in command], **arguments)
    PROCESSES.append(process)
    return process


@atexit.register
def stop_all():
    for process in reversed(PROCESSES):
        if process.poll() is None:
            process.kill()
            process.wait()


signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))


def wait_for(what, holds, seconds=60):
    end = time.monotonic() + seconds
    while not holds():
        if time.monotonic() > end:
            raise TimeoutError(f"waited {seconds} s for {what}")
        time.sleep(0.1)


class Cameras:
    """A camera server of channels that all send the pictures of one folder."""

    def __init__(self, folder, pictures, port, channels=16, arguments=()):
        self.port, self.channels = port, channels
        self.settings = folder / f"cameras{port}.bin"
        self.log = folder / f"cameras{port}.log"
        # Its file takes the requests and the replies.
        self.process = spawn(
            [BIN / "camera_server", "--port", str(port), "--channels", str(channels), "--folder", pictures,
             "--no-auth", "--size-row", "0", "--write-settings", self.settings, *arguments],
            stdin=subprocess.PIPE, stdout=self.log.open("w"), stderr=subprocess.STDOUT, text=True)
        wait_for("the camera server", lambda: "\nready" in "\n" + self.log.read_text())

    def command(self, text):
        replies = self.log.stat().st_size
        self.process.stdin.write(text + "\n")
        self.process.stdin.flush()
        with self.log.open() as log:
            log.seek(replies)
            reply = ""
            def answered():
                nonlocal reply
                reply += log.read()
                return reply.endswith("ok\n") or "\nok\n" in reply or "error" in reply
            wait_for("a reply of the camera server", answered)
        return reply

    def sent(self):
        """Pictures sent and skipped so far by all channels."""
        words = [line.split() for line in self.command("stats").splitlines() if " sent " in line]
        values = [dict(zip(line[1::2], line[2::2])) for line in words]
        return (sum(int(value["sent"]) for value in values),
                sum(int(value["skipped"]) for value in values))

    def url(self, k):
        return f"http://127.0.0.1:{self.port + k}/getimage?camera=1&fmt=full"

    def stop(self):
        stop(self.process)


def stop(process, seconds=20):
    """Ends a process in order; the number of seconds that took, None when it had to be killed."""
    start = time.monotonic()
    if process.poll() is None:
        process.send_signal(signal.SIGTERM)
    try:
        process.wait(seconds)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
        return None
    return time.monotonic() - start


class Display:
    """A virtual screen with a window manager."""

    def __init__(self, width=1920, height=1080):
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        # It takes a free number itself, and writes it when it is ready.
        ready, number = os.pipe()
        self.server = spawn(["Xvfb", "-displayfd", number, "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp"],
                            pass_fds=[number], **quiet)
        os.close(number)
        with os.fdopen(ready) as reader:
            self.environment = {**os.environ, "DISPLAY": ":" + reader.readline().strip()}
        self.environment.pop("QT_QPA_PLATFORM", None)
        self.start_manager(quiet)

    def start_manager(self, quiet):
        for attempt in range(3):  # on a busy machine it sometimes doesn't get going
            self.manager = spawn(["openbox"], env=self.environment, **quiet)
            try:
                return wait_for("the window manager", self.is_managed, 15)
            except TimeoutError:
                stop(self.manager)
                if attempt == 2:
                    raise

    def is_managed(self):
        return "window id" in subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], text=True,
                                             env=self.environment, stdout=subprocess.PIPE).stdout

    def tool(self, *arguments):
        return subprocess.run(["xdotool", *(str(argument) for argument in arguments)], text=True,
                              env=self.environment, check=True, stdout=subprocess.PIPE,
                              timeout=60).stdout

    def stop(self):
        stop(self.manager)
        stop(self.server)


class Program:
    """The program in a folder of its own, with a line of statistics a second."""

    def __init__(self, display, folder, settings, binary=BIN / "marvolen"):
        self.display, self.folder = display, folder
        (folder / "recinfo.bin").write_bytes(settings)
        self.statistics = folder / "statistics.csv"
        self.statistics.unlink(missing_ok=True)
        self.log = (folder / "marvolen.log").open("w")
        self.process = spawn(
            [binary], cwd=folder, stdout=self.log, stderr=subprocess.STDOUT,
            env={**display.environment, "MARVOLEN_STATISTICS": str(self.statistics)})
        self.window = display.tool("search", "--sync", "--all", "--onlyvisible", "--pid",
                                   self.process.pid, "--name", "^Marvolen$").split()[0]

    def click(self, control):
        geometry = self.display.tool("getwindowgeometry", "--shell", self.window)
        width = int(dict(line.split("=") for line in geometry.splitlines())["WIDTH"])
        x, y = CONTROLS[control]
        self.display.tool("mousemove", "--window", self.window, width - PANEL_WIDTH + x, y, "click", 1)

    def minimise(self):
        self.display.tool("windowminimize", self.window)

    def usage(self):
        return usage(self.process.pid)

    def lines(self):
        """All whole lines of statistics so far."""
        text = self.statistics.read_text()
        rows = csv.reader(text[:text.rfind("\n") + 1].splitlines())
        names = next(rows)
        return [dict(zip(names, map(float, row))) for row in rows]

    def next_line(self):
        """The statistics at the end of the present second."""
        before = len(self.lines())
        wait_for("statistics", lambda: len(self.lines()) > before, 30)
        return self.lines()[-1]

    def stop(self):
        """The seconds that the end took, None when it didn't come."""
        return stop(self.process)


def total(line, count):
    return sum(line[f"{count}{k}"] for k in range(1, 17))


def with_size(settings, megabytes):
    """A channel table whose record files have this maximum."""
    table = bytearray(settings)
    for k in range(16):
        struct.pack_into("<i", table, k * RECORD_BYTES + MAX_SIZE_OFFSET, megabytes)
    return bytes(table)


def with_port(settings, k, port):
    """A channel table whose channel k (from 0) connects to this port."""
    table = bytearray(settings)
    start = k * RECORD_BYTES + PORT_OFFSET
    table[start:start + 260] = str(port).encode().ljust(260, b"\0")
    return bytes(table)


class Folder:
    """A temporary folder on the disk of the build, gone at the end."""

    def __enter__(self):
        (ROOT / "build").mkdir(exist_ok=True)
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="run.", dir=ROOT / "build"))
        return self.path

    def __exit__(self, *_):
        shutil.rmtree(self.path, ignore_errors=True)

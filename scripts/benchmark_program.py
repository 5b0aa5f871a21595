"""The whole program against FFmpeg doing the same, for benchmark.py."""

import subprocess
import time

import live_run
from live_run import ROOT, Cameras, Display, Folder, Program, total, usage, wait_for

FRAMES = ROOT / "build/frames"
USUAL = FRAMES / "704x480-420-q75"
LARGE = FRAMES / "1920x1080-420-q75"
PORT = 23200

GOAL_SHOWN = 0.65     # sixteen channels shown and recorded
GOAL_MINIMISED = 1.8  # received and recorded only


def mosaic(urls, tile):
    """FFmpeg's options for all inputs as tiles of one picture, and nothing done with it."""
    scaled = "".join(f"[{k}:v]scale={tile[0]}:{tile[1]}:flags=fast_bilinear[t{k}];" for k in range(len(urls)))
    tiles = "".join(f"[t{k}]" for k in range(len(urls)))
    places = "|".join(f"{k % 4 * tile[0]}_{k // 4 * tile[1]}" for k in range(len(urls)))
    stack = f"{tiles}xstack=inputs={len(urls)}:layout={places}[out]" if len(urls) > 1 else f"{tiles}null[out]"
    return ["-filter_complex", scaled + stack, "-map", "[out]", "-f", "null", "-"]


class Peer:
    """FFmpeg, one process: every input copied to an AVI file, and shown of them made into a mosaic."""

    def __init__(self, folder, urls, shown, tile):
        command = ["ffmpeg", "-nostdin", "-loglevel", "error", "-vsync", "passthrough", "-y"]
        for url in urls:
            command += ["-threads", "1", "-f", "mpjpeg", "-i", url]
        if shown:
            command += mosaic(urls[:shown], tile)
        files = [folder / f"peer{k}.avi" for k in range(len(urls))]
        for k, file in enumerate(files):
            command += ["-map", f"{k}:v", "-c", "copy", file]
        self.process = live_run.spawn(command, stdout=subprocess.DEVNULL)
        wait_for("FFmpeg's files", lambda: all(file.exists() and file.stat().st_size > 300000 for file in files))

    def measure(self, seconds):
        """The share of a core that it takes."""
        before, start = usage(self.process.pid), time.monotonic()
        time.sleep(seconds)
        return (usage(self.process.pid).seconds - before.seconds) / (time.monotonic() - start)


def measure(program, cameras, seconds, panes):
    """The share of a core that the program takes, and what it does meanwhile."""
    def sample():
        line = program.next_line()
        return line, program.usage(), [sum(counts) for counts in zip(*(server.sent() for server in cameras))]
    time.sleep(1.5)  # what led here is over
    line, used, (sent, skipped) = sample()
    lines = len(program.lines())
    time.sleep(max(0, seconds - 1))
    end, used_then, (sent_then, skipped_then) = sample()
    elapsed = (end["ms"] - line["ms"]) / 1000
    details = {
        "%_of_a_core": 100 * (used_then.seconds - used.seconds) / elapsed,
        "MB": used_then.megabytes,
    }
    if panes:
        shown = min(end[f"shown{k}"] - line[f"shown{k}"] for k in panes)
        details["shown/s"] = shown / elapsed
    recorded = total(end, "recorded") - total(line, "recorded")
    details["%_of_sent_recorded"] = 100 * recorded / (sent_then - sent)
    details["unrecorded"] = total(end, "due") - total(line, "due") - recorded
    details["skipped"] = skipped_then - skipped
    details["ms_worst_gap"] = max(row["longest_gap_ms"] for row in program.lines()[lines:])
    return details


def start(display, folder, settings):
    program = Program(display, folder, live_run.with_size(settings, 64))
    wait_for("pictures", lambda: program.statistics.exists() and program.lines()
             and total(program.lines()[-1], "shown") > 0)
    program.click("start all")
    wait_for("recording", lambda: total(program.lines()[-1], "recorded") > 0)
    return program


class Session:
    """One start of the program over some cameras; each case is measured, then the peer's same."""

    def __init__(self, table, seconds, name, cameras, settings, urls):
        self.table, self.seconds, self.name, self.cameras, self.urls = table, seconds, name, cameras, urls
        self.settings, self.ours, self.peers = settings, [], []

    def run(self, cases):
        """cases: (what, its steps on the program, panes seen, tiles of the peer's mosaic, goal)."""
        for what, step, panes, shown, tile, goal in cases:
            with Folder() as folder:
                display = Display()
                program = start(display, folder, self.settings)
                try:
                    step(program)
                    details = measure(program, self.cameras, self.seconds, panes)
                finally:
                    program.stop()
                    display.stop()
            with Folder() as folder:
                peer = Peer(folder, self.urls, shown, tile)
                try:
                    theirs = peer.measure(self.seconds)
                finally:
                    live_run.stop(peer.process)
            row = self.table.row(f"{self.name} {what}", "FFmpeg", goal)
            row.add(details["%_of_a_core"] / 100 / theirs, **details)


def usual(table, seconds, channels, quick):
    with Folder() as folder:
        cameras = Cameras(folder, USUAL, PORT, channels)
        urls = [cameras.url(k) for k in range(channels)]
        session = Session(table, seconds, f"{channels} x 30 x 704x480", [cameras],
                          cameras.settings.read_bytes(), urls)
        panes = range(1, channels + 1)
        cases = [("view 16", lambda program: None, panes, channels, (480, 270),
                  GOAL_SHOWN if channels == 16 else None)]
        if channels == 16:
            if not quick:
                cases.append(("view 1", lambda program: program.click("view 1"), [1], 1, (1400, 980), None))
            cases.append(("minimised", lambda program: program.minimise(), [], 0, None, GOAL_MINIMISED))
        try:
            session.run(cases)
        finally:
            cameras.stop()


def large(table, seconds):
    with Folder() as folder:
        # Those that the program takes: a picture has at most 204800 bytes.
        (folder / "large").mkdir()
        for picture in LARGE.iterdir():
            if picture.stat().st_size <= 204800:
                (folder / "large" / picture.name).symlink_to(picture)
        one = Cameras(folder, folder / "large", PORT, 1)
        rest = Cameras(folder, USUAL, PORT + 20)
        urls = [one.url(0)] + [rest.url(k) for k in range(1, 16)]
        settings = live_run.with_port(rest.settings.read_bytes(), 0, PORT)
        session = Session(table, seconds, "1 x 30 x 1920x1080, 15 x 30 x 704x480", [one, rest], settings, urls)
        try:
            session.run([("view 1", lambda program: program.click("view 1"), [1], 1, (1400, 980), None)])
        finally:
            one.stop()
            rest.stop()


def program(table, quick):
    seconds = 8 if quick else 10
    for channels in [16] if quick else [1, 4, 8, 16]:
        usual(table, seconds, channels, quick)
    if not quick:
        large(table, seconds)

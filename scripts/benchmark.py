"""Runs the benchmarks and prints their table. Called by benchmark.sh, which builds what this needs."""

import argparse
import datetime
import json
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile

from benchmark_program import program

ROOT = pathlib.Path(__file__).resolve().parent.parent
BIN = ROOT / "build/release/bin"
FRAMES = ROOT / "build/frames"
USUAL = FRAMES / "704x480-420-q75"

# A ratio is our processor time as a share of the peer's: lower is better, and at most this.
GOALS = {
    "704x480-420-q75": 0.60,
    "704x480-gray": 0.50,
    "704x480-progressive": 0.60,
}
GOAL_OF_OTHER_PICTURES = 0.65


class Row:
    """A line of the table: what was measured, and its values of all runs."""

    def __init__(self, work, peer, goal=None):
        self.work, self.peer, self.goal = work, peer, goal
        self.ratios, self.details = [], {}

    def add(self, ratio, **details):
        if ratio is not None:
            self.ratios.append(ratio)
        for name, value in details.items():
            self.details.setdefault(name, []).append(value)

    def ratio(self):
        return statistics.median(self.ratios) if self.ratios else None

    def text(self):
        return ", ".join(f"{statistics.median(values):.3g} {name.replace('_', ' ')}"
                         for name, values in self.details.items())


class Table:
    def __init__(self):
        self.rows = {}

    def row(self, work, peer, goal=None):
        return self.rows.setdefault((work, peer), Row(work, peer, goal))

    def print(self):
        lines = [("work", "peer = 1.00", "ratio", "goal", "ours")]
        for row in self.rows.values():
            ratio = row.ratio()
            lines.append((row.work, row.peer, f"{ratio:.2f}" if ratio is not None else "",
                          f"{row.goal:.2f}" if row.goal is not None else "", row.text()))
        widths = [max(len(line[k]) for line in lines) for k in range(len(lines[0]))]
        lines.insert(1, tuple("-" * width for width in widths))
        for line in lines:
            print("| " + " | ".join(f"{cell:{width}}" for cell, width in zip(line, widths)) + " |")


def output(*command, cwd=None):
    return subprocess.run([str(part) for part in command], cwd=cwd, check=True, text=True,
                          stdout=subprocess.PIPE).stdout


def decoder(table, quick):
    lines = output(BIN / "jpeg_decode_bench", "--turns", 8 if quick else 25, FRAMES).splitlines()
    peers = lines[0].split()[2:]
    for line in lines[1:]:
        kind, milliseconds, *ratios = line.split()
        for peer, ratio in zip(peers, ratios):
            goal = GOALS.get(kind, GOAL_OF_OTHER_PICTURES) if peer == "libjpeg-turbo" else None
            peer = peer if peer == "libjpeg-turbo" else peer + " + swscale"
            table.row("decode " + kind, peer, goal).add(float(ratio), ms=float(milliseconds))


def parser(table, quick):
    text = output(BIN / "parser_bench", "--turns", 40 if quick else 150, USUAL)
    speed, ratio = re.search(r"([\d.]+) GB/s, ([\d.]+) of", text).groups()
    table.row("parse a camera stream", "memcpy").add(float(ratio), **{"GB/s": float(speed)})


def stretch(table, quick):
    text = output(BIN / "stretch_bench", "--turns", 60 if quick else 200)
    for sizes, micros, ratio, peer in re.findall(r"(\d.*): \w+ ([\d.]+) us, ([\d.]+) of (\w+)", text):
        table.row(f"stretch {sizes}", peer).add(float(ratio), us=float(micros))


def append(table, quick):
    with tempfile.TemporaryDirectory(dir=ROOT / "build") as folder:
        report = json.loads(output(BIN / "record_bench", "--benchmark_filter=AppendAgainst",
                                   "--benchmark_format=json", cwd=folder))
    for result in report["benchmarks"]:
        # The benchmark's ratio is one of speeds.
        table.row("append to a wrapped ring", "write", 1 / 0.95).add(
            1 / result["ratio"], us_a_frame=result["us_per_frame"])


SECTIONS = {"decoder": decoder, "parser": parser, "stretch": stretch, "append": append, "program": program}


def machine():
    info = pathlib.Path("/proc/cpuinfo").read_text()
    model = re.search(r"model name\s*: (.*)", info)
    return f"{model.group(1) if model else 'unknown processor'}, {os.cpu_count()} cores"


def main():
    options = argparse.ArgumentParser(description="Measures everything against its peer.")
    options.add_argument("--quick", action="store_true", help="one run instead of three")
    options.add_argument("--runs", type=int, help="that many runs")
    options.add_argument("section", nargs="*", help=", ".join(SECTIONS))
    options = options.parse_args()
    unknown = set(options.section) - set(SECTIONS)
    if unknown:
        sys.exit("no such section: " + ", ".join(sorted(unknown)))
    table = Table()
    try:
        for _ in range(options.runs or (1 if options.quick else 3)):
            for name, section in SECTIONS.items():
                if not options.section or name in options.section:
                    print(f"{name} ...", file=sys.stderr)
                    section(table, options.quick)
    finally:
        print(f"{datetime.date.today()}, {machine()}")
        table.print()


main()

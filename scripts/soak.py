"""Watches the running program for a long time. Called by soak.sh, which builds what this needs."""

import argparse
import csv
import pathlib
import sys
import time

import live_run
import plot
from live_run import ROOT, Cameras, Display, Folder, Program, total, wait_for

PICTURES = ROOT / "build/frames/704x480-420-q75"
PORT = 23300
SETTLING = 60         # seconds in which buffers and pools reach their sizes
MEGABYTES = 3         # of memory that a whole run may seem to gain
BYTES_A_LOG_ROW = 400
LONGEST_GAP = 50      # milliseconds

COLUMNS = ["seconds", "megabytes", "descriptors", "threads", "log_rows", "longest_gap_ms", "percent_of_a_core",
           "shown_a_second", "received", "due", "recorded", "sent", "skipped"]


class Sampler:
    def __init__(self, program, cameras):
        self.program, self.cameras = program, cameras
        self.start = time.monotonic()
        self.last, self.lines, self.used = program.next_line(), len(program.lines()), program.usage()

    def take(self):
        line, used = self.program.next_line(), self.program.usage()
        lines = self.program.lines()
        elapsed = (line["ms"] - self.last["ms"]) / 1000
        sent, skipped = self.cameras.sent()
        sample = {
            "seconds": time.monotonic() - self.start,
            "megabytes": used.megabytes,
            "descriptors": used.descriptors,
            "threads": used.threads,
            "log_rows": line["log_rows"],
            "longest_gap_ms": max(row["longest_gap_ms"] for row in lines[self.lines:]),
            "percent_of_a_core": 100 * (used.seconds - self.used.seconds) / elapsed,
            "shown_a_second": (total(line, "shown") - total(self.last, "shown")) / 16 / elapsed,
            **{count: total(line, count) for count in ("received", "due", "recorded")},
            "sent": sent,
            "skipped": skipped,
        }
        self.last, self.lines, self.used = line, len(lines), used
        return sample


def slope(samples, column):
    """What the column gains over the samples' time, by the straight line that fits best."""
    times = [sample["seconds"] for sample in samples]
    values = [sample[column] for sample in samples]
    mean_time, mean_value = sum(times) / len(times), sum(values) / len(values)
    spread = sum((second - mean_time) ** 2 for second in times)
    steepness = sum((second - mean_time) * (value - mean_value) for second, value in zip(times, values)) / spread
    return steepness * (times[-1] - times[0])


def findings(samples):
    """What is wrong with a run, a line each."""
    settled = [sample for sample in samples if sample["seconds"] >= min(SETTLING, samples[-1]["seconds"] / 2)]
    found = []
    if len(settled) < 3:
        return ["the run was too short"]
    rows = settled[-1]["log_rows"] - settled[0]["log_rows"]
    gained = slope(settled, "megabytes")
    if gained > MEGABYTES + rows * BYTES_A_LOG_ROW / 1048576:
        found.append(f"memory grew by {gained:.1f} MB, with {rows:.0f} rows more in the log")
    half = len(settled) // 2
    for column in ("descriptors", "threads"):
        early = max(sample[column] for sample in settled[:half])
        late = max(sample[column] for sample in settled[half:])
        if late > early:
            found.append(f"{column} grew from {early} to {late}")
    late = [sample for sample in settled if sample["longest_gap_ms"] > LONGEST_GAP]
    if late:
        worst = max(late, key=lambda sample: sample["longest_gap_ms"])
        found.append(f"the interface thread was kept for more than {LONGEST_GAP} ms in {len(late)} of {len(settled)} "
                     f"samples, at worst for {worst['longest_gap_ms']:.0f} ms before {worst['seconds']:.0f} s")
    lost = samples[-1]["due"] - samples[-1]["recorded"]
    if lost > 0:
        found.append(f"{lost:.0f} pictures weren't recorded")
    return found


def run(minutes, faults):
    """The samples of a run, and how the program ended."""
    arguments = [part for fault in faults for part in ("--fault", fault)]
    samples = []
    with Folder() as folder:
        cameras = Cameras(folder, PICTURES, PORT, arguments=arguments)
        display = Display()
        program = Program(display, folder, live_run.with_size(cameras.settings.read_bytes(), 64))
        program.click("start all")
        wait_for("recording", lambda: total(program.next_line(), "recorded") > 0)
        sampler = Sampler(program, cameras)
        interval = max(5, minutes * 60 / 1000)
        end = time.monotonic() + minutes * 60
        while time.monotonic() < end and program.process.poll() is None:
            time.sleep(min(interval, max(0, end - time.monotonic())))
            samples.append(sampler.take())
        took = program.stop()
        return samples, program.process.returncode, took


def main():
    options = argparse.ArgumentParser(description="Watches the running program for a long time.")
    options.add_argument("minutes", nargs="?", type=float, default=30)
    options.add_argument("--output", type=pathlib.Path, default=ROOT / "build/soak")
    options.add_argument("--fault", action="append", default=[])
    options = options.parse_args()
    samples, status, took = run(options.minutes, options.fault)
    options.output.mkdir(parents=True, exist_ok=True)
    with (options.output / "soak.csv").open("w", newline="") as file:
        writer = csv.DictWriter(file, COLUMNS)
        writer.writeheader()
        writer.writerows({name: round(value, 3) for name, value in sample.items()} for sample in samples)
    plot.draw(options.output / "soak.svg", f"{options.minutes:g} minutes of sixteen channels",
              [sample["seconds"] for sample in samples],
              {column.replace("_", " "): [sample[column] for sample in samples] for column in COLUMNS[1:8]})
    last = samples[-1]
    print(f"{last['seconds']:.0f} s: {last['sent']:.0f} pictures sent, {last['received']:.0f} received, "
          f"{last['recorded']:.0f} of {last['due']:.0f} recorded, {last['skipped']:.0f} skipped, "
          f"{last['megabytes']:.0f} MB, {last['threads']} threads, {last['descriptors']} descriptors, "
          f"longest gap {max(sample['longest_gap_ms'] for sample in samples):.0f} ms")
    found = findings(samples)
    if status != 0 or took is None:
        found.append(f"the program ended with {status} instead of in order")
    for finding in found:
        print("FAILED: " + finding)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()

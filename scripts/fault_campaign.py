"""Kills the program again and again and accounts for every picture. Called by fault_campaign.sh, in a mount
namespace of its own."""

import argparse
import collections
import pathlib
import random
import signal
import subprocess
import sys
import time

import live_run
from live_run import BIN, ROOT, Cameras, Display, Folder, Program, total, wait_for
from recordings import LARGEST_PICTURE, Account, Recording, match

PICTURES = ROOT / "build/frames/352x240-420-q75"
PORT = 23400
CHANNELS = 16
RING_MEGABYTES = 24
DISK_MEGABYTES = CHANNELS * RING_MEGABYTES + 200
CHUNK = 600           # records that a ring drops at a time
IN_FLIGHT = 30        # pictures of a channel that may be between camera and program at its end
FAULTS = ["refuse", "silent", "close", "close-after:20", "stall-after:20", "trickle:40000", "garbage", "no-stamp:3",
          "stamp-back:10", "oversize:5", "truncate:3", "bit-flip:2", "content-type"]


class Campaign:
    def __init__(self, folder, seed, program):
        self.random, self.program = random.Random(seed), program
        self.folder = folder / "run"
        self.folder.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={DISK_MEGABYTES}m", "tmpfs", self.folder], check=True)
        (self.folder / "drive_c").mkdir()
        self.sent = folder / "sent"
        self.cameras = Cameras(folder, PICTURES, PORT, arguments=["--sent-dir", self.sent])
        self.settings = live_run.with_size(self.cameras.settings.read_bytes(), RING_MEGABYTES)
        self.accounts = [Account(self.sent, k) for k in range(CHANNELS)]
        self.before = [[] for _ in range(CHANNELS)]  # lines that were recorded after the last round
        self.display = None
        self.table = collections.Counter()
        self.findings = []

    def path(self, k):
        return self.folder / f"drive_c/chl{k + 1:02d}.dbt"

    def lines(self):
        return [account.update() for account in self.accounts]

    def set_faults(self):
        self.cameras.command("fault all none")
        for k in self.random.sample(range(CHANNELS), self.random.randint(0, 5)):
            self.cameras.command(f"fault {k + 1} {self.random.choice(FAULTS)}")

    def fill_disk(self, seconds):
        """Lets the disk be full that long; the channels' lines meanwhile."""
        first, filler = self.lines(), self.folder / "filler"
        with filler.open("wb", buffering=0) as file:
            try:
                while True:
                    file.write(bytes(65536))
            except OSError:
                pass
            time.sleep(seconds)
        filler.unlink()
        time.sleep(0.3)
        self.table["times with a full disk"] += 1
        return list(zip(first, self.lines()))

    def protect(self):
        """Makes a record file read-only until unprotect. One of the first channels': when a channel can't be
        opened the program closes the ones before it."""
        files = [k for k in [self.random.randrange(2)] if self.path(k).exists()]
        for k in files:
            subprocess.run(["mount", "--bind", self.path(k), self.path(k)], check=True)
            subprocess.run(["mount", "-o", "remount,bind,ro", self.path(k)], check=True)
        self.table["rounds with read-only files"] += bool(files)
        return files

    def unprotect(self, files):
        for k in files:
            subprocess.run(["umount", self.path(k)], check=True)

    def end(self, program):
        """Ends the program in one of three ways, and checks that it was still there to be ended."""
        if program.process.poll() is not None:
            self.findings.append(f"the program ended by itself with {program.process.returncode}")
            return
        way = self.random.choices(["SIGKILL", "SIGTERM", "display taken away"], [8, 1, 1])[0]
        self.table["ended by " + way] += 1
        if way == "SIGKILL":
            program.process.kill()
            program.process.wait()
            return
        if way == "SIGTERM":
            program.process.send_signal(signal.SIGTERM)
        else:
            live_run.stop(self.display.server)
            self.display = None
        try:
            status = program.process.wait(20)
        except subprocess.TimeoutExpired:
            program.process.kill()
            status = "nothing for 20 s"
        if status != 0:
            self.findings.append(f"{way}: the program ended with {status}")

    def round(self):
        self.display = self.display or Display()
        begin = self.lines()
        self.cameras.command("fault all none")
        readOnly = self.protect() if self.random.random() < 0.15 else []
        program = Program(self.display, self.folder, self.settings, self.program)
        program.click("start all")
        wait_for("recording", lambda: program.statistics.exists() and program.lines()
                 and total(program.lines()[-1], "due") > 0)
        recording, full = self.lines(), []
        for _ in range(self.random.randint(1, 3)):
            self.set_faults()
            time.sleep(self.random.uniform(0.1, 1.5))
            if self.random.random() < 0.12:
                full.append(self.fill_disk(self.random.uniform(0.2, 1.0)))
        self.end(program)
        acknowledged = program.lines()[-1]
        time.sleep(0.2)
        self.cameras.command("fault all none")
        self.unprotect(readOnly)
        end = self.lines()
        for k in range(CHANNELS):
            phases = {"begin": begin[k], "recording": recording[k], "end": end[k], "full": [times[k] for times in full],
                      "read-only": k in readOnly, "acknowledged": acknowledged[f"recorded{k + 1}"]}
            self.account(k, phases)
        self.table["rounds"] += 1

    def account(self, k, phases):
        """Compares a channel's file with what its camera sent."""
        account, recording = self.accounts[k], Recording(self.path(k))
        found, foreign = match(account, recording, phases["begin"])
        name = f"round {self.table['rounds'] + 1}, channel {k + 1}"
        if not recording.sound:
            self.findings.append(f"{name}: the file isn't sound")
        if foreign:
            self.findings.append(f"{name}: {foreign} records that weren't sent so")
        recorded = set(found)
        self.check_older(name, k, recorded, found, phases)
        fresh = [index for index in found if index >= phases["begin"]]
        if len(fresh) < phases["acknowledged"]:
            lost = phases["acknowledged"] - len(fresh)
            self.findings.append(f"{name}: {lost:.0f} acknowledged records are gone")
        last = max(fresh, default=phases["begin"] - 1)
        lost = 0
        for index in range(phases["begin"], phases["end"]):
            why = self.reason(account, index, index in recorded, last, phases)
            self.table["sent"] += 1
            self.table[why] += 1
            lost += why == "lost"
        if lost:
            self.findings.append(f"{name}: {lost} pictures lost")
        self.before[k] = found

    def check_older(self, name, k, recorded, found, phases):
        """What earlier rounds recorded is there but for the oldest, which the ring may have dropped."""
        gone = [index for index in self.before[k] if index not in recorded]
        if any(index > found[0] for index in gone) if found else gone:
            self.findings.append(f"{name}: {len(gone)} older records are gone, or the file was given up")
        held = sum(self.accounts[k].keys[index][-1] for index in found)
        chunk = CHUNK * max((self.accounts[k].keys[index][-1] for index in found), default=0)
        if gone and held + chunk < (RING_MEGABYTES << 20):
            self.findings.append(f"{name}: the ring dropped {len(gone)} records while it had room")

    @staticmethod
    def reason(account, index, recorded, last, phases):
        if recorded:
            return "recorded"
        if account.keys[index] is None:
            return f"no stamp, or more than {LARGEST_PICTURE} bytes"
        if index < phases["recording"]:
            return "sent before recording was on"
        if phases["read-only"]:
            return "the file was read-only"
        if any(first <= index < end for first, end in phases["full"]):
            return "the disk was full"
        if index > last and phases["end"] - index <= IN_FLIGHT:
            return "on its way when the program ended"
        return "lost"

    def print(self):
        print("| what | how many |\n|---|---:|")
        for what, count in self.table.items():
            print(f"| {what} | {count} |")
        for finding in self.findings[:40]:
            print("FAILED: " + finding)
        if len(self.findings) > 40:
            print(f"FAILED: {len(self.findings) - 40} findings more")


def main():
    options = argparse.ArgumentParser(description="Kills the program again and again and accounts for every picture.")
    options.add_argument("--rounds", type=int, default=100)
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("--program", type=pathlib.Path, default=BIN / "marvolen", help="instead of the release")
    options = options.parse_args()
    with Folder() as folder:
        campaign = Campaign(folder, options.seed, options.program)
        try:
            for _ in range(options.rounds):
                campaign.round()
        finally:
            campaign.print()
            live_run.stop_all()
            subprocess.run(["umount", campaign.folder], check=True)
    sys.exit(1 if campaign.findings else 0)


main()

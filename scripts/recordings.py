"""Record files compared with the camera server's account of what it sent (docs/camera_server.md)."""

import json
import struct
import subprocess

from live_run import BIN

LARGEST_PICTURE = 204800  # that the program takes


class Account:
    """What one camera sent so far, line by line."""

    def __init__(self, folder, k):
        self.path, self.pictures = folder / f"ch{k + 1:02d}.index", folder / "pictures"
        self.position, self.keys, self.hashes = 0, [], []

    def update(self):
        """Reads the new whole lines; returns how many lines there are."""
        with self.path.open("rb") as file:
            file.seek(self.position)
            text = file.read()
        text = text[:text.rfind(b"\n") + 1]
        self.position += len(text)
        for line in text.decode().splitlines():
            _, _, date, clock, hundredths, _, length, name = line.split()
            self.keys.append(self.key(date, clock, hundredths, int(length)))
            self.hashes.append(name)
        return len(self.keys)

    @staticmethod
    def key(date, clock, hundredths, length):
        """What a record of the picture has as its stamp and length; None when it has no stamp or is too
        large to be recorded."""
        if date == "-" or length > LARGEST_PICTURE:
            return None
        date, clock = int(date, 16), int(clock, 16)
        return (date >> 16, date >> 8 & 255, date & 255, clock >> 16, clock >> 8 & 255, clock & 255,
                int(hundredths, 16) * 10, length)

    def picture(self, index):
        return (self.pictures / (self.hashes[index] + ".jpg")).read_bytes()


class Recording:
    """What is in a record file."""

    def __init__(self, path):
        self.path = path
        # No file yet is nothing recorded.
        self.sound, self.records = True, []
        if path.exists() and path.stat().st_size:
            self.sound = self.tool("verify").returncode == 0
            listed = json.loads(self.tool("list", "--json").stdout)
            self.records = [(self.key(record), record["position"]) for record in listed["records"]]

    def tool(self, *command):
        return subprocess.run([BIN / "record_file", *command, self.path], text=True, stdout=subprocess.PIPE)

    @staticmethod
    def key(record):
        date, clock = record["stamp"].split()
        seconds, _, milliseconds = clock.partition(".")
        return (*map(int, date.split("/")), *map(int, seconds.split(":")), int(milliseconds or 0), record["length"])

    def bytes_at(self, position, length):
        with self.path.open("rb") as file:
            size = min(struct.unpack_from("<Q", file.read(24), 16)[0], self.path.stat().st_size)
            file.seek(24 if position == size else position)
            data = file.read(min(length, size - file.tell()))
            if len(data) < length:
                file.seek(24)
                data += file.read(length - len(data))
            return data


def match(account, recording, first_new):
    """The indices of the account's lines that the records are, in order, and the number of records that are
    none of them or come in another order. Bytes are compared of lines from first_new on."""
    places = {}
    for index, key in enumerate(account.keys):
        if key:
            places.setdefault(key, []).append(index)
    found, foreign, last = [], 0, -1
    for key, position in recording.records:
        index = next((index for index in places.get(key, ()) if index > last), None)
        if index is None:
            foreign += 1
        elif index >= first_new and recording.bytes_at(position, key[-1]) != account.picture(index):
            foreign += 1
        else:
            found.append(index)
            last = index
    return found, foreign

"""An X server in memory with the real widgets on it, for what measures or pictures them."""

import json
import mmap
import os
import pathlib
import signal
import struct
import subprocess
import sys
import time
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
BIN = ROOT / "build/release/bin"

# The widgets in families of all sizes; column and row.
PLACES = [
    ("ZeltoWidget", "Medium", 0, 0), ("ZeltoBattery", "Small", 2, 0), ("ZeltoSystem", "Medium", 3, 0),
    ("ZeltoStorage", "Small", 5, 0), ("ZeltoFans", "Small", 6, 0), ("ZeltoCalendar", "Large", 0, 1),
    ("ZeltoWorldClock", "Medium", 2, 1), ("ZeltoClipboard", "Large", 4, 1), ("ZeltoAwake", "Medium", 2, 2),
    ("ZeltoEqualizer", "Small", 6, 1), ("ZeltoCare", "Medium", 0, 3)]

# In the extension's place: runs it and notes what it took when it ends.
KEEPER = """#!/usr/bin/env python3
import os, sys
pid = os.posix_spawn({program!r}, [{program!r}] + sys.argv[1:], os.environ)
_, _, usage = os.wait4(pid, 0)
with open({notes!r}, "a") as notes:
    notes.write(f"{{usage.ru_nvcsw}} {{usage.ru_utime + usage.ru_stime}}\\n")
"""


# The kinds, and the families of each.
KINDS = {
    "ZeltoWidget": "Small Medium", "ZeltoBattery": "Small Medium", "ZeltoSystem": "Small Medium", "ZeltoStorage": "Small",
    "ZeltoFans": "Small", "ZeltoCalendar": "Medium Large", "ZeltoWorldClock": "Small Medium",
    "ZeltoClipboard": "Medium Large", "ZeltoAwake": "Small Medium", "ZeltoEqualizer": "Small", "ZeltoCare": "Small Medium"}


def processor(pid):
    """Seconds, from the process's own clock, which counts in nanoseconds."""
    return time.clock_gettime(~pid << 3 | 2)


def memory(pid):
    """What a process takes of it (PSS), in MB."""
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if line.startswith("Pss:"):
            return int(line.split()[1]) / 1024
    return 0


def switches(pid):
    """Voluntary context switches of all threads: how often it was woken."""
    total = 0
    for status in pathlib.Path(f"/proc/{pid}/task").glob("*/status"):
        try:
            total += int(status.read_text().split("\nvoluntary_ctxt_switches:")[1].split()[0])
        except OSError:
            pass
    return total


def png(width, height, rows):
    """Rows as they are shown; written as differences from the row above, which are mostly nothing here."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    out, above = bytearray(), bytes(3 * width)
    for row in rows:
        out += b"\2" + bytes((a - b) & 0xFF for a, b in zip(row, above))
        above = row
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(out), 9)) +
            chunk(b"IEND", b""))


class Screen:
    """An X server with a window manager."""

    def __init__(self, folder, width=1400, height=900):
        self.folder = folder
        folder.mkdir()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", "1", "-screen", "0", f"{width}x{height}x24", "-fbdir", folder, "-nolisten", "tcp",
             "-noreset"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.environment = dict(os.environ, DISPLAY=":" + self.server.stdout.readline().decode().strip())
        for name in ("WAYLAND_DISPLAY", "XAUTHORITY"):
            self.environment.pop(name, None)
        self.manager = subprocess.Popen(
            ["openbox", "--sm-disable", "--startup", "echo ready"], env=self.environment, stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL)
        while self.manager.stdout.readline() != b"ready\n":
            pass

    def rows(self, x, y, width, height):
        """An area's pixels, red, green, blue, each row with the byte before it that picture files want."""
        pixel = self.pixels()
        return [b"\0" + b"".join(pixel(column, row)[::-1] for column in range(x, x + width))
                for row in range(y, y + height)]

    def pixels(self):
        """A function that tells the pixel at a point, always the current one."""
        file = open(self.folder / "Xvfb_screen0", "rb")
        memory = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        header = struct.unpack(">25I", memory[:100])
        begin, line = header[0] + header[19] * 12, header[12]
        return lambda x, y: memory[begin + y * line + x * 4:begin + y * line + x * 4 + 3]

    def end(self):
        self.manager.kill()
        self.server.kill()


class Widgets:
    """The host on a screen, with a home, a bus and a configuration of its own."""

    def __init__(self, folder, screen, countdown=False, programs=BIN, places=PLACES):
        self.folder, self.screen, self.programs, self.places = folder, screen, programs, places
        folder.mkdir()
        snapshot = json.loads(subprocess.check_output([programs / "zelto", "snapshot", "sample"]))
        if not countdown:
            snapshot["awakeActive"] = False
            snapshot.pop("awakeEnd", None)
        home = folder / "Library/Application Support/Zelto"
        home.mkdir(parents=True)
        (home / "widget.json").write_text(json.dumps(snapshot))
        (folder / "config/zelto").mkdir(parents=True)
        (folder / "config/zelto/desktop.json").write_text(json.dumps({"widgets": [
            {"id": f"{kind}-{column}-{row}", "kind": kind, "family": "system" + family, "column": column, "row": row}
            for kind, family, column, row in places]}))
        self.notes = folder / "notes"
        keeper = folder / "keeper"
        keeper.write_text(KEEPER.format(program=str(programs / "zelto-widgets"), notes=str(self.notes)))
        keeper.chmod(0o755)
        self.bus = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--print-address=1", f"--address=unix:path={folder}/bus"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        address = self.bus.stdout.readline().decode().strip()
        self.environment = dict(
            screen.environment, XDG_CONFIG_HOME=str(folder / "config"), XDG_CACHE_HOME=str(folder / "cache"),
            DBUS_SESSION_BUS_ADDRESS=address, NO_AT_BRIDGE="1", GDK_BACKEND="x11")

    def start(self, extension=None, arguments=()):
        self.began = time.monotonic()
        self.host = subprocess.Popen(
            [self.programs / "zelto-desktop", "--home", self.folder, "--extension", extension or self.folder / "keeper",
             *arguments],
            env=self.environment, stderr=subprocess.DEVNULL)

    def await_pixels(self, shown=True):
        """Seconds from the start until a point of each widget is, or is no longer, another colour than the background."""
        pixel = self.screen.pixels()
        # Beside the pointer, which stands in the middle of the screen.
        points = [(16 + 180 * column + 60, 16 + 180 * row + 20) for _, _, column, row in self.places]
        patience = time.monotonic() + 30
        while not all((pixel(x, y) != b"\0\0\0") == shown for x, y in points):
            if time.monotonic() > patience:
                sys.exit("the widgets do not show" if shown else "the widgets do not go away")
        return time.monotonic() - self.began

    def stop(self):
        self.host.send_signal(signal.SIGTERM)
        self.host.wait()
        self.await_pixels(shown=False)

    def reload(self):
        """Asks for all timelines anew."""
        subprocess.run(
            ["gdbus", "call", "--session", "--dest", "com.kavra.zelto.desktop", "--object-path",
             "/com/kavra/zelto/desktop", "--method", "com.kavra.zelto.desktop.reload", ""],
            env=self.environment, stdout=subprocess.DEVNULL, check=True)

    def extension(self):
        """The process of the extension that runs now, if one does."""
        for path in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
            try:
                words = path.read_bytes().split(b"\0")
            except OSError:
                continue
            if words[0] == str(self.programs / "zelto-widgets").encode() and str(self.folder).encode() in words:
                return int(path.parent.name)
        return None

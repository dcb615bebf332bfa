"""Trays for tests, real ones: trayer for XEmbed, a watcher of our own for StatusNotifierItem, each on a private bus."""
import json
import os
import re
import select
import socket
import struct
import subprocess
import unittest

import harness
from harness import PATIENCE, UI, message, string8, until, xdotool

ROOT = 0xFFFFFFFF
WATCHER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "trayWatcher.py")
GTKS = ("libgtk-x11-2.0.so.0", "libgtk-3.so.0")


def u32(value):
    return struct.pack(">I", value)


class Helper:
    """The helper process and our end of its link."""

    def __init__(self, env, errors):
        self.link, child = socket.socketpair()
        self.errors = errors
        with open(errors, "wb") as out:
            self.process = subprocess.Popen([UI, "-statusicon", str(child.fileno()), "-Log=*:stderr:30"],
                                            pass_fds=[child.fileno()], env=env, stderr=out)
        child.close()
        self.data = b""
        self.came = []

    def send(self, name, *fields):
        self.raw(message(name, b"".join(fields)))

    def raw(self, data):
        self.link.sendall(data)

    def read(self):
        while select.select([self.link], [], [], 0)[0]:
            data = self.link.recv(65536)
            if not data:
                break
            self.data += data
        while len(self.data) >= 2:
            size = struct.unpack(">H", self.data[:2])[0] & 0x7FFF
            if len(self.data) < size + 2:
                break
            body, self.data = self.data[2:size + 2], self.data[size + 2:]
            name = body[1:1 + body[0]].decode()
            rest = body[1 + body[0]:]
            self.came.append((name, *([int.from_bytes(rest, "big")] if rest else [])))

    def expect(self, *expected, seconds=10.0):
        """Waits for a message, taken with all before it."""
        def look():
            self.read()
            if expected not in self.came:
                return False
            del self.came[:self.came.index(expected) + 1]
            return True
        try:
            until(look, str(expected), seconds)
        except AssertionError as failure:
            raise AssertionError(f"{failure}; came: {self.came}; stderr: {self.log()}") from None

    def messages(self):
        self.read()
        came, self.came = self.came, []
        return came

    def log(self):
        with open(self.errors, errors="replace") as text:
            return text.read()

    def until_log(self, text, count=1):
        until(lambda: self.log().count(text) >= count, f"'{text}' in {self.log()}")

    def add(self, item, text, parent=ROOT, flags=0):
        self.send("add", u32(item), string8(text), u32(parent), u32(flags))

    def image(self, name, overlay=""):
        self.send("setImage", string8(name), string8(overlay))

    def create(self, kind=0):
        self.send("create", u32(kind))

    def status(self, seconds=10.0):
        return self.process.wait(seconds * PATIENCE)

    def end(self):
        """Closes the link; the status."""
        self.link.close()
        try:
            return self.status()
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            raise

    def ends_well(self):
        """Closes the link; fails with what it said if it doesn't end with status 0."""
        status = self.end()
        if status != 0:
            raise AssertionError(f"status {status}: {self.log()}")


class Watcher:
    """The tray of the D-Bus kind."""

    def __init__(self, env):
        self.process = subprocess.Popen(["/usr/bin/python3", WATCHER], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        env=env, text=True)

    def ask(self, *words):
        self.process.stdin.write(" ".join(words) + "\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline())

    def end(self):
        self.process.stdin.close()
        self.process.stdout.close()
        self.process.wait(10 * PATIENCE)


class Trays:
    """What a test with icons has at hand: `home`, and `env` for what is started under it."""

    def set_up_trays(self):
        xdotool("mousemove", 5, 5)  # where a test before left it, a tooltip would cover the icon
        self.started = []
        self.env = self.home.env
        for name in ("DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"):
            self.env.pop(name, None)

    def tear_down_trays(self):
        for process in reversed(self.started):
            if isinstance(process, Watcher):
                process.end()
            elif process.poll() is None:
                process.terminate()
                process.wait()

    def bus(self):
        """A private session bus, for all that is started from here on."""
        path = os.path.join(self.home.path, "bus")
        daemon = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address=unix:path={path}"],
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.started.append(daemon)
        until(lambda: os.path.exists(path), "the bus")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={path}"
        return daemon

    def watcher(self, start=True):
        watcher = Watcher(self.env)
        self.started.append(watcher)
        self.assertEqual(watcher.ask("items"), [])
        if start:
            self.assertEqual(watcher.ask("start"), 1)
        return watcher

    def trayer(self):
        env = {name: value for name, value in self.env.items() if name != "LD_LIBRARY_PATH"}  # it is of GTK itself
        tray = subprocess.Popen(["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request", "--height",
                                 "48", "--SetDockType", "false"], stderr=subprocess.DEVNULL, env=env)
        self.started.append(tray)
        return tray

    def end_tray(self, tray):
        tray.kill()
        tray.wait()

    def without_libraries(self, *names):
        """Files that the loader finds first, and that are no libraries."""
        folder = os.path.join(self.home.path, "nolibs")
        os.makedirs(folder, exist_ok=True)
        for name in names:
            with open(os.path.join(folder, name), "w", encoding="ascii"):
                pass
        self.env["LD_LIBRARY_PATH"] = folder

    def mapped(self, pid):
        with open(f"/proc/{pid}/maps", encoding="ascii") as maps:
            return maps.read()

    def window_tree(self):
        def look():
            done = subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True, check=False)
            return done.stdout if done.returncode == 0 else None  # a window went while it walked
        return until(look, "the tree of windows")

    def icon_windows(self, pid):
        """Those of a helper inside another window: in a tray."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "^zefserverui$"], capture_output=True,
                               text=True, check=False).stdout.split()
        tree = self.window_tree()
        inside = [w for w in found if re.search(rf"^ {{8,}}{int(w):#x} ", tree, re.M)]
        return [w for w in inside if self.owner(w) in (pid, None)]

    def icon_window(self, pid):
        """The one window of its icon, once it is seen: the tray shows it a little after it has taken it."""
        until(lambda: self.icon_windows(pid), "the icon's window")
        [window] = self.icon_windows(pid)
        return window

    def owner(self, window):
        out = subprocess.run(["xprop", "-id", window, "_NET_WM_PID"], capture_output=True, text=True, check=False).stdout
        return int(out.split("=")[1]) if "=" in out else None

    def place(self, window):
        out = subprocess.run(["xdotool", "getwindowgeometry", "--shell", window], capture_output=True, text=True,
                             check=True).stdout
        at = dict(line.split("=") for line in out.split())
        return [int(at[key]) for key in ("X", "Y", "WIDTH", "HEIGHT")]

    def colour(self, x, y):
        """Of one pixel of the screen."""
        out = subprocess.run(["import", "-window", "root", "-crop", f"1x1+{x}+{y}", "-depth", "8", "rgb:-"],
                             capture_output=True, check=True).stdout
        return tuple(out[:3])

    def click(self, window, button):
        x, y, width, height = self.place(window)
        xdotool("mousemove", x + width // 2, y + height // 2, "click", button)

    def menu_windows(self):
        tree = self.window_tree()
        tops = re.findall(r'^ {5}(0x[0-9a-f]+) "zefserverui"', tree, re.M)
        visible = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "^zefserverui$"], capture_output=True,
                                 text=True, check=False).stdout.split()
        return [w for w in visible if hex(int(w)) in tops]


class IconTest(Trays, unittest.TestCase):
    """Tests of the helper on a link of ours."""

    def setUp(self):
        self.home = harness.Home()
        self.set_up_trays()
        self.helpers = []

    def tearDown(self):
        for helper in self.helpers:
            if helper.process.poll() is None:
                helper.end()
            helper.link.close()
        self.tear_down_trays()
        self.home.remove()

    def helper(self, fill=True):
        helper = Helper(self.env, os.path.join(self.home.path, f"stderr{len(self.helpers)}"))
        self.helpers.append(helper)
        if fill:
            helper.add(1, "&Open...")
            helper.add(2, "")
            helper.add(3, "Information _Center")
            helper.add(4, "Stop", flags=8)
            helper.send("setTooltip", string8("Two users"))
            helper.image("zefserverConnected", "Error")
        return helper

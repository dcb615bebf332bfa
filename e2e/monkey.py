"""Somebody without sense at the gallery: keys, clicks, drags, resizes, and a window manager that comes and goes.

The program must answer throughout, lose no descriptor, and end well. ZEF_MONKEY_SEED repeats a run (but for its timing),
ZEF_MONKEY_SECONDS makes it longer, ZEF_MONKEY_ARGS gives the gallery parameters, ZEF_MONKEY_THROUGH is a command that
runs it, such as "valgrind -q --error-exitcode=9"."""
import contextlib
import os
import random
import subprocess
import time
import unittest

import harness
from harness import SLOW, until

SEED = int(os.environ.get("ZEF_MONKEY_SEED", "20"))
SECONDS = float(os.environ.get("ZEF_MONKEY_SECONDS", "20"))
THROUGH = os.environ.get("ZEF_MONKEY_THROUGH", "").split()
ARGS = os.environ.get("ZEF_MONKEY_ARGS", "").split()
PAGES = 13
WIDTH, HEIGHT = 1280, 1024

MOVES = ["Tab", "shift+Tab", "Up", "Down", "Left", "Right", "Home", "End", "Prior", "Next", "shift+Left", "shift+End",
         "ctrl+Left", "ctrl+shift+Right", "ctrl+Home", "F10", "Menu", "ctrl+Tab", "alt+Down"]
ACTS = ["Return", "space", "Escape", "Escape", "BackSpace", "Delete", "ctrl+a", "ctrl+c", "ctrl+x", "ctrl+v", "ctrl+z",
        "shift+Insert", "KP_Enter", "plus", "minus", "F2", "F4"]
LETTERS = list("abcdefghijklmnopqrstuvwxyz0123456789") + [
    "slash", "period", "comma", "asciitilde", "EuroSign", "adiaeresis", "dead_acute", "Multi_key", "U4E2D", "U05D0",
    "U0627", "U1F600", "U202E"]


class MonkeyTest(unittest.TestCase):
    def setUp(self):
        self.home = harness.Home()
        for i in range(50):
            with open(os.path.join(self.home.path, f"file {i}.png"), "w", encoding="utf-8"):
                pass
        self.server = harness.Server(("-screen", "0", f"{WIDTH}x{HEIGHT}x24"), ("openbox", "--sm-disable"))
        self.home.env = self.server.env(self.home.env)
        self.random = random.Random(SEED)
        self.done = []
        self.owner = None
        self.gallery = None

    def tearDown(self):
        if self.gallery and self.gallery.process.poll() is None:
            self.gallery.process.kill()
            self.gallery.process.wait()
        if self.owner:
            self.owner.kill()
            self.owner.wait()
        self.server.kill()
        self.home.remove()

    def start(self):
        self.gallery = Inspectable(self.home)
        self.gallery.until_state("gallery", "shown", "1")

    def xdotool(self, *lines):
        """Several of its commands at once, which may name windows that have gone."""
        self.done += lines
        subprocess.run(["xdotool", "-"], input="\n".join(lines).encode() + b"\n", env=self.home.env, check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=30 * SLOW)

    def point(self):
        return f"{self.random.randrange(WIDTH)} {self.random.randrange(HEIGHT)}"

    def windows(self):
        return subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(self.gallery.ui_pid())],
                              env=self.home.env, capture_output=True, text=True, check=False).stdout.split()

    # What it does; each is one round.

    def type(self):
        self.xdotool(*("key " + self.random.choice(self.random.choice((MOVES, ACTS, LETTERS))) for _ in range(15)))

    def mnemonics(self):
        self.xdotool(*("key alt+" + self.random.choice("abcdefghilmnoprstuvwy135") for _ in range(4)))

    def click(self):
        lines = []
        for _ in range(8):
            button = self.random.choice((1, 1, 1, 1, 2, 3, 4, 5, 5, 6, 7, 8))
            lines += ["mousemove " + self.point(), f"click --repeat {self.random.choice((1, 1, 1, 2, 3))} {button}"]
        self.xdotool(*lines)

    def drag(self):
        lines = ["mousemove " + self.point(), "mousedown 1"]
        lines += ["mousemove " + self.point() for _ in range(10)]
        self.xdotool(*lines, *(["key Escape"] if self.random.random() < 0.3 else []), "mouseup 1")

    def resize(self):
        windows = self.windows()
        if windows:
            window = self.random.choice(windows)
            self.xdotool(*(f"windowsize {window} {self.random.randrange(1, 2000)} {self.random.randrange(1, 1500)}"
                           for _ in range(20)), f"windowmove {window} 20 30", f"windowsize {window} 1000 800")

    def focus(self):
        windows = self.windows()
        if windows:
            window = self.random.choice(windows)
            self.xdotool(f"windowactivate {window}", f"windowfocus {window}", f"windowraise {window}")

    def turn_page(self):
        self.gallery.ask(f"select gallery.split.names {self.random.randrange(PAGES)}")
        self.focus()

    def open_window(self):
        """By a button of the page of windows, from inside a modal loop as well."""
        self.gallery.ask("select gallery.split.names 10")
        names = [line.split(" (")[0] for line in self.gallery.ask("lists gallery.split.pages.Windows").split("\n")
                 if line.endswith("(button)")]
        if names and self.random.random() < 0.7:
            # Its answer comes when the dialog has closed, if the dialog blocks.
            self.gallery.tell("click gallery." + self.random.choice(names))

    def iconify(self):
        windows = self.windows()
        if windows:
            window = self.random.choice(windows)
            self.xdotool(f"windowminimize {window}", f"windowmap {window}")

    def own_selection(self):
        if self.owner:
            self.owner.kill()
            self.owner.wait()
        text = self.random.choice(["", "short", "line\nline\n", "\u05d0\u0627\U0001f600" * 50, "x" * 300000])
        self.owner = subprocess.Popen(
            ["xclip", "-quiet", "-selection", self.random.choice(("clipboard", "primary"))], env=self.home.env,
            stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.owner.stdin.write(text.encode())
        self.owner.stdin.close()

    def restart_manager(self):
        self.server.unmanage()
        self.xdotool("key Tab", "mousemove " + self.point(), "click 1")
        self.server.manage("openbox", "--sm-disable")

    def check(self):
        """It is there and answers, or has ended by the user's wish."""
        status = self.gallery.process.poll()
        if status is None:
            try:
                self.assertEqual(self.gallery.ask("version"), "1")
                held = self.gallery.descriptors()
                self.assertLess(len(held), 60, f"seed {SEED}: {held}, after {self.done[-30:]}")
                return
            except OSError:
                time.sleep(0.5)
                status = self.gallery.process.poll()
        # A sanitizer says why on stderr.
        self.assertEqual(status, 0, f"seed {SEED}, the last of what was done: {self.done[-60:]}")
        self.start()

    def test_nothing_that_a_user_does_breaks_it(self):
        rounds = [(self.type, 10), (self.click, 10), (self.mnemonics, 4), (self.drag, 4), (self.turn_page, 5),
                  (self.open_window, 4), (self.focus, 3), (self.resize, 2), (self.own_selection, 1), (self.iconify, 1),
                  (self.restart_manager, 0.5)]
        self.start()
        end = time.monotonic() + SECONDS * SLOW
        while time.monotonic() < end:
            act = self.random.choices([r[0] for r in rounds], [r[1] for r in rounds])[0]
            self.done.append("# " + act.__name__)
            act()
            del self.done[:-200]
            self.check()
        self.xdotool(*["key Escape"] * 10)
        self.check()
        with open(f"/proc/{self.gallery.ui_pid()}/status", encoding="utf-8") as text:
            print("".join(line for line in text if line.startswith("VmRSS")), end="", flush=True)
        # The last first: a dialog that blocks holds up the end.
        for line in reversed(self.gallery.ask("dialogs").split("\n")):
            self.gallery.tell("close " + line.split(" ")[0])
        self.assertEqual(self.gallery.process.wait(20 * SLOW), 0)


class Inspectable(harness.Inspected):
    def __init__(self, home):
        self.process = subprocess.Popen([*THROUGH, os.path.join(harness.BIN, "zefgallery"), "-_MuiComms", *ARGS],
                                        env=home.env, cwd=home.path)

    def ui_pid(self):
        return self.process.pid

    def descriptors(self):
        """What its descriptors lead to; sockets as the system lists them."""
        folder = f"/proc/{self.process.pid}/fd"
        with open("/proc/net/unix", encoding="utf-8", errors="replace") as table:
            sockets = {f"socket:[{words[6]}]": " ".join(words[3:]) for words in map(str.split, table)}
        held = []
        for fd in os.listdir(folder):
            with contextlib.suppress(FileNotFoundError):
                target = os.readlink(os.path.join(folder, fd))
                held.append(sockets.get(target, target))
        return held

    def tell(self, line):
        """A request whose answer nobody waits for."""
        with harness.socket.socket(harness.socket.AF_UNIX) as link:
            link.settimeout(0.3)
            try:
                link.connect(self.inspect)
                link.sendall(line.encode() + b"\n")
                link.recv(4096)
            except OSError:
                pass  # it is busy, or has ended


if __name__ == "__main__":
    harness.main()

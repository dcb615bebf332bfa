"""The icon's helper against real trays: XEmbed (trayer) and StatusNotifierItem (a watcher of our own), on a link of ours."""
import json
import os
import re
import select
import shutil
import signal
import socket
import struct
import subprocess
import tempfile
import time
import unittest

import harness
from harness import SLOW, UI, until

ROOT = 0xFFFFFFFF
WATCHER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "trayWatcher.py")
GTKS = ("libgtk-x11-2.0.so.0", "libgtk-3.so.0")


def string8(text):
    data = text.encode() if isinstance(text, str) else text
    return bytes([len(data)]) + data


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
        body = string8(name) + b"".join(fields)
        self.raw(struct.pack(">H", 0x8000 | len(body)) + body)

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

    def expect(self, *message, seconds=10.0):
        """Waits for a message, taken with all before it."""
        def look():
            self.read()
            if message not in self.came:
                return False
            del self.came[:self.came.index(message) + 1]
            return True
        try:
            until(look, str(message), seconds)
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
        return self.process.wait(seconds * SLOW)

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
        self.process.wait(10 * SLOW)


class IconTest(unittest.TestCase):
    def setUp(self):
        self.home = harness.Home()
        self.started = []
        self.helpers = []
        self.env = dict(self.home.env)
        for name in ("DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"):
            self.env.pop(name, None)

    def tearDown(self):
        for helper in self.helpers:
            if helper.process.poll() is None:
                helper.end()
            helper.link.close()
        for process in reversed(self.started):
            if isinstance(process, Watcher):
                process.end()
            elif process.poll() is None:
                process.terminate()
                process.wait()
        self.home.remove()

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
        tray = subprocess.Popen(["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request", "--height",
                                 "48", "--SetDockType", "false"], stderr=subprocess.DEVNULL, env=self.home.env)
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

    def mapped(self, helper):
        with open(f"/proc/{helper.process.pid}/maps", encoding="ascii") as maps:
            return maps.read()

    def icon_windows(self, helper):
        """Those of the helper inside another window: in a tray."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "^zefserverui$"], capture_output=True,
                               text=True, check=False).stdout.split()
        tree = subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True, check=True).stdout
        inside = [w for w in found if re.search(rf"^ {{8,}}{int(w):#x} ", tree, re.M)]
        return [w for w in inside if self.owner(w) in (helper.process.pid, None)]

    def one_icon(self, helper):
        """Waits for its window to be seen: the tray shows it a little after it has taken it."""
        until(lambda: self.icon_windows(helper), "the icon's window")
        self.assertEqual(len(self.icon_windows(helper)), 1)

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
        subprocess.run(["xdotool", "mousemove", str(x + width // 2), str(y + height // 2), "click", str(button)],
                       check=True)

    def menu_windows(self):
        tree = subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True, check=True).stdout
        tops = re.findall(r'^ {5}(0x[0-9a-f]+) "zefserverui"', tree, re.M)
        visible = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "^zefserverui$"], capture_output=True,
                                 text=True, check=False).stdout.split()
        return [w for w in visible if hex(int(w)) in tops]


class XEmbedTest(IconTest):
    def test_an_icon_with_its_menu_in_a_tray_that_comes_and_goes(self):
        helper = self.helper()
        helper.create()
        helper.until_log("Creating StatusIcon...")
        tray = self.trayer()
        helper.expect("iconEmbedded", 1)
        window = until(lambda: self.icon_windows(helper), "the icon's window")[0]
        x, y, width, height = self.place(window)

        def is_red():  # beside the mark in the overlay
            red, green, blue = self.colour(x + width // 10, y + height * 3 // 4)
            return red > 150 and green < 90 and blue < 90
        until(is_red, "the overlay of an error")
        helper.image("zefserverConnected", "")
        until(lambda: not is_red(), "the icon without it")

        self.click(window, 1)
        helper.expect("iconActivate")
        self.click(window, 3)
        until(lambda: self.menu_windows(), "the menu")
        subprocess.run(["xdotool", "key", "Down", "Down", "Return"], check=True)
        helper.expect("menuAction", 3)
        until(lambda: not self.menu_windows(), "the end of the menu")

        helper.image("")
        helper.expect("iconEmbedded", 0)
        helper.image("zefserver", "Warning")
        helper.expect("iconEmbedded", 1)

        self.end_tray(tray)
        helper.expect("iconEmbedded", 0)
        self.trayer()
        helper.expect("iconEmbedded", 1)
        helper.ends_well()
        log = helper.log()
        for line in ("Starting", "StatusIcon changed (shown=1)", "StatusIcon changed (shown=0)", "Stopping"):
            self.assertIn(line, log)
        self.assertNotIn("Gtk-", log)

    def test_the_menu_changes_while_it_is_open(self):
        helper = self.helper()
        helper.create()
        self.trayer()
        helper.expect("iconEmbedded", 1)
        window = until(lambda: self.icon_windows(helper), "the icon's window")[0]
        helper.add(7, "More")
        helper.add(8, "Inner", parent=7)
        helper.send("setChecked", u32(3), b"\1")
        self.click(window, 3)
        menu = until(lambda: self.menu_windows(), "the menu")[0]
        height = self.place(menu)[3]
        helper.send("remove", u32(7))
        helper.send("remove", u32(1))
        until(lambda: self.place(self.menu_windows()[0])[3] < height, "a lower menu")
        helper.send("setEnabled", u32(4), b"\0")
        helper.send("setText", u32(3), string8("Other"))
        subprocess.run(["xdotool", "key", "Down", "Return"], check=True)
        helper.expect("menuAction", 3)
        helper.ends_well()

    def test_asked_again_it_tells_again(self):
        helper = self.helper()
        self.trayer()
        helper.create()
        helper.expect("iconEmbedded", 1)
        for kind in (0, 1, 0):
            helper.create(kind)
            helper.expect("iconEmbedded", 1)
        self.assertEqual(helper.messages(), [])
        self.one_icon(helper)


class ItemTest(IconTest):
    """The icon over D-Bus, with the loop of glib and with our own."""

    def choose_loop(self, has_gtk):
        if not has_gtk:
            self.without_libraries(*GTKS)

    def test_an_icon_with_its_menu_on_the_bus(self):
        self.bus()
        for has_gtk in (True, False):
            self.choose_loop(has_gtk)
            watcher = self.watcher()
            helper = self.helper()
            helper.create()
            helper.expect("iconEmbedded", 1)
            self.assertEqual("libgtk" in self.mapped(helper), has_gtk)
            [name] = watcher.ask("items")
            self.assertEqual(name, f"org.kde.StatusNotifierItem-{helper.process.pid}-1")
            until(lambda: watcher.ask("get", "IconPixmap"), "the picture")
            every = watcher.ask("all")
            self.assertEqual([every["Id"], every["Status"], every["Menu"], every["ItemIsMenu"], every["Title"]],
                             ["zefserverui", "Active", "/MenuBar", False, "Two users"])
            self.assertEqual(every["ToolTip"], ["", [], "Two users", ""])
            for pixels, side in zip(every["IconPixmap"], (24, 32, 48)):
                self.assertEqual([pixels["side"], pixels["bytes"]], [side, side * side * 4])
                alpha, red, green, blue = pixels["mark"]
                self.assertTrue(alpha == 255 and red > 150 > green and blue < 100, pixels)

            _, (_, root, items) = watcher.ask("layout")
            self.assertEqual(root, {"children-display": "submenu"})
            self.assertEqual([properties for _, properties, _ in items], [
                {"label": "_Open..."}, {"type": "separator"}, {"label": "Information __Center"},
                {"label": "Stop", "icon-data": "\x89PNG"}])
            numbers = [str(number) for number, _, _ in items]
            watcher.ask("event", numbers[2])
            helper.expect("menuAction", 3)
            for number in (numbers[1], "0"):  # a separator, the menu itself
                self.assertIsNone(watcher.ask("event", number))
            self.assertIn("error", watcher.ask("event", "77"))
            self.assertEqual(watcher.ask("events", numbers[0], "77"), [77])
            helper.expect("menuAction", 1)
            self.assertIs(watcher.ask("show", "0"), False)
            for method in ("Activate", "SecondaryActivate", "ContextMenu"):
                watcher.ask("item", method)
                helper.expect("iconActivate")
            self.assertIsNone(watcher.ask("item", "Scroll"))
            for path, interface, method in (("/MenuBar", "com.canonical.dbusmenu", "GetLayout"),
                                            ("/MenuBar", "com.canonical.dbusmenu", "Nonsense"),
                                            ("/StatusNotifierItem", "org.kde.StatusNotifierItem", "Nonsense")):
                self.assertIn("error", watcher.ask("odd", path, interface, method))
            self.assertIn("error", watcher.ask("get", "Nonsense"))
            self.assertIsNone(watcher.ask("odd", "/MenuBar", "org.freedesktop.DBus.Introspectable", "Introspect"))
            self.assertEqual(helper.messages(), [])
            helper.ends_well()
            until(lambda: watcher.ask("items") == [], "the end of the item")
            watcher.ask("stop")

    def test_changes_are_told(self):
        self.bus()
        watcher = self.watcher()
        helper = self.helper()
        helper.create()
        helper.expect("iconEmbedded", 1)
        revision, (_, _, items) = watcher.ask("layout")
        watcher.ask("signals")
        seen = []

        def told(name):
            seen.extend(watcher.ask("signals"))
            found = [arguments for each, arguments in seen if each == name]
            return found[-1] if found else None
        helper.send("setText", u32(3), string8("&New"))
        helper.send("setEnabled", u32(3), b"\0")
        helper.send("setChecked", u32(4), b"\1")
        updated, _ = until(lambda: told("ItemsPropertiesUpdated"), "the changed items")
        changed = dict(updated)
        self.assertEqual(changed[items[2][0]], {"label": "_New", "enabled": False})
        self.assertEqual(changed[items[3][0]]["toggle-state"], 1)
        self.assertIsNone(told("LayoutUpdated"))
        self.assertIsNone(watcher.ask("event", str(items[2][0])))
        self.assertEqual(helper.messages(), [], "it is disabled")

        helper.add(10, "More")
        helper.add(11, "Inner", parent=10)
        helper.send("remove", u32(1))
        until(lambda: told("LayoutUpdated"), "another layout")
        new_revision, (_, _, now) = watcher.ask("layout")
        self.assertGreater(new_revision, revision)
        self.assertEqual([p.get("label") for _, p, _ in now], [None, "_New", "Stop", "More"])
        self.assertEqual(now[3][1]["children-display"], "submenu")
        self.assertEqual([p for _, p, _ in now[3][2]], [{"label": "Inner"}])
        number = str(now[3][0])
        self.assertEqual(watcher.ask("layout", number, "0")[1], [int(number), now[3][1], []])
        self.assertEqual(watcher.ask("layout", number, "1", "label")[1][1], {"label": "More"})
        self.assertEqual(watcher.ask("group", number, "999"), [[int(number), now[3][1]]])
        self.assertEqual(watcher.ask("prop", number, "label"), "More")

        helper.image("zefserver", "")
        until(lambda: told("NewIcon") is not None, "another icon")
        helper.send("setTooltip", string8("Ready"))
        until(lambda: told("NewToolTip") is not None, "another text")
        self.assertEqual(watcher.ask("get", "Title"), "Ready")
        helper.image("")
        helper.expect("iconEmbedded", 0)
        self.assertEqual(until(lambda: told("NewStatus"), "the new state"), ["Passive"])
        helper.image("zefserver")
        helper.expect("iconEmbedded", 1)

    def test_a_watcher_a_host_and_a_bus_that_come_and_go(self):
        daemon = self.bus()
        for has_gtk in (True, False):
            self.choose_loop(has_gtk)
            watcher = self.watcher(start=False)
            helper = self.helper()
            helper.create()
            helper.until_log("Locales")
            watcher.ask("start")
            helper.expect("iconEmbedded", 1)
            watcher.ask("stop")
            helper.expect("iconEmbedded", 0)
            watcher.ask("start", "0")
            watcher.ask("host", "1")
            helper.expect("iconEmbedded", 1)
            watcher.ask("host", "0")
            helper.expect("iconEmbedded", 0)
            until(lambda: watcher.ask("items") == [], "the end of the item")
            watcher.ask("host", "1")
            helper.expect("iconEmbedded", 1)
            self.assertEqual(len(watcher.ask("items")), 1)
            helper.ends_well()
            watcher.ask("stop")
        helper = self.helper()
        helper.create()
        watcher = self.watcher()
        helper.expect("iconEmbedded", 1)
        daemon.kill()
        daemon.wait()
        helper.expect("iconEmbedded", 0)
        helper.ends_well()

    def test_the_bus_that_the_client_names(self):
        self.bus()
        address = self.env.pop("DBUS_SESSION_BUS_ADDRESS")
        helper = self.helper()
        helper.create()
        helper.until_log("Creating StatusIcon...")
        for bad in ("", "tcp:host=localhost,port=1", "unixexec:path=/bin/false", "nonsense", "unix:path=/nowhere"):
            helper.send("setEnv", string8("DBUS_SESSION_BUS_ADDRESS"), string8(bad))
            helper.create()
        self.env["DBUS_SESSION_BUS_ADDRESS"] = address
        self.watcher()
        helper.send("setEnv", string8("DBUS_SESSION_BUS_ADDRESS"), string8(address))
        helper.create()
        helper.expect("iconEmbedded", 1)
        helper.ends_well()


class ChoiceTest(IconTest):
    """Whatever a desktop offers, there is one icon."""

    def test_never_two_icons(self):
        self.bus()
        watcher = self.watcher()
        tray = self.trayer()
        until(lambda: subprocess.run(["xdotool", "search", "--class", "trayer"], capture_output=True,
                                     check=False).stdout, "the tray")
        helper = self.helper()
        helper.create()
        helper.expect("iconEmbedded", 1)
        self.one_icon(helper)
        self.assertEqual(watcher.ask("items"), [])

        self.end_tray(tray)
        helper.expect("iconEmbedded", 0)
        helper.expect("iconEmbedded", 1)
        self.assertEqual(len(watcher.ask("items")), 1)

        tray = self.trayer()  # the item stays; the tray gets nothing
        helper.create()
        helper.expect("iconEmbedded", 1)
        self.assertEqual(self.icon_windows(helper), [])
        watcher.ask("stop")
        helper.expect("iconEmbedded", 0)
        helper.expect("iconEmbedded", 1)
        self.one_icon(helper)
        watcher.ask("start")
        helper.create()
        helper.expect("iconEmbedded", 1)
        self.assertEqual(watcher.ask("items"), [])
        helper.ends_well()

    def test_an_indicator_where_it_is_asked_for(self):
        self.bus()
        helper = self.helper()
        helper.create(1)
        helper.until_log("Creating AppIndicator...")
        watcher = self.watcher()
        helper.expect("iconEmbedded", 1)
        helper.until_log("AppIndicator changed (shown=1)")
        self.assertEqual(len(watcher.ask("items")), 1)
        watcher.ask("stop")
        helper.expect("iconEmbedded", 0)
        # The status icon takes its place.
        helper.create(0)
        self.trayer()
        helper.expect("iconEmbedded", 1)
        watcher.ask("start")
        helper.create(1)
        helper.expect("iconEmbedded", 1)
        self.assertEqual(watcher.ask("items"), [])
        self.one_icon(helper)
        helper.ends_well()

    def test_an_item_in_place_of_an_indicator_that_is_not_installed(self):
        self.bus()
        self.without_libraries("libappindicator.so.1", "libayatana-appindicator.so.1")
        watcher = self.watcher()
        helper = self.helper()
        helper.create(1)
        helper.expect("iconEmbedded", 1)
        self.assertEqual(len(watcher.ask("items")), 1)
        self.assertNotIn("Creating AppIndicator...", helper.log())

    def test_gtk_3_where_there_is_no_gtk_2(self):
        self.without_libraries("libgtk-x11-2.0.so.0")
        helper = self.helper()
        helper.create()
        self.trayer()
        helper.expect("iconEmbedded", 1)
        mapped = self.mapped(helper)
        self.assertIn("libgtk-3", mapped)
        self.assertNotIn("libgtk-x11-2.0", mapped)
        window = until(lambda: self.icon_windows(helper), "the icon's window")[0]
        self.click(window, 1)
        helper.expect("iconActivate")
        helper.ends_well()

    def test_nothing_to_show_it_with(self):
        self.without_libraries(*GTKS)
        helper = self.helper()
        for kind in (0, 1, 2, 0x7FFFFFFF):
            helper.create(kind)
            helper.expect("iconEmbedded", 0)
        helper.until_log("Status icon type not supported", count=4)
        helper.ends_well()

        self.without_libraries("libsystemd.so.0", "libelogind.so.0", "libbasu.so.0", *GTKS)
        self.bus()
        helper = self.helper()
        helper.create()
        helper.expect("iconEmbedded", 0)
        helper.ends_well()

        self.env["DISPLAY"] = ":1999"
        del self.env["LD_LIBRARY_PATH"], self.env["DBUS_SESSION_BUS_ADDRESS"]
        helper = self.helper()
        helper.create()
        helper.expect("iconEmbedded", 0)
        helper.ends_well()


class LinkTest(IconTest):
    def test_nonsense_ends_the_helper_with_a_clear_word(self):
        cases = (
            (b"\x80\x08\x07nosuchX"[:10], "bad message name nosuchX"),
            (b"\x80\x07\x06badMsg", "bad message name badMsg"),
            (b"\x80\x01\x00", "bad message name "),
            (b"\x80\x09\x06create\x00\x00", "gioFunc: "),  # too short
            (b"\x80\x0a\x08setImage\xff", "gioFunc: "),
        )
        for data, word in cases:
            for has_gtk in (True, False):
                with self.subTest(data=data, gtk=has_gtk):
                    self.env.pop("LD_LIBRARY_PATH", None)
                    if not has_gtk:
                        self.without_libraries(*GTKS)
                    helper = self.helper()
                    helper.raw(data)
                    self.assertEqual(helper.status(), 0)
                    self.assertIn(word, helper.log())
                    self.assertIn("Stopping", helper.log())

    def test_a_link_that_ends_anywhere_ends_the_helper(self):
        for size in (0, 1, 2, 5, 9, 15):
            helper = self.helper(fill=False)
            helper.raw(b"\x80\x10\x03add\x00\x00\x00\x01\x02ab\xff\xff\xff\xff\x00"[:size])
            helper.ends_well()

    def test_a_hostile_menu_is_bounded(self):
        self.bus()
        watcher = self.watcher()
        helper = self.helper(fill=False)
        helper.image("zefserver")
        helper.create()
        helper.expect("iconEmbedded", 1)
        for item in (ROOT, 5, 5):
            helper.add(item, "twice")
        helper.add(6, "its own parent", parent=6)
        helper.add(7, "an orphan", parent=999)
        helper.add(8, "deep", parent=5)
        for item in range(100, 200):
            helper.add(item, "deeper", parent=item - 1 if item > 100 else 8)
        helper.send("remove", u32(ROOT))
        helper.send("remove", u32(12345))
        helper.send("setText", u32(12345), string8("x"))
        helper.send("setText", u32(5), b"\x04\xff\xfe\x00x")
        helper.send("setEnv", string8(""), string8("x"))
        helper.send("setEnv", string8("A=B"), string8("x"))
        helper.send("setImage", string8("../../%s%n"), string8("%n" * 100))
        helper.image("zefserver", "%s%s%s%n")
        for item in range(1000, 101000):
            helper.add(item, "wide")
        helper.send("remove", u32(5))
        helper.add(5, "last")

        def menu():
            answer = watcher.ask("layout", "0", "-1", "label")
            return answer[1][2] if isinstance(answer, list) and answer[1][2][-1][1].get("label") == "last" else None
        items = until(menu, "the menu", 60)
        self.assertLessEqual(len(items), 4096)
        self.assertGreater(len(items), 4000)
        with open(f"/proc/{helper.process.pid}/status", encoding="ascii") as status:
            size = int(re.search(r"VmRSS:\s+(\d+)", status.read()).group(1))
        self.assertLess(size, 300 * 1024, "KiB of memory")
        helper.ends_well()

    def test_started_wrongly(self):
        for words in ([], ["-foo"], ["99"], ["/nowhere/pipe"], ["-hash"], ["-hash", "xyz", "p"]):
            status, _, err = harness.UiTest.run_ui(self, "-statusicon", *words)
            self.assertEqual(status, 1, words)
            self.assertIn("Stopping with error: ", err)
        status, _, err = harness.UiTest.run_ui(self, "-statusicon", "-dummy", stdin=subprocess.DEVNULL)
        self.assertEqual((status, "Stopping" in err), (0, True))

    def test_a_killed_helper_takes_its_icon_along(self):
        self.trayer()
        helper = self.helper()
        helper.create()
        helper.expect("iconEmbedded", 1)
        helper.process.send_signal(signal.SIGKILL)
        self.assertEqual(helper.status(), -signal.SIGKILL)
        until(lambda: not self.icon_windows(helper), "no icon")


@unittest.skipUnless(shutil.which("strace"), "no strace")
class IdleTest(IconTest):
    def test_nothing_wakes_it_while_nothing_happens(self):
        self.bus()
        self.trayer()
        in_tray = self.helper()
        in_tray.create()
        in_tray.expect("iconEmbedded", 1)
        self.watcher()
        self.without_libraries(*GTKS)
        on_bus = self.helper()
        on_bus.create()
        on_bus.expect("iconEmbedded", 1)
        time.sleep(1)  # for what the start has put off
        traces = []
        for helper in (in_tray, on_bus):
            with tempfile.NamedTemporaryFile("r", delete=False) as out:
                traces.append((out.name, subprocess.Popen(["timeout", "10", "strace", "-f", "-o", out.name, "-p",
                                                           str(helper.process.pid)], stderr=subprocess.DEVNULL)))
        for path, trace in traces:
            trace.wait()
            with open(path, encoding="utf-8", errors="replace") as text:
                calls = text.read().splitlines()
            os.unlink(path)
            self.assertGreater(len(calls), 0, "strace saw nothing")
            # A call that was under way is listed, and is not over at the end.
            over = [call for call in calls if re.search(r"\) += ", call)]
            self.assertLessEqual(len(over), 2, over)


if __name__ == "__main__":
    harness.main()

"""The icon's helper against real trays, on a link of ours."""
import re
import shutil
import signal
import subprocess
import time
import unittest

import harness
from harness import SLOW, Server, string8, until, until_asleep, xdotool
from trays import GTKS, ROOT, IconTest, u32


class XEmbedTest(IconTest):
    def test_an_icon_with_its_menu_in_a_tray_that_comes_and_goes(self):
        helper = self.helper()
        helper.create()
        helper.until_log("Creating StatusIcon...")
        tray = self.trayer()
        helper.expect("iconEmbedded", 1)
        window = self.icon_window(helper.process.pid)

        def is_red():  # beside the mark in the overlay, wherever the tray has put the icon by now
            x, y, width, height = self.place(window)
            red, green, blue = self.colour(x + width // 10, y + height * 3 // 4)
            return red > 150 and green < 90 and blue < 90
        until(is_red, "the overlay of an error")
        helper.image("zefserverConnected", "")
        until(lambda: not is_red(), "the icon without it")

        self.click(window, 1)
        helper.expect("iconActivate")
        self.click(window, 3)
        until(lambda: self.menu_windows(), "the menu")
        xdotool("key", "Down", "Down", "Return")
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
        window = self.icon_window(helper.process.pid)
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
        xdotool("key", "Down", "Return")
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
        self.icon_window(helper.process.pid)


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
            self.assertEqual("libgtk" in self.mapped(helper.process.pid), has_gtk)
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
        expected = {items[2][0]: {"label": "_New", "enabled": False},
                    items[3][0]: {"toggle-type": "checkmark", "toggle-state": 1}}

        def changed():
            told("ItemsPropertiesUpdated")
            now = {}
            for each, arguments in seen:  # in one signal or several
                now.update(arguments[0] if each == "ItemsPropertiesUpdated" else [])
            return all(value.items() <= now.get(number, {}).items() for number, value in expected.items())
        until(changed, "the changed items")
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
        self.icon_window(helper.process.pid)
        self.assertEqual(watcher.ask("items"), [])

        self.end_tray(tray)
        helper.expect("iconEmbedded", 0)
        helper.expect("iconEmbedded", 1)
        self.assertEqual(len(watcher.ask("items")), 1)

        tray = self.trayer()  # the item stays; the tray gets nothing
        helper.create()
        helper.expect("iconEmbedded", 1)
        self.assertEqual(self.icon_windows(helper.process.pid), [])
        watcher.ask("stop")
        helper.expect("iconEmbedded", 0)
        helper.expect("iconEmbedded", 1)
        self.icon_window(helper.process.pid)
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
        self.icon_window(helper.process.pid)
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
        mapped = self.mapped(helper.process.pid)
        self.assertIn("libgtk-3", mapped)
        self.assertNotIn("libgtk-x11-2.0", mapped)
        window = self.icon_window(helper.process.pid)
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

    def test_a_display_that_goes_ends_the_helper(self):
        server = Server()
        self.env["DISPLAY"] = server.display
        helper = self.helper()
        helper.create()
        helper.until_log("Creating StatusIcon...")
        server.kill()
        self.assertEqual(helper.status(), 1)
        self.assertIn("the X server has gone", helper.log())

    def test_a_killed_helper_takes_its_icon_along(self):
        self.trayer()
        helper = self.helper()
        helper.create()
        helper.expect("iconEmbedded", 1)
        helper.process.send_signal(signal.SIGKILL)
        self.assertEqual(helper.status(), -signal.SIGKILL)
        until(lambda: not self.icon_windows(helper.process.pid), "no icon")


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
        time.sleep(SLOW)  # for what the start has put off
        until_asleep(in_tray.process.pid, on_bus.process.pid)


if __name__ == "__main__":
    harness.main()

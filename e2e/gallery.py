"""The whole toolkit in one window, by the keyboard alone: the focus goes round and is always seen, keys do what they say."""
import hashlib
import os
import re
import subprocess
import time
import unittest

import harness
from harness import until, xdotool

PAGES = ["Buttons", "Choices", "Fields", "Texts", "Scripts", "Lists", "Frames", "Containers", "Infoframes", "Images",
         "Windows", "Forms", "States"]


class Gallery(harness.Inspected):
    through = ()  # a command that runs it

    def __init__(self, home, *args):
        self.process = subprocess.Popen([*self.through, os.path.join(harness.BIN, "zefgallery"), "-_MuiComms", *args],
                                        env=home.env)

    def ui_pid(self):
        return self.process.pid

    def page(self, index, path=""):
        return f"gallery.split.pages.{PAGES[index]}{path}"


class GalleryTest(unittest.TestCase):
    def setUp(self):
        self.home = harness.Home()
        self.gallery = None

    def tearDown(self):
        self.stop()
        self.home.remove()

    def stop(self):
        if self.gallery:
            self.gallery.process.terminate()
            self.gallery.process.wait()
            self.gallery = None

    def start(self, *args):
        self.stop()
        self.gallery = Gallery(self.home, *args)
        self.gallery.until_state("gallery", "shown", "1")
        self.window = until(lambda: self.find("^Gallery$"), "the window")
        xdotool("windowfocus", "--sync", self.window)

    def find(self, name):
        return subprocess.run(["xdotool", "search", "--onlyvisible", "--name", name],
                              capture_output=True, text=True, check=False).stdout.strip()

    def keys(self, *names):
        xdotool("key", *names)

    def picture(self):
        """What the screen shows once it rests."""
        last = None
        for _ in range(3):  # what was pressed is taken, and the pass that shows it is over
            self.gallery.ask("dialogs")
            time.sleep(0.02)
        for _ in range(100):
            data = subprocess.run(["xwd", "-root", "-silent"], capture_output=True, check=True).stdout
            now = hashlib.sha256(data).hexdigest()
            if now == last:
                return now
            last = now
            time.sleep(0.06)  # a repaint is put off by 10 ms
        raise AssertionError("the screen never rests")

    def go_to(self, index):
        """To a page, from the list of their names."""
        self.gallery.ask(f"select gallery.split.names {index}")

    def test_tab_goes_round_on_every_page_and_is_seen_at_each_stop(self):
        self.start()
        for index, name in enumerate(PAGES):
            with self.subTest(page=name):
                self.go_to(index)
                self.tab_round()

    def tab_round(self):
        """Tab leads from stop to stop, each of which looks different, and round; gives how many there are."""
        # Once round before, since the mark comes with the first key, and fields keep what they were left with.
        stops = [self.picture()]
        while len(stops) < 100:
            self.keys("Tab")
            now = self.picture()
            if now in stops:
                break
            stops.append(now)
        self.assertLess(len(stops), 100, "never comes round")
        circle = stops[stops.index(now):]
        self.assertGreaterEqual(2 * len(circle), len(stops), "two stops look alike")
        if len(circle) > 1:
            self.keys("shift+Tab")
            back = self.picture()
            self.assertTrue(back != now and back in stops, "backwards is another way")
        return len(circle)

    def until_keyboard(self, title):
        """It is in a window of that title other than the gallery's; or, for None, in that."""
        def there():
            window, name = (subprocess.run(["xdotool", "getwindowfocus", *more], capture_output=True, text=True,
                                           check=False).stdout.strip() for more in ([], ["getwindowname"]))
            return window == self.window if title is None else window != self.window and name == title
        until(there, f"the keyboard in {title or 'the gallery'}")

    def test_every_window_is_opened_used_and_closed_by_keys(self):
        """One button of the page after the other."""
        self.start()
        self.go_to(10)
        page = self.gallery.page(10)
        boxes = [("Gallery", 1, "button 1", "button 1")] * 3 + [("Gallery", 2, "button 16", "button 8"),
                                                                ("Gallery", 3, "button 2", "button 8")]
        kinds = ["Plain", "Fixed", "Modal", "Blocking", "Popup", "Above", "Undecorated", "Nofocus", "Transient", "Stays"]
        choosers = [("Open", 7, "cancelled", None), ("Save", 8, "cancelled", None),
                    ("Folder", 8, "cancelled", os.getcwd()), ("Choose plainly", 5, "cancelled", None)]
        windows = [(name, 3 if name == "Plain" else None, "", "") for name in kinds] + boxes + choosers
        windows += [("Menus", 2, "", ""), ("Steps", 4, "", ""), ("Saves", 4, "", ""), ("Hides", None, "", ""),
                    ("Notify", None, None, None), ("About Gallery", 3, "", "")]
        self.keys("Tab")  # the handle beside the list
        for title, stops, escaped, returned in windows:
            self.keys("Tab")
            for key, result in [("Escape", escaped), ("Return", returned)]:
                if result is None:
                    continue
                self.keys("Return")
                if title == "Popup":  # has no keyboard of its own
                    self.gallery.until_state(title, "shown", "1" if key == "Escape" else "0")
                    continue
                if title == "Transient":  # has it without being a window that the manager knows
                    self.gallery.until_state(title, "shown", "1")
                    self.keys(key)
                    self.gallery.until_state(title, "shown", "0")
                    continue
                if title == "Nofocus":
                    xdotool("windowfocus", "--sync", until(lambda: self.find("^Nofocus$"), "its window"))
                self.until_keyboard(title)
                if key == "Escape" and stops:  # how many Tab makes
                    self.assertEqual(self.tab_round(), stops, title)
                self.keys(key)
                self.until_keyboard(None)
                if result:
                    name = "answer" if title == "Gallery" else "chosen"
                    self.gallery.until_state(f"{page}.{name}", "value", result)

    def test_buttons_and_menus_answer_keys(self):
        self.start()
        last = self.gallery.page(0, ".last")
        self.keys("alt+n")
        self.gallery.until_state(last, "value", "normal")
        self.keys("alt+d", "alt+l", "Tab")  # disabled; the link has its key as well
        self.gallery.until_state(last, "value", "link")
        self.keys("alt+p")
        self.gallery.until_state(last, "value", "popup")
        self.picture()  # the menu has the keyboard
        self.keys("Down", "Down", "Return")
        self.gallery.until_state(last, "value", "With an &image")
        self.keys("alt+p")
        self.picture()
        self.keys("p")
        self.gallery.until_state(last, "value", "&Plain")
        self.keys("alt+p")
        self.picture()
        self.keys("Escape")
        self.picture()
        self.keys("alt+n")
        self.gallery.until_state(last, "value", "normal")

    def test_choices_fields_and_lists_answer_keys(self):
        self.start()
        self.go_to(1)
        checked = self.gallery.page(1, ".off")
        self.keys("alt+f")
        self.gallery.until_state(checked, "value", "1")
        self.keys("alt+s", "Right")
        self.keys("alt+p", "Down")
        until(lambda: "Item 2" in self.gallery.ask("state " + self.gallery.page(1, ".plain")), "the second item")
        self.go_to(2)
        number = self.gallery.page(2, ".number")
        self.keys("alt+5", "minus", "7", "5", "x", "BackSpace", "3")
        self.gallery.until_state(number, "value", "-3")
        self.keys("alt+p", "End", "ctrl+shift+Left", "x")
        self.gallery.until_state(self.gallery.page(2, ".plain"), "value", "Some x")
        self.go_to(5)
        self.keys("alt+f", "4", "9", "9")
        until(lambda: self.gallery.ask("listitems " + self.gallery.page(5, ".many")).count("\n") == 0, "one row of 500")

    def test_tabs_handles_views_and_sliders_answer_keys(self):
        self.start()
        self.go_to(7)
        pager = self.gallery.page(7, ".pager")
        self.keys("Tab", "Tab", "Right")  # past the handle beside the list
        self.gallery.until_state(pager, "page", "1")
        for key, page in [("ctrl+Tab", "2"), ("ctrl+shift+Tab", "1"), ("ctrl+Next", "2"), ("ctrl+Prior", "1"), ("Home", "0"),
                          ("Left", "0"), ("End", "3"), ("Home", "0")]:
            self.keys(key)
            self.gallery.until_state(pager, "page", page)
        self.keys("Tab", "x")
        self.gallery.until_state(pager + ".First.edit", "value", "x")
        self.keys("ctrl+Tab")  # from inside of a page
        self.gallery.until_state(pager, "page", "1")
        pane = self.gallery.page(7, ".splitframe.split.Left")
        before = self.gallery.ask("state " + pane)
        self.keys("Tab", "Tab", "Right")
        until(lambda: self.gallery.ask("state " + pane) != before, "the handle moved")
        self.keys("Left")
        until(lambda: self.gallery.ask("state " + pane) == before, "and back")
        self.keys("Tab", "Tab")  # the other handle, the first box
        top = self.picture()
        self.keys("Next")
        until(lambda: self.picture() != top, "a page further")
        self.keys("Prior")
        until(lambda: self.picture() == top, "and back")
        self.go_to(1)
        slider = self.gallery.page(1, ".slider")
        self.keys("alt+t", "Tab", "Tab")  # past the list without items
        for key, value in [("Right", "4"), ("End", "8"), ("Right", "8"), ("Prior", "7"), ("Home", "0")]:
            self.keys(key)
            self.gallery.until_state(slider, "value", value)

    def test_every_dialog_opens_and_closes_by_keys(self):
        self.start()
        self.go_to(10)
        for name in ["Plain", "Fixed", "Modal", "Above", "Undecorated", "Transient", "Steps", "Saves"]:
            with self.subTest(dialog=name):
                for key, value in [("Escape", "and something to type inx"), ("Return", "and something to type inxx")]:
                    self.open(name)
                    self.keys("alt+f", "End", "x")
                    self.gallery.until_state(f"{name}.field", "value", value)
                    self.keys(key)
                    self.gallery.until_state(name, "shown", "0")

    def open(self, name):
        self.gallery.ask(f"click {self.gallery.page(10)}.{name}")
        self.gallery.until_state(name, "shown", "1")
        window = until(lambda: self.find(f"^{name}$"), "its window")
        if name != "Transient":
            xdotool("windowfocus", "--sync", window)

    def test_menus_of_a_window_are_reached_by_keys(self):
        self.start()
        self.go_to(10)
        self.open("Menus")
        answer = self.gallery.page(10, ".answer")
        self.keys("F10", "Down")
        self.picture()  # the menu has the keyboard
        self.keys("Down", "Return")
        self.gallery.until_state(answer, "value", "&Stop")
        self.keys("alt+f")  # the menu goes before the field
        self.picture()
        self.keys("Return")
        self.gallery.until_state(answer, "value", "&Options...")

    def test_a_list_under_a_field_is_used_by_keys(self):
        self.start()
        self.go_to(2)
        search = self.gallery.page(2, ".search")
        self.keys("alt+s", "Down")
        self.picture()  # the list has the keyboard
        self.keys("Down", "Down", "Return")
        self.gallery.until_state(search, "value", "computer-1.example")
        self.keys("ctrl+a", "4", "9", "9")
        popup = until(lambda: self.gallery.state(search).get("popup-dialogid"), "its list")
        self.gallery.until_state(popup, "shown", "1")
        self.keys("Escape")
        self.gallery.until_state(popup, "shown", "0")
        self.keys("Down")
        self.gallery.until_state(popup, "shown", "1")
        self.picture()
        self.keys("Down", "Return")
        self.gallery.until_state(search, "value", "computer-499.example")

    def test_a_handle_between_panes_is_moved_by_keys(self):
        self.start()
        self.go_to(7)
        width = int(self.gallery.state("gallery.split.names")["size"].split(",", 1)[0])
        self.keys("Tab", "Right", "Right", "Left")
        until(lambda: self.gallery.state("gallery.split.names")["size"].startswith(f"{width + 8},"), "a wider list")

    def test_what_turns_out_of_view_sleeps(self):
        self.start()
        self.go_to(9)

        def wakeups():
            with open(f"/proc/{self.gallery.ui_pid()}/status", encoding="ascii") as status:
                lines = dict(line.split(":", 1) for line in status)
            return int(lines["voluntary_ctxt_switches"])

        def in_a_while():
            before = wakeups()
            time.sleep(0.5)
            return wakeups() - before
        self.gallery.ask(f"click {self.gallery.page(9)}.run 1")
        until(lambda: in_a_while() >= 4, "a wheel that turns")
        self.go_to(0)
        until(lambda: in_a_while() <= 1, "a wheel that sleeps")
        self.go_to(9)
        until(lambda: in_a_while() >= 4, "a wheel that turns again")

    def test_the_plain_chooser_takes_keys_and_the_pointer(self):
        folder = os.path.join(self.home.path, "plain")
        os.makedirs(os.path.join(folder, "sub"))
        for name in ("picture.png", "sub/deep.txt"):
            with open(os.path.join(folder, name), "w", encoding="ascii") as out:
                out.write("x")
        self.start()
        self.go_to(10)
        chosen = self.gallery.page(10, ".chosen")

        def choose(*keys):
            self.gallery.ask("click " + self.gallery.page(10, ".plain"))
            window = until(lambda: self.find("^Choose plainly$"), "its window")
            xdotool("windowfocus", "--sync", window)
            self.keys("Tab", "ctrl+a")
            xdotool("type", "--delay", "10", folder + "/")
            self.keys("Return", "shift+Tab", *keys)
            return window
        choose("s", "Return", "d", "Return", "Tab", "Return")
        self.gallery.until_state(chosen, "value", folder + "/sub/deep.txt")
        choose("Escape")
        self.gallery.until_state(chosen, "value", "cancelled")
        window = choose("p")
        self.picture()  # it rests
        xdotool("mousemove", "--window", window, "20", "38", "click", "1")
        self.keys("Tab", "Return")
        self.gallery.until_state(chosen, "value", folder + "/picture.png")

    def test_everything_fits_at_every_scale(self):
        for args in [(), ("-ppmm=8", "-TextSizeFactor=200"), ("-_DarkMode",)]:
            with self.subTest(args=args):
                self.start(*args)
                for index in range(len(PAGES)):
                    self.go_to(index)
                    page = self.gallery.page(index)
                    self.assertEqual(self.gallery.ask("checklayout " + page), "", PAGES[index])


if __name__ == "__main__":
    harness.main()

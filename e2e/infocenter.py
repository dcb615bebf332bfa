"""The information center, live: messages and their actions, connections present and past, the report and its file."""
import os
import re
import stat
import subprocess
import threading
import time

from harness import SLOW, UiTest, main, until, xdotool

TABS = "infocenterdlg.main.tabs"
STATUS = TABS + ".status."
ISSUES = STATUS + "layout.issues"
DETAILS = STATUS + "layout.issueframe.issuedetails."
TITLE = DETAILS + "headerFrame.issuetitle.title"
NUMBER = DETAILS + "headerFrame.issuetitle.number"
TEXT = DETAILS + "inset.insetLayout.scroll.issuetext"
RESOLVE = DETAILS + "inset.insetLayout.buttons.resolve"
CONNS = TABS + ".connections."
CONNLIST = CONNS + "connlist"
VALUES = CONNS + "detailsfr.detailslyt."
DISCONNECT = CONNS + "buttonlyt.disconnect"
PAST = CONNS + "history.pastlist"
DIAG = TABS + ".diagnostics."
REPORT = DIAG + "scroll.frame.diagnostics"
NAME = "saveDlg.mainLyt.name"
RULE = "-" * 47


class InfoCenter(UiTest):
    def opened(self, button="alert", mode="user", args=()):
        self.fake_opener()
        core = self.start(mode, args)
        self.open_dialog(core)
        core.ask("click statusdialog.header." + button)
        core.expect("ui: updateStatus")
        core.until_state("infocenterdlg", "shown", "1")
        return core

    def rows(self, core, ref):
        return [re.findall(r'"((?:[^"])*)"', line) for line in core.ask("listitems " + ref).splitlines() if ":" in line]

    def until_rows(self, core, ref, expected):
        until(lambda: self.rows(core, ref) == expected, f"{expected} in {ref}, which has {self.rows(core, ref)}")

    def users(self, core, ref=CONNLIST):
        return [row[0] for row in self.rows(core, ref)]

    def until_users(self, core, *names, ref=CONNLIST):
        until(lambda: self.users(core, ref) == list(names), f"{names} in {ref}, which has {self.users(core, ref)}")

    def label(self, core, ref):
        return core.state(ref).get("label", "")

    def focused(self):
        window = until(lambda: self.window("Information Center"), "the information center")
        xdotool("windowfocus", "--sync", window)

    # Messages

    def test_events_are_listed_the_worst_first_and_explained(self):
        core = self.opened()
        self.assertIn("working normally", self.label(core, STATUS + "header"))
        self.assertEqual(core.state(STATUS + "layout")["shown"], "0")
        core.say("event a 1 beta | description=One.%0aTwo.", "event b 1 Alpha | description=D | solution=",
                 "event c 2 zulu | description=E | solution=Do it.", "event d 0 info%e2%80%aereversed")
        self.until_rows(core, ISSUES, [["infoframe_error", "zulu"], ["infoframe_warning", "Alpha"],
                                       ["infoframe_warning", "beta"], ["infoframe_notify", "inforeversed"]])
        self.assertEqual(self.label(core, STATUS + "header"), "Select an issue to see an explanation.")
        # It had the first event selected when the others came in, and keeps it.
        self.assertEqual(core.state(ISSUES)["value"], "2")
        self.assertEqual(self.label(core, TITLE), "beta")
        self.assertEqual(self.label(core, NUMBER), "3 of 4")
        self.assertEqual(self.label(core, TEXT), "One. Two.")
        for row, text in ((0, "E  Do it."), (1, "D"), (3, "")):
            self.assertEqual(core.ask(f"select {ISSUES} {row}"), "1")
            self.assertEqual(self.label(core, TEXT), text)
        core.say("noevent a", "noevent b", "noevent c", "noevent d")
        core.until_state(STATUS + "layout", "shown", "0")
        self.assertEqual(self.label(core, TITLE), "")
        self.assertEqual(core.ask("checklayout infocenterdlg"), "")

    def test_the_selection_follows_the_title(self):
        core = self.opened()
        core.say("event a 1 Same | description=first", "event b 1 Same | description=second", "event c 1 Other")
        self.until_rows(core, ISSUES, [["infoframe_warning", t] for t in ("Other", "Same", "Same")])
        core.ask(f"select {ISSUES} 2")
        core.say("event z 2 New")  # the first of the two is taken up again
        until(lambda: len(self.rows(core, ISSUES)) == 4, "a fourth row")
        self.assertEqual(core.state(ISSUES)["value"], "2")
        core.say("noevent c")
        until(lambda: len(self.rows(core, ISSUES)) == 3, "three rows")
        self.assertEqual(core.state(ISSUES)["value"], "1")
        core.say("begin", "noevent a", "noevent b", "end")  # it is gone: the first row
        until(lambda: len(self.rows(core, ISSUES)) == 1, "one row")
        core.until_state(TITLE, "label", "New")
        self.assertEqual(core.state(ISSUES)["value"], "0")

    def test_actions_have_their_words_marks_and_rules(self):
        core = self.opened(mode="service")
        core.say("event a 0 a", "event b 0 b | recovery=1 | resolver=r | recFlags=1",
                 "event c 0 c | recovery=2 | resolver=r | recFlags=2", "event d 0 d | recovery=3",
                 "event e 0 e | recovery=4 | resolver=https://x.example/", "event f 0 f | recovery=5")
        until(lambda: len(self.rows(core, ISSUES)) == 6, "six rows")
        words = [("0", None, None), ("1", "Resolve", "shield"), ("1", "Resolve", None), ("1", "Resolve", "shield"),
                 ("1", "Launch web page", None), ("1", "Check for updates", None)]

        def enabled(row):
            core.ask(f"select {ISSUES} {row}")
            return core.state(RESOLVE)["enabled"] == "1"
        for row, (shown, label, image) in enumerate(words):
            self.assertTrue(enabled(row))
            state = core.state(RESOLVE)
            self.assertEqual(state["shown"], shown)
            if shown == "1":
                self.assertEqual((state["label"], state.get("image")), (label, image))
        core.ask(f"select {ISSUES} 2")
        core.say("corestatus 0 1 0 0 4000 0")  # no options: what goes with them is off, at once
        core.until_state(RESOLVE, "enabled", "0")
        self.assertEqual([enabled(row) for row in range(1, 6)], [True, False, False, True, True])
        core.ask(f"select {ISSUES} 3")
        self.assertEqual(core.ask("click " + RESOLVE), "0")
        core.say("corestatus 0 0 0 0 4000 0")
        core.until_state(RESOLVE, "enabled", "1")

    def test_an_action_goes_to_the_core_and_comes_back(self):
        core = self.opened()
        core.say("event page 0 Page | recovery=4 | resolver=https://help.example/one", "event other 0 X | recovery=5")
        until(lambda: len(self.rows(core, ISSUES)) == 2, "two rows")
        core.ask("click " + RESOLVE)
        core.expect('ui: resolveEvent "page"')
        self.assertEqual(self.addresses(core), ["https://help.example/one"])
        core.ask(f"select {ISSUES} 1")
        core.ask("click " + RESOLVE)
        core.expect('ui: resolveEvent "other"')  # what comes back opens nothing
        core.say("resolve nosuch", "event page2 0 Y | recovery=4 | resolver=https://help.example/two", "resolve page2")
        until(lambda: len(self.addresses(core)) == 2, "a second address")
        self.assertEqual(self.addresses(core)[1], "https://help.example/two")

    # Connections

    def test_connections_come_and_go_around_the_selection(self):
        core = self.opened("user")
        self.assertEqual(core.state(CONNS + "noconnslyt")["shown"], "1")
        self.assertEqual(core.ask("click " + DISCONNECT), "0")
        long_name = "n" * 255
        core.say("connect ann 1.1.1.1::1 Named f", "connect x%e2%80%ae%0ay 2.2.2.2::2 Named d!c",
                 "connect g 3.3.3.3::3 Guest v", f"connect {long_name} 4.4.4.4::4 Named k", "connect z 5.5.5.5::5 Named F")
        self.until_rows(core, CONNLIST, [["ann", "1.1.1.1::1", "Administrative"], ["x y", "2.2.2.2::2", "Custom (d!c)"],
                                         ["ZEF guest user", "3.3.3.3::3", "View-only"],
                                         [long_name, "4.4.4.4::4", "Custom (k)"], ["z", "5.5.5.5::5", "Custom (F)"]])
        self.assertEqual([core.state(CONNS + e)["shown"] for e in ("noconnslyt", "connlist", "detailsfr", "history")],
                         ["0", "1", "1", "0"])
        self.assertEqual(core.state(DISCONNECT)["enabled"], "0")
        core.ask(f"select {CONNLIST} 2")
        self.assertEqual([self.label(core, VALUES + v + ".value") for v in ("user", "addr", "perms")],
                         ["ZEF guest user", "3.3.3.3::3", "View-only"])
        core.say("disconnect ann")  # above: the selection moves along
        self.until_users(core, "x y", "ZEF guest user", long_name, "z")
        self.assertEqual(core.state(CONNLIST)["value"], "1")
        core.say("disconnect z")  # below: it stays
        self.until_users(core, "x y", "ZEF guest user", long_name)
        self.assertEqual(core.state(CONNLIST)["value"], "1")
        core.ask("click " + DISCONNECT)  # itself: the row above
        core.expect('ui: disconnClient "3" "demo"')
        self.until_users(core, "x y", long_name)
        self.assertEqual(core.state(CONNLIST)["value"], "0")
        self.assertEqual(self.label(core, VALUES + "user.value"), "x y")
        core.ask("click " + DISCONNECT)  # the first row: none above
        core.expect('ui: disconnClient "2" "demo"')
        self.until_users(core, long_name)
        self.assertEqual(core.state(CONNLIST)["value"], "-1")
        self.assertEqual(core.state(DISCONNECT)["enabled"], "0")
        core.ask(f"select {CONNLIST} 0")
        core.say("disconnect " + long_name)
        core.until_state(CONNS + "noconnslyt", "shown", "1")
        self.assertEqual(core.state(DISCONNECT)["enabled"], "0")
        self.until_users(core, long_name, "x y", "ZEF guest user", "z", "ann", ref=PAST)
        self.assertEqual(core.ask("checklayout infocenterdlg"), "")

    def test_who_was_here_is_kept_while_the_window_is_closed(self):
        core = self.opened("user")
        core.ask("close infocenterdlg")
        core.say("connect here 9.9.9.9::9 Named f")
        for i in range(103):
            core.say(f"connect u{i} 1.1.1.{i}::1 Named v", f"disconnect u{i}")
        core.ask("click statusdialog.header.user")
        self.until_users(core, "here")
        self.until_users(core, *[f"u{i}" for i in range(102, 2, -1)], ref=PAST)  # a hundred, the newest first
        self.assertRegex(self.rows(core, PAST)[0][3], r"^\d+ seconds?$")
        core.say("connect late 1.1.1.1::1 Named v")
        self.until_users(core, "here", "late")
        time.sleep(2 * SLOW)
        core.say("disconnect late")
        until(lambda: self.users(core, PAST)[0] == "late", "the newest entry")
        self.assertRegex(self.rows(core, PAST)[0][3], r"^([2-9]|\d\d) seconds$")

    # Diagnostics

    def display_section(self, text):
        facts = subprocess.run(["xdpyinfo"], capture_output=True, text=True, check=True).stdout
        size = re.search(r"dimensions:\s+(\d+)x(\d+) pixels", facts)
        desktop = re.search(r"Desktop environment: (.*)\n", text).group(1)
        return (f"Display\n{RULE}\n- Displays Connected: 1\n- Display 1\n    - DisplayDevice ID: screen\n"
                f"    - Description: Unknown\n    - 32 Bits Per Pixel\n"
                f"    - Resolution: {size.group(1)} x {size.group(2)}\n    - Origin: (0,0)\n"
                f"X Server Release {re.search(r'vendor release number: +(.*)', facts).group(1)}, "
                f"{re.search(r'vendor string: +(.*)', facts).group(1)}\nDesktop environment: {desktop}\n\n")

    def save_as(self, core, path, replace=False):
        """Saves and closes the box that says how it went; gives its words."""
        core.ask("click " + DIAG + "buttons.save")
        core.until_state("saveDlg", "shown", "1")
        self.assertEqual(core.ask(f"settext {NAME} {path}"), "1")
        # Where the file is there already, a question blocks the reply.
        press = threading.Thread(target=core.ask, args=["click saveDlg.buttons.save"])
        press.start()
        if replace:
            core.until_state("messagebox.buttons.yes", "shown", "1")
            core.ask("click messagebox.buttons.yes")
        press.join()
        core.until_state("messagebox.buttons.ok", "shown", "1")
        words = "info" if "main.frame.split.info" in core.ask("lists messagebox") else "msg"
        told = self.label(core, "messagebox.main.frame.split." + words)
        core.ask("click messagebox.buttons.ok")
        until(lambda: "messagebox" not in core.ask("dialogs"), "the box gone")
        return told

    def saved(self, core, path, replace=False):
        self.assertEqual(self.save_as(core, path, replace), "Diagnostics file saved successfully.")
        self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o600)
        with open(path, encoding="utf-8") as text:
            return text.read()

    def test_the_report_is_exact_and_saved_as_it_is_shown(self):
        core = self.opened()
        self.assertEqual(core.ask(f"select {TABS} 2"), "1")
        path = os.path.join(self.home.path, "report.txt")
        text = self.saved(core, path)
        self.assertEqual(text, "No diagnostics available from server\n\n" + self.display_section(text))
        self.assertEqual(self.label(core, REPORT), text.replace("\n", " "))
        core.say("begin", "text Dgn", "text Dgn/b Network", "text Dgn/b/1 Port%e2%80%ae 5900", "text Dgn/b/2   two%0alines%0a",
                 "node Dgn/b/3 0 other=x", "text Dgn/empty Nothing below", "node Dgn/untold 0 other=x",
                 "text Dgn/untold/1 never", "end",
                 "event w 1 A warning | description=Why%1b[2J. | solution=How.", "event i 0 An info | solution=")
        until(lambda: "A warning" in self.label(core, REPORT), "the events in the report")
        text = self.saved(core, path, replace=True)
        self.assertEqual(text, f"Network\n{RULE}\nPort 5900\ntwo\nlines\n\n\n" + self.display_section(text) +
                         f"\nIssues\n{RULE}\n## Info ##\nAn info\n\n\n\n\n## Warning ##\nA warning\n\nWhy[2J.\n\nHow.\n")
        self.assertEqual(self.label(core, REPORT), text.replace("\n", " "))
        self.assertEqual([f for f in os.listdir(self.home.path) if f.startswith("report")], ["report.txt"])

    def test_a_file_that_cannot_be_written_is_told_and_loses_nothing(self):
        core = self.opened()
        self.assertEqual(core.ask(f"select {TABS} 2"), "1")
        path = os.path.join(self.home.path, "kept.txt")
        with open(path, "w", encoding="utf-8") as out:
            out.write("precious")
        os.mkdir(path + ".tmp")  # in the way of the new file, whoever asks
        core.ask("click " + DIAG + "buttons.save")
        core.until_state("saveDlg", "shown", "1")
        self.assertRegex(core.ask("state " + NAME), r"velthar-server-status-\d{4}-\d\d-\d\d\.txt")
        core.ask("click saveDlg.buttons.cancel")
        core.until_state("saveDlg", "shown", "0")
        self.assertRegex(self.save_as(core, path, replace=True), f"could not be saved.*{path}")
        self.assertIn("The report was not saved", core.stderr())
        with open(path, encoding="utf-8") as text:
            self.assertEqual(text.read(), "precious")
        self.saved(core, os.path.join(self.home.path, "fine.txt"))  # the window works on

    def test_the_language_is_told_to_those_who_read_another(self):
        for locale, told in (("en_GB", False), ("de", True), ("pt_BR", True)):
            core = self.opened(args=["-Locale=" + locale])
            self.assertEqual("lang" in core.ask("lists " + DIAG[:-1]), told, locale)
            core.end()

    def test_the_refresh_button_rests_after_a_press(self):
        core = self.opened()
        core.ask(f"select {TABS} 2")
        refresh = DIAG + "buttons.refresh"
        self.assertEqual(core.state(refresh)["shown"], "0")
        core.say("cloudrefresh 1")
        core.until_state(refresh, "shown", "1")
        self.assertGreater(int(core.state(refresh)["size"].split(",")[0]), 0)
        self.assertEqual(core.ask("click " + refresh), "1")
        core.expect("ui: refreshCloudStatus")
        self.assertEqual(core.state(refresh)["enabled"], "0")
        core.until_state(refresh, "enabled", "1")
        core.say("cloudrefresh 0")
        core.until_state(refresh, "shown", "0")

    # All of it

    def test_keys_alone_do_it_all(self):
        core = self.opened()
        core.say("event a 2 One | recovery=1 | resolver=r", "event b 1 Two | recovery=1 | resolver=r")
        until(lambda: len(self.rows(core, ISSUES)) == 2, "two rows")
        core.ask("click statusdialog.header.alert")
        self.focused()
        self.keys("Down")
        core.until_state(TITLE, "label", "Two")
        self.keys("Return")  # to the action, which takes a key of its own
        self.keys("space")
        core.expect('ui: resolveEvent "b"')
        core.say("connect ann 1.1.1.1::1 Named f", "connect bob 2.2.2.2::2 Named f")
        self.until_users(core, "ann", "bob")
        self.keys("ctrl+Prior")
        core.until_state(CONNLIST, "shown", "1")
        until(lambda: core.state(TABS).get("value", "0") == "0", "the connections")
        core.ask("click statusdialog.header.user")
        self.focused()
        self.keys("End", "Return", "space")
        core.expect('ui: disconnClient "2" "demo"')
        self.keys("Escape")
        core.until_state("infocenterdlg", "shown", "0")

    def test_five_hundred_of_each_and_it_still_answers(self):
        core = self.opened()
        core.say("begin", *[f"event e{i:03} {i % 3} Event {i:03} | description=d" for i in range(500)], "end")
        core.say(*[f"connect user{i:03} 10.0.0.1::{i} Named f" for i in range(500)])
        until(lambda: len(self.rows(core, ISSUES)) == 500, "500 events", 30)
        until(lambda: len(self.rows(core, CONNLIST)) == 500, "500 connections", 30)
        core.ask(f"select {ISSUES} 499")
        core.until_state(TITLE, "label", "Event 498")
        core.say("disconnect user250")
        until(lambda: len(self.rows(core, CONNLIST)) == 499, "one less")

    def test_an_event_that_cannot_be_ends_the_link(self):
        for bad in ("recovery=9", "recovery=1", "recovery=x"):
            core = self.opened()
            core.say("event good 0 Good", "event bad 0 Bad | " + bad)
            core.expect("link lost, ui exited 0")
            core.end()

    def test_the_core_dies_whatever_is_open(self):
        def nothing(core):
            core.say("event a 2 One", "connect ann 1.1.1.1::1 Named f")

        def file_dialog(core):
            core.ask("click " + DIAG + "buttons.save")
            core.until_state("saveDlg", "shown", "1")

        def message_box(core):
            file_dialog(core)
            core.ask(f"settext {NAME} {self.home.path}/x.txt")
            core.ask("click saveDlg.buttons.save")
            core.until_state("messagebox.buttons.ok", "shown", "1")
        for prepare in (nothing, file_dialog, message_box):
            core = self.opened()
            core.ask(f"select {TABS} 2")
            prepare(core)
            core.say("close", "exited 10000")
            core.expect("ui exited 0")
            core.end()


main()

"""The status dialog, live: what it shows, what it paints, keys, pointer, closing, and its silence at rest."""
import os
import re
import subprocess
import time

from harness import CORE, SLOW, UiTest, main, until, until_asleep, xdotool

HEADER = "statusdialog.header."
CONN = "statusdialog.main.connectivity."
SEC = "statusdialog.main.security."


class StatusDialog(UiTest):
    def opened(self, mode="service", args=(), core_args=()):
        self.fake_opener()
        core = self.start(mode, args, core_args)
        window = self.open_dialog(core)
        return core, window

    def fill(self, core):
        core.say("begin", "text Dlg/Banner Velthar Server", "text Dlg/Banner/HasMode", "text Dlg/Conn",
                 "text Dlg/Conn/a 192.168.4.17", "text Dlg/Signature 2c-7f", "text Dlg/Catchphrase Calm otter.",
                 "text Dlg/Authentication ZefAuth", "text Dlg/CanChangePassword", "text Dlg/ConnOther",
                 "node Dlg/ConnOther/0 0 text=one", "node Dlg/ConnOther/1 1 text=two", "end")
        core.until_state(CONN + "connText", "label", "192.168.4.17")

    def focus(self, window):
        xdotool("windowfocus", "--sync", window)

    def test_every_node_shows_at_once(self):
        core, _ = self.opened()
        core.until_state(CONN + "connText", "label", "No connectivity")
        self.assertEqual(core.state(CONN + "connDetail")["enabled"], "1")
        self.fill(core)
        core.until_state(HEADER + "text", "label", "Velthar Server - Service Mode")
        self.assertIn("element Text", core.ask("state " + CONN + "connDetail"))
        self.assertIn("https://www.velthar.example/download/viewer/", core.ask("state " + CONN + "connDetail"))
        core.until_state(SEC + "authentication", "label", "ZEF Device Password")
        self.assertIn("app://changezefauthpassword", core.ask("state " + SEC + "change"))
        core.say("text Dlg/Authentication None")
        core.until_state(SEC + "authentication", "label", "None")
        self.assertIn("app://options/security", core.ask("state " + SEC + "change"))
        core.say("text Dlg/Authentication Certificate")
        core.until_state(SEC + "change", "shown", "0")
        core.say("text Dlg/Authentication Some+Thing")
        core.until_state(SEC + "authentication", "label", "Some+Thing")
        core.say("text Dlg/FooterHtml <b>23</b> days remain")
        core.until_state("statusdialog.footerFrame", "shown", "1")
        core.say("remove Dlg/FooterHtml")
        core.until_state("statusdialog.footerFrame", "shown", "0")
        core.say("remove Dlg/Signature")
        core.until_state(SEC + "signature", "shown", "0")
        core.say("remove Dlg/Conn")
        core.until_state(CONN + "connText", "label", "No connectivity")

    def test_events_and_users_change_the_buttons(self):
        core, _ = self.opened()
        self.assertEqual(core.state(HEADER + "alert")["image"], "sdOkay")
        core.say("event a 1 A warning")
        core.until_state(HEADER + "alert", "image", "sdWarning")
        core.say("event b 2 An error")
        core.until_state(HEADER + "alert", "image", "sdError")
        core.say("noevent b", "noevent a")
        core.until_state(HEADER + "alert", "image", "sdOkay")
        for word in ("alert", "user"):
            core.ask("click " + HEADER + word)
            core.expect("ui: updateStatus")

    def test_other_ways_fold_and_need_two(self):
        core, _ = self.opened()
        core.say("text Dlg/ConnOther", "text Dlg/ConnOther/0 one")
        core.until_state(CONN + "connText", "shown", "1")
        self.fill(core)
        height = lambda: int(core.state("statusdialog")["size"].split(",")[1])
        folded = height()
        self.assertEqual(core.ask("click " + CONN + "otherWaysBtn"), "1")
        until(lambda: height() > folded, "a taller window")
        self.assertEqual(core.ask("click " + CONN + "arrowBtn"), "1")
        until(lambda: height() == folded, "the old height")
        self.assertEqual(core.ask("checklayout statusdialog"), "")

    def paints(self, core):
        return len(re.findall(r"TXWParent: paint ", core.stderr()))

    def test_a_commit_that_changes_nothing_paints_nothing(self):
        core, _ = self.opened(args=["-Log=*:stderr:10,TXWParent:stderr:110"])
        self.fill(core)

        # What changes before the window is first exposed is painted with that, and makes no pass of its own.
        def change():
            core.say("text Dlg/Signature 2c-7e", "text Dlg/Signature 2c-7f")
            time.sleep(0.2)
            return self.paints(core) > 0
        until(change, "a paint")
        time.sleep(0.5 * SLOW)
        before = self.paints(core)
        core.say("commit", "commit", "text Dlg/Signature 2c-7f", "node Dlg/Unknown 0 x=y", "privacy 1")
        core.ask("version")
        time.sleep(0.5 * SLOW)
        self.assertEqual(self.paints(core), before)

    def test_ten_thousand_writes_in_a_batch_are_one_paint(self):
        core, _ = self.opened(args=["-Log=*:stderr:10,TXWParent:stderr:110"])
        self.fill(core)
        time.sleep(0.5 * SLOW)
        before = self.paints(core)
        core.say("flood 10000", "sleep 10")
        until(lambda: self.paints(core) > before,
              "the last write")
        time.sleep(0.5 * SLOW)
        self.assertEqual(self.paints(core), before + 1)

    def test_it_sleeps_when_nothing_happens(self):
        core, _ = self.opened()
        self.fill(core)
        time.sleep(5 * SLOW)  # the fallback timer of the start is over
        until_asleep(core.ui_pid())

    def test_keys_alone_reach_every_button_and_link(self):
        core, window = self.opened()
        self.fill(core)
        self.focus(window)
        seen = set()
        core.forget()
        for _ in range(14):
            self.keys("Tab")
            self.keys("Return")
            time.sleep(0.15 * SLOW)
            core.read()
            if any(line.startswith("ui: updateStatus") for line in core.lines):
                seen.add("button")
                core.lines.clear()
            if core.state(CONN + "otherWays")["shown"] == "1":
                seen.add("list")
            # What a button has opened took the keys.
            core.ask("close infocenterdlg")
            self.keys("Escape")
            self.focus(window)
        self.assertIn("https://www.velthar.example/download/viewer/", self.addresses(core))
        self.assertEqual(seen, {"button", "list"})

    def test_the_focus_can_be_seen(self):
        _, window = self.opened()
        self.focus(window)
        def picture():
            return subprocess.run(["import", "-window", window, "rgb:-"], capture_output=True, check=True).stdout
        time.sleep(0.3 * SLOW)
        pictures = []
        for _ in range(3):
            pictures.append(picture())
            self.keys("Tab")
            time.sleep(0.3 * SLOW)
        self.assertEqual(len(set(pictures)), 3)

    def test_the_pointer_presses_and_gets_a_tooltip(self):
        core, window = self.opened()
        pos = [int(v) for v in core.state("statusdialog")["pos"].split(",")]
        size = [int(v) for v in core.state(HEADER + "alert")["size"].split(",")]
        info = subprocess.run(["xwininfo", "-id", window], capture_output=True, text=True, check=True).stdout
        left = int(re.search(r"Absolute upper-left X: +(-?\d+)", info)[1])
        top = int(re.search(r"Absolute upper-left Y: +(-?\d+)", info)[1])
        self.assertEqual(pos, [left, top])
        width = int(core.state("statusdialog")["size"].split(",")[0])
        # The buttons stand in a row at the right end of the header: alert is the third from the right.
        x = left + width - 9 - 3 * size[0] - 2 * 8 + size[0] // 2
        y = top + 5 + size[1] // 2
        core.forget()
        before = self.window_count()
        xdotool("mousemove", x, y)
        until(lambda: self.window_count() > before, "a tooltip")
        xdotool("click", "1")
        core.expect("ui: updateStatus")

    def window_count(self):
        tree = subprocess.run(["xwininfo", "-root", "-children"], capture_output=True, text=True, check=True).stdout
        return len(re.findall(r"^\s+0x", tree, re.M))

    def test_closing_and_opening_again(self):
        core, _ = self.opened(mode="user")
        core.say("corestatus 2 0 0 0 4000 0")  # no icon wanted: closing hides
        core.say("sleep 100")
        until(lambda: core.ask("close statusdialog") == "1", "the close")
        core.until_state("statusdialog", "shown", "0")
        core.say("showstatus")
        core.until_state("statusdialog", "shown", "1")
        until(self.window, "the window")

    def test_closing_may_ask_to_stop_the_server(self):
        core, _ = self.opened(mode="user")
        core.say("corestatus 0 0 0 1 4000 0")
        core.say("sleep 100")
        until(lambda: core.ask("close statusdialog") == "0" and "messagebox" in core.ask("dialogs"), "the question")
        # The window manager may not have given it its size yet.
        until(lambda: core.ask("checklayout messagebox") == "", "a question that fits")
        self.assertEqual(core.ask("click messagebox.buttons.no"), "1")
        self.assertEqual(core.state("statusdialog")["shown"], "1")
        core.ask("close statusdialog")
        self.assertEqual(core.ask("click messagebox.buttons.yes"), "1")
        core.expect("ui: quit")

    def test_in_service_mode_the_core_is_run_to_stop_it(self):
        elevate = os.path.join(self.home.path, "elevate")  # root needs none
        with open(elevate, "w", encoding="utf-8") as out:
            out.write('#!/bin/sh\nexec "$@"\n')
        os.chmod(elevate, 0o755)
        core, _ = self.opened(mode="service", args=["-Log=*:stderr:30", f"-ElevateCmd={elevate}"])
        core.say("corestatus 0 0 0 1 4000 0", "sleep 100")

        def stop(exe):
            core.say("serverexe " + exe, "echo told")
            core.expect("told")
            self.assertEqual(core.ask("version"), "1")
            until(lambda: core.ask("close statusdialog") == "0" and "messagebox" in core.ask("dialogs"), "the question")
            self.assertEqual(core.ask("click messagebox.buttons.yes"), "1")

        stop("/nonexistent/core")
        until(lambda: "Failed to quit server: /nonexistent/core does not exist or is not executable" in core.stderr(),
              "the failure")
        self.assertEqual(core.state("statusdialog")["shown"], "1")
        stop("/bin/false")
        until(lambda: "The server was not stopped: status 1" in core.stderr(), "the refusal")
        self.assertEqual(core.state("statusdialog")["shown"], "1")
        stop(CORE)
        core.expect("stop requested")
        core.expect("link lost, ui exited 0")

    def test_the_window_says_who_it_is(self):
        core, window = self.opened()
        props = subprocess.run(["xprop", "-id", window], capture_output=True, text=True, check=True).stdout
        self.assertIn(f"_NET_WM_PID(CARDINAL) = {core.ui_pid()}", props)
        self.assertRegex(props, r'_NET_WM_NAME\(UTF8_STRING\) = "Velthar Server"')
        self.assertRegex(props, r'WM_CLASS\(STRING\) = .*zefserverui')
        self.assertIn("_NET_WM_ICON(CARDINAL)", props)
        self.assertIn("program specified minimum size: 780 by ", props)
        self.assertRegex(props, r"WM_PROTOCOLS\(ATOM\): protocols +.*WM_DELETE_WINDOW")

    def test_ten_thousand_children_come_in(self):
        core, _ = self.opened()
        core.say("children 10000 Many", "wait nothing 1")
        core.expect("error: no nothing came", 60)
        self.assertEqual(core.ask("version"), "1")

    def test_the_window_manager_may_close_it(self):
        core, window = self.opened(mode="user")
        core.say("corestatus 2 0 0 0 4000 0", "sleep 100")
        core.until_state("statusdialog", "shown", "1")
        time.sleep(0.3 * SLOW)
        self.focus(window)
        self.keys("alt+F4")  # openbox sends WM_DELETE_WINDOW
        core.until_state("statusdialog", "shown", "0")


if __name__ == "__main__":
    main()

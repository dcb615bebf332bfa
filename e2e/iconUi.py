"""The icon of the whole program: the core, the UI, its helper and a real tray."""
import os
import re
import shutil
import signal
import subprocess
import time
import unittest

from harness import SLOW, UiTest, main, until, until_asleep, xdotool
from trays import GTKS, Trays


class IconUi(Trays, UiTest):
    """In virtual mode, whose inspection socket holds the display's number."""

    def setUp(self):
        super().setUp()
        self.set_up_trays()

    def tearDown(self):
        super().tearDown()
        self.tear_down_trays()

    def ui(self, *args):
        core = self.start("virtual", args=["-Log=*:stderr:30", *args])
        core.expect("ui: desktopEnv")
        return core

    def helper_pid(self, core, other_than=None):
        def look():
            found = subprocess.run(["pgrep", "-P", str(core.ui_pid()), "-f", "statusicon"], capture_output=True,
                                   text=True, check=False).stdout.split()
            return next((int(pid) for pid in found if int(pid) != other_than), None)
        return until(look, "a helper", 15)

    def until_shown(self, core, on=True):
        """The UI was told so last."""
        def look():
            found = re.findall(r"changed \(shown=(\d)\)", core.stderr())
            return found and found[-1] == str(int(on))
        try:
            until(look, f"shown {on}")
        except AssertionError as failure:
            raise AssertionError(f"{failure}: {core.stderr()}") from None

    def states(self, pid):
        """The letters of the states of its children."""
        return subprocess.run(["ps", "-o", "stat=", "--ppid", str(pid)], capture_output=True, text=True,
                              check=False).stdout.split()

    def test_the_icon_leads_to_the_dialog_and_its_menu_to_the_rest(self):
        self.trayer()
        core = self.ui()
        self.until_shown(core)
        window = self.icon_window(self.helper_pid(core))
        self.assertIsNone(self.window())
        self.click(window, 1)
        until(self.window, "the dialog")
        self.click(window, 3)
        menu = until(self.menu_windows, "the menu")
        xdotool("key", "Down", "Down", "Return")
        until(lambda: "infocenter" in core.ask("dialogs").lower(), "the information center")
        until(lambda: not self.menu_windows(), "the end of the menu")
        self.assertTrue(menu)

    def test_over_d_bus_without_gtk(self):
        self.bus()
        watcher = self.watcher()
        self.without_libraries(*GTKS)
        core = self.ui()
        self.until_shown(core)
        self.assertNotIn("libgtk", self.mapped(self.helper_pid(core)))
        watcher.ask("item", "Activate")
        until(self.window, "the dialog")
        labels = until(lambda: [p.get("label") for _, p, _ in watcher.ask("layout")[1][2]], "the menu")
        self.assertEqual(labels[0], "Open...")
        item = watcher.ask("layout")[1][2][labels.index("About...")]
        watcher.ask("event", str(item[0]))
        until(lambda: "aboutdlg" in core.ask("dialogs"), "the About dialog")

    def test_a_tray_that_goes_leaves_a_way_back(self):
        tray = self.trayer()
        core = self.ui()
        self.until_shown(core)
        self.open_dialog(core)
        core.ask("menu moreMenu invoke Hide")
        until(lambda: not self.window(), "the dialog away")
        self.assertEqual(core.state("statusdialog")["shown"], "0")
        self.end_tray(tray)
        self.until_shown(core, on=False)
        until(lambda: core.state("statusdialog")["shown"] == "1", "an icon of the window manager")
        self.trayer()
        self.until_shown(core)
        until(lambda: core.state("statusdialog")["shown"] == "0", "the dialog hidden behind the icon")

    def test_the_helper_dies_and_comes_back(self):
        self.trayer()
        core = self.ui()
        self.until_shown(core)
        pid = self.helper_pid(core)
        for sign in (signal.SIGKILL, signal.SIGSEGV):
            os.kill(pid, sign)
            pid = self.helper_pid(core, other_than=pid)
            self.icon_window(pid)
            self.assertNotIn("Z", "".join(self.states(core.ui_pid())))
        self.click(self.icon_window(pid), 1)
        until(self.window, "the dialog")

    def test_the_core_dies_with_the_menu_open(self):
        self.trayer()
        core = self.ui()
        self.until_shown(core)
        helper, ui = self.helper_pid(core), core.ui_pid()
        self.click(self.icon_window(helper), 3)
        until(self.menu_windows, "the menu")
        core.process.send_signal(signal.SIGKILL)
        core.process.wait()
        for pid in (ui, helper):
            until(lambda gone=pid: not os.path.exists(f"/proc/{gone}"), "the end")
        self.assertEqual(core.errors(), [])
        self.assertIn("Stopping", core.stderr())

    @unittest.skipUnless(shutil.which("strace"), "no strace")
    def test_neither_process_wakes_while_nothing_happens(self):
        self.trayer()
        core = self.ui("-_MuiComms=0")  # other tests knock at every inspection socket
        self.until_shown(core)
        time.sleep(6 * SLOW)  # what follows a start: five scans of the desktop, the wait for an icon
        until_asleep(core.ui_pid(), self.helper_pid(core), calls=r"(select|poll)\w*\(")


if __name__ == "__main__":
    main()

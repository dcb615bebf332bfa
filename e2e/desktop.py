"""Which desktop runs: real window managers that come and go, and windows that claim to be a desktop's."""
import os
import re
import signal
import subprocess
import time

from harness import SLOW, Server, UiTest, main, until, until_asleep


class Desktop(UiTest):
    """In virtual mode, whose inspection socket holds the display's number."""

    def setUp(self):
        super().setUp()
        self.server = Server()
        self.home.env["DISPLAY"] = self.server.display
        self.others = []

    def tearDown(self):
        super().tearDown()
        for process in self.others:
            process.kill()
            process.wait()
        self.server.kill()

    def launch(self, *command, env=None):
        process = subprocess.Popen(command, env=self.server.env(env), stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.others.append(process)
        return process

    def fake(self, name, pid=None):
        """A window of that instance name; gives its id."""
        self.launch("xclock", "-name", name, "-geometry", "40x40")
        window = until(lambda: self.server.run("xdotool", "search", "--classname", f"^{name}$").split(), name)[-1]
        if pid is not None:
            self.server.run("xprop", "-id", window, "-f", "_NET_WM_PID", "32c", "-set", "_NET_WM_PID", str(pid))
        return window

    def ui(self, *args):
        return self.start("virtual", args=["-Log=*:stderr:0,DesktopEnvironment:stderr:30", *args])

    def expect_kind(self, core, name):
        core.expect(f'ui: desktopEnv "{name}"')

    def test_managers_come_and_go(self):
        core = self.ui()
        self.expect_kind(core, "None")
        core.say("showstatus")
        until(self.window, "the window")
        for manager in (("openbox", "--sm-disable"), ("twm",), ("openbox", "--sm-disable")):
            self.server.manage(*manager)
            self.expect_kind(core, "TWM-compatible")
            time.sleep(0.5 * SLOW)  # it frames our window
            self.server.unmanage()
            self.expect_kind(core, "None")
        log = core.stderr()
        self.assertEqual(log.count("Detected None"), 4, log)
        self.assertEqual(log.count("Detected TWM-compatible"), 3, log)
        self.assertEqual(core.ask("version"), "1")

    def test_a_desktop_is_known_by_its_windows(self):
        bus = "unix:path=/tmp/" + os.path.basename(self.home.path)
        session = self.launch("sleep", "600", env={**os.environ, "DBUS_SESSION_BUS_ADDRESS": bus})
        self.server.manage("openbox", "--sm-disable")
        self.fake("xfce4-session", session.pid)
        core = self.ui()
        self.expect_kind(core, "XFCE")
        until(lambda: "DBus address: " + bus in core.stderr(), "the bus address")
        # The greater one wins, also in the frame of a manager; the address of a stranger is of no use.
        self.fake("plasma-desktop", 1)
        self.server.unmanage()
        self.server.manage("openbox", "--sm-disable")
        self.expect_kind(core, "KDE Plasma")
        self.assertEqual(set(re.findall("DBus address: (.*)", core.stderr())), {bus})

    def test_names_that_are_none(self):
        self.server.manage("openbox", "--sm-disable")
        for i, (kind, value) in enumerate((("8s", "x" * 100000), ("32c", "1735290733"), ("16c", "103,110"),
                                           ("8u", "gnome-shell"))):
            window = self.fake(f"nobody{i}", 2 ** 31)
            self.server.run("xprop", "-id", window, "-f", "WM_CLASS", kind, "-set", "WM_CLASS", value)
        core = self.ui()
        self.expect_kind(core, "TWM-compatible")
        self.assertEqual(core.ask("version"), "1")

    def test_after_a_change_it_rests_again(self):
        core = self.ui("-_MuiComms=0")  # other tests knock there to see whose it is
        self.expect_kind(core, "None")
        self.server.manage("openbox", "--sm-disable")
        self.expect_kind(core, "TWM-compatible")
        time.sleep(6 * SLOW)  # the scans that follow a change, and what the icon waits for
        until_asleep(core.ui_pid())

    def test_managers_in_quick_succession(self):
        core = self.ui()
        self.expect_kind(core, "None")
        core.say("showstatus")
        for _ in range(8):
            self.server.manage("openbox", "--sm-disable")
            self.server.unmanage()
        self.server.manage("openbox", "--sm-disable")
        until(lambda: self.last_known(core) == "TWM-compatible", "the last one")
        self.server.unmanage()
        until(lambda: self.last_known(core) == "None", "its end")
        self.assertEqual(core.ask("version"), "1")

    def helpers(self, core):
        return subprocess.run(["pgrep", "-P", str(core.ui_pid())], capture_output=True, text=True,
                              check=False).stdout.split()

    def test_a_helper_that_dies_is_started_again(self):
        self.server.manage("openbox", "--sm-disable")
        core = self.ui()
        self.expect_kind(core, "TWM-compatible")
        core.say("showstatus")
        core.until_state("statusdialog", "shown", "1")
        for number in (signal.SIGKILL, signal.SIGSEGV):
            old = until(lambda: self.helpers(core), "a helper")
            os.kill(int(old[0]), number)
            until(lambda old=old: self.helpers(core) not in ([], old), "another helper", 20)
            self.assertEqual(len(self.helpers(core)), 1)  # the old one left no zombie
        self.assertEqual(core.state("statusdialog")["shown"], "1")
        family = [core.ui_pid(), *self.helpers(core)]
        core.process.kill()  # and with the core all ends
        core.process.wait()
        for pid in family:
            until(lambda pid=pid: not os.path.exists(f"/proc/{pid}"), "the end")

    def last_known(self, core):
        core.read()
        known = [line for line in core.lines if line.startswith("ui: desktopEnv ")]
        return known[-1].split('"')[1] if known else None


if __name__ == "__main__":
    main()

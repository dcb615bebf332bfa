"""X servers that lack things, that show few colours, and that die.

In virtual mode the name of the inspection socket holds the display's number: these tests disturb no others.
"""
import os
import random
import re
import signal
import subprocess
import time

from harness import SLOW, Server, UiTest, main, until

HEADER = "statusdialog.header."
SCREEN = ("-screen", "0", "1024x768x24")


class WithServer(UiTest):
    def setUp(self):
        super().setUp()
        self.server = None

    def tearDown(self):
        super().tearDown()
        if self.server:
            self.server.kill()

    def on_server(self, options=SCREEN, manager=()):
        if self.server:
            self.server.kill()
        self.server = Server(options, manager)
        self.home.env["DISPLAY"] = self.server.display


class Lacking(WithServer):
    """The same dialog everywhere, as far as colours reach."""

    def picture(self, options, env=None):
        self.on_server(options)
        self.home.env.update(env or {})
        core = self.start("virtual", args=["-Log=*:stderr:0"])
        for name in env or {}:
            del self.home.env[name]
        window = self.open_dialog(core)
        core.say("begin", "text Dlg/Banner Velthar Server", "text Dlg/Conn", "text Dlg/Conn/a 192.168.4.17",
                 "text Dlg/Signature 2c-7f", "text Dlg/Catchphrase Calm otter.", "text Dlg/Authentication ZefAuth",
                 "end")
        core.until_state("statusdialog.main.connectivity.connText", "label", "192.168.4.17")
        self.assertEqual(core.ask("checklayout statusdialog"), "")
        # Another dialog on top and away again: what was covered is painted anew.
        self.assertEqual(core.ask("click " + HEADER + "alert"), "1")
        core.until_state("infocenterdlg", "shown", "1")
        core.ask("close infocenterdlg")
        core.until_state("infocenterdlg", "shown", "0")

        def take():
            return subprocess.run(["import", "-window", window, "-depth", "8", "rgb:-"], env=self.server.env(),
                                  capture_output=True, check=True).stdout
        pictures = [take()]

        def rests():
            time.sleep(0.1)
            pictures.append(take())
            return pictures[-1] == pictures[-2]
        until(rests, "a picture that rests")
        # GTK in the icon's helper may complain of what is lacking.
        self.assertEqual([line for line in core.stderr().splitlines() if not line.startswith("Xlib:  extension")], [])
        core.say("close")
        core.expect("link lost, ui exited 0")
        return pictures[-1]

    def difference(self, a, b):
        self.assertEqual(len(a), len(b))
        return sum(abs(x - y) for x, y in zip(a, b)) / len(a)

    def test_what_is_lacking_makes_no_difference(self):
        libraries = os.path.join(self.home.path, "lib")
        os.mkdir(libraries)
        for name in ("libXi.so.6", "libXrandr.so.2", "libXfixes.so.3", "libXfixes.so.2", "libXfixes.so.1"):
            with open(os.path.join(libraries, name), "w", encoding="utf-8") as out:
                out.write("no library")
        whole = self.picture(SCREEN)
        self.assertGreater(len(set(whole)), 100)  # there is something to see
        for options, env in ((("-extension", "RANDR"), None), (("-extension", "MIT-SHM"), None),
                             (("-extension", "XTEST", "-extension", "RENDER", "-extension", "COMPOSITE"), None),
                             ((), {"LD_LIBRARY_PATH": libraries})):
            with self.subTest(options=options, env=env):
                self.assertTrue(self.picture((*SCREEN, *options), env) == whole)
        for depth, most in ((8, 20), (16, 4), (30, 1)):
            with self.subTest(depth=depth):
                self.assertLess(self.difference(self.picture(("-screen", "0", f"1024x768x{depth}")), whole), most)


class Dying(WithServer):
    """The server is killed: the program ends with status 1, at once, and so does the icon's helper."""

    def family(self, core):
        """The process and its helper, once both are there."""
        ui = until(core.ui_pid, "the process")

        def helper():
            return subprocess.run(["pgrep", "-P", str(ui)], capture_output=True, text=True, check=False).stdout.split()
        return [ui, *until(helper, "the helper")]

    def check_end(self, core, family, seconds=10):
        core.expect("link lost, ui exited 1", seconds)
        for pid in family:
            until(lambda pid=pid: not os.path.exists(f"/proc/{pid}"), "the end of the process and its helper")
        rest = [line for line in core.stderr().splitlines()
                if not re.search("connection to X server|Fatal IO error", line)]
        self.assertEqual(rest, [])
        core.end()

    def opened(self):
        self.on_server(manager=("openbox", "--sm-disable"))
        core = self.start("virtual", args=["-Log=*:stderr:0"])
        self.open_dialog(core)
        core.say("corestatus 0 0 0 1 4000 0", "echo told")
        core.expect("told")
        return core, self.family(core)

    def test_with_each_kind_of_window_open(self):
        def dialog(_):
            pass

        def question(core):
            until(lambda: core.ask("close statusdialog") == "0" and "messagebox" in core.ask("dialogs"), "the question")

        def center(core):
            core.ask("click " + HEADER + "alert")
            core.until_state("infocenterdlg", "shown", "1")

        def menu(core):
            def rest():  # the window manager may still be making or ending windows of its own
                before = self.windows()
                time.sleep(0.2)
                return before if self.windows() == before else None
            before = until(rest, "a screen at rest")
            core.ask("click " + HEADER + "setting")
            until(lambda: self.windows() > before, "the menu")

        def flood(core):
            core.say("flood 100000")

        for act in (dialog, question, center, menu, flood):
            with self.subTest(act=act.__name__):
                core, family = self.opened()
                act(core)
                self.server.kill()
                self.check_end(core, family)

    def windows(self):
        return self.server.run("xwininfo", "-root", "-tree").count("0x")

    def test_at_any_moment_of_the_start(self):
        seed = random.randrange(1 << 30)
        moments = random.Random(seed)
        for _ in range(12):
            delay = moments.uniform(0, 0.25) * SLOW
            with self.subTest(seed=seed, delay=delay):
                self.on_server(manager=("openbox", "--sm-disable"))
                core = self.start("virtual", args=["-Log=*:stderr:0"])
                core.say("showstatus")
                ui = until(core.ui_pid, "the process")
                time.sleep(delay)
                self.server.kill()
                core.expect("link lost, ui exited 1", 10)
                until(lambda pid=ui: not os.path.exists(f"/proc/{pid}"), "the end of the process")
                core.end()

    def test_a_server_that_stands_still_costs_nothing(self):
        core, family = self.opened()
        self.server.process.send_signal(signal.SIGSTOP)
        core.say("flood 2000")
        time.sleep(0.3)
        before = self.cpu(family)
        time.sleep(1)
        self.assertLess(self.cpu(family) - before, 0.3)
        self.server.process.send_signal(signal.SIGCONT)
        until(lambda: core.ask("version") == "1", "an answer")
        self.server.kill()
        self.check_end(core, family)

    def cpu(self, pids):
        """Seconds that they have used."""
        ticks = 0
        for pid in pids:
            with open(f"/proc/{pid}/stat", encoding="utf-8") as text:
                fields = text.read().rsplit(")", 1)[1].split()
            ticks += int(fields[11]) + int(fields[12])
        return ticks / os.sysconf("SC_CLK_TCK")


if __name__ == "__main__":
    main()

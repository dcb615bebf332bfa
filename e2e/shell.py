"""The shell round the dialogs: popups, menus, hiding, stopping, and the UI without a core."""
import os
import re
import shutil
import signal
import subprocess
import time
import unittest

from harness import CORE, PATIENCE, SLOW, UiTest, main, until, xdotool

TEXT = "frame.vertLayout.layout.textFrame.text"


class Shell(UiTest):
    def start(self, mode="virtual", args=(), core_args=()):
        """In virtual mode the inspection socket has a name of its own for each display."""
        return super().start(mode, args, core_args)

    def popups(self, core):
        """The texts of the popups by their serial numbers, the oldest first."""
        found = {}
        for line in core.ask("dialogs").split("\n"):
            serial, name = line.split(" ", 1)
            state = core.state(serial) if name == "notification" else {}
            if state.get("shown") == "1":
                found[int(serial)] = state["label"]
        return found

    def until_popups(self, core, texts):
        try:
            until(lambda: list(self.popups(core).values()) == texts, "the popups")
        except AssertionError:
            self.assertEqual(list(self.popups(core).values()), texts)

    def corner(self, core, serial):
        """The upper left corner and the size of a popup."""
        state = core.state(str(serial))
        return [int(v) for v in state["pos"].split(",") + state["size"].split(",")]

    def a_popup(self, core):
        """The serial number of the newest popup, once there is one."""
        return until(lambda: self.popups(core) and max(self.popups(core)), "a popup")

    def click_popup(self, core, serial):
        x, y, w, h = self.corner(core, serial)
        self.click_at(x + w // 2, y + h // 2)

    def items(self, core, menu):
        return core.ask(f"menu {menu} listitems").split("\n")

    def visible(self, core):
        """Whether the window of the status dialog is mapped."""
        return self.window() is not None

    def wait_end(self, core):
        return core.process.wait(20 * PATIENCE)


class Popups(Shell):
    def test_every_type_of_user_has_its_sentence(self):
        core = self.start()
        one = "Number of connected users: 1"
        none = "There are now no connected users."
        cases = [("eve", "Admin", "An administrator has"), ("eve", "ViewOnly", "A view-only user has"),
                 ("eve", "InputOnly", "An input-only user has"), ("%E2%80%AE", "Standard", "An anonymous user has"),
                 ("eve", "Standard", 'User "eve" has'), ("eve", "Guest", "A guest user has"),
                 ("eve", "Anonymous", "An anonymous user has"), ("eve", "System", 'User "eve" has'),
                 ("eve", "Unheard", 'User "eve" has'),
                 ("%3Cb%3Ex%3C/b%3E%26amp;", "System", 'User "<b>x</b>&amp;" has'),
                 ("a%07%0A%E2%80%AEb", "System", 'User "a b" has'),
                 ("%EF%BF%BF%EF%BF%BE%EF%B7%90", "System", None),
                 ("%D9%85%E5%BC%A0", "System", 'User "\u2068م张\u2069" has'),
                 ("x", "System", 'User "x" has'), ("y" * 255, "System", f'User "{"y" * 255}" has')]
        for user, kind, sentence in cases:
            before = set(self.popups(core))
            core.say(f"connect {user} 10.0.0.7 {kind}", f"disconnect {user}")

            def fresh():
                return [t for s, t in self.popups(core).items() if s not in before]
            shown = until(lambda: len(fresh()) == 2 and fresh(), f"two popups for {user}")
            if sentence:
                self.assertEqual(shown, [f"{sentence} connected. {one}", f"{sentence} disconnected. {none}"])
        self.assertEqual(core.errors(), [])

    def test_those_who_go_together_share_a_popup(self):
        core = self.start()
        core.say("corestatus 1 0 0 0 60000 0", "connect a 1.1.1.1 System", "connect b 1.1.1.2 Guest",
                 "connect c 1.1.1.3 Admin")
        until(lambda: len(self.popups(core)) == 3, "three popups")
        core.say("disconnect a", "disconnect b", "disconnect c")
        until(lambda: len(self.popups(core)) == 4, "a fourth")
        self.assertEqual(list(self.popups(core).values())[-1],
                         'User "a" has disconnected. A guest user has disconnected. An administrator has disconnected. '
                         "There are now no connected users.")

    def test_a_popup_ends_in_its_time_and_none_means_none(self):
        core = self.start()
        core.say("corestatus 1 0 0 0 700 0", "connect a 1.1.1.1 System")
        until(lambda: self.popups(core), "a popup")
        until(lambda: not self.popups(core), "its end")
        core.say("corestatus 1 0 0 0 0 0", "connect b 1.1.1.1 System", "connect c 1.1.1.1 System",
                 "corestatus 1 0 0 0 60000 0", "connect d 1.1.1.1 System")
        self.until_popups(core, ['User "d" has connected. Number of connected users: 4'])

    def test_sticky_popups_stay_until_the_last_has_gone(self):
        core = self.start()
        core.say("corestatus 1 0 0 0 900 1", "connect a 1.1.1.1 System", "connect b 1.1.1.2 System")
        self.until_popups(core, ['User "b" has connected. Number of connected users: 2'])
        serial = max(self.popups(core))
        self.click_popup(core, serial)
        core.expect("ui: uiActivated")
        time.sleep(1.2 * SLOW)  # beyond its time, had it one
        self.assertEqual(list(self.popups(core)), [serial])
        core.say("disconnect a")
        self.until_popups(core, ['User "a" has disconnected. Number of connected users: 1'])
        core.say("disconnect b")
        self.until_popups(core, ['User "b" has disconnected. There are now no connected users.'])
        until(lambda: not self.popups(core), "the end of the last")

    def test_one_click_leads_to_the_dialog(self):
        core = self.start()
        until(lambda: self.items(core, "tray"), "the start")
        core.say("corestatus 1 0 0 0 60000 0", "connect a 1.1.1.1 System")
        serial = self.a_popup(core)
        x, y, w, h = self.corner(core, serial)
        for dx, dy in ((10, 10), (w // 2, h // 2)):  # on the picture, then on the text of the next
            core.ask("close statusdialog")
            self.click_at(x + dx, y + dy)
            core.expect("ui: updateStatus")
            core.expect("ui: uiActivated")
            until(lambda: self.visible(core), "the dialog")
            until(lambda: not self.popups(core), "the end of the popup")
            core.say("connect b 1.1.1.2 Guest")
            until(lambda: self.popups(core), "another popup")

    def test_a_click_reaches_it_beside_a_question(self):
        core = self.start()
        self.open_dialog(core)
        core.ask("menu tray invoke Stop Velthar Server")
        until(lambda: "messagebox" in core.ask("dialogs"), "the question")
        core.say("corestatus 1 0 0 0 60000 0", "connect a 1.1.1.1 System")
        serial = self.a_popup(core)
        x, y, w, h = self.corner(core, serial)
        core.forget()
        self.click_at(x + w // 2, y + h // 2)
        core.expect("ui: uiActivated")

    def test_it_takes_no_keys_from_others(self):
        core = self.start()
        terminal = subprocess.Popen(["xmessage", "-print", "hold"], stdout=subprocess.DEVNULL) \
            if shutil.which("xmessage") else None
        try:
            window = self.open_dialog(core)
            xdotool("windowfocus", "--sync", window)
            focus = subprocess.check_output(["xdotool", "getwindowfocus"])
            core.say("corestatus 1 0 0 0 60000 0", "connect a 1.1.1.1 System")
            serial = self.a_popup(core)
            x, y, w, h = self.corner(core, serial)
            xdotool("mousemove", x + w // 2, y + h // 2)
            time.sleep(0.3 * SLOW)
            self.assertEqual(subprocess.check_output(["xdotool", "getwindowfocus"]), focus)
        finally:
            if terminal:
                terminal.kill()
                terminal.wait()

    def dock(self, left=0, right=0, top=0, bottom=0):
        """A panel at an edge, whose struts the window manager turns into the work area."""
        code = ("import sys,ctypes as c\nx=c.CDLL('libX11.so.6')\nx.XOpenDisplay.restype=c.c_void_p\n"
                "d=c.c_void_p(x.XOpenDisplay(None))\nr=x.XDefaultRootWindow(d)\n"
                "l,R,t,b=map(int,sys.argv[1:5])\nW,H=1920,1200\n"
                "g=(0,0,l,H) if l else (W-R,0,R,H) if R else (0,0,W,t) if t else (0,H-b,W,b)\n"
                "w=x.XCreateSimpleWindow(d,r,*g,0,0,0xffffff)\na=lambda n:x.XInternAtom(d,n.encode(),0)\n"
                "p=lambda n,t,v:x.XChangeProperty(d,w,a(n),t,32,0,(c.c_long*len(v))(*v),len(v))\n"
                "p('_NET_WM_WINDOW_TYPE',4,[a('_NET_WM_WINDOW_TYPE_DOCK')])\n"
                "p('_NET_WM_STRUT_PARTIAL',6,[l,R,t,b,0,H if l else 0,0,H if R else 0,0,W if t else 0,0,W if b else 0])\n"
                "p('_NET_WM_STRUT',6,[l,R,t,b])\nx.XMapWindow(d,w)\nx.XFlush(d)\nsys.stdin.read()\n")
        panel = subprocess.Popen(["python3", "-c", code, *map(str, (left, right, top, bottom))],
                                 stdin=subprocess.PIPE)
        self.addCleanup(self.undock, panel)
        return panel

    def undock(self, panel):
        if panel.poll() is None:
            panel.stdin.close()
            panel.wait(10 * PATIENCE)

    def test_popups_stand_beside_panels_and_follow_them(self):
        core = self.start()
        core.say("corestatus 1 0 0 0 600000 0", "connect a 1.1.1.1 System", "connect b 1.1.1.1 Guest")
        first, second = until(lambda: len(self.popups(core)) == 2 and list(self.popups(core)), "two popups")
        _, _, w, h = self.corner(core, first)
        for panel, place, step in (({}, (1920 - w, 1200 - h), -h - 2), ({"top": 40}, (1920 - w, 42), h + 2),
                                   ({"left": 50}, (52, 1200 - h), -h - 2),
                                   ({"bottom": 60}, (1920 - w, 1200 - 62 - h), -h - 2),
                                   ({"right": 70}, (1920 - 72 - w, 1200 - h), -h - 2)):
            dock = self.dock(**panel) if panel else None
            until(lambda: tuple(self.corner(core, first)[:2]) == place, f"the place {place} for {panel}")
            self.assertEqual(tuple(self.corner(core, second)[:2]), (place[0], place[1] + step), panel)
            if dock:
                self.undock(dock)

    def test_the_corner_can_be_chosen(self):
        for corner, x, y in ((1, 0, 0), (2, None, 0), (3, 0, None), (4, None, None)):
            core = self.start(args=[f"-NotificationPos={corner}"])
            core.say("corestatus 1 0 0 0 600000 0", "connect a 1.1.1.1 System")
            serial = self.a_popup(core)
            px, py, w, h = self.corner(core, serial)
            self.assertEqual((px, py), (1920 - w if x is None else x, 1200 - h if y is None else y), corner)
            core.end()

    def test_there_is_room_for_the_newest(self):
        core = self.start()
        core.say("corestatus 1 0 0 0 600000 0", *[f"connect u{i} 1.1.1.1 System" for i in range(100)])
        until(lambda: any('"u99"' in t for t in self.popups(core).values()), "the last popup")
        all_ = self.popups(core)
        self.assertLess(len(all_), 30)
        for serial in all_:
            self.assertGreaterEqual(self.corner(core, serial)[1], 0)

    def test_they_read_in_every_language_and_size(self):
        for args in ([], ["-ppmm=8", "-TextSizeFactor=200", "-_DarkMode"]):
            for language in ("de", "es", "fr", "pt"):
                core = self.start(args=[*args, f"-Locale={language}"])
                core.say("corestatus 1 0 0 0 600000 0", "connect ab 1.1.1.1 Standard", f"connect {'W' * 255} 1.1.1.1 x",
                         "connect c 1.1.1.1 InputOnly", "disconnect c")
                shown = until(lambda: len(self.popups(core)) >= 3 and self.popups(core), "popups")
                for serial, text in shown.items():
                    self.assertEqual(core.ask(f"checklayout {serial}"), "", text)
                    self.assertNotIn("sui_", text)
                self.assertEqual(core.errors(), [])
                core.end()

    def test_notifications_about_files(self):
        core = self.start()
        text = "3 files <b>moved</b>"
        core.say("message fopsNotification " + bytes([len(text)]).hex() + text.encode().hex())
        self.until_popups(core, [text])
        self.click_popup(core, max(self.popups(core)))
        core.expect("ui: uiActivated")
        until(lambda: not self.popups(core), "its end")

    def facts(self, pid):
        with open(f"/proc/{pid}/status", encoding="ascii") as status:
            rss = int(re.search(r"VmRSS:\s+(\d+)", status.read())[1])
        return rss, len(os.listdir(f"/proc/{pid}/fd"))

    def traffic(self, core, rounds):
        """Users who come and go as fast as the UI takes it."""
        for i in range(rounds):
            core.say(f"connect u{i % 7} 10.0.0.7 System", "sleep 5", f"disconnect u{i % 7}", "echo done")
            core.expect("done")
            core.ask("version")  # no faster than the UI takes it
        core.say("sleep 700", "echo quiet")
        core.expect("quiet")

    def test_memory_and_descriptors_stay_flat(self):
        core = self.start()
        core.say("corestatus 1 0 0 0 200 0")
        pid = until(core.ui_pid, "the UI")
        rounds = int(os.environ.get("ZEF_ROUNDS", "300"))
        self.traffic(core, 2 * rounds)
        rss, fds = self.facts(pid)
        self.traffic(core, rounds)
        after, fds_after = self.facts(pid)
        self.assertLessEqual(fds_after, fds + 1)  # an inspection connection may be on its way out
        self.assertLess(after - rss, 1024, f"{rss} kB, then {after} kB")
        if os.environ.get("ZEF_ROUNDS"):
            print(f"rss {rss} then {after} kB, descriptors {fds} then {fds_after}")


class Menus(Shell):
    PROXY = ["Information Center...", "Options...", "Technical Support...", "About...", "-", "Stop Velthar Server"]

    def test_all_menus_offer_the_same(self):
        core = self.start()
        self.assertEqual(self.items(core, "tray"), ["Open..."] + self.items(core, "serverui"))
        self.assertEqual(self.items(core, "moreMenu"), self.items(core, "serverui") + ["-", "Hide"])
        listed = self.items(core, "serverui")
        self.assertEqual(listed[:4], self.PROXY[:4])
        self.assertEqual(listed[-2:], self.PROXY[-2:])
        for a, b in zip(listed, listed[1:]):
            self.assertNotEqual((a, b), ("-", "-"))

    def test_the_core_status_enables_and_hides(self):
        core = self.start()
        until(lambda: core.ask("menu tray state Stop Velthar Server") == "1 0", "the item")
        core.say("corestatus 0 1 1 1 4000 0")
        for menu in ("tray", "moreMenu", "serverui"):
            until(lambda: core.ask(f"menu {menu} state Options...") == "0 0", "a disabled item")
            self.assertEqual(core.ask(f"menu {menu} state Stop Velthar Server"), "0 0")
            self.assertEqual(core.ask(f"menu {menu} invoke Stop Velthar Server"), "0")
        self.assertNotIn("Hide", self.items(core, "moreMenu"))
        core.say("corestatus 0 0 0 0 4000 0")
        until(lambda: self.items(core, "moreMenu")[-2:] == ["-", "Hide"], "Hide at the end again")
        self.assertEqual(core.ask("menu tray state Options..."), "1 0")

    def test_service_mode_always_hides(self):
        core = self.start("service")
        core.say("corestatus 0 0 0 1 4000 0")
        until(lambda: self.items(core, "moreMenu")[-1] == "Hide", "Hide")

    def test_keys_and_pointer_choose(self):
        core = self.start()
        window = self.open_dialog(core)
        xdotool("windowfocus", "--sync", window)
        core.ask("click statusdialog.header.setting")
        time.sleep(0.2 * SLOW)
        index = self.items(core, "moreMenu").index("About...") + 1
        self.keys(*["Down"] * index)
        self.keys("Return")
        until(lambda: "aboutdlg" in core.ask("dialogs"), "the About dialog")
        self.assertEqual(core.state("aboutdlg.img")["value"], "zefserver")
        core.ask("close aboutdlg")
        # The pointer, on the last item: the menu ends under the button's right end.
        pos = [int(v) for v in core.state("statusdialog")["pos"].split(",")]
        size = [int(v) for v in core.state("statusdialog")["size"].split(",")]
        button = [int(v) for v in core.state("statusdialog.header.setting")["size"].split(",")]
        x = pos[0] + size[0] - button[0] // 2 - 9
        y = pos[1] + button[1] // 2 + 5
        self.click_at(x, y)
        shown = until(self.menu_window, "the menu")
        self.click_at(shown[0] + 30, shown[1] + shown[3] - 8)
        until(lambda: not self.visible(core), "the dialog hidden")

    def menu_window(self):
        """Position and size of the override-redirect window that is up, None without one."""
        tree = subprocess.run(["xwininfo", "-root", "-children"], capture_output=True, text=True, check=True).stdout
        for line in tree.split("\n"):
            found = re.match(r"\s+(0x[0-9a-f]+) .* (\d+)x(\d+)\+(-?\d+)\+(-?\d+)", line)
            if not found or int(found[2]) < 60 or int(found[2]) > 600:
                continue
            info = subprocess.run(["xwininfo", "-id", found[1], "-all"], capture_output=True, text=True,
                                  check=False).stdout
            if "Override Redirect State: yes" in info and "IsViewable" in info:
                return [int(found[4]), int(found[5]), int(found[2]), int(found[3])]
        return None

    def test_what_the_items_do(self):
        core = self.start()
        core.ask("menu tray invoke Information Center...")
        core.expect("ui: updateStatus")
        core.until_state("infocenterdlg", "shown", "1")
        core.ask("menu tray invoke Options...")
        core.expect("ui: updateStatus")
        core.expect("ui: requestOptions")
        core.ask("menu tray invoke About...")
        core.ask("menu tray invoke About...")  # in place of the one before
        self.assertEqual(core.ask("dialogs").count("aboutdlg"), 1)
        core.ask("menu tray invoke Open...")
        core.expect("ui: uiActivated")
        core.until_state("statusdialog", "shown", "1")

    def test_items_change_while_a_menu_is_up(self):
        core = self.start()
        self.open_dialog(core)
        core.ask("click statusdialog.header.setting")
        until(self.menu_window, "the menu")
        core.say("corestatus 0 1 1 1 4000 0", "corestatus 0 0 0 0 4000 0", "corestatus 0 0 0 1 4000 0")
        until(lambda: self.items(core, "moreMenu")[-1] != "Hide", "the change")
        self.keys("Down", "Down", "Up", "Escape")
        until(lambda: not self.menu_window(), "the menu gone")

    @unittest.skipUnless(os.geteuid() == 0, "others open it")
    def test_support_is_opened_in_the_browser(self):
        core = self.start()
        core.ask("menu tray invoke Technical Support...")
        until(lambda: "Refusing to open url as root: https://support.velthar.example" in core.stderr(), "the address")

    def test_no_question_outlives_its_answer(self):
        core = self.start()
        for _ in range(3):  # each in place of the one before
            core.ask("menu serverui invoke Stop Velthar Server")
        self.assertEqual(core.ask("dialogs").count("messagebox"), 1)
        core.ask("click messagebox.buttons.no")
        core.until_state("messagebox", "shown", "0")
        core.say("corestatus 0 0 0 1 4000 0", "showstatus")
        core.expect("ui: uiActivated")
        self.assertEqual(core.ask("close statusdialog"), "0")  # refused until answered
        core.until_state("messagebox", "shown", "1")
        core.read()
        self.assertFalse([line for line in core.lines if "quit" in line])
        core.ask("click messagebox.buttons.yes")
        core.expect("ui: quit")


class Hiding(Shell):
    def test_without_an_icon_it_is_iconified(self):
        core = self.start()
        until(lambda: "Hide" in self.items(core, "moreMenu"), "the menu")
        self.open_dialog(core)
        core.ask("menu moreMenu invoke Hide")
        until(lambda: not self.visible(core), "the window away")
        self.assertEqual(core.state("statusdialog")["shown"], "1")  # an icon of the window manager
        core.say("showstatus")
        until(lambda: self.visible(core), "the window again")

    def test_the_desktop_is_told(self):
        core = self.start()
        self.assertEqual(core.expect("ui: desktopEnv"), 'ui: desktopEnv "TWM-compatible"')


class Ends(Shell):
    def opened(self):
        core = self.start()
        self.open_dialog(core)
        core.say("corestatus 1 0 0 0 60000 0", "connect a 1.1.1.1 System")
        until(lambda: self.popups(core), "a popup")
        return core

    def test_the_core_dies_whatever_is_open(self):
        opens = (("menu", lambda core: core.ask("click statusdialog.header.setting")),
                 ("question", lambda core: core.ask("menu tray invoke Stop Velthar Server")),
                 ("about", lambda core: core.ask("menu tray invoke About...")),
                 ("pending", lambda core: core.say("disconnect a")))
        for name, act in opens:
            core = self.opened()
            act(core)
            pid = core.ui_pid()
            core.process.send_signal(signal.SIGKILL)
            core.process.wait()
            until(lambda: not os.path.exists(f"/proc/{pid}"), f"the end of the UI with {name}")
            self.assertEqual(core.errors(), [], name)
            core.end()

    def test_all_modules_are_there_in_their_order(self):
        core = self.start(args=["-Log=*:stderr:110"])
        until(lambda: "module DuoAuth" in core.stderr(), "the last module")
        self.assertEqual(" ".join(re.findall(r"SUiModule: module (\S+)", core.stderr())),
                         "ProductUri CloudJoin Clipboard Bell Proxy UnattendedAccess DisconnClient SecurityZefAuth "
                         "CloudAccess PinLink UpdateNotification Audio SystemAuth RadiusAuth PubkeyAuth Chat "
                         "FileTransfer Fops Printing ScreenRecorder SecurityNone SecurityNoneCiphers SecurityRA2 "
                         "SecurityRA4 SingleSignOn CloudAuth MaxEncryption AddClient GuestLogin IpListen TcpListen "
                         "UdpListen DuoAuth")

    def test_without_a_core(self):
        core = self.start(args=["-DebugUi"])
        until(lambda: core.ask("menu tray listitems"), "the start")
        core.ask("menu tray invoke Options...")
        until(lambda: "messagebox" in core.ask("dialogs"), "the options at once")
        self.assertEqual(core.errors(), [])
        core.ask("close messagebox")
        until(lambda: "messagebox" not in core.ask("dialogs"), "the options deleted")
        core.ask("menu tray invoke Stop Velthar Server")
        core.ask("click messagebox.buttons.yes")
        core.expect("link lost, ui exited 0")

    def box(self, core):
        """The text of the message box, once it is up."""
        until(lambda: "messagebox" in core.ask("dialogs"), "a box")
        name = re.search(r"main\.frame\.split\.(msg|info)", core.ask("lists messagebox"))[0]
        return core.state(f"messagebox.{name}")["label"]

    def test_options_that_cannot_be_read(self):
        for mode, text in (("virtual", "/nonexistent/core"),
                           ("service", "Unable to configure options for Velthar Server.")):
            core = self.start(mode)
            core.say("serverexe /nonexistent/core", "showoptions security")
            self.assertTrue(self.box(core).startswith(text), mode)
            self.assertIn("Error showing options dialog: ", core.stderr())
            core.ask("close messagebox")
            core.ask("menu tray invoke About...")  # life goes on
            self.assertIn("aboutdlg", core.ask("dialogs"))
            core.end()

    def test_options_are_read_through_the_helper(self):
        core = self.start()
        core.say(f"serverexe {CORE}", "showoptions", "showoptions security")
        self.assertIn("no options to change here", self.box(core))
        self.assertEqual(core.ask("dialogs").count("messagebox"), 1)
        core.ask("click messagebox.buttons.ok")
        until(lambda: "messagebox" not in core.ask("dialogs"), "its deletion")
        self.assertEqual(core.errors(), [])


if __name__ == "__main__":
    main()

"""What the UI does to connections, and what it carries for the core: connecting out, cutting off, guests, text, bells."""
import ctypes
import os
import subprocess

from harness import BIN, UiTest, main, until, xdotool

DIALOG = "addclients"
EDIT = DIALOG + ".hlay.vlay.viewerlyt.viewer"
SPINNER = DIALOG + ".hlay.vlay.viewerlyt.spinner"
ERRORS = DIALOG + ".hlay.vlay.errorlyt"
BUTTON = DIALOG + ".btnlyt.connect"
CONNECT = "Connect to Listening Velthar Viewer..."
DISCONNECT = "Disconnect connected users"
GUEST = "Guest Access"


class Clients(UiTest):
    def items(self, core):
        return core.ask("menu serverui listitems").split("\n")

    def until_item(self, core, item, there=True):
        until(lambda: (item in self.items(core)) == there, f"{item} {there}: {self.items(core)}")

    def until_item_state(self, core, item, state):
        until(lambda: core.ask(f"menu serverui state {item}") == state, f"{item} {state}")

    def opened(self):
        core = self.start()
        self.assertNotIn(CONNECT, self.items(core))
        core.say("addclient 1")
        self.until_item(core, CONNECT)
        self.assertEqual(core.ask(f"menu serverui invoke {CONNECT}"), "1")
        core.until_state(DIALOG, "shown", "1")
        window = until(lambda: self.window("^Connect to Listening"), "the dialog's window")
        xdotool("windowfocus", "--sync", window)
        return core

    def test_connecting_out_by_keys(self):
        core = self.opened()
        self.assertEqual(core.state(BUTTON)["enabled"], "0")
        self.assertEqual(core.state(ERRORS)["shown"], "0")
        self.assertEqual(core.state(SPINNER)["shown"], "0")
        xdotool("type", "--delay", "5", " viewer:5500 ")
        core.until_state(EDIT, "value", " viewer:5500 ")
        core.until_state(BUTTON, "enabled", "1")
        self.keys("Return")
        core.expect('ui: addClient "viewer:5500"')
        for ref, key, value in ((EDIT, "enabled", "0"), (SPINNER, "shown", "1"), (BUTTON, "enabled", "0")):
            core.until_state(ref, key, value)
        core.say("addclientresult No <b>listener</b> at viewer:5500%0anow")
        core.until_state(ERRORS, "shown", "1")
        self.assertEqual(core.state(ERRORS + ".error")["label"], "No <b>listener</b> at viewer:5500 now")
        self.assertEqual(core.state(EDIT)["shown"], "0")
        self.assertEqual(core.state(BUTTON)["label"], "OK")
        self.assertEqual(core.ask("checklayout " + DIALOG), "")
        self.keys("Return")  # back to the field, with what was typed
        core.until_state(EDIT, "enabled", "1")
        self.assertEqual(core.state(EDIT)["value"], " viewer:5500 ")
        self.keys("Return")
        core.expect('ui: addClient "viewer:5500"')
        core.say("addclientresult")
        core.until_state(DIALOG, "shown", "0")
        self.assertEqual(core.state(EDIT)["value"], "")

    def test_closing_forgets_the_address_and_the_answer(self):
        core = self.opened()
        core.ask(f"settext {EDIT} viewer")
        self.keys("Return")
        core.expect('ui: addClient "viewer"')
        self.keys("Escape")
        core.until_state(DIALOG, "shown", "0")
        core.say("addclientresult too late")
        core.say("addclient 0")
        self.until_item(core, CONNECT, there=False)
        self.assertEqual(core.state(DIALOG)["shown"], "0")
        core.say("addclient 1")
        self.until_item(core, CONNECT)
        core.ask(f"menu serverui invoke {CONNECT}")
        core.until_state(DIALOG, "shown", "1")
        self.assertEqual(core.state(EDIT)["value"], "")
        self.assertEqual(core.state(ERRORS)["shown"], "0")
        # An address is a text of 255 bytes at most.
        core.ask(f"settext {EDIT} " + "x" * 300)
        core.ask("click " + BUTTON)
        core.expect('ui: addClient "' + "x" * 255 + '"')

    def test_disconnecting_everybody(self):
        core = self.start()
        self.until_item_state(core, DISCONNECT, "0 0")
        core.say("connect amy 10.0.0.7 Admin", "connect bob 10.0.0.8 Guest")
        self.until_item_state(core, DISCONNECT, "1 0")
        self.assertEqual(core.ask(f"menu serverui invoke {DISCONNECT}"), "1")
        core.expect('ui: disconnClient "" ""')
        core.say("disconnect amy", "disconnect bob")
        self.until_item_state(core, DISCONNECT, "0 0")
        self.assertEqual(core.ask(f"menu serverui invoke {DISCONNECT}"), "0")

    def test_guest_access(self):
        core = self.start()
        core.say("features GuestLogin=ae", "guest 1 0")
        self.until_item(core, GUEST)
        self.until_item_state(core, GUEST, "1 0")
        self.assertEqual(core.ask(f"menu serverui invoke {GUEST}"), "1")
        core.expect("ui: GuestLoginEnable 1")
        self.until_item_state(core, GUEST, "1 1")
        core.ask(f"menu serverui invoke {GUEST}")
        core.expect("ui: GuestLoginEnable 0")
        core.say("guest 1 1")
        self.until_item_state(core, GUEST, "1 1")
        core.say("guest 0 1")
        self.until_item(core, GUEST, there=False)
        core.say("features Other=ae", "features GuestLogin=ae", "guest 1 1", "addclient 1")
        self.until_item(core, CONNECT)
        self.assertNotIn(GUEST, self.items(core))  # gone for good


class Clipboard(UiTest):
    def setUp(self):
        super().setUp()
        self.programs = []

    def tearDown(self):
        super().tearDown()
        for program in self.programs:
            program.kill()
            program.wait()

    def sharing(self, args=(), env=None):
        self.home.env.update(env or {})
        core = self.start(args=args)
        core.say("clipboard 1", "desktop 1")
        core.settle()
        return core

    def copy(self, text, selection="clipboard", tool=("xclip", "-quiet", "-i", "-selection")):
        data = text if isinstance(text, bytes) else text.encode()
        program = subprocess.Popen([*tool, selection], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        self.programs.append(program)
        program.stdin.write(data)
        program.stdin.close()

    def paste(self, selection="clipboard", target="UTF8_STRING"):
        return subprocess.run(["timeout", "10", "xclip", "-o", "-selection", selection, "-t", target],
                              capture_output=True, check=False).stdout

    def until_pasted(self, text, **kwargs):
        until(lambda: self.paste(**kwargs) == text, f"{len(text)} bytes to paste")

    def test_text_goes_both_ways(self):
        core = self.sharing()
        self.copy("caf\u00e9 \u20ac")
        core.expect('ui: serverCutText 9 "caf\u00e9 \u20ac"')
        self.copy("selected", selection="primary")
        core.expect('ui: serverCutText 8 "selected"')
        core.say("cuttext from%0aa viewer \u20ac")
        for selection in ("clipboard", "primary"):
            self.until_pasted("from\na viewer \u20ac".encode(), selection=selection)
        self.assertEqual(self.paste(target="STRING"), b"from\na viewer ?")
        self.assertEqual(subprocess.run(["xsel", "-b", "-o"], capture_output=True, check=True).stdout.decode(),
                         "from\na viewer \u20ac")
        # Neither our own text comes back, nor the same one by another program.
        self.copy("from\na viewer \u20ac")
        until(lambda: b"TIMESTAMP" not in self.paste(target="TARGETS"), "the other program's offer")
        self.copy("last")
        self.assertEqual(core.expect("ui: serverCutText"), 'ui: serverCutText 4 "last"')

    def test_it_starts_and_stops_with_core_and_desktop(self):
        core = self.sharing()
        for off, on in (("clipboard 0", "clipboard 1"), ("desktop 0", "desktop 1")):
            core.say(off)
            core.settle()
            self.copy("unheard")
            self.until_pasted(b"unheard")
            core.say("cuttext unseen")
            core.settle()
            self.assertEqual(self.paste(), b"unheard")
            core.say(on)
            core.settle()
            self.copy("heard after " + on)
            self.assertIn("heard after " + on, core.expect("ui: serverCutText"))

    def test_large_text_goes_both_ways(self):
        core = self.sharing()
        text = "".join(f"{i} caf\u00e9 " for i in range(250000)).encode()
        self.copy(text)
        core.expect(f"ui: serverCutText {len(text)} ", 60)
        path = os.path.join(self.home.path, "cut")
        core.say("savecut " + path)
        core.expect(f"saved {len(text)}")
        with open(path, "rb") as saved:
            self.assertTrue(saved.read() == text)
        with open(path, "wb") as out:
            out.write(text[::-1].replace(b"\xa9\xc3", b"\xc3\xa9"))
        core.say("cutfile " + path)
        with open(path, "rb") as saved:
            self.until_pasted(saved.read())

    def test_without_xfixes_it_polls(self):
        core = self.sharing(args=("-poll=100", "-Log=*:stderr:30"),
                            env={"LD_LIBRARY_PATH": os.path.join(os.path.dirname(BIN), "noxfixes")})
        self.assertIn("XFixes extension not present", core.stderr())
        self.assertIn("Polling for clipboard updates every 100ms", core.stderr())
        self.copy("polled")
        core.expect('ui: serverCutText 6 "polled"')
        core.say("cuttext viewer's")
        self.until_pasted(b"viewer's")
        self.copy("once more")
        self.assertEqual(core.expect("ui: serverCutText"), 'ui: serverCutText 9 "once more"')

    def test_a_negative_length_ends_it(self):
        core = self.sharing()
        core.say("message clientCutText ffffffff", "exited 20000")
        core.expect("ui killed by 6", 20)
        self.assertIn("len >= 0", core.stderr())

    def test_bells_are_told_while_the_desktop_is_up(self):
        core = self.start()
        xlib = ctypes.CDLL("libX11.so.6")
        xlib.XOpenDisplay.restype = ctypes.c_void_p
        display = ctypes.c_void_p(xlib.XOpenDisplay(None))

        def ring():
            xlib.XBell(display, 0)
            xlib.XSync(display, 0)
        core.say("desktop 1")
        core.settle()
        ring()
        core.expect("ui: bell")
        ring()
        core.expect("ui: bell")
        core.say("desktop 0")
        core.settle()
        ring()
        core.settle()
        core.read()
        self.assertNotIn("ui: bell", core.lines)
        core.say("desktop 1")
        core.settle()
        ring()
        core.expect("ui: bell")
        xlib.XCloseDisplay(display)


if __name__ == "__main__":
    main()

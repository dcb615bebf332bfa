"""The connection prompt: its messages, what answers it and what does not, its texts, its end."""
import os
import re
import select
import socket
import struct
import subprocess
import time
import unittest

from harness import PATIENCE, SLOW, UI, Inspected, UiTest, main, string8, until, xdotool
from xclient import XClient

BODY = "Query.dlglay."
TEXTS = BODY + "iconlay.vlay."
BUTTONS = BODY + "btnLyt."
RETURN, SPACE, F5 = 0xff0d, 0x20, 0xffc2


def frames(name, body=b"", size=32767):
    payload = string8(name) + body
    pieces = [payload[i:i + size] for i in range(0, len(payload), size)]
    return b"".join(struct.pack(">H", len(p) | (0x8000 if p is pieces[-1] else 0)) + p for p in pieces)


def start(name="amy", kind="", timeout=60, message="", rights="", view=True):
    text = message if isinstance(message, bytes) else message.encode()
    return frames("start", string8(name) + string8(kind) + struct.pack(">H", timeout) +
                  struct.pack(">I", len(text)) + text + string8(rights) + bytes([view]))


class Prompt(Inspected):
    """The prompt's process and the core's end of its link."""

    def __init__(self, home, args=(), dummy=False):
        self.link, child = socket.socketpair()
        self.link.settimeout(10 * PATIENCE)
        self.errors = os.path.join(home.path, "prompt-stderr")
        words = ["-dummy"] if dummy else [str(child.fileno())]
        with open(self.errors, "wb") as errors:
            self.process = subprocess.Popen(
                [UI, "-QueryConnectApp", "user", *words, "-_MuiComms", *args], pass_fds=[child.fileno()],
                stdin=child if dummy else subprocess.DEVNULL, stderr=errors, env=home.env)
        child.close()
        self.buffer = b""

    def ui_pid(self):
        return self.process.pid

    def stderr(self):
        with open(self.errors, errors="replace") as text:
            return text.read()

    def send(self, data):
        self.link.sendall(data)

    def window(self):
        """The prompt's window once it is up."""
        def find():
            found = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(self.process.pid), "--name",
                                    "Connection Request"], capture_output=True, text=True, check=False).stdout.split()
            return int(found[0]) if found else None
        return until(find, "the window of the prompt")

    def is_shown(self):
        return self.state("Query").get("shown") == "1"

    def ask_for(self, **fields):
        """Starts a request; the window, with the prompt in it."""
        self.send(start(**fields))
        until(self.is_shown, "the prompt")
        return self.window()

    def read_result(self, seconds=10.0 * PATIENCE):
        """(sequence, letters, by the user) of the next answer; None if none comes."""
        end = time.monotonic() + seconds * SLOW
        while True:
            if len(self.buffer) >= 2:
                size = struct.unpack(">H", self.buffer[:2])[0] & 0x7fff
                if len(self.buffer) >= 2 + size:
                    payload, self.buffer = self.buffer[2:2 + size], self.buffer[2 + size:]
                    assert payload[:7] == b"\x06result", payload
                    sequence, letters = struct.unpack(">I", payload[7:11])[0], payload[12:12 + payload[11]]
                    assert len(payload) == 13 + len(letters), payload
                    return sequence, letters.decode(), payload[-1]
            left = end - time.monotonic()
            if left <= 0 or not select.select([self.link], [], [], left)[0]:
                return None
            data = self.link.recv(4096)
            if not data:
                return None
            self.buffer += data

    def pair(self, ref, key):
        return [int(v) for v in self.state(ref)[key].split(",")]

    def rect(self, ref):
        """Left, top, width and height of an element in the window; each one's position counts from that above it."""
        names = ref.split(".")
        steps = [self.pair(".".join(names[:i]), "pos") for i in range(2, len(names) + 1)]
        return [sum(step[0] for step in steps), sum(step[1] for step in steps), *self.pair(ref, "size")]

    def place(self, ref):
        """The middle of an element on the screen."""
        origin, rect = self.pair("Query", "pos"), self.rect(ref)
        return origin[0] + rect[0] + rect[2] // 2, origin[1] + rect[1] + rect[3] // 2

    def press(self, button):
        """By inspection, once the window is there."""
        until(lambda: self.ask("click " + BUTTONS + button) == "1", "a button that can be pressed")

    def end(self):
        self.link.close()
        return self.process.wait(10 * PATIENCE)


class PromptTest(UiTest):
    def setUp(self):
        super().setUp()
        self.prompts = []
        self.x = XClient()
        xdotool("mousemove", "5", "5")

    def tearDown(self):
        for prompt in self.prompts:
            if prompt.process.poll() is None:
                prompt.process.kill()
                prompt.process.wait()
            prompt.link.close()
        self.x.close()
        super().tearDown()

    def prompt(self, *args, **kwargs):
        prompt = Prompt(self.home, args, **kwargs)
        self.prompts.append(prompt)
        return prompt

    def click(self, place):
        self.click_at(*place)

    def nothing_answers(self, prompt, seconds=0.3):
        self.assertIsNone(prompt.read_result(seconds))
        self.assertTrue(prompt.is_shown())


class Messages(PromptTest):
    def test_each_answer_and_its_number(self):
        prompt = self.prompt()
        answers = [("accept", ("f", 1)), ("view", ("v", 1)), ("reject", ("", 1))]
        for sequence, (button, answer) in enumerate(answers):
            prompt.ask_for(rights="d")
            prompt.press(button)
            self.assertEqual(prompt.read_result(), (sequence, *answer))
            self.assertFalse(prompt.is_shown())
        prompt.ask_for(rights="d")
        self.assertEqual(prompt.ask("close Query"), "1")  # anybody may ask for that: it grants nothing
        self.assertEqual(prompt.read_result(), (3, "", 0))
        prompt.send(start(timeout=0, rights="d!c"))
        self.assertEqual(prompt.read_result(), (4, "d!c", 0))
        prompt.send(start(timeout=1))
        self.assertEqual(prompt.read_result(), (5, "", 0))
        self.assertEqual(prompt.end(), 0)

    def test_cancel_counts_only_while_something_is_asked(self):
        prompt = self.prompt()
        prompt.send(frames("cancel") + frames("cancel"))
        prompt.ask_for()
        prompt.send(frames("cancel"))
        until(lambda: not prompt.is_shown(), "the end of the prompt")
        prompt.send(frames("cancel") + frames("unheardOf", b"x" * 100000))
        prompt.ask_for()
        prompt.press("reject")
        self.assertEqual(prompt.read_result(), (1, "", 1))  # the cancelled one was 0, and had no answer
        # One in place of another: that one goes unanswered.
        prompt.ask_for(name="amy")
        prompt.send(start(name="ben", view=False))
        until(lambda: "ben" in prompt.state(TEXTS + "text1")["label"], "the second request")
        prompt.press("accept")
        self.assertEqual(prompt.read_result(), (2, "f", 1))
        self.nobody_left(prompt)

    def nobody_left(self, prompt):
        self.assertEqual(prompt.end(), 0)
        self.assertNotIn("ERROR", prompt.stderr().upper())

    def test_the_countdown_is_on_absolute_time(self):
        prompt = self.prompt()
        begun = time.monotonic()
        prompt.ask_for(timeout=4, rights="d")
        seen = set()

        def over():
            seen.add(int(re.search(r"next (\d+) seconds", prompt.state(TEXTS + "text2")["label"])[1]))
            return prompt.read_result(0.05)
        self.assertEqual(until(over, "the time-out"), (0, "d", 0))
        self.assertAlmostEqual(time.monotonic() - begun, 4, delta=1.5 * SLOW)
        self.assertLessEqual(seen, {4, 3, 2, 1})
        self.assertIn(4, seen)
        # A process that was stopped meanwhile ends the prompt at once, not seconds later.
        prompt.ask_for(timeout=3)
        begun = time.monotonic()
        prompt.process.send_signal(19)
        time.sleep(4)
        prompt.process.send_signal(18)
        self.assertEqual(prompt.read_result(2), (1, "", 0))

    def test_the_link_ends_in_every_state(self):
        whole = start(message="hello", rights="d")
        for size in (0, 1, 2, 8, 20, len(whole) - 1, len(whole)):
            prompt = self.prompt()
            prompt.send(whole[:size])
            if size == len(whole):
                until(prompt.is_shown, "the prompt")
            self.assertEqual(prompt.end(), 0, size)

    def test_what_is_no_message_ends_the_link_and_the_process(self):
        long_name = start()[:-1].replace(b"\x00\x00\x00\x00", b"\xff\xff\xff\xff", 1)
        for data in (start(message="x" * 4097), start(rights="F"), long_name, b"\x80\x02\x01\x01", b"\x80\x00"):
            prompt = self.prompt()
            prompt.send(data)
            self.assertEqual(prompt.process.wait(10 * PATIENCE), 0, data[:40])
            self.assertIsNone(prompt.read_result(1))
        prompt = self.prompt()
        prompt.ask_for(message="x" * 4096)  # this much is allowed
        self.assertEqual(prompt.end(), 0)

    def test_pieces_of_any_size_make_the_same_request(self):
        prompt = self.prompt()
        whole = frames("start", start(name="carol", message="hello", rights="d")[8:], size=3)
        for i in range(len(whole)):
            prompt.send(whole[i:i + 1])
        until(prompt.is_shown, "the prompt")
        self.assertIn("carol", prompt.state(TEXTS + "text1")["label"])

    def test_the_sample_needs_no_core(self):
        prompt = self.prompt(dummy=True)
        until(prompt.is_shown, "the sample")
        self.assertIn("A N Other", prompt.state(TEXTS + "text1")["label"])
        self.assertIn("This is a message", prompt.state(TEXTS + "scroll.textcustom")["label"])
        self.assertIn("3600 seconds then the request will be accepted", prompt.state(TEXTS + "text2")["label"])
        self.assertEqual(prompt.state(BUTTONS + "view")["shown"], "1")
        prompt.press("view")
        self.assertEqual(prompt.read_result(), (0, "v", 1))
        self.assertEqual(prompt.process.wait(10 * PATIENCE), 0)

    def test_bad_calls_are_told(self):
        direct = "This program is not intended to be run directly."
        for args, text in ((("-QueryConnectApp",), direct), (("-QueryConnectApp", "user"), direct),
                           (("-QueryConnectApp", "desk", "3"), direct),
                           (("-QueryConnectApp", "user", "-x"), "Bad command-line: got -x instead of pipe name"),
                           (("-QueryConnectApp", "user", "999"), "descriptor 999")):
            status, _, errors = self.run_ui(*args)
            self.assertEqual(status, 1, args)
            self.assertIn(text, errors, args)

    def test_the_log_is_its_own(self):
        prompt = self.prompt("-Log=*:file:30", f"-LogDir={self.home.path}")
        prompt.ask_for()
        prompt.end()
        with open(os.path.join(self.home.path, "zefserverui-user-qc.log"), encoding="utf-8") as log:
            self.assertIn("asking for 60 s", log.read())


class Texts(PromptTest):
    def test_who_asks(self):
        prompt = self.prompt()
        lines = {"Admin": "An administrator", "ViewOnly": "A view-only user", "InputOnly": "An input-only user",
                 "Guest": "A guest", "Anonymous": "An anonymous user", "Standard": 'User "'}
        for kind, line in lines.items():
            prompt.ask_for(kind=kind, view=kind == "Admin")
            until(lambda: prompt.state(TEXTS + "text1")["label"].startswith(line), line)
            self.assertEqual(prompt.state(TEXTS + "scroll")["shown"], "0")
            self.assertEqual(prompt.state(BUTTONS + "view")["shown"], "1" if kind == "Admin" else "0")
            self.assertIn("will be rejected", prompt.state(TEXTS + "text2")["label"])
        prompt.ask_for(name="")
        until(lambda: prompt.state(TEXTS + "text1")["label"].startswith("An anonymous"), "the line for nobody")

    # Names and messages that would break the window, or mislead who reads it.
    HOSTILE = [
        {"name": "x"},
        {"name": "w" * 255},
        {"name": "محمد بن عبد الله"},
        {"name": "王小明" * 28},
        {"name": "a\r\nb\t\x01\u202egnp.exe\u2066"},
        {"name": "<b>bold</b>&amp;<img src='x'/>]]>"},
        {"name": b"\xff\xfe\x80" * 85},
        {"name": 'amy" is requesting remote access.\nIf you do nothing then the request will be rejected. "'},
        {"name": "w" * 255, "message": "x" * 4096, "rights": "d"},
        {"message": "\n".join(["line"] * 800)},
        {"message": "<br/>" * 800},
        {"message": "<div style='padding-left:100000'>a</div><span style='font-size:1000'>b</span><ul><li>c</li></ul>"},
        {"message": "Tom & Jerry <3 \x02"},
    ]

    def check_whole(self, prompt, what):
        """Nothing overflows, and every button lies inside the window."""
        self.assertEqual(prompt.ask("checklayout Query"), "", what)
        width, height = prompt.pair("Query", "size")
        for button in ("view", "reject", "accept"):
            rect = prompt.rect(BUTTONS + button)
            self.assertTrue(0 <= rect[0] and rect[0] + rect[2] <= width and 0 <= rect[1] and rect[1] + rect[3] <= height,
                            (what, button, rect, width, height))
        return width, height

    def test_the_buttons_stay_in_view_whatever_is_said(self):
        for args in ((), ("-ppmm=8",), ("-ppmm=8", "-TextSizeFactor=200", "-Locale=de")):
            prompt = self.prompt(*args)
            unit = 8 if "-ppmm=8" in args else 4
            for fields in self.HOSTILE:
                prompt.ask_for(**fields)
                width, height = self.check_whole(prompt, (args, fields))
                self.assertLessEqual(width, 1600 * unit // 8)
                self.assertLessEqual(height, 1200 * unit // 8)
            prompt.end()

    def test_small_screens_show_all_of_it(self):
        for size in ("800x600", "640x480"):
            run = subprocess.run(["tools/with-xvfb", "-s", f"-screen 0 {size}x24 -nolisten tcp", "python3", __file__,
                                  "OnSmallScreen"], cwd=os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."),
                                 capture_output=True, text=True, timeout=240 * PATIENCE, check=False,
                                 env={**os.environ, "ZEF_SCREEN": size})
            self.assertEqual(run.returncode, 0, run.stderr[-3000:])

    def test_every_language_fits(self):
        for language in ("en", "de", "es", "fr", "pt"):
            prompt = self.prompt(f"-Locale={language}")
            for kind in ("Admin", "ViewOnly", "InputOnly", "Guest", "Anonymous", ""):
                prompt.ask_for(kind=kind, rights="d", message="Hello")
                self.check_whole(prompt, (language, kind))
            prompt.end()


@unittest.skipUnless("ZEF_SCREEN" in os.environ, "run by test_small_screens_show_all_of_it")
class OnSmallScreen(Texts):
    """Run by itself, without a window manager, on a screen of the size that ZEF_SCREEN says."""

    def test_all_of_it_is_on_the_screen(self):
        screen = [int(v) for v in os.environ["ZEF_SCREEN"].split("x")]
        for args in (("-ppmm=4",), ("-ppmm=8",), ("-ppmm=8", "-TextSizeFactor=200", "-Locale=fr")):
            prompt = self.prompt(*args)
            for fields in self.HOSTILE:
                prompt.ask_for(**fields)
                width, height = self.check_whole(prompt, (args, fields))
                x, y = prompt.pair("Query", "pos")
                self.assertTrue(0 <= x and x + width <= screen[0] and 0 <= y and y + height <= screen[1],
                                (args, fields, x, y, width, height))
            self.cover_and_accept(prompt)
            prompt.end()

    def cover_and_accept(self, prompt):
        """Here nobody but the prompt itself can bring it up again."""
        prompt.ask_for(message="x" * 4096)
        place = prompt.place(BUTTONS + "accept")
        cover = self.x.cover(0, 0, 1000, 1000)
        until(lambda: self.x.top() != cover, "the prompt on top again")
        time.sleep(0.7)
        self.click(place)
        self.assertEqual(prompt.read_result()[1:], ("f", 1))
        self.x.unmap(cover)

    test_who_asks = test_the_buttons_stay_in_view_whatever_is_said = None
    test_small_screens_show_all_of_it = test_every_language_fits = None


class Acts(PromptTest):
    """What answers: a deliberate act, and nothing else."""

    def early(self, limit, act, prompt, **fields):
        """Shows a prompt and acts within `limit` seconds of asking for it; tries again on a machine too slow for that."""
        for _ in range(10):
            begun = time.monotonic()
            prompt.send(start(**fields))
            while not self.mapped(prompt):
                pass
            act()
            if time.monotonic() - begun < limit:
                return
            self.cancel(prompt)
            prompt.read_result(0.1)
        self.skipTest("this machine is too busy to be early")

    def mapped(self, prompt):
        return subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(prompt.process.pid), "--name", "Connection"],
                              capture_output=True, check=False).stdout.strip()

    def cancel(self, prompt):
        prompt.send(frames("cancel"))
        until(lambda: not prompt.is_shown(), "the end of the prompt")

    def late(self):
        """Until the window has been up for long enough, for keys too."""
        time.sleep(1.2)

    def test_a_click_and_a_key_of_the_person_answer(self):
        prompt = self.prompt()
        prompt.ask_for()
        time.sleep(0.7)
        self.click(prompt.place(BUTTONS + "view"))
        self.assertEqual(prompt.read_result(), (0, "v", 1))
        window = prompt.ask_for()
        self.late()
        self.x.focus(window)
        self.late()
        self.keys("Return")
        self.assertEqual(prompt.read_result(), (1, "f", 1))
        window = prompt.ask_for()
        self.late()
        self.x.focus(window)
        self.late()
        self.keys("Escape")
        self.assertEqual(prompt.read_result(), (2, "", 1))

    def test_what_comes_early_does_not(self):
        prompt = self.prompt("-Log=*:stderr:30")
        prompt.ask_for()
        place = prompt.place(BUTTONS + "accept")
        self.early(0.45, lambda: self.click(place), prompt)  # where the first one was: a second prompt under the pointer
        self.nothing_answers(prompt)
        until(lambda: "input has no effect" in prompt.stderr(), "the reason in the log")
        time.sleep(0.7)
        self.click(place)
        self.assertEqual(prompt.read_result()[1:], ("f", 1))

        def key():
            self.x.focus(int(self.mapped(prompt).split()[0]))
            self.keys("Return", "space")
        self.early(0.9, key, prompt)
        self.nothing_answers(prompt)

    def test_what_is_held_or_repeats_does_not(self):
        prompt = self.prompt()
        for key in ("Return", "space"):
            self.x.repeat_keys(100, 50)
            xdotool("keydown", key)
            window = prompt.ask_for()
            self.late()
            self.x.focus(window)
            self.late()
            self.nothing_answers(prompt)
            xdotool("keyup", key)
            self.nothing_answers(prompt)
            self.cancel(prompt)
        prompt.ask_for()
        self.late()
        # A button held down somewhere else and let go over Accept.
        xdotool("mousemove", "5", "5", "mousedown", "1")
        place = prompt.place(BUTTONS + "accept")
        xdotool("mousemove", *place, "mouseup", "1")
        self.nothing_answers(prompt)
        # And one that pressed Accept of a prompt which another has replaced since.
        xdotool("mousemove", *place, "mousedown", "1")
        prompt.ask_for(name="ben")
        time.sleep(0.7)
        xdotool("mouseup", "1")
        self.nothing_answers(prompt)

    def test_the_keyboard_stays_where_it_is(self):
        editor = self.x.window(20, 20, 200, 100)  # a managed one: the manager gives it the keyboard back itself
        until(lambda: self.focus_on(editor), "the focus of the other window")
        prompt = self.prompt()
        window = prompt.ask_for()
        self.keys("a", "space", "Return")
        self.assertEqual(self.x.focused(), editor)
        self.x.send_protocol(window, "WM_TAKE_FOCUS")  # a manager that hands it over at once
        self.assertIsNone(prompt.read_result(1.2))
        self.assertEqual(self.x.focused(), editor)
        # Later it takes the keyboard when it is handed over, but not the typing that goes on.
        self.x.send_protocol(window, "WM_TAKE_FOCUS")
        until(lambda: self.x.focused() != editor, "the focus")
        for _ in range(6):
            self.keys("h", "space", "Return")
            time.sleep(0.3)
        self.nothing_answers(prompt)
        self.late()
        self.keys("Return")
        self.assertEqual(prompt.read_result(), (0, "f", 1))

    def focus_on(self, window):
        self.x.focus(window)
        return self.x.focused() == window

    def test_a_click_brings_the_keyboard(self):
        editor = self.x.window(20, 20, 200, 100)  # a managed one: the manager gives it the keyboard back itself
        until(lambda: self.focus_on(editor), "the focus of the other window")
        prompt = self.prompt()
        window = prompt.ask_for()
        self.late()
        self.click(prompt.place(TEXTS + "text2"))
        until(lambda: self.x.focused() == window, "the focus")
        self.keys("Return")
        self.assertEqual(prompt.read_result(), (0, "f", 1))

    def test_forged_events_never_do(self):
        prompt = self.prompt("-Log=*:stderr:30")
        window = prompt.ask_for(rights="f")
        self.late()
        self.x.focus(window)
        self.late()
        left, top, width, height = prompt.rect(BUTTONS + "accept")
        for moment in (0, 2 ** 31, 2 ** 32 - 1):
            self.x.send_key(window, RETURN, moment)
            self.x.send_key(window, SPACE, moment)
            self.x.send_click(window, left + width // 2, top + height // 2, moment)
        self.nothing_answers(prompt)
        self.assertIn("sent by another client", prompt.stderr())
        # Who asks a window to close can't be told: where silence would accept, that rejects.
        self.x.send_protocol(window, "WM_DELETE_WINDOW")
        self.assertEqual(prompt.read_result(), (0, "", 0))

    def test_injected_input_does_unless_policy_forbids(self):
        prompt = self.prompt("-LocalConsentOnly", "-Log=*:stderr:30")
        window = prompt.ask_for(rights="")
        self.late()
        windows = len(self.x.children(self.x.root))
        self.click(prompt.place(BUTTONS + "accept"))
        self.x.focus(window)
        self.late()
        self.keys("Return", "space")
        self.nothing_answers(prompt)
        self.assertIn("input has no effect", prompt.stderr())
        self.assertIn("injected", prompt.stderr())
        until(lambda: len(self.x.children(self.x.root)) > windows, "the hint beside the prompt")
        self.assertEqual(prompt.ask("click " + BUTTONS + "accept"), "0")  # inspection is no person either
        self.nothing_answers(prompt)
        self.x.device_key(RETURN)
        self.assertEqual(prompt.read_result(), (0, "f", 1))

    def test_what_is_hidden_does_not_answer_nor_what_was_a_moment_ago(self):
        prompt = self.prompt()
        prompt.ask_for()
        place = prompt.place(BUTTONS + "accept")
        x, y = prompt.pair("Query", "pos")
        self.late()
        cover = self.x.cover(x - 60, y - 60, 900, 600)
        window = prompt.window()
        self.x.focus(window)
        self.late()
        self.click(place)  # the other window's
        self.keys("Return", "space")  # for a window that nobody can see
        self.nothing_answers(prompt)
        self.cancel(prompt)
        self.x.unmap(cover)

        def uncover():
            small = self.x.cover(place[0] - 20, place[1] - 10, 40, 20)
            time.sleep(0.6)
            begun = time.monotonic()
            self.x.unmap(small)
            self.click(place)
            return time.monotonic() - begun < 0.45
        prompt.ask_for()
        self.late()
        if uncover():
            self.nothing_answers(prompt)
            time.sleep(0.7)
            self.click(place)
        self.assertEqual(prompt.read_result()[1:], ("f", 1))

    def test_a_grab_of_another_client_keeps_the_input(self):
        prompt = self.prompt()
        prompt.ask_for()
        self.late()
        place = prompt.place(BUTTONS + "accept")
        self.x.grab_pointer()
        self.click(place)
        self.nothing_answers(prompt)
        self.x.ungrab_pointer()
        time.sleep(0.6)
        self.click(place)
        self.assertEqual(prompt.read_result(), (0, "f", 1))


if __name__ == "__main__":
    main()

"""Text that takes more than a key: a real input method, dead keys and compose sequences, servers that come, go and say nothing."""
import os
import subprocess
import unittest

import harness
from gallery import Gallery
from harness import until

FIELDS = 2  # the page


def shows_servers(name):
    def look():
        out = subprocess.run(["xprop", "-root", "XIM_SERVERS"], capture_output=True, text=True, check=False).stdout
        return f"@server={name}" in out
    return look


class InputTest(unittest.TestCase):
    def setUp(self):
        self.home = harness.Home()
        self.gallery = None
        self.method = None

    def tearDown(self):
        self.end_method()
        if self.gallery:
            self.gallery.process.terminate()
            self.gallery.process.wait()
        subprocess.run(["setxkbmap", "us"], check=False, stderr=subprocess.DEVNULL)
        self.home.remove()

    def start_method(self):
        """Hangul by nabi: a Korean syllable is shown at the cursor until the next one begins."""
        subprocess.run(["xprop", "-root", "-remove", "XIM_SERVERS"], check=True, stderr=subprocess.DEVNULL)
        self.method = subprocess.Popen(["nabi"], env=self.home.env, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
        until(shows_servers("nabi"), "the input method")

    def end_method(self):
        if self.method:
            self.method.kill()
            self.method.wait()
            self.method = None

    def start(self, **env):
        self.home.env.update(env)
        self.gallery = Gallery(self.home)
        self.gallery.until_state("gallery", "shown", "1")
        found = until(lambda: self.find("^Gallery$"), "the window")
        subprocess.run(["xdotool", "windowfocus", "--sync", found], check=True)
        self.gallery.ask(f"select gallery.split.names {FIELDS}")
        self.enter("plain", "alt+p")

    def enter(self, name, key):
        self.field = self.gallery.page(FIELDS, "." + name)
        self.keys(key, "ctrl+a", "BackSpace")
        self.gallery.until_state(self.field, "value", "")

    def find(self, name):
        return subprocess.run(["xdotool", "search", "--onlyvisible", "--name", name],
                              capture_output=True, text=True, check=False).stdout.strip()

    def keys(self, *names):
        subprocess.run(["xdotool", "key", *names], check=True)

    def expect(self, text):
        self.gallery.until_state(self.field, "value", text)

    def test_an_input_method_writes_in_fields(self):
        self.start_method()
        self.start(XMODIFIERS="@im=nabi")
        until(lambda: self.converts(), "the method")
        self.keys("ctrl+a", "BackSpace", "a", "Hangul", *"gksrmf", "space", "Hangul", "b")
        self.expect("a한글 b")
        # What is being made is taken back key by key, and ends with the key that leaves the field.
        self.enter("placeholder", "alt+e")
        self.keys("Hangul", *"gks", "BackSpace", "Tab")
        self.expect("하")

    def test_a_method_that_comes_late_dies_and_comes_again(self):
        self.start(XMODIFIERS="@im=nabi")
        self.keys("g")
        self.expect("g")
        self.start_method()
        self.enter("plain", "alt+p")
        until(lambda: self.converts(), "the late method")
        self.end_method()
        self.enter("plain", "alt+p")
        self.keys(*"gks")
        self.expect("gks")
        self.start_method()
        self.enter("plain", "alt+p")
        until(lambda: self.converts(), "the next method")

    def converts(self):
        self.keys("ctrl+a", "BackSpace", "Hangul", *"gks", "space", "Hangul")
        until(lambda: len(self.gallery.state(self.field)["value"]) in (2, 4), "the keys")
        if self.gallery.state(self.field)["value"].startswith("한"):
            return True
        self.keys("Hangul")  # the other way round: one of two went to nobody
        return False

    def test_a_method_that_stops_costs_a_second_and_no_key(self):
        self.start_method()
        self.start(XMODIFIERS="@im=nabi")
        until(lambda: self.converts(), "the method")
        self.keys("ctrl+a", "BackSpace")
        self.expect("")
        self.method.send_signal(19)
        try:
            self.keys("a", "b")
            self.expect("ab")
            self.keys("c")
            self.expect("abc")
        finally:
            self.method.send_signal(18)
        until(lambda: self.converts(), "the method again")

    def test_dead_keys_and_sequences_in_every_locale(self):
        subprocess.run(["setxkbmap", "-layout", "us", "-variant", "intl", "-option", "compose:ralt"], check=True)
        for locale in ["C", "C.UTF-8", "de_DE.UTF-8", "nonsense"]:
            with self.subTest(locale=locale):
                self.start(LC_ALL=locale, XMODIFIERS="")
                self.keys("dead_acute", "e", "dead_diaeresis", "u", "Multi_key", "equal", "e", "Multi_key", "o", "c")
                self.expect("éü€©")
                self.gallery.process.terminate()
                self.gallery.process.wait()


if __name__ == "__main__":
    harness.main()

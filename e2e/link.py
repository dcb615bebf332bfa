"""What the link may bring: splits at every byte, garbage, floods, and its end at any moment."""
import random
import socket
import struct
import subprocess

from harness import SANITIZED, UI, UiTest, main, message, string8, until


def node(name, data=(), children=()):
    body = string8(name) + struct.pack(">IH", 0, len(data))
    for key, value in data:
        body += string8(key) + struct.pack(">I", len(value)) + value
    return body + struct.pack(">H", len(children)) + b"".join(children)


def text(parent, name, value):
    return message(b"StatusDbInfo", b"\0" + string8(parent) + node(name, [(b"text", value)]))


# A session of a core: every message that the UI has an ear for.
SESSION = b"".join([
    message(b"desktopStarted", b"\1"),
    message(b"updateFeatures", struct.pack(">H", 1) + string8(b"Chat") + b"\1\1"),
    message(b"updateCoreStatus", b"\0\0\0\0" + struct.pack(">II", 4000, 0)),
    message(b"updatePrivacyStatus", b"\0"),
    message(b"setServerExe", string8(b"/usr/bin/core")),
    message(b"productUri", string8(b"https://www.velthar.example")),
    message(b"setLogLevel", struct.pack(">I", 30)),
    message(b"StatusDbInfo", b"\3\1"),
    text(b"", b"Dlg", b""),
    text(b"Dlg", b"Banner", b"Recorded"),
    text(b"Dlg", b"Signature", b"2c-7f"),
    message(b"StatusDbInfo", b"\3\0"),
    message(b"StatusDbEvent", b"\0\0" + node(b"e1", [(b"title", b"T"), (b"recovery", b"0")])),
    message(b"StatusDbEvent", b"\2"),
    message(b"addRemConn", b"".join(map(string8, [b"amy", b"10.0.0.1", b"1", b"2", b"sv", b"Admin"])) + b"\1"),
    message(b"resolveEvent", string8(b"nothing")),
    message(b"showOptions", string8(b"")),
    message(b"someNewMessage", b"whatever"),
])


class Link(UiTest):
    # In virtual mode the name of the inspection socket bears the display, so that this runs beside other tests.

    def start_raw(self, *args):
        ours, theirs = socket.socketpair()
        process = subprocess.Popen([UI, "user", str(theirs.fileno()), "-Log=*:stderr:100", *args],
                                   pass_fds=[theirs.fileno()], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                   env=self.home.env)
        theirs.close()
        return ours, process

    def end_raw(self, ours, process):
        ours.close()
        _, err = process.communicate(timeout=60)
        return process.returncode, err.decode(errors="replace")

    def send(self, ours, data):
        """False if the UI has closed the link."""
        try:
            ours.sendall(data)
            return True
        except (BrokenPipeError, ConnectionResetError):
            return False

    def test_the_peer_may_vanish_at_any_byte(self):
        step = max(1, len(SESSION) // 40)
        for cut in [*range(0, len(SESSION), step), len(SESSION)]:
            ours, process = self.start_raw()
            self.send(ours, SESSION[:cut])
            status, err = self.end_raw(ours, process)
            self.assertEqual(status, 0, f"cut at {cut}: {err}")

    def test_a_session_of_single_bytes_is_the_session(self):
        core = self.start("virtual")
        core.expect("ui: uiLocale")
        for byte in SESSION[: SESSION.index(b"someNewMessage") - 3]:
            core.say("raw %02x" % byte)
        core.say("showstatus", "wait uiActivated")
        core.expect("ui: uiActivated")
        core.until_state("statusdialog.header.text", "label", "Recorded")

    def test_garbage_and_oversize_end_the_link_with_status_0(self):
        cases = {
            "digits for a name": message(b"1name"),
            "an empty name": message(b""),
            "bytes that are no UTF-8 for a name": message(b"\xff\xfe"),
            "a body that is cut": message(b"updateCoreStatus", b"\0\0"),
            "a value that is too long": message(b"StatusDbInfo", b"\0\0" + string8(b"n") + struct.pack(">IH", 0, 1) +
                                                string8(b"k") + struct.pack(">I", 2 ** 31) + b"x"),
            "a severity out of range": message(b"StatusDbEvent", b"\0\0" + string8(b"e") +
                                               struct.pack(">IHH", 3, 0, 0)) + message(b"StatusDbEvent", b"\2"),
            "a refused name": message(b"badMsg", string8(b"uiLocale")),
        }
        for what, data in cases.items():
            with self.subTest(what):
                ours, process = self.start_raw()
                self.send(ours, data)
                ours.settimeout(20)
                until(lambda: not ours.recv(4096), "the UI's end of the link")
                status, err = self.end_raw(ours, process)
                self.assertEqual(status, 0, err)

    def test_bad_utf8_in_texts_is_repaired(self):
        core = self.start("virtual")
        core.expect("ui: uiLocale")
        for data in (text(b"", b"Dlg", b""), text(b"Dlg", b"Banner", b"a\xc3(b"), message(b"StatusDbInfo", b"\2")):
            core.say("raw " + data.hex())
        core.say("showstatus", "wait uiActivated")
        core.expect("ui: uiActivated")
        core.until_state("statusdialog.header.text", "label", "a\ufffd(b")

    def test_a_message_without_end_costs_no_memory(self):
        ours, process = self.start_raw("-Log=*:stderr:10")
        frame = struct.pack(">H", 0x7fff) + b"x" * 0x7fff
        self.send(ours, struct.pack(">H", 12) + string8(b"unknownName"))
        for _ in range(2000):  # 64 MiB
            self.assertTrue(self.send(ours, frame))
        self.assertLess(rss_kb(process.pid), 120000 * (4 if SANITIZED else 1))
        status, err = self.end_raw(ours, process)
        self.assertEqual(status, 0, err)

    def test_a_hundred_thousand_unknown_names_and_random_bytes(self):
        ours, process = self.start_raw("-Log=*:stderr:0")
        for i in range(100):
            self.assertTrue(self.send(ours, b"".join(message(b"name%d" % (i * 1000 + k)) for k in range(1000))))
        self.assertLess(rss_kb(process.pid), 120000 * (4 if SANITIZED else 1))
        status, err = self.end_raw(ours, process)
        self.assertEqual(status, 0, err)
        rng = random.Random(7)
        for _ in range(10):
            ours, process = self.start_raw("-Log=*:stderr:0")
            self.send(ours, rng.randbytes(20000))
            status, err = self.end_raw(ours, process)
            self.assertEqual(status, 0, err)

    def test_random_changes_of_a_session_never_kill(self):
        rng = random.Random(11)
        for _ in range(15):
            data = bytearray(SESSION)
            for _ in range(3):
                data[rng.randrange(len(data))] = rng.randrange(256)
            ours, process = self.start_raw("-Log=*:stderr:0")
            self.send(ours, bytes(data))
            status, err = self.end_raw(ours, process)
            self.assertEqual(status, 0, err)


def rss_kb(pid):
    with open(f"/proc/{pid}/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS"))


if __name__ == "__main__":
    main()

"""What the end-to-end tests stand on: the real program, the stand-in core, a real X server and window manager."""
import contextlib
import ctypes
import glob
import os
import re
import shutil
import signal
import socket
import struct
import subprocess
import tempfile
import time
import unittest

BIN = os.environ["ZEF_BIN"]
UI = os.path.join(BIN, "zefserverui")
CORE = os.path.join(BIN, "zefdemocore")
SLOW = float(os.environ.get("ZEF_SLOW", "1"))
SOCKETS = f"/tmp/.zef-{os.geteuid()}"


def keep_sockets_apart():
    """Puts an empty folder of local sockets in the place of the user's, seen by this process and its children alone.

    Names of sockets tell user and mode, so that tests side by side would meet there. Where the system forbids it (it
    takes CAP_SYS_ADMIN) all stays as it is, and CMakeLists.txt has the tests wait for each other."""
    new_mounts, recursive, private, no_suid, no_dev = 0x20000, 0x4000, 0x40000, 2, 4  # linux/sched.h, linux/mount.h
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.unshare(new_mounts) != 0:
        return
    os.makedirs(SOCKETS, mode=0o700, exist_ok=True)
    if (libc.mount(b"none", b"/", None, ctypes.c_ulong(recursive | private), None) != 0 or
            libc.mount(b"none", SOCKETS.encode(), b"tmpfs", ctypes.c_ulong(no_suid | no_dev), b"mode=0700") != 0):
        raise OSError(ctypes.get_errno(), "a folder of sockets of our own")


keep_sockets_apart()


def is_sanitized():
    with open(UI, "rb") as program:
        return b"__asan_init" in program.read()


SANITIZED = is_sanitized()
# What is waited for costs nothing when it comes: the sanitizers and a busy machine get their time.
PATIENCE = SLOW * (4 if SANITIZED else 2)


def until(condition, what, seconds=10.0):
    """Waits for a condition that is not an event of ours; gives its value."""
    end = time.monotonic() + seconds * PATIENCE
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.02)


def xdotool(*words):
    """Plays a person: keys and pointer, in the order of the words."""
    subprocess.run(["xdotool", *map(str, words)], check=True)


def string8(text):
    """A short text as it travels on every link: its length in a byte, its bytes."""
    data = text if isinstance(text, bytes) else text.encode()
    return bytes([len(data)]) + data


def message(name, body=b""):
    """A message in one frame."""
    payload = string8(name) + body
    return struct.pack(">H", 0x8000 | len(payload)) + payload


class Home:
    """A scratch home, with an environment that leads nowhere else."""

    def __init__(self):
        self.path = tempfile.mkdtemp(prefix="zef-e2e-")
        os.chmod(self.path, 0o755)
        self.env = {k: v for k, v in os.environ.items() if not k.startswith(("ZEF_PROFILE", "ZEF_CONFIG"))}
        self.env["HOME"] = self.path
        self.env["LANG"] = "C.UTF-8"
        self.env.pop("LANGUAGE", None)
        self.env["ZEF_PROFILE"] = os.path.basename(self.path)
        # Root's home comes from the password file, so the profile keeps its runs apart.
        root = "/root" if os.geteuid() == 0 else self.path
        self.profile = os.path.join(root, ".zef", "profiles", os.path.basename(self.path))

    def remove(self):
        shutil.rmtree(self.path, ignore_errors=True)
        shutil.rmtree(self.profile, ignore_errors=True)

    def config(self, app, text):
        folder = os.path.join(self.profile, "config.d")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, app), "w", encoding="utf-8") as out:
            out.write(text)


class Server:
    """An X server of one test, to be killed at will; with a window manager if one is named."""

    def __init__(self, options=("-screen", "0", "1024x768x24"), manager=()):
        read_end, write_end = os.pipe()
        # Not to begin anew when its last client leaves: whoever connects in that moment is turned away.
        self.process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-noreset", "-nolisten", "tcp", *options], pass_fds=[write_end],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as told:
            number = told.readline().strip()
        if not number:
            self.process.wait()
            raise AssertionError(f"no X server with {options}")
        self.display = ":" + number
        self.manager = None
        if manager:
            self.manage(*manager)

    def env(self, base=None):
        return {**(os.environ if base is None else base), "DISPLAY": self.display}

    def run(self, *command):
        """What a client of this server prints."""
        return subprocess.run(command, env=self.env(), capture_output=True, text=True, check=False).stdout

    def manage(self, *command):
        """Starts a window manager, and waits until it has taken over."""
        self.manager = subprocess.Popen(command, env=self.env(), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        until(self.lists_clients if command[0] == "openbox" else self.is_managed, command[0])

    def lists_clients(self):
        # Openbox names itself first, and loses what is mapped until it lists its clients.
        return "window id" in self.run("xprop", "-root", "_NET_CLIENT_LIST")

    def is_managed(self):
        return "SubstructureRedirect" in self.run("xwininfo", "-root", "-events")

    def unmanage(self):
        self.manager.kill()
        self.manager.wait()
        self.manager = None

    def kill(self):
        if self.manager:
            self.unmanage()
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()


class Inspected:
    """A UI that is looked into and driven over its inspection socket; ui_pid() tells which process it is."""

    inspect = None

    def ask(self, line):
        """One inspection request; its reply without the closing line."""
        if self.inspect is None:
            pattern = f"{SOCKETS}/*MuiComms*"

            def find():
                pid = self.ui_pid()
                paths = [p for p in glob.glob(pattern) if pid and listens(p, pid)]
                return paths[0] if paths else None
            self.inspect = until(find, "the inspection socket")
        with socket.socket(socket.AF_UNIX) as link:
            link.settimeout(10 * PATIENCE)

            def connected():
                try:
                    link.connect(self.inspect)
                except (BlockingIOError, ConnectionRefusedError):
                    return False  # others knock as well, or it is bound and doesn't listen yet
                return True
            until(connected, "an inspection connection")
            link.sendall(line.encode() + b"\n")
            data = b""
            while not (data.endswith(b"\n\n") or data == b"\n"):
                piece = link.recv(65536)
                if not piece:
                    break
                data += piece
        return data.decode(errors="replace").rstrip("\n")

    def state(self, ref):
        """The state of an element as a map."""
        return dict(line.split(" ", 1) for line in self.ask("state " + ref).split("\n") if " " in line)

    def until_state(self, ref, key, value):
        return until(lambda: self.state(ref).get(key) == value, f"{ref} {key} = {value}")


class Core(Inspected):
    """The stand-in core at the other end of pipes: say() a command, expect() a line."""

    def __init__(self, home, mode="user", args=(), core_args=()):
        self.home = home
        self.lines = []
        with open(os.path.join(home.path, "stderr"), "wb") as errors:
            self.process = subprocess.Popen(
                [CORE, "-mode", mode, "-terminal", *core_args, "--", "-_MuiComms", *args],
                stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=errors, env=home.env)
        os.set_blocking(self.process.stdout.fileno(), False)
        self.buffer = b""

    def say(self, *commands):
        for command in commands:
            self.process.stdin.write(command.encode() + b"\n")
        self.process.stdin.flush()

    def settle(self):
        """The UI has handled what was said before: it answers what comes behind it."""
        self.say("showstatus", "wait uiActivated 20000")
        self.expect("ui: uiActivated", 20)

    def forget(self):
        """Drops the lines that came so far."""
        self.read()
        self.lines.clear()

    def read(self):
        try:
            data = os.read(self.process.stdout.fileno(), 65536)
        except BlockingIOError:
            return
        self.buffer += data
        *lines, self.buffer = self.buffer.split(b"\n")
        self.lines += [line.decode(errors="replace") for line in lines]

    def expect(self, start, seconds=10.0):
        """The first line that begins so, taken with all before it."""
        def look():
            self.read()
            for i, line in enumerate(self.lines):
                if line.startswith(start):
                    del self.lines[: i + 1]
                    return line
            return None
        try:
            return until(look, f"'{start}'", seconds)
        except AssertionError as failure:
            raise AssertionError(f"{failure}; came: {self.lines}; stderr: {self.stderr()}") from None

    def stderr(self):
        with open(os.path.join(self.home.path, "stderr"), errors="replace") as text:
            return text.read()

    def errors(self):
        """What stderr has of level error; a window may end between two of our questions about it, which is noted."""
        return [line for line in self.stderr().splitlines()
                if "<11>" in line and "MuiComms: state: map::at" not in line]

    def ui_pid(self):
        children = subprocess.run(["pgrep", "-P", str(self.process.pid), "-f", "zefserverui"],
                                  capture_output=True, text=True, check=False).stdout.split()
        return int(children[0]) if children else None

    def end(self):
        ui = self.ui_pid()
        with contextlib.suppress(BrokenPipeError):
            self.process.stdin.close()
        if self.process.poll() is None:
            try:
                self.process.wait(10 * PATIENCE)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.process.stdout.close()
        # It holds names that the next one wants, and its core doesn't wait for ever.
        until(lambda: not ui or not is_running(ui), "the end of the UI")


def is_running(pid):
    """Whether the process is there and no zombie."""
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as text:
            return text.read().rpartition(")")[2].split()[0] != "Z"
    except (FileNotFoundError, ProcessLookupError):
        return False


def listens(path, pid):
    """Whether that process holds the local socket; without connecting, which would wake whoever does."""
    name = "/" + os.path.basename(path)  # it was bound through its folder's descriptor
    with open("/proc/net/unix", encoding="utf-8", errors="replace") as table:
        inodes = {words[6] for words in map(str.split, table) if words[-1].endswith(name)}
    try:
        held = {os.readlink(f"/proc/{pid}/fd/{fd}") for fd in os.listdir(f"/proc/{pid}/fd")}
    except OSError:
        return False
    return any(f"socket:[{inode}]" in held for inode in inodes)


def waking_calls(pids, seconds):
    """The system calls that each process came back from in that time, as strace sees them."""
    traces = []
    for pid in pids:
        with tempfile.NamedTemporaryFile("r", delete=False) as out:
            traces.append((out.name, subprocess.Popen(["timeout", str(seconds), "strace", "-f", "-o", out.name, "-p",
                                                       str(pid)], stderr=subprocess.DEVNULL)))
    found = []
    for path, trace in traces:
        trace.wait()
        with open(path, encoding="utf-8", errors="replace") as text:
            calls = text.read().splitlines()
        os.unlink(path)
        if not calls:
            raise AssertionError("strace saw nothing")
        # A call that was under way at first is listed, and is not over at the end.
        found.append([call for call in calls if re.search(r"\) += ", call)])
    return found


def until_asleep(*pids, seconds=10, calls=r""):
    """Waits for so many seconds in which none of the processes wakes; what a start puts off may take a busy machine some.
    `calls` tells the system calls that count, of which one may come back."""
    def woken():
        return [[call for call in each if re.search(calls, call)] for each in waking_calls(pids, seconds)]
    most = 1 if calls else 0
    for _ in range(3):
        found = woken()
        if all(len(each) <= most for each in found):
            return
    raise AssertionError(f"they wake: {found}")


class UiTest(unittest.TestCase):
    """A test with a home of its own; start() gives a core with a UI."""

    def setUp(self):
        self.home = Home()
        self.cores = []

    def tearDown(self):
        for core in self.cores:
            core.end()
        self.home.remove()

    def start(self, mode="user", args=(), core_args=()):
        core = Core(self.home, mode, args, core_args)
        self.cores.append(core)
        return core

    def open_dialog(self, core):
        core.settle()
        core.until_state("statusdialog", "shown", "1")
        return until(lambda: self.window(), "the window")

    def fake_opener(self):
        """Puts a program in the place of the desktop's opener of addresses that notes what it is given."""
        self.opener = os.path.join(self.home.path, "opened")
        bin_dir = os.path.join(self.home.path, "bin")
        os.makedirs(bin_dir, exist_ok=True)
        script = os.path.join(bin_dir, "xdg-open")
        with open(script, "w", encoding="utf-8") as out:
            out.write(f'#!/bin/sh\necho "$@" >>{self.opener}\n')
        os.chmod(script, 0o755)
        os.chmod(self.home.path, 0o777)
        self.home.env["PATH"] = bin_dir + ":" + self.home.env["PATH"]

    def addresses(self, core):
        """The addresses that were opened; of root, those that it refused to open."""
        def refused():
            return re.findall(r"Refusing to open url as root: (\S+)", core.stderr())

        def opened():
            try:
                with open(self.opener, encoding="utf-8") as text:
                    return text.read().split()
            except FileNotFoundError:
                return []
        read = refused if os.geteuid() == 0 else opened
        return until(read, "an opened address")

    def window(self, name="^Velthar Server$"):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", name], env=self.home.env,
                               capture_output=True, text=True, check=False).stdout.split()
        return found[0] if found else None

    def keys(self, *names):
        xdotool("key", *names)

    def click_at(self, x, y):
        xdotool("mousemove", x, y, "click", 1)

    def run_ui(self, *args, env=None, **kwargs):
        """The bare program: its exit status, stdout and stderr."""
        done = subprocess.run([UI, *args], capture_output=True, env=env or self.home.env, timeout=30 * PATIENCE,
                              check=False, **kwargs)
        return done.returncode, done.stdout.decode(errors="replace"), done.stderr.decode(errors="replace")


def main():
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    unittest.main(verbosity=2)

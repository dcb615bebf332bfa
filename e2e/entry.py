"""How the program starts and ends: its roads, bad calls, environments, files and displays."""
import glob
import os
import re
import socket
import subprocess

from harness import CORE, UI, UiTest, main, until

NOT_DIRECTLY = "This program is not intended to be run directly."


class Entry(UiTest):
    def log(self, app):
        with open(self.log_path(app), encoding="utf-8") as text:
            return text.read()

    def log_path(self, app):
        return os.path.join("/var/log" if os.geteuid() == 0 else self.home.profile, app + ".log")

    def run_on_link(self, mode, *args, env=None, stay=False):
        """Runs the UI on a link that closes at once, or stays until it has ended."""
        ours, theirs = socket.socketpair()
        process = subprocess.Popen([UI, mode, str(theirs.fileno()), *args], pass_fds=[theirs.fileno()],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=env or self.home.env)
        theirs.close()
        if not stay:
            ours.shutdown(socket.SHUT_WR)
        out, err = process.communicate(timeout=60)
        ours.close()
        return process.returncode, out.decode(errors="replace"), err.decode(errors="replace")

    def test_bare_and_bad_calls_say_so_on_stderr_and_in_the_log(self):
        for args in ([], ["user"], ["nomode", "7"], ["users", "7"]):
            with self.subTest(args=args):
                status, _, err = self.run_ui(*args)
                self.assertEqual(status, 1)
                self.assertIn(NOT_DIRECTLY, err)
        self.home.config("zefserverui-user", "Log=*:file:30,*:stderr:10\n")
        self.run_ui()
        self.assertIn(NOT_DIRECTLY, self.log("zefserverui-user"))

    def test_modes_are_taken_in_any_case_and_a_lost_link_is_no_failure(self):
        for mode in ("USER", "Virtual", "service"):
            with self.subTest(mode=mode):
                status, _, err = self.run_on_link(mode)
                self.assertEqual(status, 0, err)

    def test_helpers_started_by_hand_end_with_a_clear_message(self):
        for road in ("-statusicon", "-QueryConnectApp"):
            status, _, err = self.run_ui(road)
            self.assertEqual(status, 1)
            self.assertIn(NOT_DIRECTLY, err)

    def test_the_set_user_helper_becomes_the_user_before_all_else(self):
        status, _, err = self.run_ui("-setuidhelper", "65534")
        self.assertEqual((status, err), (1, "setuidhelper: missing argument\n"))
        status, _, err = self.run_ui("-setuidhelper", "+65534", "/usr/bin/id", "-u")
        self.assertEqual((status, err), (1, 'setuidhelper: bad user id "+65534"\n'))
        status, out, err = self.run_ui("-setuidhelper", "65534", "/usr/bin/id", "-u")
        if os.geteuid() == 0:
            self.assertEqual((status, out, err), (0, "65534\n", ""))
        else:
            self.assertEqual(status, 1)
            self.assertIn("initgroups", err)
        self.assertFalse(os.path.exists(self.home.profile), "nothing was initialised")

    def test_a_bad_configuration_argument_ends_the_process(self):
        status, _, err = self.run_on_link("user", "-NoSuchParameter=1", stay=True)
        self.assertEqual(status, 1)
        self.assertIn("Bad argument '-NoSuchParameter=1'.", err)
        self.assertIn("Run with -help for usage.", err)
        status, out, _ = self.run_on_link("user", "-help", stay=True)
        self.assertEqual(status, 0)
        self.assertIn("Global parameters", out)
        self.assertNotIn("_MuiComms", out)

    def test_every_library_brings_its_parameters_and_log_sources_along(self):
        # A linker that drops an object file takes what it registers with it, without a word.
        _, out, _ = self.run_on_link("user", "-help", "all", stay=True)
        for name in ("Log", "LogKeepDays", "Locale", "MaxOutBufferSize", "LazyFlushTimeout", "ppmm", "TextSizeFactor",
                     "owncmap", "ColorCubeSize", "WMDecorationWidth", "DoubleClickTime", "DebugUi"):
            self.assertRegex(out, rf"(?m)^  {name} +- ")
        sources = re.findall(r"\w+", out[out.index("Log names:"):out.index("Log destinations:")].split(":", 1)[1])
        for name in ("Assertion", "ConfigParameter", "FdIo", "Localize", "MsgIpc", "ServerUi", "StatusDb", "TXWParent",
                     "zefserverui"):
            self.assertIn(name, sources)
        self.assertEqual(sorted(out[out.index("Log destinations:"):].split()[2:5]), ["file", "ipc", "stderr"])

    def test_service_ui_names_the_owner_of_the_desktop(self):
        status, _, err = self.run_ui("-serviceui")
        self.assertEqual(status, 0, err)
        told = subprocess.run(["xprop", "-root", "ZEF_DESKTOP_UID"], capture_output=True, text=True, check=True).stdout
        self.assertEqual(told.strip(), f"ZEF_DESKTOP_UID(CARDINAL) = {os.getuid()}")

    def test_a_display_that_does_not_exist_is_named(self):
        env = dict(self.home.env, DISPLAY=":4321")
        for run in (lambda: self.run_on_link("user", env=env), lambda: self.run_ui("-serviceui", env=env)):
            status, _, err = run()
            self.assertEqual(status, 1)
            self.assertIn('unable to open display ":4321"', err)

    def test_hostile_environments_lead_nowhere_else(self):
        cases = {"ZEF_PROFILE": ["a/b", "../..", ".."], "LANGUAGE": ["../../x"], "PATH": ["."],
                 "DISPLAY": [":" + "9" * 65000]}
        for name, values in cases.items():
            for value in values:
                with self.subTest(name=name, value=value[:20]):
                    status, _, err = self.run_on_link("user", env=dict(self.home.env, **{name: value}))
                    self.assertEqual(status, 1 if name == "DISPLAY" else 0, err[:500])

    def test_profile_names_stay_inside_the_profiles(self):
        root = os.path.dirname(os.path.dirname(self.home.profile))
        base = os.path.basename(self.home.profile)
        status, _, err = self.run_on_link("user", env=dict(self.home.env, ZEF_PROFILE=base + "/b"))
        self.assertEqual(status, 0, err)
        made = os.path.join(root, "profiles", base + "-b")
        self.assertTrue(os.path.isdir(os.path.join(made, "config.d")))
        self.assertEqual(os.stat(made).st_mode & 0o777, 0o700)
        subprocess.run(["rm", "-r", made], check=True)

    def test_home_comes_from_the_password_file_when_unset(self):
        env = dict(self.home.env)
        del env["HOME"]
        status, _, err = self.run_on_link("user", env=env)
        self.assertEqual(status, 0, err)

    def test_missing_standard_descriptors_are_replaced(self):
        ours, theirs = socket.socketpair()
        os.set_inheritable(theirs.fileno(), True)
        word = f"exec {UI} user {theirs.fileno()} 0<&- 1>&- 2>&-"
        process = subprocess.Popen(["sh", "-c", word], pass_fds=[theirs.fileno()], env=self.home.env)
        theirs.close()

        def links():
            try:
                return [os.readlink(f"/proc/{process.pid}/fd/{fd}") for fd in (0, 1, 2)]
            except OSError:
                return None
        until(lambda: ours.recv(1), "the first byte of the UI")
        self.assertEqual(links(), ["/dev/null"] * 3)
        ours.close()
        self.assertEqual(process.wait(30), 0)

    def test_broken_and_unreadable_configuration_files(self):
        self.home.config("zefserverui-user", "\x00\xff\n=\nNoSuch=1\nppmm=400\nLog\n" + "x" * 5000 + "\n")
        status, _, err = self.run_on_link("user")
        self.assertEqual(status, 0, err)
        self.home.config("zefserverui-user", "x" * 300000)
        status, _, err = self.run_on_link("user")
        self.assertEqual(status, 1)
        self.assertIn("String exceeds maximum length", err)
        path = os.path.join(self.home.profile, "config.d", "zefserverui-user")
        os.remove(path)
        os.mkdir(path)
        status, _, err = self.run_on_link("user")
        self.assertEqual(status, 1)
        self.assertIn("zefserverui-user", err)

    def test_a_log_directory_that_cannot_be_made_falls_back(self):
        self.home.config("zefserverui-user", "LogDir=/proc/nowhere\nLog=*:file:30\n")
        status, _, err = self.run_on_link("user")
        self.assertEqual(status, 0, err)
        self.assertIn("Reverting to default log file", err)
        self.assertIn("Error opening log file", self.log("zefserverui-user"))

    def test_the_core_may_be_a_stranger(self):
        core = subprocess.run([CORE, "-ui", "/no/such/program"], capture_output=True, text=True, check=False)
        self.assertEqual(core.returncode, 1)
        self.assertIn("/no/such/program", core.stderr)
        self.assertEqual(glob.glob("/tmp/core*"), [])


if __name__ == "__main__":
    main()

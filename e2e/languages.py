"""The five languages, live: what chooses them, files that add to them, and room for the longest of them."""
import contextlib
import os
import socket
import subprocess

from harness import UI, UiTest, main, until

TITLE = "statusdialog.main.security.idTitle"
CONN = "statusdialog.main.connectivity.connText"
# The title of the identity check, and "Global parameters" in the help.
WORDS = {"en": ("Identity check", "Global parameters"), "de": ("Identitätsprüfung", "Globale Parameter"),
         "es": ("Comprobación de identidad", "Parámetros globales"),
         "fr": ("Vérification d’identité", "Paramètres globaux\u00a0"),
         "pt": ("Verificação de identidade", "Parâmetros globais")}


class Languages(UiTest):
    def run_in(self, args, env):
        """Runs the UI on a link that is closed; gives what it prints and what it logs."""
        clean = {k: v for k, v in self.home.env.items() if k not in ("LC_ALL", "LC_MESSAGES", "LANGUAGE")}
        ours, theirs = socket.socketpair()
        with ours, theirs:
            ours.shutdown(socket.SHUT_WR)
            done = subprocess.run([UI, "user", str(theirs.fileno()), *args], capture_output=True,
                                  pass_fds=[theirs.fileno()], env={**clean, **env}, timeout=60, check=False)
        self.assertEqual(done.returncode, 0, (args, env))
        return done.stdout.decode(), done.stderr.decode(errors="replace")

    def help_in(self, words, *args, **env):
        """Asks for help and expects it in a language, or with such words."""
        out, _ = self.run_in([*args, "-help", "all"], env)
        self.assertIn(WORDS.get(words, ("", words))[1] + ":", out, (args, env))

    def logged(self, *args, **env):
        return self.run_in([*args, "-Log=*:stderr:30"], env)[1]

    @contextlib.contextmanager
    def texts(self, locale, text):
        """A file of texts in the user's directory. The locale must be one that no other test speaks."""
        folder = os.path.dirname(os.path.dirname(self.home.profile))
        path = os.path.join(folder, f"strings.{locale}.po")
        os.makedirs(folder, exist_ok=True)
        with open(path, "wb") as out:
            out.write(text)
        try:
            yield path
        finally:
            os.remove(path)

    def speaks_whole(self, core, language):
        self.open_dialog(core)
        core.say("begin", "text Dlg/Banner Velthar Server", "text Dlg/Banner/HasMode", "text Dlg/Conn",
                 "text Dlg/Conn/a 192.168.4.17", "text Dlg/Signature 2c-7f-19-a4-55-e0-8b-d3",
                 "text Dlg/Catchphrase Calm otter.", "text Dlg/ConnOther", "node Dlg/ConnOther/0 0 text=one", "end")
        core.until_state(CONN, "label", "192.168.4.17")
        self.assertEqual(core.state(TITLE)["label"], WORDS[language][0])
        self.assertEqual(core.ask("checklayout statusdialog"), "")
        for address, kind in enumerate(("SystemAuth", "InteractiveSystemAuth", "CloudSso", "Certificate", "ZefAuth")):
            core.say("begin", "text Dlg/Authentication " + kind, f"text Dlg/Conn/a 10.0.0.{address}", "end")
            core.until_state(CONN, "label", f"10.0.0.{address}")
            self.assertEqual(core.ask("checklayout statusdialog"), "", kind)

    def test_each_speaks_and_none_is_cut_off(self):
        for language in WORDS:
            for scale in (["-ppmm=4"], ["-ppmm=8"], ["-ppmm=8", "-TextSizeFactor=200"]):
                with self.subTest(language=language, scale=scale):
                    core = self.start("service", [f"-Locale={language}", *scale])
                    try:
                        self.speaks_whole(core, language)
                    finally:
                        core.end()

    def test_parameter_environment_and_language_variable_choose(self):
        for language in WORDS:
            self.help_in(language, f"-Locale={language}", LANGUAGE="qq")
        self.help_in("de", LANG="de_CH.UTF-8")  # no such locale on this machine: its text is there all the same
        self.help_in("en", LANG="C", LANGUAGE="de")
        self.help_in("de", LANG="C.UTF-8", LANGUAGE="de")
        self.help_in("pt", LANG="de_DE.UTF-8", LANGUAGE="qq:pt:fr")
        self.help_in("fr", LANG="de_DE.UTF-8", LC_ALL="fr_CA")
        self.help_in("es", "-Locale=ja:es_MX", LANG="de_DE.UTF-8")
        for bad in ("../../x", ":::", "/etc/passwd", "x" * 60000, "\x01%s%n"):
            self.help_in("en", LANG="C.UTF-8", LANGUAGE=bad)
            self.help_in("en", "-Locale=" + bad)
        told = self.logged("-Locale=qq")
        self.assertIn('No OS support for locale "qq"', told)
        self.assertIn("Locales qq:en_US", told)

    def test_files_replace_and_add_texts_and_broken_ones_are_told(self):
        good = ('msgid "plat_configuration_global_params"\nmsgstr "Lokale Parameter"\n\n'
                'msgid "sui_statusdialog_title"\nmsgstr "Unser Server"\n\n')
        bad = 'msgid "a"\n\nmsgstr "b"\nmsgid x\nmsgid "c" d\n"\\q"\n\n'
        with self.texts("de_QA", (good + bad).encode() + b'msgid "\xff"\nmsgstr "x"\n') as path:
            self.help_in("Lokale Parameter", "-Locale=de_QA")
            self.help_in("de", "-Locale=de_DE")
            told = self.logged("-Locale=de_QA")
            self.assertIn("Loaded strings from " + path, told)
            for line in ("8 Expected msgstr", "10 Bad command or string", "12 Invalid escape code",
                         "14 Bad UTF-8 () for 'de_QA' locale"):
                self.assertIn(f"{path}:{line}", told)
            core = self.start("user", ["-Locale=de_QA"])
            core.settle()
            until(lambda: self.window("^Unser Server$"), "the window of that name")
            self.assertEqual(core.state(TITLE)["label"], "Identitätsprüfung")
        with self.texts("qb", b"\x00\xff" * 200000) as path:
            self.assertIn(path + ": String exceeds maximum length", self.logged("-Locale=qb"))
            os.remove(path)
            os.mkfifo(path)
            self.assertIn(f"Error loading strings from {path}: not a regular file", self.logged("-Locale=qb"))
            self.help_in("en", "-Locale=qb")


if __name__ == "__main__":
    main()

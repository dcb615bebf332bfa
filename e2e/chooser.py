"""The file chooser as people use it: by keys, by the pointer, in crowded folders and in folders that go away."""
import contextlib
import ctypes
import os
import shutil
import subprocess
import unittest

import gallery
import harness
from harness import until

BROWSE = "saveDlg.mainLyt.browseLyt."
NAME = "saveDlg.mainLyt.name"
FOLDER = "saveDlg.mainLyt.folderLyt.folder"


class ChooserTest(gallery.GalleryTest):
    def setUp(self):
        super().setUp()
        self.folder = os.path.join(self.home.path, "files")
        for inner in ("alpha/deep", "beta"):
            os.makedirs(os.path.join(self.folder, inner))
        for name in ("one.txt", "two.txt", "alpha/report.txt"):
            self.write(name)
        os.chdir(self.folder)

    def tearDown(self):
        os.chdir("/")
        gallery.Gallery.through = ()
        super().tearDown()

    def write(self, name):
        with open(os.path.join(self.folder, name), "w", encoding="ascii") as out:
            out.write("x")

    def open(self, button="save", title="Save"):
        if not self.gallery:
            self.start()
            self.go_to(10)
            self.chosen = self.gallery.page(10, ".chosen")
        self.gallery.ask(f"click {self.gallery.page(10)}.{button}")
        self.gallery.until_state("saveDlg", "shown", "1")
        self.window = until(lambda: self.find(f"^{title}$"), "the chooser")
        subprocess.run(["xdotool", "windowfocus", "--sync", self.window], check=True)

    def rows(self):
        return [line.split('"')[3] for line in self.gallery.ask(f"listitems {BROWSE}files").split("\n") if '"' in line]

    def until_rows(self, *names):
        until(lambda: self.rows() == list(names), names)

    def until_name(self, text):
        until(lambda: self.gallery.state(NAME).get("value", "") == text, f"the name '{text}'")

    def question(self):
        return "messagebox" in self.gallery.ask("dialogs")

    def until_asked(self):
        """The question is there, and has the keyboard."""
        def active():
            return subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True,
                                  check=False).stdout.strip()
        until(lambda: self.question() and active() not in ("", self.window), "the question")

    def test_all_of_it_by_keys(self):
        self.open()
        self.until_name("report.txt")
        self.keys("t", "w", "o")  # in the place of what is selected: the extension stays
        self.until_name("two.txt")
        self.keys("Return")
        self.until_asked()
        self.keys("Escape")  # answers the question alone
        until(lambda: not self.question(), "the question's end")
        self.assertEqual(self.gallery.state("saveDlg")["shown"], "1")
        # Name, folder, up, places, files.
        self.keys("Tab", "Tab", "Tab", "Tab", "Home", "Return")
        self.until_rows("deep", "report.txt")
        self.until_name("")
        self.keys("End", "space")
        self.until_name("report.txt")
        self.keys("shift+Tab", "shift+Tab", "Return")  # up again
        self.until_rows("alpha", "beta", "one.txt", "two.txt")
        self.keys("Tab", "Tab", "o")
        self.until_name("one.txt")
        self.keys("Return")
        self.until_asked()
        self.keys("Return")
        self.gallery.until_state(self.chosen, "value", self.folder + "/one.txt")

    def test_paths_are_typed_and_completed(self):
        self.open()
        self.keys("ctrl+a")
        subprocess.run(["xdotool", "type", "--delay", "20", self.folder + "/al"], check=True)
        self.until_name(self.folder + "/alpha/")
        self.keys("slash", "n", "e", "w")  # the completion has its own "/"
        self.until_name(self.folder + "/alpha/new")
        self.keys("Return")
        self.gallery.until_state(self.chosen, "value", self.folder + "/alpha/new")
        self.open()
        self.keys("Tab", "End")
        subprocess.run(["xdotool", "type", "--delay", "20", "/al"], check=True)
        until(lambda: self.gallery.ask("listitems saveDlg_mainLyt_folderLyt_folder_popup.folders") ==
              f'0:"{self.folder}/alpha"', "what the folder's field drops")
        self.keys("Down", "Return")
        self.until_rows("deep", "report.txt")
        self.assertEqual(self.gallery.state(FOLDER)["value"], self.folder + "/alpha")
        self.keys("Escape")
        self.gallery.until_state(self.chosen, "value", "cancelled")

    def click(self, ref, row, *more):
        """On a row of one of the two lists; their rows have one height."""
        at = self.gallery.state(BROWSE + ref)
        left, top = (int(v) for v in at["pos"].split(","))
        window = self.gallery.state("saveDlg.mainLyt.browseLyt")["pos"].split(",")
        x, y = left + int(window[0]) + 40, top + int(window[1]) + 26 + 23 * row + 11
        subprocess.run(["xdotool", "mousemove", "--window", self.window, str(x), str(y), "click", *more, "1"],
                       check=True)

    def test_all_of_it_by_the_pointer(self):
        self.open("open", "Open")
        self.gallery.ask("select saveDlg.mainLyt.filterLyt.filter 1")
        self.until_rows("alpha", "beta", "one.txt", "two.txt")
        self.click("files", 3)
        self.until_name("two.txt")
        self.click("files", 0, "--repeat", "2", "--delay", "50")
        self.until_rows("deep", "report.txt")
        self.click("files", 1, "--repeat", "2", "--delay", "50")
        self.gallery.until_state(self.chosen, "value", self.folder + "/alpha/report.txt")

    def test_a_crowded_folder_and_one_that_goes_away(self):
        os.mkdir("beta/many")
        for i in range(5000):
            self.write(f"beta/many/{i:05}.txt")
        self.open()
        self.keys("ctrl+a")
        subprocess.run(["xdotool", "type", "--delay", "20", self.folder + "/beta/many/04"], check=True)
        self.until_name(self.folder + "/beta/many/04000.txt")
        self.keys("Tab", "ctrl+a")
        subprocess.run(["xdotool", "type", "--delay", "5", "beta/many"], check=True)
        self.keys("Return")
        until(lambda: len(self.rows()) == 5000, "all of them")
        self.keys("Tab", "Tab", "Tab", "End")
        self.until_name("04999.txt")
        self.keys("shift+Tab", "shift+Tab", "Return")
        self.until_rows("many")
        shutil.rmtree("beta/many")
        self.keys("Tab", "Tab", "Home", "Return")
        until(lambda: self.gallery.state(self.chosen).get("value", "").startswith("access: No such file"), "the reason")
        self.gallery.until_state("saveDlg", "shown", "0")

    @contextlib.contextmanager
    def dead_mount(self, name):
        """A file system whose server never says a word."""
        path = os.path.join(self.folder, name)
        os.mkdir(path)
        libc = ctypes.CDLL(None, use_errno=True)
        try:
            server = os.open("/dev/fuse", os.O_RDWR)
        except OSError as reason:
            self.skipTest(f"no FUSE: {reason}")
        options = f"fd={server},rootmode=40000,user_id={os.getuid()},group_id={os.getgid()}".encode()
        try:
            if libc.mount(b"dead", path.encode(), b"fuse", 0, options) != 0:
                self.skipTest(f"no FUSE: {os.strerror(ctypes.get_errno())}")
            yield
        finally:
            os.close(server)  # whoever waits for it is told
            libc.umount2(path.encode(), 2)  # MNT_DETACH

    def test_a_mount_that_never_answers_is_listed_without_being_asked(self):
        with self.dead_mount("dead"):
            self.open()
            self.until_rows("alpha", "beta", "dead", "one.txt", "two.txt")
            self.keys("Escape")
            self.gallery.until_state(self.chosen, "value", "cancelled")

    def test_a_folder_without_access_is_seen_and_not_entered(self):
        if os.geteuid() == 0:  # who may read everything
            gallery.Gallery.through = ("setpriv", "--bounding-set", "-dac_override,-dac_read_search")
        os.chmod("alpha", 0)
        self.open()
        self.until_rows("alpha", "beta", "one.txt", "two.txt")
        listed = self.gallery.ask(f"listitems {BROWSE}files").split("\n")
        self.assertEqual([line.split('"')[1] for line in listed[:2]], ["filedlg_folder_noaccess", "filedlg_folder"])
        self.assertEqual(self.gallery.ask(f"select {BROWSE}files 0"), "0")
        self.click("files", 0, "--repeat", "2", "--delay", "50")
        self.click("files", 2)
        self.until_name("one.txt")
        self.assertEqual(self.gallery.state(FOLDER)["value"], self.folder)
        # Neither a file in a folder that can't be written to, nor a folder, is to be saved over.
        os.chmod("beta", 0o500)
        self.click("files", 1, "--repeat", "2", "--delay", "50")
        self.gallery.until_state(FOLDER, "value", self.folder + "/beta")
        self.gallery.ask(f"settext {NAME} new.txt")
        self.gallery.until_state("saveDlg.buttons.save", "enabled", "0")
        os.chmod("alpha", 0o700)
        os.chmod("beta", 0o700)


def load_tests(_loader, _tests, _pattern):
    """Not those that it inherits."""
    return unittest.TestSuite(ChooserTest(name) for name in vars(ChooserTest) if name.startswith("test_"))


if __name__ == "__main__":
    harness.main()

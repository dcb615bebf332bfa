"""The shell where nobody manages windows and nothing shows an icon: the user still reaches everything."""
from harness import main, until
from shell import Shell


class Bare(Shell):
    def test_the_dialog_stays_in_reach(self):
        core = self.start()
        self.assertEqual(core.expect("ui: desktopEnv"), 'ui: desktopEnv "None"')
        until(lambda: self.visible(core), "the dialog, as nothing else leads to it")
        core.expect("ui: uiActivated")  # from the fallback
        core.ask("menu moreMenu invoke Hide")
        core.say("showstatus")
        core.expect("ui: uiActivated")
        self.assertTrue(self.visible(core))

    def test_a_core_that_wants_no_icon_gets_no_window(self):
        core = self.start()
        core.say("corestatus 2 0 0 0 4000 0")
        until(lambda: self.items(core, "tray"), "the start")
        self.assertEqual(core.errors(), [])
        core.say("showstatus")
        until(lambda: self.visible(core), "the dialog")
        core.ask("menu moreMenu invoke Hide")
        until(lambda: not self.visible(core), "the dialog hidden")
        core.ask("menu tray invoke Open...")
        until(lambda: self.visible(core), "the dialog again")
        core.ask("close statusdialog")
        until(lambda: not self.visible(core), "the dialog hidden by closing")

    def test_popups_lead_to_it(self):
        core = self.start()
        core.say("corestatus 2 0 0 0 60000 0", "connect a 1.1.1.1 System")
        self.click_popup(core, self.a_popup(core))
        until(lambda: self.visible(core), "the dialog")


if __name__ == "__main__":
    main()

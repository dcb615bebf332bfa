// What tests of windows of elements share: the toolkit on the display of the test, keys, and patience.
#pragma once

#include "mui/MuDialog.h"
#include "mui/MuObserver.h"
#include "mui/tx/muFactories.h"
#include "mui/wvw/MuiWvw.h"
#include "plat/Timer.h"
#include "tx/Property.h"
#include "tx/TX.h"
#include "tx/TXWindow.h"
#include "tx/atoms.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <functional>
#include <string>
#include <vector>

namespace mui {

class DialogTxTest : public testing::Test, protected MuObserver {
protected:
    DialogTxTest() {
        Mui::setInstance(&toolkit);
        fillFactories();
    }

    void muEvent(MuElement* element, int type) override {
        heard += std::string(element->getName()) + "/" + std::to_string(type) + " ";
    }

    /// Serves events and timers until `done`; false if the server falls silent for too long.
    bool waitFor(const std::function<bool()>& done) {
        constexpr int patienceMs = 5000;
        XSync(tx::dpy, False);
        for (int waited = 0; !done(); waited += 10) {
            pollfd fd{ConnectionNumber(tx::dpy), POLLIN, 0};
            if (XPending(tx::dpy) == 0)
                poll(&fd, 1, 10);
            tx::processEvents();
            timers.processTimers();
            if (waited > patienceMs)
                return false;
        }
        return true;
    }

    static tx::TXWindow* windowOf(MuDialog& dialog) { return static_cast<tx::TXWindow*>(dialog.nativeWindow()); }

    bool showAndWait(MuDialog& dialog) {
        dialog.setShown(true);
        return waitFor([&] { return windowOf(dialog)->isMapped(); });
    }

    static std::vector<long> motifHints(MuDialog& dialog) {
        const tx::Property hints =
            tx::getWindowProperty(windowOf(dialog)->win(), tx::motifWmHints(), tx::motifWmHints());
        const auto items = hints.longs();
        return {items.begin(), items.end()};
    }

    static void sendKey(MuDialog& dialog, KeySym keysym) {
        XEvent event{};
        event.xkey.type = KeyPress;
        event.xkey.display = tx::dpy;
        event.xkey.window = windowOf(dialog)->win();
        event.xkey.root = tx::rootWindow;
        event.xkey.keycode = XKeysymToKeycode(tx::dpy, keysym);
        event.xkey.same_screen = True;
        XSendEvent(tx::dpy, event.xkey.window, False, KeyPressMask, &event);
        event.xkey.type = KeyRelease;
        XSendEvent(tx::dpy, event.xkey.window, False, KeyReleaseMask, &event);
    }
    /// A click at a place of the screen, as the window gets it.
    static void click(tx::TXWindow* window, int rootX, int rootY) {
        const rfb::Point corner = window->getRootPosition();
        XEvent event{};
        event.xbutton.type = ButtonPress;
        event.xbutton.window = window->win();
        event.xbutton.root = tx::rootWindow;
        event.xbutton.button = 1;
        event.xbutton.x = rootX - corner.x;
        event.xbutton.y = rootY - corner.y;
        event.xbutton.x_root = rootX;
        event.xbutton.y_root = rootY;
        event.xbutton.same_screen = True;
        XSendEvent(tx::dpy, window->win(), False, ButtonPressMask, &event);
        event.xbutton.type = ButtonRelease;
        event.xbutton.state = Button1Mask;
        XSendEvent(tx::dpy, window->win(), False, ButtonReleaseMask, &event);
        XSync(tx::dpy, False);
        tx::processEvents();
    }

    plat::TimerManager timers;
    MuiWvw toolkit;
    std::string heard;
};

} // namespace mui

#include "svr/tx/SClipboardX11.h"

#include "plat/Timer.h"
#include "plat/test/CapturedLog.h"
#include "tx/TX.h"
#include "tx/TXWindow.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace svr {
namespace {

struct SClipboardX11Test : testing::Test, SClipboardX11::Callback {
    static void SetUpTestSuite() { tx::TXInit(); }
    void desktopCutText(const std::string& text) override { told.push_back(text); }
    void pump() {
        for (int i = 0; i < 10; i++) {
            XSync(tx::dpy, False);
            tx::processEvents();
        }
    }
    /// As somebody does in a window of ours: the clipboard hears of it as of any other.
    void copy(const std::string& text) {
        edit.setCutText(text.size(), text.data(), tx::getServerTime());
        pump();
    }

    plat::TimerManager timers;
    std::vector<std::string> told;
    tx::TXWindow edit{10, 10};
    SClipboardX11 clipboard{this};
};

TEST_F(SClipboardX11Test, TellsEachTextOnce) {
    const plat::CapturedLog log;
    clipboard.start();
    copy("text"); // as both selections
    EXPECT_EQ(told, std::vector<std::string>{"text"});
    EXPECT_TRUE(log.has("100 SClipboardX11: Filtering out duplicate cut text"));
    copy("text");
    EXPECT_EQ(told.size(), 1U);
    // A clipboard manager that takes over what a viewer sent.
    clipboard.setCutText("from a viewer");
    copy("from a viewer");
    EXPECT_EQ(told.size(), 1U);
    copy("text");
    EXPECT_EQ(told.size(), 2U);
    clipboard.stop();
    copy("unheard");
    clipboard.start();
    copy("text"); // known before the stop: to whoever watches now it is new
    EXPECT_EQ(told.size(), 3U);
}

TEST_F(SClipboardX11Test, OffersTextOfViewersInUtf8) {
    clipboard.setCutText("too early");
    clipboard.start();
    clipboard.setCutText("caf\xe9");
    EXPECT_STREQ(edit.getCutText(XA_PRIMARY).c_str(), "caf\xc3\xa9");
    clipboard.setCutText("\xe2\x82\xac");
    EXPECT_STREQ(edit.getCutText(tx::clipboardAtom()).c_str(), "\xe2\x82\xac");
    clipboard.stop(); // what was offered stays
    EXPECT_STREQ(edit.getCutText(tx::clipboardAtom()).c_str(), "\xe2\x82\xac");
    pump();
    EXPECT_TRUE(told.empty());
}

} // namespace
} // namespace svr

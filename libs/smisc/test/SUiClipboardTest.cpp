#include "smisc/SUiClipboard.h"

#include "io/test/FakeLink.h"

#include <gtest/gtest.h>

using namespace std::literals;

namespace smisc {
namespace {

// Without a display there is nobody to give text to; the link must go on all the same.
TEST(SUiClipboard, TakesTextWhereverItIsSplit) {
    const std::string bytes = io::message("enableClipboard", "\x01"sv) +
                              io::message("clientCutText", "\0\0\0\x05he\0lo"sv) +
                              io::message("clientCutText", "\0\0\0\0"sv) + io::message("after", "\x02ok"sv);
    for (size_t split = 0; split <= bytes.size(); ++split) {
        io::FakeLink link;
        SUiClipboard clipboard(&link.ipc);
        io::RecordingReader after(link.ipc, "after");
        clipboard.setDesktopUp(true);
        link.receive(std::string_view(bytes).substr(0, split));
        link.receive(std::string_view(bytes).substr(split));
        EXPECT_EQ(after.texts, std::vector<std::string>{"ok"}) << split;
        EXPECT_TRUE(clipboard.isRunning());
    }
}

TEST(SUiClipboard, RunsWhileCoreAndDesktopAllowIt) {
    io::FakeLink link;
    SUiClipboard clipboard(&link.ipc);
    EXPECT_FALSE(clipboard.isRunning());
    link.receive(io::message("enableClipboard", "\x02"sv));
    EXPECT_FALSE(clipboard.isRunning());
    clipboard.setDesktopUp(true);
    EXPECT_TRUE(clipboard.isRunning());
    link.receive(io::message("enableClipboard", "\0"sv));
    EXPECT_FALSE(clipboard.isRunning());
    link.receive(io::message("enableClipboard", "\x01"sv));
    EXPECT_TRUE(clipboard.isRunning());
    clipboard.setDesktopUp(false);
    EXPECT_FALSE(clipboard.isRunning());
}

TEST(SUiClipboard, RefusesLengthsThatAreNone) {
    {
        io::FakeLink link;
        SUiClipboard clipboard(&link.ipc);
        link.receive(io::message("clientCutText", "\x04\0\0\x01x"sv));
        EXPECT_EQ(link.closed, 1);
        EXPECT_EQ(link.failure, "Clipboard text of 67108865 bytes is too long");
    }
    {
        io::FakeLink link;
        SUiClipboard clipboard(&link.ipc);
        link.receive(io::message("clientCutText", "\0\0\0\x05shor"sv));
        EXPECT_EQ(link.closed, 1) << "the message ends before its text";
    }
    for (const auto length : {"\xff\xff\xff\xff"sv, "\x80\0\0\0"sv}) {
        io::FakeLink link;
        SUiClipboard clipboard(&link.ipc);
        EXPECT_DEATH(link.receive(io::message("clientCutText", length)), "len >= 0");
    }
}

} // namespace
} // namespace smisc

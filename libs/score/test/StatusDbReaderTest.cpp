#include "score/StatusDbReader.h"

#include "io/test/FakeLink.h"

#include <gtest/gtest.h>

using namespace std::literals;

namespace score {
namespace {

class Counter : public StatusObserver {
public:
    using StatusObserver::StatusObserver;
    void onCommit(StatusDb*) override { ++commits; }
    int commits = 0;
};

// The record of a node "name" of order 0 with one text.
std::string node(std::string_view name, std::string_view text) {
    std::string bytes(1, static_cast<char>(name.size()));
    bytes.append(name).append("\0\0\0\0\0\x01\x04text\0\0\0"sv);
    bytes += static_cast<char>(text.size());
    return bytes.append(text).append("\0\0"sv);
}

// A core's start: a batch, a parent, two children, one of them replaced, one removed, the end of the batch.
const std::string recorded = io::message("StatusDbInfo", "\x03\x01"sv) +
                             io::message("StatusDbInfo", "\0\0"s + node("Dlg", "")) +
                             io::message("StatusDbInfo", "\0\x03"
                                                         "Dlg"s +
                                                             node("Banner", "one")) +
                             io::message("StatusDbInfo", "\0\x03"
                                                         "Dlg"s +
                                                             node("Gone", "x")) +
                             io::message("StatusDbInfo", "\0\x03"
                                                         "Dlg"s +
                                                             node("Banner", "two")) +
                             io::message("StatusDbInfo", "\0\x07nowhere"s + "\xff") + // dropped, not decoded
                             io::message("StatusDbInfo", "\x01\x08"
                                                         "Dlg/Gone"sv) +
                             io::message("StatusDbInfo", "\x63what"sv) + // a newer operation
                             io::message("StatusDbInfo", "\x03\0"sv);

void expectRecorded(const StatusDb& db, const io::FakeLink& link) {
    EXPECT_EQ(link.failure, "");
    ASSERT_NE(db.find("Dlg/Banner"), nullptr);
    EXPECT_STREQ(db.find("Dlg/Banner")->getData("text"), "two");
    EXPECT_EQ(db.find("Dlg")->childCount(), 1U);
}

TEST(StatusDbReader, GivesTheSameTreeWhereverTheBytesAreSplit) {
    for (size_t split = 0; split <= recorded.size(); ++split) {
        io::FakeLink link;
        StatusDb db("Info");
        StatusDbReader reader(&link.ipc, &db);
        Counter counter(&db);
        link.receive(std::string_view(recorded).substr(0, split));
        link.receive(std::string_view(recorded).substr(split));
        expectRecorded(db, link);
        EXPECT_EQ(counter.commits, 1) << split;
    }
}

TEST(StatusDbReader, TakesABodyInManyFrames) {
    io::FakeLink link;
    StatusDb db("Info");
    StatusDbReader reader(&link.ipc, &db);
    const std::string payload = "\x0cStatusDbInfo\0\0"s + node("Dlg", "frames");
    for (size_t i = 0; i < payload.size(); ++i)
        link.receive("\0\x01"s + payload[i]); // a frame a byte
    link.receive("\x80\0"sv);
    ASSERT_NE(db.find("Dlg"), nullptr);
    EXPECT_STREQ(db.find("Dlg")->getData("text"), "frames");
}

TEST(StatusDbReader, FailsTheLinkOnABodyThatIsCutOrTooDeep) {
    {
        io::FakeLink link;
        StatusDb db("Info");
        StatusDbReader reader(&link.ipc, &db);
        link.receive(io::message("StatusDbInfo", "\0\0\x03"
                                                 "Dl"sv));
        EXPECT_EQ(link.failure, "End of in-memory input stream");
        EXPECT_EQ(db.root().childCount(), 0U);
    }
    io::FakeLink link;
    StatusDb db("Info");
    StatusDbReader reader(&link.ipc, &db);
    std::string payload = "\x0cStatusDbInfo\0\0"s;
    for (unsigned i = 0; i < 10000; ++i)
        payload += "\x01n\0\0\0\0\0\0\0\x01"sv;
    for (size_t at = 0; at < payload.size(); at += 10000) {
        const std::string piece = payload.substr(at, 10000);
        link.receive(std::string{static_cast<char>(piece.size() >> 8), static_cast<char>(piece.size() & 0xff)} + piece);
    }
    link.receive("\x80\0"sv);
    EXPECT_EQ(link.failure, "Status node nested too deep");
}

TEST(StatusDbReader, TakesItsNodesAlongAndTellsTheViews) {
    io::FakeLink link;
    StatusDb db("Info");
    Counter counter(&db);
    db.beginWrite("other", 0, nullptr, /*replace=*/true);
    {
        StatusDbReader reader(&link.ipc, &db);
        link.receive(io::message("StatusDbInfo", "\0\0"s + node("Dlg", "")));
        link.receive(io::message("StatusDbInfo", "\x03\x01"sv)); // the core dies in a batch
        counter.commits = 0;
    }
    EXPECT_EQ(db.find("Dlg"), nullptr);
    EXPECT_NE(db.find("other"), nullptr);
    EXPECT_GE(counter.commits, 1);
    link.receive(io::message("StatusDbInfo", "\x02"sv)); // nobody's message now
    EXPECT_EQ(link.failure, "");
}

TEST(StatusDbReader, RefusesMoreChildrenThanACountCanTell) {
    io::FakeLink link;
    StatusDb db("Info");
    StatusDbReader reader(&link.ipc, &db);
    for (size_t i = 0; i < StatusDbNode::maxChildren; ++i)
        db.root().insert(std::make_unique<StatusDbNode>(std::to_string(i).c_str(), 0, nullptr));
    link.receive(io::message("StatusDbInfo", "\0\0"s + node("7", "replaced")));
    EXPECT_EQ(link.failure, "");
    link.receive(io::message("StatusDbInfo", "\0\0"s + node("more", "")));
    EXPECT_EQ(link.failure, "Too many status nodes under one parent");
}

} // namespace
} // namespace score

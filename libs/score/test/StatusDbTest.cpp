#include "score/StatusDb.h"

#include "plat/Exception.h"
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

using namespace std::literals;

namespace score {
namespace {

std::string names(const StatusDbNode* parent) {
    std::string all;
    for (const StatusDbNode* node = parent->firstChild(); node; node = node->next())
        all.append(node->name()).append(" ");
    return all;
}

class Counter : public StatusObserver {
public:
    using StatusObserver::StatusObserver;
    void onCommit(StatusDb* db) override {
        ++commits;
        seen = names(&db->root());
    }
    int commits = 0;
    std::string seen;
};

/// Writes down what it is told, a word each.
class Recorder : public StatusDb::Listener {
public:
    void nodeChanged(StatusDb*, const char* parent, const StatusDbNode& node) override {
        told += "changed(" + std::string(parent) + "|" + node.name() + ") ";
    }
    void nodeRemoved(StatusDb*, const char* path) override { told += "removed(" + std::string(path) + ") "; }
    void commit(StatusDb*) override { told += "commit "; }
    void updating(StatusDb*, bool on) override { told += on ? "begin " : "end "; }
    std::string told;
};

TEST(StatusDb, KeepsSiblingsInOrderAndEqualOnesAsTheyCame) {
    StatusDb db("Info");
    for (const auto& [name, order] : {std::pair{"c", 5U}, {"a", 1U}, {"d", 5U}, {"b", 1U}, {"e", 0xffffffffU}})
        db.beginWrite(name, order, nullptr, /*replace=*/true);
    EXPECT_EQ(names(&db.root()), "a b c d e ");

    db.beginWrite("c", 5, nullptr, /*replace=*/true); // to the end of its equal run
    EXPECT_EQ(names(&db.root()), "a b d c e ");

    const StatusDbTxn kept = db.beginWrite("d", 0, nullptr, /*replace=*/false); // as it is
    EXPECT_EQ(kept->order(), 5U);
    EXPECT_EQ(names(&db.root()), "a b d c e ");
}

TEST(StatusDb, FindsByPath) {
    StatusDb db("Info");
    db.beginWrite("Dlg", 0, nullptr, true);
    db.beginWrite("Dlg/Conn", 0, nullptr, true);
    const StatusDbNode* leaf = db.beginWrite("Dlg/Conn/0", 0, nullptr, true).node();
    EXPECT_EQ(db.find("Dlg/Conn/0"), leaf);
    EXPECT_EQ(db.find(""), &db.root());
    EXPECT_EQ(db.find(nullptr), &db.root());
    EXPECT_EQ(db.find("Dlg//0")->name(), "Dlg"); // an empty component ends the walk
    EXPECT_EQ(db.find("Dlg/conn"), nullptr);
    EXPECT_EQ(db.find("Dlg/Conn/0/x"), nullptr);
}

TEST(StatusDb, RemovesOnlyTheWritersOwnNodes) {
    StatusDb db("Info");
    Recorder recorder;
    StatusDbOwner mine{&db, false};
    StatusDbOwner theirs{&db, false};
    db.beginWrite("shared", 0, &theirs, true);
    db.beginWrite("shared/mine", 0, &mine, true);
    db.beginWrite("shared/theirs", 0, &theirs, true);
    db.beginWrite("shared/theirs/mine", 0, &mine, true);
    db.beginWrite("own", 0, &mine, true);
    db.beginWrite("own/below", 0, &theirs, true);
    db.setListener(&recorder);

    db.remove("shared", &mine);
    EXPECT_EQ(names(db.find("shared")), "theirs ");
    EXPECT_EQ(names(db.find("shared/theirs")), "");
    EXPECT_EQ(recorder.told.find("commit"), std::string::npos);
    EXPECT_NE(recorder.told.find("removed(shared/theirs/mine)"), std::string::npos);

    db.remove(nullptr, &mine); // a node of one's own goes with all below it
    EXPECT_EQ(names(&db.root()), "shared ");
    EXPECT_TRUE(recorder.told.ends_with("removed(own) "));
}

TEST(StatusDb, CommitsByOwnerAndNotForAMissingParent) {
    StatusDb db("Info");
    Counter counter(&db);
    StatusDbOwner eager{&db, true};
    StatusDbOwner patient{&db, false};
    db.beginWrite("a", 0, &eager, true);
    EXPECT_EQ(counter.commits, 1);
    db.beginWrite("a/b", 0, nullptr, true); // inherits
    EXPECT_EQ(counter.commits, 2);
    db.beginWrite("c", 0, &patient, true);
    EXPECT_EQ(counter.commits, 2);
    db.remove("missing/child", &eager);
    EXPECT_EQ(counter.commits, 2);
    db.remove("missing", &eager); // only the child is missing
    EXPECT_EQ(counter.commits, 3);
}

TEST(StatusDb, MakesOneCommitOfABatch) {
    StatusDb db("Info");
    Recorder recorder;
    db.setListener(&recorder);
    Counter counter(&db, &db);
    db.setUpdating(true);
    db.setUpdating(true);
    db.beginWrite("a", 0, nullptr, true);
    db.commit();
    EXPECT_EQ(counter.commits, 0);
    db.setUpdating(false);
    EXPECT_EQ(counter.commits, 1);
    EXPECT_EQ(counter.seen, "a ");
    EXPECT_EQ(recorder.told, "begin changed(|a) commit end ");
    recorder.told.clear();
    db.republish();
    EXPECT_EQ(recorder.told, "begin changed(|a) commit end ");
}

TEST(StatusDb, BearsObserversThatLeaveDuringACommit) {
    struct Leaver : StatusDb::Observer {
        void onCommit(StatusDb* db) override {
            ++calls;
            act(db);
        }
        std::function<void(StatusDb*)> act;
        int calls = 0;
    };
    StatusDb db("Info");
    Leaver pair[2];
    for (Leaver& each : pair) {
        db.addObserver(&each, true);
        each.act = [&pair](StatusDb* d) {
            for (Leaver& other : pair)
                d->addObserver(&other, false);
        };
    }
    db.commit();
    db.commit();
    EXPECT_EQ(pair[0].calls + pair[1].calls, 1);
}

TEST(StatusDbNode, ReadsAndWritesTheRecord) {
    const std::string bytes = "\x04"
                              "Conn\0\0\0\x02\0\x02"
                              "\x01k\0\0\0\x01v"
                              "\x04text\0\0\0\x05hello"
                              "\0\x02"
                              "\x01"
                              "b\0\0\0\x09\0\0\0\0"
                              "\x01"
                              "a\0\0\0\x01\0\0\0\0"s;
    rdr::MemInStream in(bytes.data(), bytes.size());
    const auto node = StatusDbNode::read(in, nullptr);
    EXPECT_EQ(node->order(), 2U);
    EXPECT_STREQ(node->getData("text"), "hello");
    EXPECT_EQ(node->getData("none"), nullptr);
    EXPECT_EQ(names(node.get()), "a b "); // sorted, whatever the sender's order was

    rdr::MemOutStream out;
    node->write(out);
    std::string sorted = bytes;
    std::swap_ranges(sorted.end() - 20, sorted.end() - 10, sorted.end() - 10);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(out.data()), out.size()), sorted);

    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        rdr::MemInStream shortIn(bytes.data(), cut);
        EXPECT_THROW(StatusDbNode::read(shortIn, nullptr), plat::Exception) << cut;
    }
}

TEST(StatusDbNode, RefusesValuesAndLevelsBeyondTheLimits) {
    const std::string longValue = "\x01n\0\0\0\0\0\x01\x01k\0\0\x27\x11"s + std::string(10001, 'x') + "\0\0"s;
    rdr::MemInStream valueIn(longValue.data(), longValue.size());
    EXPECT_THROW(StatusDbNode::read(valueIn, nullptr), plat::Exception);

    const auto nested = [](unsigned levels) {
        std::string bytes;
        for (unsigned i = 0; i < levels; ++i)
            bytes += "\x01n\0\0\0\0\0\0"s + (i + 1 < levels ? "\0\x01"s : "\0\0"s);
        return bytes;
    };
    const std::string deepest = nested(StatusDbNode::maxDepth);
    rdr::MemInStream deepestIn(deepest.data(), deepest.size());
    EXPECT_NE(StatusDbNode::read(deepestIn, nullptr), nullptr);
    const std::string tooDeep = nested(StatusDbNode::maxDepth + 1);
    rdr::MemInStream tooDeepIn(tooDeep.data(), tooDeep.size());
    EXPECT_THROW(StatusDbNode::read(tooDeepIn, nullptr), plat::ProtocolError);
}

TEST(StatusDbNode, StaysInOrderWithManySiblings) {
    StatusDbNode parent("p", 0, nullptr);
    for (int i = 0; i < 500; ++i)
        parent.insert(std::make_unique<StatusDbNode>(std::to_string(i % 250).c_str(), i % 7U, nullptr));
    EXPECT_EQ(parent.childCount(), 250U);
    size_t walked = 0;
    for (const StatusDbNode* node = parent.firstChild(); node; node = node->next(), ++walked) {
        EXPECT_EQ(parent.findChild(node->name()), node);
        if (node->next()) {
            EXPECT_LE(node->order(), node->next()->order());
        }
    }
    EXPECT_EQ(walked, 250U);
    while (parent.firstChild())
        parent.unlink(parent.firstChild());
    EXPECT_EQ(parent.findChild("7"), nullptr);
}

} // namespace
} // namespace score

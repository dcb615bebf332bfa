#include "score/StatusEvent.h"

#include "plat/Exception.h"
#include "score/Mode.h"

#include <gtest/gtest.h>

namespace score {
namespace {

StatusEvent event(uint32_t severity, const char* recovery, const char* resolver, const char* flags) {
    StatusDbNode node("e1", severity, nullptr);
    node.setData("title", "Title");
    if (recovery)
        node.setData("recovery", recovery);
    if (resolver)
        node.setData("resolver", resolver);
    if (flags)
        node.setData("recFlags", flags);
    return StatusEvent(node);
}

TEST(StatusEvent, DecodesWhatIsThere) {
    const StatusEvent bare = event(StatusEvent::Warning, nullptr, "ignored", nullptr);
    EXPECT_STREQ(bare.title.c_str(), "Title");
    EXPECT_TRUE(bare.solution.isNull());
    EXPECT_TRUE(bare.resolver.isNull());
    EXPECT_EQ(bare.recovery, StatusEvent::NoRecovery);

    const StatusEvent kept = event(0, "0", "kept", nullptr);
    EXPECT_STREQ(kept.resolver.get(), "kept");
    const StatusEvent url = event(2, "4", nullptr, "1");
    EXPECT_EQ(url.recFlags, 1U);
}

TEST(StatusEvent, RefusesValuesOutOfRange) {
    const auto textOf = [](uint32_t severity, const char* recovery, const char* resolver) {
        try {
            event(severity, recovery, resolver, nullptr);
        } catch (const plat::AssertionFail& e) {
            return std::string(e.what());
        }
        return std::string("none");
    };
    EXPECT_NE(textOf(3, nullptr, nullptr).find("Out of range severity value 3"), std::string::npos);
    EXPECT_NE(textOf(0, "6", nullptr).find("Out of range recovery value 6"), std::string::npos);
    EXPECT_NE(textOf(0, "x", nullptr).find("Out of range recovery value"), std::string::npos);
    EXPECT_NE(textOf(0, "1", nullptr), "none");
    EXPECT_NE(textOf(0, "2", ""), "none");
    EXPECT_EQ(textOf(0, "3", nullptr), "none");
    EXPECT_STREQ(StatusEvent::severityName(2), "Error");
    EXPECT_STREQ(StatusEvent::severityName(3), "Invalid");
}

TEST(StatusEvent, AsksForOptionsAccessAsTheModeNeeds) {
    setProductMode(ProductMode::User);
    EXPECT_EQ(event(0, "3", nullptr, "0").recFlags, 2U);
    setProductMode(ProductMode::Service);
    EXPECT_EQ(event(0, "3", nullptr, "4").recFlags, 7U);
    setProductMode(ProductMode::User);
}

TEST(StatusEventDb, CountsTheHighestSeverity) {
    StatusEventDb db;
    uint32_t count = 9;
    EXPECT_EQ(db.maxSeverity(count), 0U);
    EXPECT_EQ(count, 0U);
    for (const auto& [id, severity] : {std::pair{"a", 0U}, {"b", 1U}, {"c", 0U}}) {
        StatusEvent each;
        each.id = id;
        each.severity = severity;
        db.write(nullptr, each);
    }
    EXPECT_EQ(db.maxSeverity(count), 1U);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(db.list().size(), 3U);
    EXPECT_STREQ(db.list().back().id.c_str(), "b");
}

TEST(StatusEventDb, ResolvesByNameAndForgetsResolvers) {
    struct Counting : StatusEventDb::Resolver {
        using Resolver::Resolver;
        void resolve(const char* id) override { last = id; }
        std::string last;
    };
    StatusEventDb db;
    StatusEvent fixable;
    fixable.id = "e1";
    fixable.setRecovery(StatusEvent::Resolver1, "fix", 0);
    db.write(nullptr, fixable);
    {
        Counting first(&db, "fix");
        Counting second(&db, "fix");
        db.resolve(*db.read("e1"));
        EXPECT_EQ(first.last, "");
        EXPECT_EQ(second.last, "e1");
    }
    EXPECT_FALSE(db.hasResolver("fix"));
    db.resolve(*db.read("e1"));
    EXPECT_EQ(db.read("none"), nullptr);
    EXPECT_EQ(db.read(""), nullptr);
}

} // namespace
} // namespace score

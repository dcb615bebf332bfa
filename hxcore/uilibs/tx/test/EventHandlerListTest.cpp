#include "tx/TXEventHandler.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

struct Recorder : tx::TXEventHandler {
    bool handleEvent(XEvent*) override {
        calls++;
        if (inside)
            inside();
        return result;
    }
    std::function<void()> inside;
    bool result = false;
    int calls = 0;
};

struct EventHandlerList : testing::Test {
    XEvent event{};
    tx::EventHandlerList list;
    Recorder first, second, third;

    void SetUp() override {
        list.add(&first);
        list.add(&second);
        list.add(&third);
    }
};

// A handler that another one removed during dispatch may be dead already.
TEST_F(EventHandlerList, RemovedDuringDispatchIsNotCalled) {
    first.inside = [this] { list.remove(&second); };
    EXPECT_TRUE(list.dispatch(&event, false));
    EXPECT_EQ(second.calls, 0);
    EXPECT_EQ(third.calls, 1);
}

TEST_F(EventHandlerList, RemovingAnEarlierOneOrOneselfSkipsNobody) {
    second.inside = [this] {
        list.remove(&first);
        list.remove(&second);
    };
    list.dispatch(&event, false);
    EXPECT_EQ(third.calls, 1);
    list.dispatch(&event, false);
    EXPECT_EQ(first.calls, 1);
    EXPECT_EQ(second.calls, 1);
    EXPECT_EQ(third.calls, 2);
}

TEST_F(EventHandlerList, AddedDuringDispatchWaitsForTheNextEvent) {
    Recorder late;
    first.inside = [&] { list.add(&late); };
    list.dispatch(&event, false);
    EXPECT_EQ(late.calls, 0);
    list.dispatch(&event, false);
    EXPECT_EQ(late.calls, 1);
}

TEST_F(EventHandlerList, TrueStopsOnlyWhereAsked) {
    second.result = true;
    list.dispatch(&event, true);
    EXPECT_EQ(third.calls, 0);
    list.dispatch(&event, false);
    EXPECT_EQ(third.calls, 1);
}

// A modal loop inside a handler dispatches again; removal there reaches the walks outside.
TEST_F(EventHandlerList, RemovalInANestedDispatchReachesTheOuterOne) {
    first.inside = [this] {
        first.inside = nullptr;
        second.inside = [this] { list.remove(&third); };
        list.dispatch(&event, false);
        second.inside = nullptr;
    };
    list.dispatch(&event, false);
    EXPECT_EQ(third.calls, 0);
    EXPECT_EQ(second.calls, 2);
}

TEST_F(EventHandlerList, MayDieInACall) {
    auto mortal = std::make_unique<tx::EventHandlerList>();
    mortal->add(&first);
    mortal->add(&second);
    first.inside = [&] { mortal.reset(); };
    EXPECT_FALSE(mortal->dispatch(&event, false));
    EXPECT_EQ(second.calls, 0);
}

} // namespace

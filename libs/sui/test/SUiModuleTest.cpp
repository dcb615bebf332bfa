#include "sui/SUiModule.h"

#include "plat/ConfigParameter.h"
#include "plat/Configuration.h"

#include <gtest/gtest.h>

namespace sui {
namespace {

class FakeManager : public SUiModuleMgr {
public:
    ~FakeManager() override { destroyModules(); }
    io::MsgIpc* msgIpc() override { return nullptr; }
    ui::MenuGrouper* serverMenu() override { return nullptr; }
    StatusDialog* statusDialog() override { return nullptr; }
    InformationCenterDialog* infoCenter() override { return nullptr; }
    ServerComms* comms() override { return nullptr; }
    score::StatusDb* statusDb() override { return nullptr; }
    score::StatusEventDb* eventDb() override { return nullptr; }
    void activate() override {}

    using SUiModuleMgr::destroyModules;
    using SUiModuleMgr::notifyDesktopStarted;
    using SUiModuleMgr::offerLink;
    using SUiModuleMgr::setFeatures;
    std::string log;
};

class FakeModule : public SUiModule {
public:
    FakeModule(const char* moduleName, FakeManager* owner, bool says)
        : SUiModule(moduleName, owner), fake(owner), answer(says) {}
    ~FakeModule() override { fake->log += std::string("~") + name() + " "; }
    bool vetoOptions() override { return note("veto"); }
    bool query(int) override { return note("query"); }
    bool handleLink(const char*) override { return note("link"); }
    void onConnectionCount(int n) override { note(std::to_string(n).c_str()); }
    void onFeaturesChanged() override { note(manager()->isFeatureEnabled("b") ? "enabled" : "off"); }
    void onDesktopStarted(bool started) override { note(started ? "started" : "ended"); }

private:
    bool note(const char* what) {
        fake->log += std::string(name()) + "." + what + " ";
        return answer;
    }
    FakeManager* fake;
    bool answer;
};

TEST(SUiModuleMgr, AsksInOrderAndStopsAtTheFirstYes) {
    FakeManager manager;
    new FakeModule("a", &manager, false);
    new FakeModule("b", &manager, true);
    new FakeModule("c", &manager, true);
    EXPECT_TRUE(manager.anyVetoOptions());
    EXPECT_TRUE(manager.anyQuery(1));
    EXPECT_TRUE(manager.offerLink("app://x"));
    EXPECT_EQ(manager.log, "a.veto b.veto a.query b.query a.link b.link ");
    manager.log.clear();
    manager.notifyConnectionCount(3);
    manager.notifyDesktopStarted(true);
    EXPECT_EQ(manager.log, "a.3 b.3 c.3 a.started b.started c.started ");
}

TEST(SUiModuleMgr, ReplacesTheFeaturesWhole) {
    FakeManager manager;
    new FakeModule("a", &manager, false);
    EXPECT_FALSE(manager.isFeatureAvailable("b"));
    manager.setFeatures({{"b", {true, true}}});
    EXPECT_TRUE(manager.isFeatureEnabled("b"));
    manager.setFeatures({{"c", {true, false}}});
    EXPECT_FALSE(manager.isFeatureAvailable("b"));
    EXPECT_TRUE(manager.isFeatureAvailable("c"));
    EXPECT_FALSE(manager.isFeatureEnabled("c"));
    EXPECT_EQ(manager.log, "a.enabled a.off ");
}

TEST(SUiModuleMgr, CountsAllFeaturesAsThereWithoutACore) {
    FakeManager manager;
    new FakeModule("a", &manager, false);
    manager.setFeatures({{"a", {false, false}}});
    manager.modulesCreated();
    EXPECT_FALSE(manager.isFeatureEnabled("a"));
    plat::Configuration::global().set("DebugUi", "1");
    manager.modulesCreated();
    EXPECT_TRUE(manager.isFeatureAvailable("a"));
    EXPECT_TRUE(manager.isFeatureEnabled("a"));
    plat::Configuration::global().get("DebugUi").unset(plat::PriorityPreference);
}

TEST(SUiModuleMgr, DestroysModulesFromTheFront) {
    FakeManager manager;
    auto* first = new FakeModule("a", &manager, false);
    new FakeModule("b", &manager, false);
    new FakeModule("c", &manager, false);
    delete first; // a module may go by itself
    manager.destroyModules();
    EXPECT_EQ(manager.log, "~a ~b ~c ");
    EXPECT_TRUE(manager.modules().empty());
}

} // namespace
} // namespace sui

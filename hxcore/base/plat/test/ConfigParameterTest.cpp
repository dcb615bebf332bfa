#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/inChild.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace plat {
namespace {

/// Remembers the priorities that it was told of, and may do something at the first.
class Recorder : public ParameterChangedCallback {
public:
    void parameterChanged(ConfigParameter* param, int priority) override {
        told.push_back(priority);
        if (toRemove)
            param->removeCallback(std::exchange(toRemove, nullptr));
        if (toDelete)
            delete std::exchange(toDelete, nullptr);
        if (toAdd)
            param->addCallback(std::exchange(toAdd, nullptr), /*atEnd=*/false);
    }
    std::vector<int> told;
    ParameterChangedCallback* toRemove = nullptr;
    ParameterChangedCallback* toAdd = nullptr;
    ConfigParameter* toDelete = nullptr;
};

using Priorities = std::vector<int>;

TEST(ConfigParameter, TheHighestPriorityIsInForceAndRevealsTheOthersWhenItGoes) {
    Configuration config("Test");
    StringParameter param("Name", "a text", "default", false, &config);
    Recorder recorder;
    param.addCallback(&recorder);
    EXPECT_TRUE(param.setParam("preference"));
    EXPECT_TRUE(param.setParam("policy", 30));
    EXPECT_STREQ(param.c_str(), "policy");
    EXPECT_TRUE(param.setParam("early", 5)); // told though it is not in force
    EXPECT_EQ(param.getPriority(), 30);
    EXPECT_STREQ(param.getValueStrAt(10).c_str(), "preference");
    EXPECT_TRUE(param.getValueStrAt(11).isNull());
    param.unset(30);
    EXPECT_STREQ(param.c_str(), "preference");
    param.unset(30);
    param.unset(10, /*notify=*/false);
    EXPECT_STREQ(param.c_str(), "early");
    param.unset(5);
    param.unset(0);
    EXPECT_STREQ(param.c_str(), "default");
    EXPECT_EQ(recorder.told, (Priorities{10, 30, 5, 30, 5}));
}

TEST(ConfigParameter, AnEqualValueWakesNobody) {
    Configuration config("Test");
    IntParameter number("Number", "a number", 7, false, &config);
    const unsigned char bytes[] = {1, 2};
    BinaryParameter binary("Bytes", "some bytes", bytes, 2, false, &config);
    Recorder recorder;
    number.addCallback(&recorder);
    binary.addCallback(&recorder);
    EXPECT_TRUE(number.setParam("8"));
    EXPECT_TRUE(number.setParam("0x8"));
    EXPECT_TRUE(binary.setParam("0102", 0));
    EXPECT_EQ(recorder.told, Priorities{10});
    EXPECT_TRUE(binary.setParam("010203"));
    EXPECT_EQ(recorder.told, (Priorities{10, 10}));
}

TEST(ConfigParameter, NoPolicyRefusesPolicyOnly) {
    Configuration config("Test");
    BoolParameter param("Flag", "a flag", false, false, &config, "b,noPolicy,,a");
    EXPECT_FALSE(param.setParam("1", 30));
    EXPECT_FALSE(param.value());
    EXPECT_TRUE(param.setParam("1", 29));
    EXPECT_TRUE(static_cast<bool>(param));
    EXPECT_EQ(param.getFlags(), (std::set<std::string>{"a", "b", "noPolicy"}));
}

TEST(ConfigParameter, CallbacksMayComeAndGoWhileTheyAreTold) {
    Configuration config("Test");
    auto* const param = new IntParameter("Number", "a number", 0, false, &config);
    Recorder first, second, third, added;
    param->addCallback(&second);
    param->addCallback(&first, /*atEnd=*/false);
    param->addCallback(&third);
    first.toRemove = &second;
    third.toRemove = &third;
    third.toAdd = &added;
    EXPECT_TRUE(param->setInt(1));
    EXPECT_EQ(first.told.size(), 1u);
    EXPECT_TRUE(second.told.empty());
    EXPECT_EQ(third.told.size(), 1u);
    EXPECT_TRUE(added.told.empty());
    EXPECT_TRUE(param->setInt(2));
    EXPECT_EQ(third.told.size(), 1u);
    EXPECT_EQ(added.told.size(), 1u);

    Recorder last;
    param->addCallback(&last);
    first.toDelete = param;
    EXPECT_TRUE(param->setInt(3)); // nobody is told of a parameter that is gone
    EXPECT_TRUE(last.told.empty());
    EXPECT_EQ(config.find("Number"), nullptr);
}

TEST(ConfigParameter, AThrowingCallbackReachesTheSetterAndLeavesTheParameterUsable) {
    struct Thrower : ParameterChangedCallback {
        void parameterChanged(ConfigParameter*, int) override { throw Exception("refused"); }
    } thrower;
    Configuration config("Test");
    IntParameter param("Number", "a number", 0, false, &config);
    param.addCallback(&thrower);
    EXPECT_THROW(param.setInt(1), Exception);
    EXPECT_EQ(param.value(), 1);
    param.removeCallback(&thrower);
    EXPECT_TRUE(param.setInt(2));
}

TEST(ConfigParameter, TextsOfEachType) {
    static const char* const colours[] = {"Red", "Green", nullptr};
    Configuration config("Test");
    config.addBool("bool", "d", false);
    config.addInt("int", "d", 0, false, -5, 255);
    config.addEnum("enum", "d", "GREEN", colours);
    config.addString("string", "d", "");
    config.addS64("s64", "d", -2);
    config.addBinary("binary", "d", nullptr, 0);
    const struct {
        const char* name;
        std::vector<const char*> texts; // all set the value, or are refused
        const char* value;              // null: refused
    } cases[] = {
        {"bool", {"1", "ON", "True", "", nullptr, "yes"}, "1"},
        {"bool", {"0", "Off", "false", "NO"}, "0"},
        {"bool", {"2", "yess"}, nullptr},
        {"int", {"0x10", "020", "16"}, "16"},
        {"int", {"-5"}, "-5"},
        {"int", {"255"}, "255"},
        {"int", {"256", "-6", "12abc", "", nullptr, "99999999999"}, nullptr},
        {"enum", {"rED"}, "Red"},
        {"enum", {"0", nullptr}, nullptr},
        {"string", {""}, ""},
        {"string", {"a=\u00fc"}, "a=\u00fc"},
        {"string", {nullptr}, nullptr},
        {"s64", {"int64:00000000000000FF", "ff00000000000000"}, "int64:00000000000000ff"}, // bare: little-endian
        {"s64", {"int64:8000000000000000"}, "int64:8000000000000000"},
        {"s64", {"int64:ff00000000000000f", "255", "int64:00000000000000fg", nullptr}, nullptr},
        {"binary", {"00fF7f"}, "00ff7f"},
        {"binary", {""}, ""},
        {"binary", {"0", "0g", nullptr}, nullptr},
    };
    for (const auto& c : cases) {
        ConfigParameter& param = config.get(c.name);
        EXPECT_STREQ(param.getTypeName(), c.name);
        for (const char* text : c.texts) {
            const String before = param.getValueStr();
            EXPECT_EQ(param.setParam(text, 20), c.value != nullptr) << c.name << " " << strOrEmpty(text);
            EXPECT_STREQ(param.getValueStr().c_str(), c.value ? c.value : before.c_str())
                << c.name << " " << strOrEmpty(text);
        }
    }
    EXPECT_EQ(config.get("enum").getValueStrAt(0), "Green");
    EXPECT_EQ(config.get("s64").getValueStrAt(0), "int64:fffffffffffffffe");
    EXPECT_EQ(config.getS64("s64", 0), INT64_MIN);
    EXPECT_EQ(config.get("binary").getValueStrAt(20), "<binary>");
    EXPECT_FALSE(config.get("enum").setInt(2));
    EXPECT_FALSE(config.get("string").setInt(2));
    EXPECT_EQ(config.get("string").getInt(), 0);
}

TEST(ConfigParameter, BadUtf8Throws) {
    Configuration config("Test");
    StringParameter param("Name", "a text", "x", false, &config);
    EXPECT_EQ(whatOf([&] { param.setParam("\xff"); }), "Bad UTF-8 string for Name");
    EXPECT_STREQ(param.c_str(), "x");
}

TEST(ConfigParameterDeathTest, WrongUseAsserts) {
    Configuration config("Test");
    EXPECT_DEATH(StringParameter("Name", "d", nullptr, false, &config), "Default value <null> for Name not allowed");
    EXPECT_DEATH(BoolParameter("Name", ParamText(nullptr), false, false, &config), "Assertion 'desc \\|\\| locDesc'");
    EXPECT_DEATH(
        {
            Configuration::global().set("_BadUtf8Assert", nullptr);
            StringParameter("Name", "d", "", false, &config).setParam("\xff");
        },
        "Bad UTF-8 string for Name");
}

TEST(ConfigParameter, ACloneHasItsOwnTextsAndAllValuesButNoCallbacks) {
    Configuration source("Source");
    Configuration target("Target");
    Recorder recorder;
    const char* kinds[] = {"bool", "int", "enum", "string", "s64", "binary"};
    {
        // Everything that the clones point at goes away.
        std::vector<std::string> texts = {"small", "large"};
        const char* names[] = {texts[0].c_str(), texts[1].c_str(), nullptr};
        std::string desc = "described";
        Configuration passing("Passing");
        passing.addBool("bool", desc.c_str(), true, true, "noPolicy,x");
        passing.addInt("int", LocKey("key"), 5, false, 1, 9);
        passing.addEnum("enum", desc.c_str(), "large", names);
        passing.addString("string", desc.c_str(), "text");
        passing.addS64("s64", desc.c_str(), 3);
        passing.addBinary("binary", desc.c_str(), reinterpret_cast<const unsigned char*>("AB"), 2);
        passing.set("int", "7");
        passing.get("int").addCallback(&recorder);
        for (const char* kind : kinds) {
            std::unique_ptr<ConfigParameter>(passing.get(kind).clone(&source)); // a short life
            passing.get(kind).clone(&source);
        }
        source.mergeFrom(passing, /*addMissing=*/true, /*withChildren=*/true);
    }
    EXPECT_TRUE(recorder.told.empty());
    EXPECT_TRUE(source.get("bool").isAdvanced());
    EXPECT_FALSE(source.set("bool", "0", 30)); // the flags came along
    EXPECT_STREQ(source.get("bool").getDescription(), "described");
    EXPECT_STREQ(source.get("int").getLocDesc(), "key");
    EXPECT_EQ(source.get("int").getDesc(), nullptr);
    EXPECT_EQ(source.get("int").getPriority(), 10);
    EXPECT_FALSE(source.set("int", "10"));
    EXPECT_TRUE(source.set("enum", "Small"));
    EXPECT_EQ(source.getString("string", ""), "text");
    EXPECT_EQ(source.get("binary").getValueStr(), "4142");
    for (ConfigParameter* param : source.getParams())
        delete param;
}

TEST(ConfigParameter, CopyFromUnsetsWhatTheOtherLacks) {
    Configuration config("Test");
    IntParameter from("From", "d", 1, false, &config);
    IntParameter to("To", "d", 2, false, &config);
    Recorder recorder;
    to.addCallback(&recorder);
    to.setInt(20, 5);
    to.setInt(30, 10);
    from.setInt(3, 10);
    from.setInt(4, 40);
    recorder.told.clear();
    to.copyFrom(from);
    EXPECT_EQ(to.getValues().size(), 3u);
    EXPECT_EQ(to.getValueStrAt(0), "1");
    EXPECT_EQ(to.getValueStrAt(10), "3");
    EXPECT_EQ(to.value(), 4);
    EXPECT_EQ(recorder.told, (Priorities{5, 0, 10, 40}));
}

TEST(ConfigParameter, ChangesAreLoggedWithoutSecrets) {
    inChild([] {
        const CapturedLog log;
        Configuration config("Test");
        config.addInt("Number", "d", 1);
        config.addBinary("Secret", "d", nullptr, 0);
        config.addBool("Flag", "d", false);
        config.set("Number", "2", 0);
        config.set("Number", "3");
        config.get("Number").unset(10);
        config.set("Secret", "abcd");
        config.get("Secret").unset(10);
        config.set("Flag", "maybe");
        config.set("Number", "x");
        config.setLogChanges(false);
        config.set("Number", "4");
        config.get("Number").unset(10);
        EXPECT_EQ(log.lines, (std::vector<std::string>{
                                 "110 ConfigParameter: set Number(int) to 2, priority 0",
                                 "100 ConfigParameter: set Number(int) to 3, priority 10",
                                 "100 ConfigParameter: unset Number(int) priority 10, now 2, priority 0",
                                 "100 ConfigParameter: set Secret(binary) to <binary>, priority 10",
                                 "100 ConfigParameter: unset Secret(binary) priority 10, now <binary>, priority 0",
                                 "0 ConfigParameter: Bool parameter Flag: invalid value 'maybe'"}));
    });
}

} // namespace
} // namespace plat

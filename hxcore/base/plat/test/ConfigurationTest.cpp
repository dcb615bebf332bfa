#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/test/CapturedLog.h"
#include "plat/test/inChild.h"
#include "plat/test/thrown.h"
#include "plat/translate.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace plat {
namespace {

class Help : public Configuration::HelpCallback {
public:
    void showHelp(int level) override { levels.push_back(level); }
    std::vector<int> levels;
};

std::string namesOf(const std::vector<ConfigParameter*>& params) {
    std::string names;
    for (const ConfigParameter* param : params)
        names += (names.empty() ? "" : " ") + std::string(param->getName());
    return names;
}

class ConfigurationTest : public testing::Test {
protected:
    ConfigurationTest() {
        config.addChild(&child);
        flag = config.addBool("Flag", "d", false);
        number = config.addInt("Number", "d", 1, false, 0, 100);
        text = child.addString("Text", "d", "");
    }

    int take(std::vector<const char*> args, Configuration::HelpCallback* help = nullptr) {
        args.push_back(nullptr);
        return config.setFromArgs(args.data(), help);
    }

    Configuration config{"Test"};
    Configuration child{"Child"};
    BoolParameter* flag;
    IntParameter* number;
    StringParameter* text;
};

TEST_F(ConfigurationTest, NamesAreFoundInAnyCaseAndInChildren) {
    EXPECT_EQ(config.find("fLAG"), flag);
    EXPECT_EQ(config.find("text"), text);
    EXPECT_EQ(config.find("text", /*inChildren=*/false), nullptr);
    EXPECT_EQ(config.find(nullptr), nullptr);
    EXPECT_TRUE(config.getBool("other", true));
    EXPECT_EQ(config.getInt("NUMBER", 5), 1);
    EXPECT_EQ(config.getString("other", "x"), "x");
    EXPECT_EQ(config.getS64("other", 9), 9);
    MBuf<unsigned char> bytes;
    EXPECT_FALSE(config.getBinary("other", bytes));
    EXPECT_THROW(config.getBool("Number", true), Exception);
    EXPECT_THROW(config.getBinary("Number", bytes), Exception);
    EXPECT_EQ(whatOf([&] { config.get("other"); }), "Parameter other not found");
}

TEST_F(ConfigurationTest, ArgumentsTurnOnOffAndSet) {
    EXPECT_EQ(take({"-flag", "--NUMBER=0x20", "text=a=b"}), 3);
    EXPECT_TRUE(flag->value());
    EXPECT_EQ(number->value(), 32);
    EXPECT_STREQ(text->c_str(), "a=b");
    EXPECT_EQ(take({"-flag=0", "-Number", "7"}), 3);
    EXPECT_FALSE(flag->value());
    EXPECT_EQ(number->value(), 7);
    EXPECT_EQ(flag->getPriority(), 10);
    EXPECT_EQ(take({"-flag", "0"}), 1) << "a bool never eats the next argument";
    EXPECT_TRUE(flag->value());
}

TEST_F(ConfigurationTest, WhatIsNoParameterEndsTheWalk) {
    EXPECT_EQ(take({"flag"}), 0);
    EXPECT_EQ(take({"-number=101", "-flag"}), 0);
    EXPECT_EQ(take({"-number"}), 0);
    EXPECT_EQ(take({"--number", "7"}), 0); // only behind one dash
    EXPECT_EQ(take({"-", "-flag"}), 0);
    EXPECT_EQ(take({"-other", "-flag"}), 0);
    EXPECT_EQ(take({""}), 0);
    EXPECT_FALSE(config.setFromArg(nullptr));
    EXPECT_FALSE(flag->value());
    EXPECT_THROW(take({"-text=\xff"}), BadUtf8);
}

TEST_F(ConfigurationTest, HelpIsAskedForInFourWaysAndThreeLevels) {
    Help help;
    EXPECT_EQ(take({"-flag", "-help"}, &help), 1);
    take({"--HELP", "ALL"}, &help);
    take({"-h", "xml"}, &help);
    take({"/?", "more"}, &help);
    take({"-helpless"}, &help);
    take({}, &help);
    EXPECT_EQ(help.levels, (std::vector<int>{0, 1, 2, 0}));
}

TEST_F(ConfigurationTest, TheStrictFormThrowsForWhatRemains) {
    const char* const args[] = {"-flag", "-oops", nullptr};
    const auto thrown = [&](Configuration::HelpCallback* help) -> std::string {
        try {
            config.setFromArgsStrict(args, help);
        } catch (const Exception& e) {
            return e.describe().c_str();
        }
        return "";
    };
    EXPECT_EQ(thrown(nullptr), "[BadCmdLineArg] plat_bad_argument -oops");
    Help help;
    EXPECT_EQ(thrown(&help), "[BadCmdLineArg] plat_bad_argument -oops  plat_run_with_help");
    const char* const good[] = {"-flag", nullptr};
    EXPECT_NO_THROW(config.setFromArgsStrict(good));
}

TEST_F(ConfigurationTest, AliasesStandForParametersAndForAliases) {
    ParameterAlias both("Both", {"Flag", "Number"}, &config);
    ParameterAlias outer("Outer", {"both"}, &config);
    ParameterAlias nothing("Nothing", {}, &config);
    ParameterAlias ring("Ring", {"Gnir"}, &config);
    ParameterAlias gnir("Gnir", {"Ring"}, &config);
    EXPECT_TRUE(config.set("OUTER", "1"));
    EXPECT_TRUE(flag->value());
    EXPECT_TRUE(config.set("both", "9")); // one of them took it
    EXPECT_EQ(number->value(), 9);
    EXPECT_FALSE(config.set("both", "x"));
    EXPECT_TRUE(config.set("nothing", "x"));
    EXPECT_FALSE(config.set("ring", "1"));
    EXPECT_TRUE(config.set("both=1", 4, "3", 20));
    EXPECT_EQ(number->getPriority(), 20);
}

TEST_F(ConfigurationTest, AnAliasMayMapAndRefuse) {
    struct Legacy : ParameterAlias {
        explicit Legacy(Configuration* owner) : ParameterAlias("Legacy", {}, owner) {}
        bool set(const char*, const char* value, NameValueMap& targets) override {
            if (!strEquals(value, "good"))
                return false;
            targets["Number"] = "5";
            targets["Text"] = "from legacy";
            return true;
        }
    };
    auto legacy = std::make_unique<Legacy>(&config);
    EXPECT_FALSE(config.set("Legacy", "bad"));
    EXPECT_TRUE(config.set("Legacy", "good"));
    EXPECT_EQ(number->value(), 5);
    EXPECT_STREQ(text->c_str(), "from legacy");

    NameValueMap store{{"legacy", "good"}, {"TEXT", "own"}};
    config.resolveAliases(store);
    EXPECT_EQ(store.size(), 2u);
    EXPECT_EQ(store["number"], "5");
    EXPECT_EQ(store["text"], "own"); // what the store held already
    NameValueMap refused{{"legacy", "bad"}};
    config.resolveAliases(refused);
    EXPECT_EQ(refused.count("Legacy"), 1u);

    Configuration copy(config);
    legacy.reset();
    EXPECT_FALSE(config.set("Legacy", "good"));
    EXPECT_FALSE(copy.set("Legacy", "good"));
}

TEST_F(ConfigurationTest, ResolvingFollowsAliasesOfAliasesAndEnds) {
    ParameterAlias inner("AInner", {"Number"}, &child);
    ParameterAlias outer("BOuter", {"AInner"}, &child);
    ParameterAlias self("Self", {"Self"}, &child);
    NameValueMap store{{"BOuter", "4"}, {"Self", nullptr}};
    config.resolveAliases(store);
    EXPECT_EQ(store.count("BOuter") + store.count("AInner"), 0u);
    EXPECT_EQ(store["Number"], "4");
    EXPECT_EQ(store.count("Self"), 1u);
}

TEST_F(ConfigurationTest, DifferencesAreFoundAndTakenOver) {
    Configuration other(config);
    EXPECT_TRUE(config.equals(other));
    EXPECT_EQ(namesOf(other.getParams()), "Number Flag Text");
    other.set("flag", "1", 30);
    other.set("Text", "x");
    child.addInt("Extra", "d", 0);
    EXPECT_EQ(config.makeDiff(other), "Flag,Text");
    config.applyDiff(other);
    EXPECT_TRUE(config.equals(other));
    EXPECT_EQ(flag->getPriority(), 30);

    other.get("Flag").unset(30);
    other.addInt("Extra", "d", 3);
    other.addInt("New", "d", 4);
    config.mergeFrom(other, /*addMissing=*/false, /*withChildren=*/true);
    EXPECT_FALSE(flag->hasPriority(30));
    EXPECT_EQ(config.getInt("Extra", 0), 3);
    EXPECT_EQ(config.find("New"), nullptr);
    config.mergeFrom(other, /*addMissing=*/true, /*withChildren=*/true);
    EXPECT_EQ(config.getInt("New", 0), 4);
}

TEST_F(ConfigurationTest, AStoreSavesTheValuesOfItsPriority) {
    config.addBinary("Bytes", "d", nullptr, 0);
    config.set("Bytes", "0aff");
    config.set("Text", "x");
    config.set("Number", "2", 30);
    NameValueMap map;
    Configuration::collectValues(config, 10, map);
    EXPECT_EQ(map.size(), 2u);
    EXPECT_EQ(map["bytes"], "0aff");
    EXPECT_EQ(map["TEXT"], "x");
}

TEST_F(ConfigurationTest, ChildrenAndParametersMayGoInAnyOrder) {
    auto parent = std::make_unique<Configuration>("Parent");
    auto passing = std::make_unique<Configuration>("Passing");
    parent->addChild(passing.get());
    parent->addChild(passing.get());
    EXPECT_EQ(parent->getChildren().size(), 1u);
    IntParameter unowned("Unowned", "d", 0, false, passing.get());
    Configuration* const gone = passing.get();
    passing.reset();
    EXPECT_NE(gone, nullptr);
    EXPECT_TRUE(parent->getChildren().empty());
    EXPECT_EQ(unowned.getConfig(), nullptr);
    EXPECT_TRUE(unowned.setInt(1)); // without a Configuration nobody logs

    parent->addChild(&child);
    parent.reset();
    config.removeChild(&child);
    EXPECT_EQ(config.find("Text"), nullptr);
    EXPECT_DEATH(child.addChild(&child), "isWithin");
}

/// Gives catalog texts for the keys that help shows.
class FakeTranslator : public Translator {
public:
    FakeTranslator() { setTranslator(this); }
    ~FakeTranslator() override { setTranslator(nullptr); }
    const char* translate(const char* key) override {
        if (strEquals(key, "plat_configuration_param_usage"))
            return "Parameters can be turned on with -<param> or off with -<param>=0 or so, as told here\nSecond line.";
        if (strEquals(key, "plat_configuration_help_default"))
            return "default";
        return strEquals(key, "title") ? "Titled" : key;
    }
    void translateWith(DString& out, const char* key, const char* arg) override { out.format("%s<%s>", key, arg); }
};

std::string usageOf(const Configuration& config, bool all, bool showDefaults = true) {
    char* text = nullptr;
    size_t size = 0;
    FILE* const out = open_memstream(&text, &size);
    config.usage(all, showDefaults, out);
    std::fclose(out);
    const std::string result = text;
    std::free(text);
    return result;
}

TEST(ConfigurationUsage, NamesDescriptionsAndDefaultsStandInColumns) {
    const FakeTranslator translator;
    Configuration config("Test", "title");
    Configuration child("Child");
    config.addChild(&child);
    config.addBool("beta", "short", false);
    config.addString("Alpha", "a description that is so long that it goes on to the next line, and further", "value");
    config.addString("ALongerNameThanTheColumn", "exactly so long that no default fits", "0123456789");
    config.addInt("_Hidden", "hidden", 1);
    config.addInt("Expert", "advanced", 1, true);
    config.addBinary("Bytes", "binary", nullptr, 0);
    config.addInt("Policy", "set by policy", 3);
    config.set("Policy", "4", 30);
    child.addInt("Last", "of the child", 1);
    const std::string intro =
        "Parameters can be turned on with -<param> or off with -<param>=0 or so, as told\nhere\nSecond line.\n\n";
    EXPECT_EQ(usageOf(config, /*all=*/false),
              intro + "Titled:\n"
                      "  Policy         - set by policy (default=3)\n"
                      "  ALongerNameThanTheColumn - exactly so long that no default fits\n"
                      "                    (default=0123456789)\n"
                      "  Alpha          - a description that is so long that it goes on to the next\n"
                      "                   line, and further (default=value)\n"
                      "  beta           - short (default=0)\n"
                      "Child Parameters:\n"
                      "  Last           - of the child (default=1)\n");
    const std::string all = usageOf(config, /*all=*/true, /*showDefaults=*/false);
    EXPECT_NE(all.find("  beta           - short\n  Bytes          - binary\n  Expert         - advanced\n"),
              std::string::npos)
        << all;
    EXPECT_EQ(all.find("_Hidden"), std::string::npos);
    EXPECT_NE(all.find("\nplat_configuration_log_names_title\n  "), std::string::npos);
    EXPECT_NE(all.find("ConfigParameter"), std::string::npos);
    const size_t dests = all.find("\nplat_configuration_log_dests_title\n");
    ASSERT_NE(dests, std::string::npos);
    EXPECT_NE(all.find("  stderr\n", dests), std::string::npos);
    EXPECT_NE(all.find("  file\n", dests), std::string::npos);
}

TEST(ConfigurationUsage, AStrictFailureIsTranslated) {
    const FakeTranslator translator;
    Configuration config("Test");
    const char* const args[] = {"oops", nullptr};
    EXPECT_EQ(whatOf([&] { config.setFromArgsStrict(args); }), "plat_bad_argument<oops>");
}

TEST(ConfigurationDump, ShowsWhatWasChangedAndWhy) {
    inChild([] {
        CapturedLog log;
        Configuration config("Test");
        for (const char* name : {"c", "B", "a", "odd", "both", "_hidden", "plain"})
            config.addInt(name, "d", 1);
        config.addBinary("secret", "d", nullptr, 0);
        config.set("secret", "abcd");
        config.set("c", "2", 30);
        config.set("both", "2");
        config.set("both", "3", 31);
        config.set("odd", "2", 5);
        config.set("B", "2");
        config.set("_hidden", "2");
        config.set("a", "7", -1);
        log.lines.clear();
        config.dump();
        EXPECT_EQ(log.lines,
                  (std::vector<std::string>{"30 Configuration: both=3 (Policy overriding preference)",
                                            "30 Configuration: c=2 (Policy)", "30 Configuration: B=2 (Preference)",
                                            "30 Configuration: secret=<binary> (Preference)",
                                            "30 Configuration: odd=2 (Priority 5)", "100 Configuration: a=1 (Default)",
                                            "100 Configuration: plain=1 (Default)"}));
    });
}

} // namespace
} // namespace plat

#include "rdr/FileConfig.h"
#include "rdr/StreamConfig.h"
#include "rdr/XmlConfig.h"

#include "scratchDir.h"
#include "streamTesting.h"

#include "plat/Exception.h"
#include "plat/test/thrown.h"
#include "rdr/MemOutStream.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>

#include <sys/stat.h>

namespace {

class Settings {
public:
    plat::Configuration config{"Test"};
    plat::StringParameter text{"Text", "a text", "old", false, &config};
    plat::BoolParameter flag{"Flag", "a flag", false, false, &config};
    plat::IntParameter number{"Number", "a number", 5, true, &config, 0, 10, "noPolicy,other"};
};

std::string readText(const char* lines) {
    Settings s;
    BytesInStream in(lines);
    plat::StreamConfig::read(in, s.config, plat::PriorityPreference);
    return s.text.c_str();
}

TEST(StreamConfig, LinesAreTrimmedUnescapedAndSplitInThisOrder) {
    const struct {
        const char* lines;
        const char* value;
    } cases[] = {
        {"Text=a=b\n", "a=b"},
        {"\t \v\ftext=x \t\r\n", "x"},
        {"TEXT= inner blank \n", " inner blank"},
        {"Text =x\n", "old"}, // another name
        {"Text=\n", ""},
        {"Text\n", "old"}, // a null value is no text
        {"Text=a\\nb\\rc\\\\d\n", "a\nb\rc\\d"},
        {"Text=a\\x\\\n", "a\\x\\"},
        {"Text=x \\n\n", "x \n"}, // an escaped line feed isn't white space
        {"Te\\\\xt=x\n", "old"},  // the name is unescaped too
        {"#Text=x\n", "old"},     // there are no comments
        {"Text=first\nText=last", "last"},
        {"\n \nText=x\n", "x"},
        {"Text=\xc3(\n", "\xef\xbf\xbd("},
    };
    for (const auto& c : cases)
        EXPECT_EQ(readText(c.lines), c.value) << c.lines;
    EXPECT_EQ(readText(bytes("'Text=a' 00 'b' 0a").c_str()), "a");
}

TEST(StreamConfig, WhatDoesntParseIsIgnoredAndTheRestIsRead) {
    Settings s;
    BytesInStream in("Unknown=1\nNumber=99\nNumber=x\nFlag\nNumber=7\n");
    plat::StreamConfig::read(in, s.config, plat::PriorityPreference);
    EXPECT_TRUE(s.flag.value());
    EXPECT_EQ(s.number.value(), 7);
    BytesInStream policy("Number=8\nFlag=0\n");
    plat::StreamConfig::read(policy, s.config, plat::PriorityPolicy);
    EXPECT_EQ(s.number.value(), 7); // tagged noPolicy
    EXPECT_FALSE(s.flag.value());
}

TEST(StreamConfig, AMapComesBackAsItWasWritten) {
    plat::NameValueMap map;
    map["b"] = "line\nfeed \\ back\r";
    map["A"] = plat::String();
    map["c"] = "";
    rdr::MemOutStream out;
    plat::StreamConfig::writeMap(out, map);
    const plat::String text = out.takeString();
    EXPECT_STREQ(text.c_str(), "A\nb=line\\nfeed \\\\ back\\r\nc=\n");
    EXPECT_TRUE(plat::StreamConfig::escape(nullptr).isNull());

    BytesInStream in(text.c_str());
    plat::NameValueMap back;
    plat::StreamConfig::readToMap(in, back);
    ASSERT_EQ(back.size(), 3U);
    EXPECT_TRUE(back["a"].isNull());
    EXPECT_STREQ(back["B"].get(), "line\nfeed \\ back\r");
    EXPECT_STREQ(back["c"].get(), "");
}

TEST(StreamConfig, AliasesAreReplacedByWhatTheyStandFor) {
    Settings s;
    plat::ParameterAlias alias("Old", {"Text", "Number"}, &s.config);
    BytesInStream in("OLD=3\nFlag=1\n");
    plat::NameValueMap map;
    plat::StreamConfig::readToMap(in, map, &s.config.getAliases());
    ASSERT_EQ(map.size(), 3U);
    EXPECT_STREQ(map["Text"].get(), "3");
    EXPECT_STREQ(map["Number"].get(), "3");
}

class FileConfigTest : public ScratchDir {
protected:
    std::string path() const { return dir + "/app"; }
    ino_t inode() const {
        struct stat st {};
        return ::stat(path().c_str(), &st) == 0 ? st.st_ino : 0;
    }
};

TEST_F(FileConfigTest, SaveWritesWhatDiffersAndKeepsForeignLines) {
    write("app", "Other=kept\nFlag=0\n");
    Settings s;
    const Settings defaults;
    s.flag.setValue(true);
    s.text.setValue("new");
    plat::FileConfig::save(s.config, path().c_str(), defaults.config);
    EXPECT_EQ(contents("app"), "Flag=1\nOther=kept\nText=new\n");

    // Nothing changed: the file isn't touched, not even replaced by an equal one.
    const ino_t before = inode();
    plat::FileConfig::save(s.config, path().c_str(), defaults.config);
    EXPECT_EQ(inode(), before);

    // Back at its default a setting keeps its line.
    s.flag.setValue(false);
    plat::FileConfig::save(s.config, path().c_str(), defaults.config);
    EXPECT_EQ(inode(), before);

    Settings loaded;
    plat::FileConfig::load(loaded.config, path().c_str(), plat::PriorityPreference);
    EXPECT_STREQ(loaded.text.c_str(), "new");
}

TEST_F(FileConfigTest, EntriesAreAddedSetAndRemoved) {
    const std::string file = path();
    plat::FileConfig::removeEntry(file.c_str(), "a");
    plat::FileConfig::removeEntry((file + "/below").c_str(), "a");
    EXPECT_FALSE(exists("app"));
    plat::FileConfig::addEntry(file.c_str(), "a", "1");
    plat::FileConfig::addEntry(file.c_str(), "A", "2"); // there already
    EXPECT_EQ(contents("app"), "a=1\n");
    const ino_t before = inode();
    plat::FileConfig::setEntry(file.c_str(), "a", "1");
    plat::FileConfig::removeEntry(file.c_str(), "b");
    EXPECT_EQ(inode(), before);
    plat::FileConfig::setEntry(file.c_str(), "a", nullptr);
    plat::FileConfig::setEntry(file.c_str(), "b", "");
    EXPECT_EQ(contents("app"), "a\nb=\n");
    plat::FileConfig::setEntry(file.c_str(), "b", nullptr);
    plat::FileConfig::removeEntry(file.c_str(), "A");
    EXPECT_EQ(contents("app"), "b\n");
}

TEST_F(FileConfigTest, AFileThatCantBeReadIsToldAndNeverReplaced) {
    Settings s;
    EXPECT_EQ(plat::errorOf([&] { plat::FileConfig::load(s.config, path().c_str(), plat::PriorityPreference); }),
              ENOENT);
    write("app", "Text=" + std::string(262144, 'x') + "\n"); // too long a line
    EXPECT_THROW(plat::FileConfig::setEntry(path().c_str(), "a", "1"), rdr::StringTooLongException);
    EXPECT_EQ(contents("app").size(), 262144U + 6);
}

TEST(XmlConfig, WritesTheFormToTheByte) {
    Settings s;
    plat::EnumParameter* const choice = s.config.addEnum("Choice", plat::LocKey("test_choice"), "two",
                                                         std::array<const char*, 3>{"one", "two", nullptr}.data());
    choice->setValue(0, plat::PriorityPolicy);
    s.config.addString("_Hidden", "hidden", "x");
    s.text.setValue("a<\"&", plat::PriorityPreference);
    rdr::MemOutStream out;
    plat::XmlConfig::write(out, s.config, plat::XmlConfig::Texts::Keys);
    EXPECT_STREQ(out.takeString().c_str(), "<?xml version=\"1.0\"?>\n<config>\n"
                                           "<enum   name=\"Choice\"\n"
                                           "        locDesc=\"test_choice\"\n"
                                           "        advanced=\"false\"\n"
                                           "        min=\"0\"\n"
                                           "        max=\"1\">\n"
                                           "    <value data=\"two\" priority=\"0\"/>\n"
                                           "    <value data=\"one\" priority=\"30\"/>\n"
                                           "    <opt data=\"one\"/>\n"
                                           "    <opt data=\"two\"/>\n"
                                           "</enum>\n"
                                           "<string name=\"Text\"\n"
                                           "        description=\"a text\"\n"
                                           "        advanced=\"false\">\n"
                                           "    <value data=\"old\" priority=\"0\"/>\n"
                                           "    <value data=\"a&lt;&quot;&amp;\" priority=\"10\"/>\n"
                                           "</string>\n"
                                           "<bool   name=\"Flag\"\n"
                                           "        description=\"a flag\"\n"
                                           "        advanced=\"false\">\n"
                                           "    <value data=\"0\" priority=\"0\"/>\n"
                                           "</bool>\n"
                                           "<int    name=\"Number\"\n"
                                           "        description=\"a number\"\n"
                                           "        advanced=\"true\"\n"
                                           "        flags=\"noPolicy,other\"\n"
                                           "        min=\"0\"\n"
                                           "        max=\"10\">\n"
                                           "    <value data=\"5\" priority=\"0\"/>\n"
                                           "</int>\n"
                                           "</config>\n");
}

class OnlyNames : public plat::XmlConfig::Filter {
public:
    bool accepts(const char* name, const char* typeName, bool advanced) override {
        return std::strcmp(name, "Text") == 0 && std::strcmp(typeName, "string") == 0 && !advanced;
    }
};

TEST(XmlConfig, AllKindsComeBack) {
    plat::Configuration config("Source");
    const unsigned char data[] = {1, 0xff};
    config.addString("Text", "t", "a\n\"<")->setValue("\xc3\xa9", plat::PriorityPolicy);
    config.addBool("Flag", "f", true, true);
    config.addInt("Number", "n", 3, false, -5, 5, "noPolicy");
    config.addEnum("Choice", plat::LocKey("key"), "b", std::array<const char*, 3>{"a", "b", nullptr}.data());
    config.addS64("Big", "s", INT64_MIN);
    config.addBinary("Bytes", "x", data, 2);
    config.addString("_Hidden", "h", "x");
    rdr::MemOutStream out;
    plat::XmlConfig::write(out, config, plat::XmlConfig::Texts::Keys, /*withHidden=*/true);
    const plat::String text = out.takeString();

    plat::Configuration back("Back");
    back.addString("Dropped", "d", "");
    plat::XmlConfig::read(back, text.c_str());
    EXPECT_EQ(back.find("Dropped"), nullptr);
    EXPECT_TRUE(back.equals(config));
    EXPECT_TRUE(config.equals(back));
    EXPECT_STREQ(back.get("Text").getValueStrAt(0).c_str(), "a\n\"<");
    EXPECT_TRUE(back.get("Flag").isAdvanced());
    EXPECT_STREQ(back.get("Choice").getLocDesc(), "key");
    EXPECT_FALSE(back.set("Number", "6"));
    EXPECT_FALSE(back.set("Number", "1", plat::PriorityPolicy));
    EXPECT_EQ(back.getS64("Big", 0), INT64_MIN);

    OnlyNames filter;
    plat::XmlConfig::read(back, text.c_str(), &filter);
    EXPECT_EQ(back.getParams().size(), 1U);
    rdr::MemOutStream filtered;
    plat::XmlConfig::write(filtered, config, plat::XmlConfig::Texts::Translated, /*withHidden=*/false, &filter);
    EXPECT_EQ(std::string(filtered.takeString().c_str()).find("Number"), std::string::npos);
}

TEST(XmlConfig, BadDocumentsChangeNothing) {
    const struct {
        const char* text;
        const char* error;
    } cases[] = {
        {"", "XML error"},
        {"<config>", "XML error 1:"},
        {"<config><string name=\"a\" description=\"d\"><value data=\"&\" priority=\"0\"/></string></config>",
         "XML error 1:"},
        {"<!DOCTYPE config><config/>", "XML error 1:"},
        {"<settings/>", "Incompatible XML config"},
        {"<config><string description=\"d\"><value data=\"\" priority=\"0\"/></string></config>",
         "Incompatible XML config"},
        {"<config><string name=\"a\"><value data=\"\" priority=\"0\"/></string></config>", "Incompatible XML config"},
        {"<config><string name=\"a\" description=\"d\"/></config>", "Incompatible XML config"},
        {"<config><float name=\"a\" description=\"d\"><value data=\"\" priority=\"0\"/></float></config>",
         "Incompatible XML config"},
        {"<config><string name=\"a\" description=\"d\"><value priority=\"0\"/></string></config>",
         "Incompatible XML config"},
        {"<config><string name=\"a\" description=\"d\"><value data=\"\"/></string></config>",
         "Incompatible XML config"},
        {"<config><enum name=\"a\" description=\"d\"><value data=\"\" priority=\"0\"/></enum></config>",
         "Incompatible XML config"},
        {"<config><enum name=\"a\" description=\"d\"><value data=\"\" priority=\"0\"/><opt/></enum></config>",
         "Incompatible XML config"},
    };
    plat::Configuration config("Test");
    config.addString("Kept", "k", "");
    for (const auto& c : cases) {
        try {
            plat::XmlConfig::read(config, c.text);
            FAIL() << c.text;
        } catch (const plat::Exception& e) {
            EXPECT_EQ(std::string(e.what()).find(c.error), 0U) << c.text << ": " << e.what();
        }
        EXPECT_NE(config.find("Kept"), nullptr);
    }
}

TEST(XmlConfig, BoundsAndValuesFromOutsideAreCheckedWhenSet) {
    plat::Configuration config("Test");
    plat::XmlConfig::read(config,
                          "<config><!-- any --><int name=\"n\" description=\"\" min=\"5\" max=\"99999999999\""
                          " advanced=\"TRUE\"><value data=\"3\" priority=\"10\"/>"
                          "<value data=\"7\" priority=\"1e\"/><value data=\"8\" priority=\"x\"/></int></config>");
    const plat::ConfigParameter& n = config.get("n");
    EXPECT_TRUE(n.isAdvanced());
    EXPECT_EQ(n.getInt(), 7);
    EXPECT_EQ(n.getPriority(), 1);
    EXPECT_STREQ(n.getValueStrAt(0).c_str(), "8");
    EXPECT_TRUE(config.set("n", "2147483647"));
}

} // namespace

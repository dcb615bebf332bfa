// The compiler of catalogs, as the build runs it.
#include "plat/test/TempDir.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

class Pocompile : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* const language : {"en", "de", "es", "fr", "pt"})
            write(language,
                  "msgid \"t_b\"\nmsgstr \"%1$S of %2$D\"\n\nmsgid \"t_a\"\nmsgstr \"A \\t\xc3\xa9\\?\\n\"\n");
    }
    void write(const char* language, const std::string& text) {
        plat::writeTextFile(directory / language + ".po", text);
    }

    // Gives the exit status; `output` holds what it printed.
    int run(const std::string& arguments) {
        output.clear();
        FILE* const pipe = ::popen((std::string(POCOMPILE) + " " + arguments + " 2>&1").c_str(), "r");
        std::array<char, 4096> buf;
        for (size_t n = 0; (n = std::fread(buf.data(), 1, buf.size(), pipe)) > 0;)
            output.append(buf.data(), n);
        return WEXITSTATUS(::pclose(pipe));
    }
    std::string checkGerman(const std::string& text) {
        write("de", text);
        EXPECT_EQ(run("--check " + dir), 1) << text;
        return output;
    }

    plat::TempDir directory;
    const std::string dir = directory.root;
    std::string output;
};

TEST_F(Pocompile, WritesSortedTablesInTheOrderOfTheLanguages) {
    ASSERT_EQ(run("t " + dir + "/out.cpp " + dir), 0) << output;
    std::ostringstream text;
    text << std::ifstream(dir + "/out.cpp").rdbuf();
    const std::string source = text.str();
    const size_t de = source.find("de[] = {\n    {\"t_a\", \"A \\011\\303\\251\\077\\012\"},\n    {\"t_b\",");
    ASSERT_NE(de, std::string::npos) << source;
    size_t last = de;
    for (const char* const language : {"es[]", "fr[]", "en[]", "pt[]"}) {
        const size_t place = source.find(language);
        EXPECT_GT(place, last) << language;
        last = place;
    }
    EXPECT_EQ(run("--check " + dir), 0);
    EXPECT_EQ(output, "1 catalogs, 2 keys, 0 problems\n");
}

TEST_F(Pocompile, BrokenFilesFailWithTheirLine) {
    const struct {
        const char* text;
        const char* problem;
    } cases[] = {
        {"msgid \"t_a\"\nmsgstr \"\\q\"\n", "de.po:2: Invalid escape code"},
        {"msgid \"t_a\"\nmsgstr \"x\n", "de.po:2: Missing terminator"},
        {"msgid \"t_a\"\nmsgstr \"x\" y\n", "de.po:2: Junk following"},
        {"msgid \"t_a\"\nmsgstr y\n", "de.po:2: Junk preceding"},
        {"msgid \"t_a\"\n\n", "de.po:2: Expected msgstr"},
        {"msgstr \"t_a\"\n", "de.po:1: Expected msgid"},
        {"\"t_a\"\n", "de.po:1: String without msgid"},
        {"msgid \"t_a\"\nmsgstr \"x\"\nmsgid \"t_b\"\n", "de.po:3: Bad command"},
        {"msgid \"t_a\"\nmsgstr \"\xc3(\"\n", "de.po:2: Bad UTF-8"},
        {"msgid \"t_a\"\nmsgstr \"\xed\xa0\x80\"\n", "de.po:2: Bad UTF-8"},
        {"msgid \"t_a\"\nmsgstr \"x\"\n\nmsgid \"t_a\"\nmsgstr \"y\"\n", "de.po:4: Duplicate key t_a"},
    };
    for (const auto& c : cases) {
        write("de", c.text);
        EXPECT_EQ(run("t " + dir + "/out.cpp " + dir), 1) << c.text;
        EXPECT_NE(output.find(c.problem), std::string::npos) << output;
        EXPECT_FALSE(std::filesystem::exists(dir + "/out.cpp"));
    }
}

TEST_F(Pocompile, CheckComparesTheLanguages) {
    const std::string a = "msgid \"t_a\"\nmsgstr \"A\"\n\n";
    const auto contains = [](const std::string& all, const char* text) { return all.find(text) != std::string::npos; };
    EXPECT_TRUE(contains(checkGerman(a), "de.po: lacks t_b"));
    EXPECT_TRUE(contains(checkGerman(a + "msgid \"t_c\"\nmsgstr \"x\"\n"), "de.po:4: t_c is not in en.po"));
    for (const char* const text : {"%1$S", "%1$S %2$S", "%2$S %1$D", "%S %D", "%1$S %2$D %3$D"})
        EXPECT_TRUE(contains(checkGerman(a + "msgid \"t_b\"\nmsgstr \"" + text + "\"\n"), "de.po:4: t_b ")) << text;
    for (const char* const text : {"%", "%1$s", "%0$S", "%1$+S", "%1$S %D", "%1$S %1$D", "%+.3D", "%1S"})
        EXPECT_TRUE(contains(checkGerman(a + "msgid \"t_b\"\nmsgstr \"" + text + "\"\n"), "bad format directive"))
            << text;
    write("de", a + "msgid \"t_b\"\nmsgstr \"%2$+D%% %1$.5S %2$D\"\n");
    EXPECT_EQ(run("--check " + dir), 0) << output;
}

TEST_F(Pocompile, CheckKnowsMarkupMnemonicsAndTypography) {
    const struct {
        const char *english, *language, *text, *complaint; // null: none
    } cases[] = {
        {"<a href=\\\"%1$S\\\">b</a>", "de", "c <a href=\\\"%1$S\\\">d</a>", nullptr},
        {"<b>b</b>", "de", "<i>b</i>", "other markup"},
        {"&Open && <x>", "es", "Abrir && <x>", "no mnemonic"},
        {"&Open &amp; close", "es", "&Abrir &amp; &#99;", nullptr},
        {"Wait...", "pt", "Aguarde...", "three dots"},
        {"Wait...", "de", "Warten \u2026", "lacks the no-break space"},
        {"'x' [,...]", "pt", "\u201cx\u201d [,...]", nullptr},
        {"'x'", "de", "\\\"x\\\"", "straight quotes"},
        {"x", "de", "geht's", "straight apostrophe"},
        {"x", "fr", "l'\u00e9cran", "straight apostrophe"},
        {"x", "fr", "Nom : \u00ab\u00a0x\u00a0\u00bb", "breaks before a mark"},
        {"x", "fr", "\u00ab x\u00a0\u00bb", "breaks after a quote"},
        {"x", "fr", "Vraiment?", "lacks the space"},
        {"x", "fr", "Nom: x", "lacks the space"},
        {"x", "fr", "l\u2019\u00e9cran\u00a0: \u00ab\u00a0x\u00a0\u00bb, http://x/?y a:b", nullptr},
        {"Really?", "es", "Seguro?", "no opening question mark"},
        {"Really?", "es", "\u00bfSeguro?", nullptr},
    };
    for (const auto& c : cases) {
        for (const char* const language : {"en", "de", "es", "fr", "pt"})
            write(language, std::string("msgid \"t_a\"\nmsgstr \"") +
                                (std::string(language) == c.language ? c.text : c.english) + "\"\n");
        run("--check " + dir);
        const std::string wanted = std::string("/") + c.language + ".po:1: t_a ";
        const size_t told = output.find(wanted);
        EXPECT_EQ(told != std::string::npos, c.complaint != nullptr) << c.text << ": " << output;
        EXPECT_NE(output.find(c.complaint ? c.complaint : "1 keys"), std::string::npos) << c.text << ": " << output;
    }
}

TEST_F(Pocompile, AKeyBelongsToOneLibrary) {
    EXPECT_EQ(run("--check " + dir + " " + dir), 1);
    EXPECT_NE(output.find("t_a is also in"), std::string::npos);
}

TEST_F(Pocompile, OtherLanguagesMayBeMissingWhenCompilingButEnglishMayNot) {
    std::filesystem::remove(dir + "/pt.po");
    EXPECT_EQ(run("t " + dir + "/out.cpp " + dir), 0) << output;
    std::filesystem::remove(dir + "/en.po");
    EXPECT_EQ(run("t " + dir + "/out.cpp " + dir), 1);
    EXPECT_EQ(run(""), 2);
}

} // namespace

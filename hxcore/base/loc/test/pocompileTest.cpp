// The compiler of catalogs, as the build runs it.
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
        dir = (std::filesystem::temp_directory_path() / "zeftestXXXXXX").string();
        ASSERT_NE(::mkdtemp(dir.data()), nullptr);
        for (const char* const language : {"en", "de", "es", "fr", "pt"})
            write(language,
                  "msgid \"t_b\"\nmsgstr \"%1$S of %2$D\"\n\nmsgid \"t_a\"\nmsgstr \"A \\\"\xc3\xa9\\\"\\n\"\n");
    }
    ~Pocompile() override { std::filesystem::remove_all(dir); }

    void write(const char* language, const std::string& text) {
        std::ofstream(dir + "/" + language + ".po", std::ios::binary) << text;
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

    std::string dir;
    std::string output;
};

TEST_F(Pocompile, WritesSortedTablesInTheOrderOfTheLanguages) {
    ASSERT_EQ(run("t " + dir + "/out.cpp " + dir), 0) << output;
    std::ostringstream text;
    text << std::ifstream(dir + "/out.cpp").rdbuf();
    const std::string source = text.str();
    const size_t de = source.find("de[] = {\n    {\"t_a\", \"A \\042\\303\\251\\042\\012\"},\n    {\"t_b\",");
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
        {"msgid \"t_a\"\nmsgstr \"\\q\"\n", "de.po:2: invalid escape code"},
        {"msgid \"t_a\"\nmsgstr \"x\n", "de.po:2: missing terminator"},
        {"msgid \"t_a\"\nmsgstr \"x\" y\n", "de.po:2: junk following"},
        {"msgid \"t_a\"\nmsgstr y\n", "de.po:2: junk preceding"},
        {"msgid \"t_a\"\n\n", "de.po:2: expected msgstr"},
        {"msgstr \"t_a\"\n", "de.po:1: expected msgid"},
        {"\"t_a\"\n", "de.po:1: string without msgid"},
        {"msgid \"t_a\"\nmsgstr \"x\"\nmsgid \"t_b\"\n", "de.po:3: bad command"},
        {"msgid \"t_a\"\nmsgstr \"\xc3(\"\n", "de.po:2: bad UTF-8"},
        {"msgid \"t_a\"\nmsgstr \"\xed\xa0\x80\"\n", "de.po:2: bad UTF-8"},
        {"msgid \"t_a\"\nmsgstr \"x\"\n\nmsgid \"t_a\"\nmsgstr \"y\"\n", "de.po:4: duplicate key t_a"},
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

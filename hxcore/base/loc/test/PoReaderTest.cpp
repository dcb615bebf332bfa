#include "loc/PoReader.h"

#include "locTesting.h"

#include "rdr/MemInStream.h"

#include <map>

namespace {

class Reading : private loc::PoReader::Callback {
public:
    explicit Reading(const std::string& text) {
        rdr::MemInStream in(text.data(), text.size());
        loc::PoReader(*this, "f.po", "de").read(in);
    }

    std::map<std::string, std::string> texts;
    LogLines log;

private:
    void addText(const char* key, const char* text) override { texts[key] = text; }
};

using Texts = std::map<std::string, std::string>;
using Lines = std::vector<std::string>;

TEST(PoReader, EntriesAreStored) {
    const Reading r("msgid \"\"\nmsgstr \"header\"\n\"more\\n\"\n\n"
                    "# comment\n#: place\nmsgid \"one\"\nmsgstr \"eins\"\n\n\n"
                    "msgid \"\"\n\"long\"\n\"key\"\r\nmsgstr   \"\"\n   \n\"a \"\n# inside\n\"b\"\n\n"
                    "msgid \"esc\"\nmsgstr \"\\a\\b\\f\\n\\r\\t\\v\\\"\\'\\?\\\\\"");
    EXPECT_EQ(r.texts, (Texts{{"one", "eins"}, {"longkey", "a b"}, {"esc", "\a\b\f\n\r\t\v\"'?\\"}}));
    EXPECT_EQ(r.log.lines, Lines{"f.po:15 Bad command or string"}); // a line of blanks isn't empty
}

TEST(PoReader, EachFailureNamesItsLineAndTheRestIsRead) {
    const struct {
        const char* line;
        const char* failure;
    } cases[] = {
        {"msgstr \"x\"", "Expected msgid"},
        {"msgid", "Bad command or string"},
        {"msgid x\"x\"", "Junk preceding string data"},
        {"msgid ", "Junk preceding string data"},
        {"msgid \"x\" x", "Junk following string data"},
        {"msgid \"x", "Missing terminator"},
        {"msgid \"x\\", "Invalid escape at end"},
        {"msgid \"x\\q\"", "Invalid escape code"},
        {"\"x\\x41\"", "Invalid escape code"},
    };
    for (const auto& c : cases) {
        // A line that got as far as msgid leaves the reader waiting for its text.
        const bool opensEntry = std::string(c.line).find("msgid ") == 0;
        const Reading r(std::string(c.line) + "\n" + (opensEntry ? "msgstr \"lost\"\n" : "") +
                        "\nmsgid \"k\"\nmsgstr \"t\"\n");
        EXPECT_EQ(r.log.lines, Lines{std::string("f.po:1 ") + c.failure}) << c.line;
        EXPECT_EQ(r.texts, (Texts{{"k", "t"}})) << c.line;
    }
}

TEST(PoReader, AnEntryNeedsItsText) {
    const Reading atEnd("msgid \"a\"\nmsgstr \"x\"\n\nmsgid \"k\"\n");
    EXPECT_EQ(atEnd.texts, (Texts{{"a", "x"}}));
    EXPECT_EQ(atEnd.log.lines, Lines{"f.po:5 Expected msgstr"});

    // The reader goes on in the same state, and takes the text that comes late.
    const Reading late("msgid \"k\"\n\nmsgid \"l\"\nmsgstr \"t\"\nmsgid \"m\"\n");
    EXPECT_EQ(late.log.lines,
              (Lines{"f.po:2 Expected msgstr", "f.po:3 Expected msgstr", "f.po:5 Bad command or string"}));
    EXPECT_EQ(late.texts, (Texts{{"k", "t"}}));
}

TEST(PoReader, BadUtf8IsRepairedAndTold) {
    const Reading r("msgid \"k\"\nmsgstr \"a\xc3(\"\n");
    EXPECT_EQ(r.texts, (Texts{{"k", "a\xef\xbf\xbd("}}));
    EXPECT_EQ(r.log.lines, Lines{"f.po:2 Bad UTF-8 (k) for 'de' locale"});
}

} // namespace

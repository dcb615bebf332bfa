#include "loc/Localize.h"

#include "locTesting.h"

#include "loc/LocaleSetter.h"
#include "loc/format.h"
#include "plat/builtInResource.h"
#include "plat/catalogTable.h"
#include "plat/translate.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Lines = std::vector<std::string>;

class Localize : public InEnglish {};

std::string plain(const char* key) { return LOC_TEXT(key); }

TEST_F(Localize, TheParameterChoosesTheLanguage) {
    EXPECT_EQ(plain("loc_time_yesterday"), "yesterday");
    const char* const handedOut = LOC_TEXT("loc_time_yesterday");
    speak("de");
    EXPECT_STREQ(localize().getLocaleList().c_str(), "de_DE:en_US");
    EXPECT_EQ(plain("loc_time_yesterday"), "gestern");
    speak("de_AT");
    EXPECT_EQ(plain("loc_time_yesterday"), "gestern");
    speak("ja:fr-CH");
    EXPECT_STREQ(localize().getLocaleList().c_str(), "ja_JP:fr_CH:en_US");
    EXPECT_EQ(plain("loc_time_yesterday"), "hier");
    speak("pt");
    EXPECT_EQ(plain("loc_time_tomorrow"), "amanh\xc3\xa3");
    speak("es");
    EXPECT_EQ(plain("loc_time_tomorrow"), "ma\xc3\xb1"
                                          "ana");
    EXPECT_STREQ(handedOut, "yesterday");
}

TEST_F(Localize, AllLanguagesHaveAllKeysOfThisLibrary) {
    for (const char* const key : {"loc_byterate_gibi_sing", "loc_bytesize_tebi_decimal", "loc_period_second_many"}) {
        for (const char* const language : {"en", "de", "es", "fr", "pt"}) {
            speak(language);
            EXPECT_NE(localize().findTranslation(key, /*raw=*/true), nullptr) << language << " " << key;
        }
    }
}

TEST_F(Localize, AKeyThatOnlyEnglishHasIsFoundInAnyLanguage) {
    localize().addString("en", "test_only_english", "only");
    speak("fr:de");
    EXPECT_EQ(plain("test_only_english"), "only");
}

TEST_F(Localize, MissingTextIsTheKeyAndALogLine) {
    LogLines log;
    EXPECT_STREQ(localize().translate("test_none", "file.cpp", 7, /*raw=*/false), "test_none");
    EXPECT_STREQ(localize().translate("test_none", nullptr, 0, /*raw=*/true), "test_none");
    EXPECT_STREQ(localize().translatePlural("test_none", 2, "file.cpp", 8), "test_none");
    EXPECT_EQ(localize().findTranslation("test_none", /*raw=*/false), nullptr);
    EXPECT_EQ(log.lines,
              (Lines{"Missing translation for \"test_none\" (file.cpp:7)", "Missing translation for \"test_none\"",
                     "Missing plural translation for \"test_none\" (file.cpp:8)"}));
    loc::locStrict = true;
    EXPECT_DEATH(plain("test_none"), "Missing translation for \"test_none\" .*\nAborting\n");
    loc::locStrict = false;
}

TEST_F(Localize, PlainTextIsReducedOnceAndOneKeyHasOneUse) {
    localize().addString("en", "test_plain", "100%% of 5%%%%");
    localize().addString("en", "test_raw", "100%% of %D");
    localize().refresh();
    EXPECT_EQ(plain("test_plain"), "100% of 5%%");
    EXPECT_EQ(plain("test_plain"), "100% of 5%%");
    EXPECT_STREQ(LOC_RAW("test_raw"), "100%% of %D");
    EXPECT_STREQ(loc::formatted(LOC_RAW("test_raw"), {3}).c_str(), "100% of 3");
    EXPECT_DEATH(plain("test_raw"), "\\(raw == \\(state == TR_RAW\\)\\).*"
                                    "Can't use same string as both raw and formatted - test_raw");
    EXPECT_DEATH(LOC_RAW("test_plain"), "Can't use same string as both raw and formatted - test_plain");
}

TEST_F(Localize, PluralsAreFoundByTheWholeNameThenByTheLanguage) {
    EXPECT_STREQ(LOC_PLURAL("loc_period_day", 0), "%D days");
    EXPECT_STREQ(LOC_PLURAL("loc_period_day", 1), "%D day");
    speak("fr_CA");
    EXPECT_STREQ(LOC_PLURAL("loc_period_day", 0), "%D jour");
    speak("xx:pt_PT");
    EXPECT_STREQ(LOC_PLURAL("loc_period_day", 0), "%D dias");
    localize().addString("en", "test_plural_many", "%D things");
    EXPECT_STREQ(LOC_PLURAL("test_plural", 5), "%D things");
}

TEST_F(Localize, BadUtf8InACompiledTextIsOurFault) {
    EXPECT_DEATH(localize().addString("en", "test_bad", "\xc3("), "isValidUtf8\\(str\\).*Bad UTF-8 in test_bad");
}

TEST_F(Localize, TextOfLibrariesIsTakenWhenItComesLate) {
    static const plat::CatalogEntry entries[] = {{"test_late_a", "a"}, {"test_late_b", "b"}};
    static const plat::CatalogLanguage languages[] = {{"en", entries, 2}};
    static plat::CatalogTable table{"test", languages, 1};
    plat::addCatalog(table);
    localize().refresh();
    EXPECT_EQ(plain("test_late_a"), "a");
    EXPECT_EQ(plain("test_late_b"), "b");
}

TEST_F(Localize, FilesAddAndReplaceTextsWithoutTakingAwayWhatWasHandedOut) {
    const char* const before = LOC_TEXT("loc_time_tomorrow");
    LogLines log(plat::LogInfo);
    const std::string name = write("en", "msgid \"loc_time_tomorrow\"\nmsgstr \"the day after\"\n\n"
                                         "msgid \"test_from_file\"\nmsgstr \"100%%\"\n\nmsgid broken\n");
    localize().setDirs({"/nonexistent", name});
    EXPECT_EQ(plain("loc_time_tomorrow"), "the day after");
    EXPECT_EQ(plain("test_from_file"), "100%");
    EXPECT_STREQ(before, "tomorrow");
    const std::string path = name + "/strings.en.po";
    EXPECT_EQ(log.lines, (Lines{path + ":7 Junk preceding string data", path + ":8 Expected msgstr",
                                "Loaded strings from " + path}));
    // Its use may be another one in the new text.
    localize().addTranslation("en", "loc_time_tomorrow", "tomorrow");
    EXPECT_EQ(plain("loc_time_tomorrow"), "tomorrow");

    log.lines.clear();
    localize().refresh(); // each locale is looked for once
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(Localize, AFileThatCantBeReadIsLogged) {
    write("en", "");
    ASSERT_EQ(::mkfifo((dir / "strings.en_US.po").c_str(), 0600), 0);
    LogLines log;
    localize().setDirs({dir.root});
    EXPECT_EQ(log.lines, (Lines{"Error loading strings from " + (dir / "strings.en_US.po") + ": not a regular file"}));
}

TEST_F(Localize, ALocaleNameNeverLeavesTheDirectory) {
    write("en", "");
    plat::mkDir((dir / "strings.x").c_str());
    plat::writeTextFile(dir / "y.po", "msgid \"test_escaped\"\nmsgstr \"x\"\n"); // strings.x/../y.po
    localize().setDirs({dir.root});
    speak("x/../y");
    EXPECT_EQ(localize().findTranslation("test_escaped", /*raw=*/false), nullptr);
    EXPECT_STREQ(localize().getLocaleList().c_str(), "x/:en_US");
}

TEST_F(Localize, ABuiltInResourceIsReadToo) {
    static const char text[] = "msgid \"test_built_in\"\nmsgstr \"y\"\n";
    plat::addBuiltInResource("strings.nl.po", sizeof text - 1, text);
    LogLines log(plat::LogInfo);
    speak("nl");
    EXPECT_EQ(plain("test_built_in"), "y");
    EXPECT_NE(std::find(log.lines.begin(), log.lines.end(), "Loaded strings from built-in resource strings.nl.po"),
              log.lines.end());
}

TEST_F(Localize, LowLibrariesGetTheirTexts) {
    localize().addString("en", "test_low", "Bad argument '%S'.");
    localize().refresh();
    plat::DString out;
    plat::translateWith(out, "test_low", "-x");
    EXPECT_STREQ(out.c_str(), "Bad argument '-x'.");
    EXPECT_STREQ(plat::translate("loc_time_yesterday"), "yesterday");
}

TEST_F(Localize, ASetterSpeaksAnotherLanguageForItsScope) {
    {
        const loc::LocaleSetter german("de");
        EXPECT_EQ(plain("loc_time_yesterday"), "gestern");
        EXPECT_STREQ(localize().getCurrentLocales().c_str(), "de_DE");
        {
            const loc::LocaleSetter none;
            EXPECT_EQ(loc::LocaleSetter::current(), &none);
            EXPECT_EQ(plain("loc_time_yesterday"), "gestern");
            EXPECT_STREQ(none.getOsLocale(), german.getOsLocale());
            EXPECT_STREQ(localize().getCurrentLocales().c_str(), "de_DE");
            const loc::LocaleSetter french("fr:es");
            EXPECT_EQ(plain("loc_time_yesterday"), "hier");
            EXPECT_STREQ(localize().getCurrentLocales().c_str(), "fr_FR:es_ES");
        }
        EXPECT_EQ(plain("loc_time_yesterday"), "gestern");
    }
    EXPECT_EQ(plain("loc_time_yesterday"), "yesterday");
    EXPECT_STREQ(localize().getCurrentLocales().c_str(), "en_US:en_US");
    EXPECT_EQ(loc::LocaleSetter::current(), nullptr);
}

TEST_F(Localize, SettersEndInReverseOrder) {
    EXPECT_DEATH(
        {
            auto outer = std::make_unique<loc::LocaleSetter>();
            const loc::LocaleSetter inner;
            outer.reset();
        },
        "thrInst == this");
}

// The system's locales are read once in a process, so each case has one of its own.
void checkSystem(const char* lang, const char* language, const char* locales, const char* exported) {
    EXPECT_EXIT(
        {
            ::unsetenv("LC_ALL");
            ::unsetenv("LC_MESSAGES");
            ::setenv("LANG", lang, 1);
            if (language)
                ::setenv("LANGUAGE", language, 1);
            else
                ::unsetenv("LANGUAGE");
            plat::Configuration::global().set("Locale", "");
            std::fprintf(stderr, "[%s] [%s]\n", loc::Localize::instance().getLocaleList().c_str(),
                         std::getenv("LANGUAGE"));
            ::_exit(0);
        },
        ::testing::ExitedWithCode(0), std::string("\\[") + locales + "\\] \\[" + exported + "\\]")
        << lang;
}

TEST_F(Localize, TheSystemChoosesWhereTheUserDoesnt) {
    checkSystem("C", nullptr, "en_US", "en_US");
    checkSystem("C", "de", "en_US", "en_US:de");
    checkSystem("C.UTF-8", nullptr, "en_US", "en_US");
    checkSystem("C.UTF-8", "de", "de_DE:en_US", "de_DE:de");
    checkSystem("de_CH.UTF-8", nullptr, "de_CH:en_US", "de_CH");
    checkSystem("de_CH.UTF-8@euro", "de:fr:it_CH", "de_CH:fr_FR:it_CH:en_US", "de_CH:de:fr:it_CH");
    checkSystem("de_CH.UTF-8", ":.", "de_CH:en_US", "de_CH::.");
    checkSystem("de_CH.UTF-8", "../../x", "de_CH:en_US", "de_CH:../../x");
}

} // namespace

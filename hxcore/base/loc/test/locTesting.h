// A known language, and a log to look into.
#pragma once

#include "loc/Localize.h"

#include "plat/Configuration.h"
#include "plat/LogDest.h"
#include "plat/LogSrc.h"
#include "plat/test/TempDir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// Collects the lines of the source Localize up to a level, but for those about locales of the machine.
class LogLines : public plat::LogDest {
public:
    explicit LogLines(int level = plat::LogError) : LogDest("lines") {
        plat::logSetSpec(("Localize:lines:" + std::to_string(level)).c_str());
        plat::logActivate();
        plat::logApply();
    }
    ~LogLines() override { plat::logSetSpec(nullptr); }

    void write(int, const char*, const char* text) override {
        // Which locales the machine has is none of the tests' business.
        if (std::string(text).find("No OS support") != 0)
            lines.emplace_back(text);
    }

    std::vector<std::string> lines;
};

/// Speaks English at first, whatever the machine speaks.
class InEnglish : public ::testing::Test {
protected:
    void SetUp() override {
        speak("en");
        loc::Localize::instance().init();
    }
    ~InEnglish() override {
        loc::Localize::instance().setDirs({});
        speak("en");
    }

    static void speak(const char* locale) { plat::Configuration::global().set("Locale", locale); }
    static loc::Localize& localize() { return loc::Localize::instance(); }

    /// Writes a text file of a locale into a directory of this test.
    const std::string& write(const char* locale, const std::string& text) {
        plat::writeTextFile(dir / "strings." + locale + ".po", text);
        return dir.root;
    }

    plat::TempDir dir;
};

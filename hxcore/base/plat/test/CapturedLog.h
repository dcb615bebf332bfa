// What was logged while a test ran.
#pragma once

#include "plat/LogDest.h"
#include "plat/LogSrc.h"

#include <algorithm>
#include <string>
#include <vector>

namespace plat {

/// Takes every message of every source while it lives, in place of the other destinations.
class CapturedLog : public LogDest {
public:
    CapturedLog() : LogDest("captured") {
        logSetSpec("*:captured:110");
        logActivate();
        logApply();
        lines.clear(); // what was kept from before
    }
    ~CapturedLog() override { logSetSpec(nullptr); }

    // LogDest
    void write(int level, const char* srcName, const char* text) override {
        lines.push_back(std::to_string(level) + " " + srcName + ": " + text);
    }

    bool has(const std::string& line) const { return std::find(lines.begin(), lines.end(), line) != lines.end(); }

    /// How many lines hold `part`.
    int count(const std::string& part) const {
        return static_cast<int>(std::count_if(
            lines.begin(), lines.end(), [&](const std::string& each) { return each.find(part) != std::string::npos; }));
    }

    std::vector<std::string> lines; ///< "level source: text"
};

} // namespace plat

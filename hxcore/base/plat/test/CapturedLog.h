// What was logged while a test ran.
#pragma once

#include "plat/LogDest.h"
#include "plat/LogSrc.h"

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

    bool has(const std::string& line) const {
        for (const std::string& each : lines)
            if (each == line)
                return true;
        return false;
    }

    std::vector<std::string> lines; ///< "level source: text"
};

} // namespace plat

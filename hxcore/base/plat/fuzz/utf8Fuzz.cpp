// The rules of UTF-8: what repair makes is valid, keeps what was valid, and respects its limit at a character.
#include "plat/DString.h"
#include "plat/SString.h"
#include "plat/utf8.h"
#include "plat/visibleText.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkRepair(const std::string& text) {
    const char* start = text.data();
    const char* end = start + text.size();
    const plat::String repaired = plat::repairUtf8(start, static_cast<int>(text.size()));
    require(plat::utf8::isValid(repaired.c_str()));
    require(plat::repairUtf8(repaired.c_str()) == repaired);
    require(plat::utf8::countChars(start, end) == plat::utf8::countChars(repaired.c_str()));
    if (plat::utf8::isValid(start, end) && text.find('\0') == std::string::npos)
        require(repaired == text.c_str());
    for (const int limit : {0, 2, 7}) {
        const plat::String cut = plat::repairUtf8(start, static_cast<int>(text.size()), limit);
        require(cut.len() <= limit && plat::utf8::isValid(cut.c_str()));
        require(plat::startsWith(repaired.c_str(), cut.c_str()));
    }
}

// What is shown is one line of visible characters, and shows as itself.
void checkVisible(const std::string& text) {
    const plat::String shown = plat::visibleText(text.c_str());
    require(plat::utf8::isValid(shown.c_str()) && plat::visibleText(shown.c_str()) == shown);
    for (const char c : shown.view())
        require(static_cast<unsigned char>(c) >= 0x20 && c != 0x7f);
}

void checkSteps(const std::string& text) {
    const char* pos = text.data() + text.size();
    while (pos > text.data()) {
        const char* before = pos;
        plat::utf8::stepBack(&pos, text.data());
        require(pos < before && pos >= text.data());
    }
}

void checkCuts(const std::string& text) {
    const plat::String whole = plat::repairUtf8(text.c_str());
    char small[7];
    const bool fits = plat::SString::copy(small, whole.c_str());
    require(plat::utf8::isValid(small) && plat::startsWith(whole.c_str(), small));
    require(fits == (whole.len() < static_cast<int>(sizeof(small))));
    require(plat::SString::format(small, sizeof(small), "%s", whole.c_str()) == fits && plat::utf8::isValid(small));
    plat::DString wrapped(whole.c_str());
    require(plat::utf8::isValid(wrapped.wordWrap(10, 3).c_str()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkRepair(text);
    checkVisible(text);
    checkSteps(text);
    checkCuts(text);
    return 0;
}

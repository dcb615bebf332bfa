// What others write into the prompt: it comes out as markup that parses, without links, and with nothing invisible.
#include "loc/Localize.h"
#include "plat/Markup.h"
#include "plat/fuzz/quietLog.h"
#include "plat/utf8.h"
#include "plat/visibleText.h"
#include "registerBuiltInResources.h"
#include "smisc/promptTexts.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr size_t most = 192; // bytes; more of them find nothing that fewer don't

void require(bool condition) {
    if (!condition)
        std::abort();
}

constexpr uint32_t firstStrongIsolate = 0x2068; // of our own: around a name from right to left
constexpr uint32_t popIsolate = 0x2069;

struct Checker : plat::Markup::Handler {
    int isolates = 0;

    void addText(const plat::Markup::Style& style, const char* text) override {
        require(style.size >= 100 && style.size <= 240);
        const char* const end = text + std::strlen(text);
        while (text < end) {
            uint32_t codepoint = 0;
            require(plat::utf8::decode(&text, end, &codepoint));
            isolates += codepoint == firstStrongIsolate ? 1 : codepoint == popIsolate ? -1 : 0;
            require(isolates == 0 || isolates == 1);
            require(codepoint == firstStrongIsolate || codepoint == popIsolate || codepoint == '\n' ||
                    codepoint == ' ' || codepoint == 0xa0 ||
                    (!plat::isInvisible(codepoint) && !plat::isBlankOrBreak(codepoint)));
        }
    }
    void addLink(const plat::Markup::Style&, const char*, const char*) override { require(false); }
};

void check(const plat::String& markup) {
    Checker checker;
    plat::Markup::ParserHtml::instance().parse(markup.c_str(), &checker); // what it throws is a fault
    require(checker.isolates == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    [[maybe_unused]] static const bool once = (loc::Localize::instance().init(), registerBuiltInResources(), true);
    if (size > most)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    check(smisc::promptLine(text.c_str(), "", /*maxNameChars=*/size % 2 ? 3 : 64));
    check(smisc::promptMessage(text.c_str()));
    return 0;
}

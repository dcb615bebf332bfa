// Texts of values: numbers, times, durations, identifiers, encodings, paths and variables. What parses prints, and what
// is printed parses to the same.
#include "plat/Exception.h"
#include "plat/Splitter.h"
#include "plat/Time.h"
#include "plat/Uuid.h"
#include "plat/encodings.h"
#include "plat/env.h"
#include "plat/numbers.h"
#include "plat/path.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

// The throwing form of a parser takes what the other takes, and gives the same.
template <class T, class Read>
void checkReads(Read read, const char* text, const char* behind, bool parsed, T value) {
    const char* pos = text;
    try {
        require(read(&pos) == value && parsed && pos == behind);
    } catch (const plat::BadNum&) {
        require(!parsed && pos == text);
    }
}

void checkNumbers(const char* text) {
    int64_t s64 = 0;
    const char* pos = text;
    const bool isS64 = plat::parseS64(&pos, s64);
    checkReads([](const char** p) { return plat::readS64(p); }, text, pos, isS64, s64);
    if (isS64) {
        require(pos > text);
        const plat::String printed = plat::strFormat("%lld", static_cast<long long>(s64));
        int64_t again = 0;
        pos = printed.c_str();
        require(plat::parseS64(&pos, again) && again == s64 && !*pos);
    }
    int ranged = 0;
    const bool inRange = plat::parseIntInRange(text, -5, 500, ranged);
    require(ranged >= -5 && ranged <= 500);
    checkReads([](const char** p) { return plat::readIntInRange(*p, -5, 500); }, text, text, inRange, ranged);
    int s32 = 0;
    pos = text;
    const bool isS32 = plat::parseInt(&pos, s32);
    checkReads([](const char** p) { return plat::readInt(p); }, text, pos, isS32, s32);
    uint64_t u64 = 0;
    pos = text;
    const bool isU64 = plat::parseU64(&pos, u64, 0);
    checkReads([](const char** p) { return plat::readU64(p, 0); }, text, pos, isU64, u64);
    unsigned u32 = 0;
    pos = text;
    const bool isU32 = plat::parseUInt(&pos, u32, 16);
    checkReads([](const char** p) { return plat::readUInt(p, 16); }, text, pos, isU32, u32);
}

void checkTimes(const char* text) {
    plat::Time t;
    if (plat::parseIso8601(text, &t)) {
        plat::Time again;
        // Offsets may lead out of the years that have four digits.
        if (plat::parseIso8601(plat::toIso8601(t, /*withMillis=*/true).c_str(), &again))
            require(t - again >= 0 && t - again < 10000);
        plat::toRfc1123(t);
        plat::toIso8601Local(t);
    }
    int64_t ticks = -1;
    require(plat::parseDuration(text, &ticks) == (ticks >= 0));
}

void checkIdentifiers(const char* text) {
    plat::Uuid id;
    if (id.parse(text)) {
        plat::Uuid again;
        require(again.parse(id.toString().c_str()) && again == id);
        require(again.parse(id.toString(/*hyphens=*/false).c_str()) && again == id);
    }
    plat::UuidSet set;
    if (set.parse(text)) {
        plat::UuidSet again;
        require(again.parse(set.toString().c_str()) && again == set);
    }
}

void checkEncodings(const char* text) {
    plat::MBuf<uint8_t> bytes;
    plat::MBuf<uint8_t> again;
    if (plat::hexToBin(text, bytes))
        require(plat::hexToBin(plat::binToHex(static_cast<size_t>(bytes.size()), bytes.data()).c_str(), again) &&
                again.size() == bytes.size());
    if (plat::base64Decode(text, bytes)) {
        const plat::String encoded = plat::base64Encode(static_cast<size_t>(bytes.size()), bytes.data());
        require(plat::base64Decode(encoded.c_str(), again) && again.size() == bytes.size());
    }
    try {
        again = plat::hexToBinOrThrow(text);
        require(plat::Uuid(text).toString(/*hyphens=*/false).len() == 32);
    } catch (const plat::Exception&) {
        // What is no even number of digits, and what is none of 32.
    }
    require(plat::percentDecode(plat::percentEncode(text).c_str()) == text);
    try {
        plat::percentDecode(text);
    } catch (const plat::Exception&) {
    }
}

void checkPaths(const char* text) {
    const plat::String normal = plat::path::normalize(text);
    require(plat::path::normalize(normal.c_str()) == normal);
    require(plat::path::isAbsolute(text) == plat::path::isAbsolute(normal.c_str()));
    plat::path::dirName(text);
    plat::path::baseName(text, ".png");
    require(!plat::contains(plat::path::sanitiseName(text).c_str(), nullptr, '/'));
    require(plat::path::normalize(plat::path::join(normal.c_str(), "..").c_str()).len() <= normal.len() + 3);
    const plat::EnvMap map = {{"A", "a"}, {"B", ""}};
    plat::DString out;
    plat::expandEnv(out, text, &map, /*strict=*/false, /*useEnv=*/false);
    try {
        plat::DString strict;
        plat::expandEnv(strict, text, &map, /*strict=*/true, /*useEnv=*/false);
        require(plat::strEquals(strict.c_str(), out.c_str()));
    } catch (const plat::ExceptionFmt&) {
        // A name that is in neither.
    }
    // What was cut, joined by what it was cut at, is the text again.
    std::string copy = text;
    std::string joined;
    char found = '\0';
    for (char* pos = copy.data(); pos;) {
        joined += plat::Splitter::splitAny(&pos, ",; ", &found);
        if (found)
            joined += found;
    }
    require(joined == text);
    for (char* pos = copy.data(); pos;)
        plat::Splitter::split(&pos, '/', /*skipRepeats=*/true);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkNumbers(text.c_str());
    checkTimes(text.c_str());
    checkIdentifiers(text.c_str());
    checkEncodings(text.c_str());
    checkPaths(text.c_str());
    return 0;
}

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

void checkNumbers(const char* text) {
    int64_t s64 = 0;
    const char* pos = text;
    if (plat::parseS64(&pos, s64)) {
        require(pos > text);
        const plat::String printed = plat::strFormat("%lld", static_cast<long long>(s64));
        int64_t again = 0;
        pos = printed.c_str();
        require(plat::parseS64(&pos, again) && again == s64 && !*pos);
    }
    int ranged = 0;
    if (plat::parseIntInRange(text, -5, 500, ranged))
        require(ranged >= -5 && ranged <= 500);
    uint64_t u64 = 0;
    pos = text;
    if (!plat::parseU64(&pos, u64, 0))
        require(pos == text && u64 == 0);
    unsigned u32 = 0;
    pos = text;
    plat::parseUInt(&pos, u32, 16);
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
    const plat::EnvMap map = {{"A", "a"}, {"B", ""}};
    plat::DString out;
    plat::expandEnv(out, text, &map, /*strict=*/false, /*useEnv=*/false);
    std::string copy = text;
    for (char* pos = copy.data(); pos;)
        plat::Splitter::splitAny(&pos, ",; ", nullptr, /*skipRepeats=*/true);
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

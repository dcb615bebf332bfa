#include "plat/LogSrc.h"

#include "plat/Assert.h"
#include "plat/LogRegistry.h"
#include "plat/SString.h"
#include "plat/utf8.h"

#include <algorithm>
#include <cstring>

namespace plat {
namespace {

constexpr size_t maxMessageBytes = 4096; // the NUL included

void appendControl(std::string& out, unsigned char byte) {
    if (byte < 32 || byte == 127) {
        out += '^';
        out += static_cast<char>(byte ^ 64);
    } else {
        out += static_cast<char>(byte);
    }
}

void appendBadByte(std::string& out, unsigned char byte) {
    const auto low = static_cast<unsigned char>(byte & 0x7f);
    out += low < 32 || low == 127 ? "~M" : "~M-";
    appendControl(out, low);
}

} // namespace

std::string logSafeText(const char* text) {
    std::string out;
    const char* const end = text + std::strlen(text);
    for (const char* pos = text; pos < end;) {
        const auto byte = static_cast<unsigned char>(*pos);
        if (byte < 0x80) {
            if (byte == '~')
                out += "~~";
            else if (byte < 32 || byte == 127)
                out += '~', appendControl(out, byte);
            else
                out += *pos;
            ++pos;
            continue;
        }
        const char* const start = pos;
        uint32_t codepoint = 0;
        if (utf8::decode(&pos, end, &codepoint)) {
            out.append(start, pos);
        } else {
            for (const char* bad = start; bad < pos; ++bad)
                appendBadByte(out, static_cast<unsigned char>(*bad));
        }
    }
    return out;
}

LogSrc::LogSrc(const char* srcName) : name(srcName), closed(0) {
    LogRegistry::instance().add(this);
    constructed = true;
    LogSrc::updateMaxLevel();
}

LogSrc::~LogSrc() { LogRegistry::instance().remove(this); }

void LogSrc::updateMaxLevel() {
    int highest = LogRegistry::isActive() ? -1 : LogDest::noLimit;
    for (const auto& [dest, level] : *dests)
        highest = std::max(highest, std::min(level, dest->getLevel()));
    closed = static_cast<unsigned>(INT_MAX) - static_cast<unsigned>(highest);
}

void LogSrc::vwrite(int level, const char* format, va_list args) {
    if (!isEnabled(level))
        return;
    ASSERT(constructed);
    char text[maxMessageBytes];
    SString::formatV(text, sizeof(text), format, args);
    deliver(level, text);
}

void LogSrc::write(int level, const char* format, ...) {
    va_list args;
    va_start(args, format);
    vwrite(level, format, args);
    va_end(args);
}

void LogSrc::writeLines(int level, const char* text) {
    if (!text || !isEnabled(level))
        return;
    while (*text) {
        const size_t lenBytes = std::strcspn(text, "\n");
        if (lenBytes > 0)
            write(level, "%.*s", static_cast<int>(std::min<size_t>(lenBytes, maxMessageBytes)), text);
        text += lenBytes;
        if (*text)
            ++text;
    }
}

void LogSrc::deliver(int level, const char* text) {
    if (dests->empty() && LogRegistry::isActive())
        return;
    const std::string safe = logSafeText(text);
    bool taken = false;
    // A destination may cause the mappings to change while it writes: go on behind its place.
    for (auto it = dests->begin(); it != dests->end();) {
        LogDest* const dest = it->first;
        if (level <= it->second && dest->isActive()) {
            dest->write(level, name, safe.c_str());
            taken = true;
        }
        it = dests->upper_bound(dest);
    }
    if (!taken)
        LogRegistry::instance().memory().write(level, name, safe.c_str());
}

void logSetSpec(const char* spec) { LogRegistry::instance().setSpec(spec); }
void logActivate() { LogRegistry::instance().activate(); }
bool logIsActive() { return LogRegistry::isActive(); }
void logApply() { LogRegistry::instance().apply(); }
void logListSources(int width, FILE* stream) { LogRegistry::instance().listSources(width, stream); }

} // namespace plat

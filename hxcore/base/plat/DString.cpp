#include "plat/DString.h"

#include "plat/Assert.h"
#include "plat/utf8.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>
#include <utility>

namespace plat {
namespace {
constexpr int minCapacity = 8;
constexpr int maxCapacity = 1 << 30;
} // namespace

DString::DString(DString&& other) noexcept { *this = std::move(other); }

DString& DString::operator=(const DString& other) {
    if (this != &other) {
        clear();
        append(other.c_str(), other.len());
    }
    return *this;
}

DString& DString::operator=(DString&& other) noexcept {
    std::swap(buf, other.buf);
    std::swap(capacity, other.capacity);
    std::swap(length, other.length);
    return *this;
}

void DString::reserve(int n) {
    if (n <= capacity)
        return;
    if (n > maxCapacity)
        throw std::bad_alloc();
    const int larger = static_cast<int>(std::bit_ceil(static_cast<unsigned>(std::max(n, minCapacity))));
    char* fresh = new char[static_cast<size_t>(larger)];
    std::memcpy(fresh, c_str(), static_cast<size_t>(length) + 1);
    delete[] buf;
    buf = fresh;
    capacity = larger;
}

DString& DString::append(const char* text, int maxLen) { return insert(length, length, text, maxLen); }

DString& DString::appendChars(uint32_t codepoint, int count) {
    char encoded[4];
    char* end = encoded;
    encodeUtf8(codepoint, &end);
    const int bytes = static_cast<int>(end - encoded);
    if (count <= 0)
        return *this;
    if (count > (maxCapacity - 1 - length) / bytes)
        throw std::bad_alloc();
    reserve(length + count * bytes + 1);
    for (int i = 0; i < count; ++i, length += bytes)
        std::memcpy(buf + length, encoded, static_cast<size_t>(bytes));
    buf[length] = '\0';
    return *this;
}

DString& DString::format(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    formatV(fmt, args);
    va_end(args);
    return *this;
}

DString& DString::formatV(const char* fmt, va_list args) {
    // Into memory of its own first: the arguments may point into this string.
    return append(strFormatV(fmt, args));
}

DString& DString::insert(int start, int end, const char* text, int maxLen) {
    start = std::clamp(start, 0, length);
    end = std::clamp(end, start, length);
    const int textLen = maxLen < 0 ? strLen(text) : strLenMax(text, maxLen);
    if (textLen > maxCapacity - 1 - length)
        throw std::bad_alloc();
    String copy; // of a text inside this string, which is about to move
    if (textLen && buf && text >= buf && text < buf + capacity) {
        copy = String(text, textLen);
        text = copy.get();
    }
    reserve(length - (end - start) + textLen + 1);
    std::memmove(buf + start + textLen, buf + end, static_cast<size_t>(length - end));
    if (textLen)
        std::memcpy(buf + start, text, static_cast<size_t>(textLen));
    length += textLen - (end - start);
    buf[length] = '\0';
    return *this;
}

DString& DString::replaceAll(const char* find, const char* with) {
    const int findLen = strLen(find);
    ASSERT(findLen);
    DString result;
    const char* rest = c_str();
    while (const char* hit = std::strstr(rest, find)) {
        result.append(rest, static_cast<int>(hit - rest)).append(with);
        rest = hit + findLen;
    }
    result.append(rest);
    return *this = std::move(result);
}

DString& DString::wordWrap(int width, int indent) {
    DString result;
    result.reserve(length + 1);
    int column = 0; // characters on the current line
    bool lineHasWord = false;
    for (const char* pos = c_str(); *pos;) {
        if (*pos == '\n') {
            result.append("\n");
            column = 0;
            lineHasWord = false;
            ++pos;
            continue;
        }
        const int gap = static_cast<int>(std::strspn(pos, " "));
        const int bytes = static_cast<int>(std::strcspn(pos + gap, " \n"));
        const int chars = utf8::countChars(pos + gap, pos + gap + bytes);
        if (lineHasWord && bytes && column + gap + chars > width) {
            result.append("\n").appendChars(' ', indent);
            column = std::max(indent, 0) + chars;
            result.append(pos + gap, bytes);
        } else {
            result.append(pos, gap + bytes);
            column += gap + chars;
        }
        lineHasWord |= bytes > 0;
        pos += gap + bytes;
    }
    return *this = std::move(result);
}

DString& DString::repairUtf8() {
    if (!utf8::isValid(c_str(), c_str() + length)) {
        const String repaired = plat::repairUtf8(c_str(), length);
        clear();
        append(repaired);
    }
    return *this;
}

void DString::truncate(int lenBytes) {
    if (lenBytes >= length)
        return;
    length = std::max(lenBytes, 0);
    buf[length] = '\0';
}

String DString::take() {
    if (!buf)
        return "";
    String result = String::adopt(std::exchange(buf, nullptr));
    capacity = length = 0;
    return result;
}

} // namespace plat

#include "tx/desktopTexts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>

namespace tx {
namespace {

constexpr uint32_t maxSettings = 65536;

/// Reads numbers of either byte order; past the end it gives zeroes and `failed`.
class Cursor {
public:
    explicit Cursor(std::span<const char> bytes_) : bytes(bytes_) {}

    uint32_t number(size_t len) {
        const std::string_view text = take(len);
        uint32_t value = 0;
        for (size_t i = 0; i < text.size(); i++) {
            const size_t from = bigEndian ? i : text.size() - 1 - i;
            value = value << 8 | static_cast<unsigned char>(text[from]);
        }
        return value;
    }
    std::string_view take(size_t len) {
        if (len > bytes.size() - at) {
            failed = true;
            at = bytes.size();
            return {};
        }
        const std::string_view text(bytes.data() + at, len);
        at += len;
        return text;
    }
    std::string_view takePadded(size_t len) {
        const std::string_view text = take(len);
        take((4 - len % 4) % 4);
        return text;
    }

    bool bigEndian = false;
    bool failed = false;

private:
    std::span<const char> bytes;
    size_t at = 0;
};

enum SettingType : uint32_t { Number = 0, Text = 1, Colour = 2 };

std::string_view trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

int parseDpi(std::string_view text) {
    constexpr double least = 24;
    constexpr double most = 1536;
    double dpi = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), dpi);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && dpi >= least && dpi <= most ? static_cast<int>(std::lround(dpi)) : 0;
}

/// What ordinary text takes with a font of that height: size 120 times `ppmm`, in per cent (hxutil::getFont).
struct FontStep {
    int heightPx;
    int from; // size * ppmm * factor / 100
};

constexpr int ordinarySize = 120;
constexpr std::array<FontStep, 5> fontSteps = {{{15, 0}, {16, 484}, {21, 960}, {30, 1536}, {42, 2880}}};

} // namespace

bool XSettings::parse(std::span<const char> bytes) {
    Cursor in(bytes);
    in.bigEndian = in.number(1) == 1;
    in.take(3);
    in.number(4); // serial
    const uint32_t count = in.number(4);
    if (count > maxSettings)
        return false;
    for (uint32_t i = 0; i < count; i++) {
        const uint32_t type = in.number(1);
        in.take(1);
        const std::string_view name = in.takePadded(in.number(2));
        in.number(4); // serial of its last change
        if (type == Number) {
            const uint32_t value = in.number(4);
            if (!in.failed)
                numbers[std::string(name)] = static_cast<int32_t>(value);
        } else if (type == Text) {
            const std::string_view value = in.takePadded(in.number(4));
            if (!in.failed)
                texts[std::string(name)] = value;
        } else if (type == Colour) {
            in.take(8);
        } else {
            return false;
        }
        if (in.failed)
            return false;
    }
    return !in.failed;
}

int parseXftDpi(std::string_view resources) {
    constexpr std::string_view name = "Xft.dpi";
    int dpi = 0;
    while (!resources.empty()) {
        const size_t end = std::min(resources.find('\n'), resources.size());
        const std::string_view line = trimmed(resources.substr(0, end));
        resources.remove_prefix(std::min(end + 1, resources.size()));
        if (line.substr(0, name.size()) != name)
            continue;
        const std::string_view rest = trimmed(line.substr(name.size()));
        if (rest.empty() || rest.front() != ':')
            continue;
        if (const int found = parseDpi(trimmed(rest.substr(1))))
            dpi = found;
    }
    return dpi;
}

bool isDarkTheme(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower.find("dark") != lower.npos || lower.find("inverse") != lower.npos;
}

DesktopScale scaleForDpi(int dpi) {
    DesktopScale scale{std::clamp((dpi * 4 + 48) / 96, 1, 32), 100};
    const int wanted = 15 * dpi / 96;
    const auto distance = [wanted](const FontStep& step) { return std::abs(step.heightPx - wanted); };
    const FontStep& best = *std::min_element(fontSteps.begin(), fontSteps.end(),
                                             [&](const auto& a, const auto& b) { return distance(a) < distance(b); });
    const int perCent = ordinarySize * scale.ppmm;
    scale.textSizeFactor = std::clamp((best.from * 100 + perCent - 1) / perCent, 100, 1000);
    if (best.heightPx > 21)
        scale.textSizeFactor = std::max(scale.textSizeFactor, 101); // at 100 the two largest are not used
    return scale;
}

} // namespace tx

#include "hxutil/Paragraph.h"

#include "hxutil/dynFribidi.h"
#include "hxutil/scripts.h"
#include "hxutil/textChars.h"
#include "plat/LogSrc.h"
#include "plat/direction.h"
#include "plat/visibleText.h"

#include <algorithm>
#include <string>

namespace hxutil {
namespace {

plat::LogSrc log("Font");

using Unit = Paragraph::Unit;

constexpr int zeroWidthJoiner = 0x200d;

bool isIsolate(int code) { return code >= 0x2066 && code <= 0x2069; }

/// Controls of direction that are not obeyed, but shown: marks, embeddings, overrides.
bool isShownControl(int code) {
    return code >= 0 && plat::isDirectionControl(static_cast<uint32_t>(code)) && !isIsolate(code);
}

bool isSkinTone(int code) { return code >= 0x1f3fb && code <= 0x1f3ff; }
bool isRegional(int code) { return code >= 0x1f1e6 && code <= 0x1f1ff; }

/// True if `code` is part of the picture that `before` is: a tone, what a joiner adds, the second half of a flag.
bool joinsPicture(const std::vector<Unit>& units, int code, bool afterJoiner) {
    if (code < 0x1f000 && !(afterJoiner && code >= 0x2190))
        return false;
    // The unit that is drawn.
    auto base = std::find_if(units.rbegin(), units.rend(), [](const Unit& unit) { return !unit.extends; });
    if (base == units.rend() || base->code < 0x2190)
        return false;
    if (isRegional(code))
        return isRegional(base->code) && base == units.rbegin();
    return afterJoiner || isSkinTone(code);
}

/// The units as they stand in the text, marks composed with their bases.
void decode(std::string_view text, std::vector<Unit>& units) {
    const char* const start = text.data();
    const char* const end = start + text.size();
    const char* pos = start;
    int code;
    bool afterJoiner = false;
    for (const char* from = pos; nextChar(&pos, end, &code); from = pos) {
        Unit* const before = units.empty() ? nullptr : &units.back();
        const int whole = before && !before->extends ? composed(before->code, code) : 0;
        if (whole) {
            before->code = whole;
            continue;
        }
        const bool hidden = isHidden(code);
        // A mark at the start of a value that was put into a sentence must not stand over the sentence.
        const bool extends =
            before && before->code != '\n' &&
            (hidden || (isMark(code) && !isIsolate(before->code)) || joinsPicture(units, code, afterJoiner));
        const bool blank = isIsolate(code) || (code >= 0 && plat::isBlankOrBreak(static_cast<uint32_t>(code)));
        units.push_back({code, static_cast<size_t>(from - start), 0, extends, blank, /*ligature=*/false});
        afterJoiner = code == zeroWidthJoiner;
    }
}

bool haveFribidi() {
    static const bool found = [] {
        const bool have = dynFribidi::get_par_embedding_levels_ex.isAvailable();
        if (!have)
            log.info("no %s: text from right to left stays in the order of its characters", dynFribidi::library);
        return have;
    }();
    return found;
}

/// Levels, joined forms, mirrored brackets.
void arrange(Paragraph& paragraph) {
    std::vector<Unit>& units = paragraph.units;
    const size_t count = units.size();
    const auto len = static_cast<FriBidiStrIndex>(count);
    std::vector<FriBidiChar> codes(count);
    for (size_t i = 0; i < count; ++i)
        codes[i] = units[i].code < 0 ? plat::replacementChar : static_cast<FriBidiChar>(units[i].code);
    std::vector<FriBidiCharType> types(count);
    dynFribidi::get_bidi_types(codes.data(), len, types.data());
    std::vector<FriBidiBracketType> brackets(count);
    dynFribidi::get_bracket_types(codes.data(), len, types.data(), brackets.data());
    for (size_t i = 0; i < count; ++i) {
        if (isShownControl(units[i].code))
            types[i] = FRIBIDI_TYPE_ON;
        else if (types[i] == FRIBIDI_TYPE_BS) // all of it is drawn in one line
            types[i] = FRIBIDI_TYPE_WS;
    }
    FriBidiParType direction = FRIBIDI_PAR_ON;
    std::vector<FriBidiLevel> levels(count);
    if (dynFribidi::get_par_embedding_levels_ex(types.data(), brackets.data(), len, &direction, levels.data()) == 0)
        return; // no memory for it
    paragraph.rightToLeft = FRIBIDI_IS_RTL(direction);
    const int lowest = paragraph.rightToLeft ? 1 : 0;

    std::vector<FriBidiArabicProp> joining(count);
    dynFribidi::get_joining_types(codes.data(), len, joining.data());
    dynFribidi::join_arabic(types.data(), len, levels.data(), joining.data());
    const std::vector<FriBidiChar> before = codes;
    dynFribidi::shape(FRIBIDI_FLAG_SHAPE_MIRRORING | FRIBIDI_FLAGS_ARABIC, levels.data(), len, joining.data(),
                      codes.data());
    for (size_t i = 0; i < count; ++i) {
        Unit& unit = units[i];
        // What belongs to a character goes where it goes.
        unit.level = unit.extends ? units[i - 1].level : static_cast<uint8_t>(std::max<int>(levels[i], lowest));
        if (codes[i] == before[i])
            continue;
        unit.code = static_cast<int>(codes[i]);
        unit.ligature = i > 0 && units[i - 1].code == FRIBIDI_CHAR_FILL && before[i - 1] != FRIBIDI_CHAR_FILL;
    }
}

} // namespace

std::shared_ptr<const Paragraph> Paragraph::of(std::string_view text) {
    static std::string lastText;
    static std::shared_ptr<const Paragraph> last;
    if (last && lastText == text)
        return last;
    auto paragraph = std::make_shared<Paragraph>();
    decode(text, paragraph->units);
    paragraph->lenBytes = text.size();
    const bool mixed = std::any_of(paragraph->units.begin(), paragraph->units.end(), [](const Unit& unit) {
        return unit.code >= 0 && plat::isRightToLeft(static_cast<uint32_t>(unit.code));
    });
    if (mixed && text.size() <= maxBytes && haveFribidi())
        arrange(*paragraph);
    last = paragraph;
    lastText = text;
    return paragraph;
}

} // namespace hxutil

// Word wrap of marked-up text.
#include "plat/Markup.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace plat {
namespace {

constexpr int firstWindowBytes = 256; // measured at once; doubled while it fits a line

bool isBlank(char c) { return c == ' ' || c == '\t'; }

/// The first character boundary at or before `pos`, not before `start`.
int charStart(const char* text, int start, int pos) {
    while (pos > start && (text[pos] & 0xc0) == 0x80)
        --pos;
    return pos;
}

int nextChar(const char* text, int pos, int end) {
    do
        ++pos;
    while (pos < end && (text[pos] & 0xc0) == 0x80);
    return pos;
}

/// True behind the last byte of a word.
bool isWordEnd(const char* text, int pos, int end) {
    return !isBlank(text[pos - 1]) && (pos == end || isBlank(text[pos]));
}

int skipBlanks(const char* text, int pos, int end) {
    while (pos < end && isBlank(text[pos]))
        ++pos;
    return pos;
}

int trimBlanks(const char* text, int start, int end) {
    while (end > start && isBlank(text[end - 1]))
        --end;
    return end;
}

/// The last place at or before `pos` where a line may end, or `start`.
int placeBefore(const char* text, int start, int pos, int end, bool words) {
    if (!words)
        return charStart(text, start, pos);
    while (pos > start && !isWordEnd(text, pos, end))
        --pos;
    return pos;
}

/// The first place behind `pos` where a line may end; `limit` if there is none before it.
int placeBehind(const char* text, int pos, int limit, int end, bool words) {
    pos = nextChar(text, pos, end);
    while (words && pos < limit && !isWordEnd(text, pos, end))
        ++pos;
    return pos;
}

} // namespace

int Markup::Layout::Callback::paddingWidth(double units) { return static_cast<int>(std::lround(units)); }

Markup::Layout::Layout(Callback* target, int wrapWidthPx) : callback(target), wrapWidth(std::max(wrapWidthPx, 0)) {}

Markup::Layout::~Layout() = default;

void Markup::Layout::beginBlock(Align blockAlign, double paddingLeft, double paddingRight) {
    align = blockAlign;
    padLeft = callback->paddingWidth(paddingLeft);
    padRight = callback->paddingWidth(paddingRight);
    runs.clear();
    pieces.clear();
    lineWidth = 0;
}

void Markup::Layout::addText(const Style& style, const char* text) { runs.push_back({style, text}); }

void Markup::Layout::addLink(const Style& style, const char* text, const char* href) {
    runs.push_back({style, text ? text : href});
    runs.back().style.link = href;
}

void Markup::Layout::endBlock() {
    for (size_t run = 0; run < runs.size(); ++run)
        layRun(run);
    if (!pieces.empty())
        finishLine(Break::BlockEnd, Style());
    runs.clear();
}

void Markup::Layout::layRun(size_t run) {
    const char* const text = textOf(run);
    const int len = runs[run].text.len();
    for (int start = 0; start <= len;) {
        int end = start;
        while (end < len && text[end] != '\n')
            ++end;
        laySegment(run, start, end);
        if (end < len)
            finishLine(Break::Hard, runs[run].style);
        start = end + 1;
    }
}

void Markup::Layout::laySegment(size_t run, int start, int end) {
    while (start < end)
        start = layPart(run, start, end);
}

/// Puts as much as fits on the current line and gives where to go on.
int Markup::Layout::layPart(size_t run, int start, int end) {
    const char* const text = textOf(run);
    if (wrapWidth == 0 || fits(run, start, trimBlanks(text, start, end))) {
        push(run, start, end); // blanks may hang over the edge
        return end;
    }
    const int wordsEnd = fitting(run, start, end, /*words=*/true);
    if (wordsEnd > start) {
        push(run, start, wordsEnd);
        finishLine(Break::Soft, runs[run].style);
        return skipBlanks(text, wordsEnd, end);
    }
    if (!pieces.empty() && isBlank(text[start])) {
        finishLine(Break::Soft, runs[run].style);
        return skipBlanks(text, start, end);
    }
    if (breakAtLastBlank())
        return start;
    // A word that is longer than a line.
    int charsEnd = fitting(run, start, end, /*words=*/false);
    if (charsEnd == start && pieces.empty())
        charsEnd = nextChar(text, start, end);
    if (charsEnd > start)
        push(run, start, charsEnd);
    finishLine(Break::Soft, runs[run].style);
    return charsEnd;
}

bool Markup::Layout::fits(size_t run, int start, int end) {
    const char* const text = textOf(run);
    const int room = available() - lineWidth;
    for (int window = firstWindowBytes; window < end - start; window *= 2) {
        if (measure(run, start, charStart(text, start, start + window)) > room)
            return false;
    }
    return measure(run, start, end) <= room;
}

/// The furthest place in (start, end) up to which the text fits on the current line, or `start`.
int Markup::Layout::fitting(size_t run, int start, int end, bool words) {
    const char* const text = textOf(run);
    const int room = available() - lineWidth;
    if (room <= 0)
        return start;
    // Find a stretch that doesn't fit, and from its average character where the line may end.
    int tooFar = start;
    int width = 0;
    for (int window = firstWindowBytes; tooFar < end && width <= room; window *= 2) {
        tooFar = window < end - start ? charStart(text, start, start + window) : end;
        width = measure(run, start, tooFar);
    }
    if (width <= room)
        return start;
    int good = start;
    int guess = start + static_cast<int>(static_cast<int64_t>(tooFar - start) * room / width);
    for (int round = 0; good < tooFar; ++round) {
        int place = placeBefore(text, start, guess, end, words);
        if (place <= good)
            place = placeBehind(text, good, tooFar, end, words);
        if (place >= tooFar)
            break;
        const bool placeFits = measure(run, start, place) <= room;
        (placeFits ? good : tooFar) = place;
        // The guess is mostly off by little: look right beside it before halving what is left.
        if (round == 0)
            guess = placeFits ? placeBehind(text, place, tooFar, end, words) : place - 1;
        else
            guess = good + (tooFar - good) / 2;
    }
    return good;
}

/// Ends the line at its last blank and begins the next with what follows; false if there is none.
bool Markup::Layout::breakAtLastBlank() {
    for (size_t index = pieces.size(); index-- > 0;) {
        const Piece piece = pieces[index];
        const char* const text = textOf(piece.run);
        int pos = piece.end;
        while (pos > piece.start && !isBlank(text[pos - 1]))
            --pos;
        if (pos == piece.start)
            continue;
        const std::vector<Piece> rest(pieces.begin() + static_cast<std::ptrdiff_t>(index) + 1, pieces.end());
        pieces.resize(index);
        lineWidth = 0;
        for (const Piece& kept : pieces)
            lineWidth += kept.width;
        push(piece.run, piece.start, pos);
        finishLine(Break::Soft, runs[piece.run].style);
        if (pos < piece.end)
            push(piece.run, pos, piece.end);
        for (const Piece& moved : rest)
            push(moved.run, moved.start, moved.end);
        return true;
    }
    return false;
}

void Markup::Layout::push(size_t run, int start, int end) {
    pieces.push_back({run, start, end, measure(run, start, end)});
    lineWidth += pieces.back().width;
}

/// Leaves out the blanks at the end of the line.
void Markup::Layout::trimLine() {
    while (!pieces.empty()) {
        Piece& last = pieces.back();
        const int end = trimBlanks(textOf(last.run), last.start, last.end);
        if (end == last.end)
            return;
        lineWidth -= last.width;
        if (end > last.start) {
            last.end = end;
            last.width = measure(last.run, last.start, end);
            lineWidth += last.width;
            return;
        }
        pieces.pop_back();
    }
}

void Markup::Layout::finishLine(Break kind, const Style& emptyStyle) {
    if (kind == Break::Soft)
        trimLine();
    int height = pieces.empty() ? callback->lineHeight(emptyStyle) : 0;
    for (const Piece& piece : pieces)
        height = std::max(height, callback->lineHeight(runs[piece.run].style));
    if (kind == Break::Soft && align == Justify) {
        emitJustified(height);
    } else {
        int x = padLeft;
        const int fullWidth = padLeft + lineWidth + padRight;
        for (const Piece& piece : pieces)
            emit(piece, height, fullWidth, x);
        if (!pieces.empty())
            maxWidth = std::max(maxWidth, fullWidth);
    }
    top += height;
    ++lineCount;
    pieces.clear();
    lineWidth = 0;
}

void Markup::Layout::emit(const Piece& piece, int lineHeight, int fullWidth, int& x) {
    const Style& style = runs[piece.run].style;
    const int height = callback->lineHeight(style);
    callback->fragment({style, textOf(piece.run) + piece.start, piece.end - piece.start, style.link.get(), x,
                        top + lineHeight - height, piece.width, height, align, fullWidth, lineCount});
    x += piece.width;
}

/// Spreads the width that is left over the blanks between words.
void Markup::Layout::emitJustified(int lineHeight) {
    std::vector<Piece> parts; // words and gaps, in turn within each piece
    int used = 0;
    int gaps = 0;
    for (const Piece& piece : pieces) {
        const char* const text = textOf(piece.run);
        for (int start = piece.start; start < piece.end;) {
            int end = start + 1;
            while (end < piece.end && isBlank(text[end]) == isBlank(text[start]))
                ++end;
            parts.push_back({piece.run, start, end, measure(piece.run, start, end)});
            used += parts.back().width;
            gaps += isBlank(text[start]) ? 1 : 0;
            start = end;
        }
    }
    int spare = std::max(available() - used, 0);
    const int fullWidth = padLeft + used + (gaps > 0 ? spare : 0) + padRight;
    int x = padLeft;
    for (Piece& part : parts) {
        if (gaps > 0 && isBlank(textOf(part.run)[part.start])) {
            const int share = spare / gaps--;
            part.width += share;
            spare -= share;
        }
        emit(part, lineHeight, fullWidth, x);
    }
    maxWidth = std::max(maxWidth, fullWidth);
}

int Markup::Layout::measure(size_t run, int start, int end) {
    return end > start ? callback->textWidth(runs[run].style, textOf(run) + start, end - start) : 0;
}

int Markup::Layout::available() const { return std::max(wrapWidth - padLeft - padRight, 1); }

} // namespace plat

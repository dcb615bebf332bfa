#include "wvw/WEdit.h"

#include "wvw/WParent.h"
#include "wvw/WidgetWatch.h"

#include "hxutil/Font.h"
#include "hxutil/TextLine.h"
#include "hxutil/drawText.h"
#include "hxutil/scripts.h"
#include "hxutil/textChars.h"
#include "plat/LogSrc.h"
#include "plat/numbers.h"
#include "plat/utf8.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"
#include "rfb/keySymbols.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <limits>
#include <utility>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

plat::LogSrc log("WEdit");
constexpr int padX = 6;
constexpr int padY = 4;
constexpr unsigned doublePressMs = 500;
constexpr unsigned dragScrollMs = 50;

int lengthOf(const std::string& s) { return static_cast<int>(s.size()); }

/// At most `maxLength` bytes of whole characters.
void cutTo(std::string& s, int maxLength) {
    if (lengthOf(s) > maxLength)
        s.resize(static_cast<size_t>(plat::utf8::cutPartial(s.c_str(), std::max(0, maxLength))));
}

void wipe(std::string& s) {
    explicit_bzero(s.data(), s.size());
    s.clear();
}

bool isWordByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte > 127 || isalnum(byte);
}

} // namespace

WEdit::WEdit(WLayout* layout, int maxLengthBytes)
    : Widget(layout), maxLength(std::max(0, maxLengthBytes)), pressTimer(this), scrollTimer(this) {
    setCursor(CursorShape::Text);
}

WEdit::~WEdit() {
    if (password)
        wipe(text);
}

void WEdit::storeText(std::string newText) {
    if (password)
        wipe(text);
    text = newText;
    if (password)
        wipe(newText);
}

void WEdit::changed() {
    keepCursorInside();
    repaintChange();
    valueChanged(this);
}

void WEdit::setText(const char* newText, bool cursorToEnd) {
    std::string wanted = plat::repairUtf8(newText).c_str();
    cutTo(wanted, maxLength);
    storeText(std::move(wanted));
    cursor = cursorToEnd ? lengthOf(text) : 0;
    selection = 0;
    deadKeys.reset();
    undoStack.clear();
    changed();
}

void WEdit::setMaxLength(int bytes) {
    maxLength = std::max(0, bytes);
    if (lengthOf(text) <= maxLength)
        return;
    cutTo(text, maxLength);
    undoStack.clear();
    setSelection(std::min(cursor, lengthOf(text)), std::min(insertionPoint(), lengthOf(text)));
    repaint();
}

void WEdit::setSelection(int start, int end) {
    cursor = std::clamp(start, 0, lengthOf(text));
    selection = std::clamp(end, 0, lengthOf(text)) - cursor;
    undoStack.endStep();
    keepCursorInside();
    repaintChange();
}

void WEdit::selectAll() { setSelection(0, lengthOf(text)); }

plat::String WEdit::getSelectedText() const {
    const auto from = static_cast<size_t>(std::min(cursor, insertionPoint()));
    return plat::String(std::string_view(text).substr(from, static_cast<size_t>(std::abs(selection))));
}

bool WEdit::replaceSelection(const char* newText, uint32_t character) {
    const int from = std::min(cursor, insertionPoint());
    std::string wanted = text.substr(0, static_cast<size_t>(from)) + newText +
                         text.substr(static_cast<size_t>(from + std::abs(selection)));
    cutTo(wanted, maxLength);
    const WidgetWatch self(this);
    if (filter && !filter->accept(this, wanted.c_str(), character))
        return false;
    if (!self.alive())
        return true;
    // A filter may have changed the text on its own; what it saw is what counts.
    if (!password && wanted != text)
        undoStack.note({text, cursor + std::max(0, selection)}, character != 0 && selection == 0);
    storeText(std::move(wanted));
    cursor = std::min(from + static_cast<int>(strlen(newText)), lengthOf(text));
    selection = 0;
    changed();
    return true;
}

void WEdit::setPassword(bool on) {
    password = on;
    undoStack.clear();
    setSelection(cursor, insertionPoint());
}

void WEdit::setPlaceholder(const char* hint) {
    placeholder = hint;
    repaint();
}

void WEdit::setAlign(int newHAlign, int newVAlign) {
    hAlign = newHAlign;
    vAlign = newVAlign;
    repaint();
}

void WEdit::setFrame(bool on) {
    frame = on;
    repaint();
}

hxutil::TextLine WEdit::line() const { return hxutil::TextLine(*getStyle().font, text.c_str()); }

int WEdit::step(int position, bool forward) const {
    if (password) // every character is a star
        return stepChar(position, forward);
    const auto from = static_cast<size_t>(position);
    return static_cast<int>(forward ? line().nextPlace(from) : line().previousPlace(from));
}

int WEdit::stepChar(int position, bool forward) const {
    const char* start = text.c_str();
    const char* end = start + text.size();
    const char* p = start + position;
    if (forward && p < end) {
        uint32_t ignored = 0;
        plat::utf8::decode(&p, end, &ignored);
    } else if (!forward && p > start) {
        plat::utf8::stepBack(&p, start);
    }
    return static_cast<int>(p - start);
}

/// What BackSpace removes: a mark comes off alone, before its base.
int WEdit::stepBackspace(int position) const {
    const int last = stepChar(position, /*forward=*/false);
    const char* p = text.c_str() + last;
    int code = 0;
    hxutil::nextChar(&p, nullptr, &code);
    const bool mark = hxutil::isMark(code) && !hxutil::isHidden(code);
    return mark ? last : step(position, /*forward=*/false);
}

int WEdit::stepWord(int position, bool forward) const {
    const auto isWord = [this](int at) { return isWordByte(text[static_cast<size_t>(at)]); };
    if (forward) {
        while (position < lengthOf(text) && !isWord(position))
            ++position;
        while (position < lengthOf(text) && isWord(position))
            ++position;
        return position;
    }
    while (position > 0 && !isWord(position - 1))
        --position;
    while (position > 0 && isWord(position - 1))
        --position;
    return position;
}

void WEdit::place(int position, bool extend) {
    if (extend)
        setSelection(cursor, position);
    else
        setSelection(position, position);
}

/// Characters go by as they stand on the screen, words in the direction of the text.
int WEdit::stepByKey(int position, bool right) const {
    // What a password is made of is not shown by the steps through it.
    if (password)
        return ctrlDown() ? (right ? lengthOf(text) : 0) : step(position, right);
    if (ctrlDown())
        return stepWord(position, right != line().isRightToLeft());
    return static_cast<int>(line().placeBeside(static_cast<size_t>(position), right));
}

bool WEdit::moveByKey(uint32_t keysym) {
    int to = insertionPoint();
    switch (keysym) {
    case key::Home:
        to = 0;
        break;
    case key::End:
        to = lengthOf(text);
        break;
    case key::Left:
    case key::Right:
        to = stepByKey(to, keysym == key::Right);
        break;
    default:
        return false;
    }
    place(to, shiftDown());
    offerSelection();
    return true;
}

/// What the user has selected is what the middle button pastes, here and in other programs.
void WEdit::offerSelection() {
    if (selection != 0 && !password && parent)
        parent->setPrimaryText(getSelectedText().c_str());
}

bool WEdit::eraseByKey(uint32_t keysym) {
    if (keysym != key::Delete && keysym != key::BackSpace)
        return false;
    if (selection == 0) {
        const bool forward = keysym == key::Delete;
        const int other = ctrlDown() && !password ? stepWord(cursor, forward)
                          : forward               ? step(cursor, forward)
                                                  : stepBackspace(cursor);
        if (other == cursor)
            return true;
        const int before = cursor;
        selection = other - cursor;
        if (!replaceSelection(""))
            setSelection(before, before);
    } else {
        replaceSelection("");
    }
    return true;
}

bool WEdit::typeKey(uint32_t keysym) {
    const std::vector<uint32_t> composed = deadKeys.compose(keysym, /*down=*/true);
    bool used = composed.empty();
    const WidgetWatch self(this);
    for (uint32_t one : composed) {
        const uint32_t codepoint = rfb::unicodeFromKeysym(one);
        if (codepoint < 32 || codepoint == 127)
            continue;
        char bytes[5] = {};
        char* end = bytes;
        plat::encodeUtf8(codepoint, &end);
        if (!replaceSelection(bytes, codepoint) && self.alive())
            bell();
        used = true;
        if (!self.alive())
            break;
    }
    return used;
}

bool WEdit::ownKey(uint32_t keysym) {
    if (!isEnabled())
        return false;
    if (clipboardKey(keysym) || undoKey(keysym) || moveByKey(keysym) || eraseByKey(keysym))
        return true;
    if ((keysym == 'a' || keysym == 'A') && ctrlDown()) {
        selectAll();
        offerSelection();
        return true;
    }
    if (contextMenu && (keysym == key::Menu || (keysym == key::F10 && shiftDown()))) {
        showMenu({textOrigin().x + caretX(insertionPoint()), getHeight()});
        return true;
    }
    return !ctrlDown() && !altDown() && typeKey(keysym);
}

bool WEdit::clipboardKey(uint32_t keysym) {
    if (keysym != 'x' && keysym != 'X' && keysym != key::Insert && keysym != key::Delete)
        return false; // most keys, which need not ask
    const bool ctrl = ctrlDown();
    const bool shift = shiftDown();
    if ((ctrl && (keysym == 'x' || keysym == 'X')) || (shift && !ctrl && keysym == key::Delete && selection != 0)) {
        cut();
    } else if (ctrl && keysym == key::Insert) {
        if (!copy(this))
            bell();
    } else if (shift && keysym == key::Insert) {
        if (!paste(this))
            bell();
    } else {
        return false;
    }
    return true;
}

void WEdit::cut() {
    const WidgetWatch self(this);
    if (selection == 0 || password || !copy(this)) {
        bell();
        return;
    }
    if (self.alive() && !replaceSelection("") && self.alive())
        bell();
}

bool WEdit::undoKey(uint32_t keysym) {
    const bool redo = keysym == 'y' || keysym == 'Y' || keysym == 'Z';
    const bool undo = keysym == 'z' || (keysym == 'Z' && !shiftDown());
    if ((!undo && !redo) || !ctrlDown() || altDown())
        return false;
    UndoStack::State state{text, insertionPoint()};
    const bool found = undo ? undoStack.undo(state) : undoStack.redo(state);
    const WidgetWatch self(this);
    // An earlier text may be one that the filter takes no longer.
    if (!found || (filter && !filter->accept(this, state.text.c_str(), 0))) {
        if (self.alive())
            bell();
        return true;
    }
    if (!self.alive())
        return true;
    storeText(std::move(state.text));
    cursor = std::clamp(state.cursor, 0, lengthOf(text));
    selection = 0;
    changed();
    return true;
}

bool WEdit::copy(Widget* origin) {
    if (origin != this || selection == 0 || password || !parent)
        return Widget::copy(origin);
    const plat::String selected = getSelectedText();
    log.debug("set cut text length %d", selected.len());
    parent->setCutText(selected.c_str());
    return true;
}

bool WEdit::paste(Widget* origin) {
    if (origin != this || !parent || !isEnabled())
        return Widget::paste(origin);
    return insertPasted(parent->getCutText());
}

bool WEdit::insertPasted(const plat::String& pasted) {
    if (pasted.isEmpty() || !plat::utf8::isValid(pasted.c_str()))
        return true;
    const WidgetWatch self(this);
    std::string plain;
    for (const char* p = pasted.c_str(); *p; ++p) {
        if (static_cast<unsigned char>(*p) >= 32 && *p != 127)
            plain += *p;
    }
    log.debug("paste length %d", lengthOf(plain));
    if (!replaceSelection(plain.c_str()) && self.alive())
        bell();
    return true;
}

void WEdit::editMenuChosen(int choice) {
    switch (choice) {
    case WEditMenu::Copy:
        if (!copy(this))
            bell();
        break;
    case WEditMenu::Paste:
        paste(this);
        break;
    default:
        takeFocus();
        selectAll();
        offerSelection();
    }
}

bool WEdit::focusChanged(bool backward, Widget* origin) {
    if (origin == this) {
        deadKeys.reset();
        if (hasFocus() && isKeyDown(key::Tab))
            selectAll();
        undoStack.endStep();
        if (parent && !hasFocus())
            parent->setTextCursor(this, Rect(), password);
        tellCaret();
        repaint();
    }
    return Widget::focusChanged(backward, origin);
}

void WEdit::detach() {
    dragging = false;
    pressTimer.cancel();
    scrollTimer.cancel();
    if (menu)
        menu->hide();
    Widget::detach();
}

bool WEdit::timerExpired(plat::Timer* timer) {
    if (timer == &scrollTimer)
        return dragBeyondEdge();
    return timer != &pressTimer && Widget::timerExpired(timer);
}

/// While the pointer rests outside, the text goes on moving by. False once nothing is left there.
bool WEdit::dragBeyondEdge() {
    const Rect area = textArea();
    const int before = insertionPoint();
    if (!dragging || (dragX >= area.tl.x && dragX < area.br.x))
        return false;
    const int leap = getStyle().font->charWidth('m');
    place(positionAt(dragX < area.tl.x ? std::min(dragX, area.tl.x - leap) : std::max(dragX, area.br.x + leap)),
          /*extend=*/true);
    return insertionPoint() != before;
}

bool WEdit::mouseMove(const Point& position, Widget* origin) {
    if (origin == this && dragging) {
        dragX = position.x;
        place(positionAt(dragX), /*extend=*/true);
        if (!textArea().contains({dragX, textArea().tl.y}) && !scrollTimer.isActive())
            scrollTimer.start(dragScrollMs);
    }
    return Widget::mouseMove(position, origin);
}

bool WEdit::mouseDown(int button, Widget* origin) {
    if (origin == this && button == 1 && isEnabled() && parent) {
        const WidgetWatch self(this);
        takeFocus();
        if (!self.alive() || !parent)
            return true;
        const plat::String pasted = parent->getPrimaryText(); // first: our own selection may be what it is
        if (!self.alive() || !parent)
            return true;
        place(positionAt(mousePos.x), /*extend=*/false);
        return insertPasted(pasted);
    }
    if (origin != this || button != 0 || !isEnabled() || !parent)
        return Widget::mouseDown(button, origin);
    const WidgetWatch self(this);
    const bool used = Widget::mouseDown(button, origin);
    if (!self.alive() || !parent)
        return used;
    const Point here = getRootPosition(mousePos);
    if (pressTimer.isActive() && here == lastPress) {
        pressTimer.cancel();
        selectAll();
        offerSelection();
        return true;
    }
    lastPress = here;
    pressTimer.start(doublePressMs);
    dragging = true;
    place(positionAt(mousePos.x), shiftDown());
    return true;
}

bool WEdit::mouseUp(int button, Widget* origin) {
    if (origin == this && button == 0 && dragging) {
        dragging = false;
        scrollTimer.cancel();
        offerSelection();
    }
    const WidgetWatch self(this);
    const bool used = Widget::mouseUp(button, origin);
    if (!self.alive() || origin != this || button != 2 || !contextMenu || !isEnabled() || !parent)
        return used;
    showMenu(mousePos);
    return true;
}

void WEdit::showMenu(const Point& position) {
    if (!menu)
        menu = std::make_unique<WEditMenu>(this, WEditMenu::Copy | WEditMenu::Paste | WEditMenu::SelectAll);
    menu->show(this, position);
}

std::string WEdit::shown() const {
    if (!password)
        return text;
    return std::string(static_cast<size_t>(plat::utf8::countChars(text.c_str())), '*');
}

size_t WEdit::shownIndex(int position) const {
    return static_cast<size_t>(password ? plat::utf8::countChars(text.c_str(), text.c_str() + position) : position);
}

int WEdit::starsWidth(int position) const {
    return plat::utf8::countChars(text.c_str(), text.c_str() + position) * getStyle().font->charWidth('*');
}

int WEdit::caretX(int position) const {
    return password ? starsWidth(position) : line().caretX(static_cast<size_t>(position));
}

int WEdit::textWidth() const { return password ? starsWidth(lengthOf(text)) : line().width(); }

int WEdit::positionAt(int x) const {
    const hxutil::Font& font = *getStyle().font;
    const int px = x - textOrigin().x;
    const char* start = text.c_str();
    if (!password)
        return static_cast<int>(font.nearestBoundary(px, start) - start);
    const int advance = std::max(1, font.charWidth('*'));
    int position = 0;
    for (int chars = std::max(0, (px + advance / 2) / advance); chars > 0; --chars)
        position = step(position, /*forward=*/true);
    return position;
}

Rect WEdit::textArea() const {
    return {padX, padY, std::max(padX, getWidth() - padX), std::max(padY, getHeight() - padY)};
}

Point WEdit::textOrigin() const {
    const Rect area = textArea();
    const int free = area.width() - textWidth();
    const int align = !password && line().isRightToLeft() ? 2 - hAlign : hAlign;
    const int fontHeight = getStyle().font->height;
    return {free > 0 ? area.tl.x + free * align / 2 : area.tl.x - scroll,
            area.tl.y + (area.height() - fontHeight) * vAlign / 2};
}

void WEdit::keepCursorInside() {
    const int room = textArea().width();
    const int whole = textWidth();
    const int at = caretX(insertionPoint());
    scroll = std::clamp(scroll, at - room, at);
    scroll = std::clamp(scroll, 0, std::max(0, whole - room));
    tellCaret();
}

void WEdit::tellCaret() {
    if (!hasFocus())
        return;
    const Point origin = textOrigin();
    parent->setTextCursor(this, Rect::xywh(origin.x + caretX(insertionPoint()), origin.y, 1, getStyle().font->height),
                          password);
}

/// Typing at the end of a long field changes a few pixels of it.
void WEdit::repaintChange() {
    if (password) {
        wipe(invalidated.text); // no second copy of it
        invalidated.originX = std::numeric_limits<int>::min();
        repaint();
        return;
    }
    const Look before = std::exchange(invalidated, Look{text, textOrigin().x, cursor, selection});
    const bool hint = !placeholder.isEmpty() && (text.empty() || before.text.empty());
    if (hint || before.originX != invalidated.originX || hxutil::TextLine::isNeeded(text.c_str()) ||
        hxutil::TextLine::isNeeded(before.text.c_str())) {
        repaint();
        return;
    }
    const auto ends = std::mismatch(text.begin(), text.end(), before.text.begin(), before.text.end());
    const bool sameText = ends.first == text.end() && ends.second == before.text.end();
    int from = std::min({cursor, insertionPoint(), before.cursor, before.cursor + before.selection});
    int to = std::max({cursor, insertionPoint(), before.cursor, before.cursor + before.selection});
    if (!sameText) {
        from = std::min(from, static_cast<int>(ends.first - text.begin()));
        to = std::max(lengthOf(text), lengthOf(before.text));
    }
    from = plat::utf8::cutPartial(text.c_str(), from);
    const hxutil::Font& font = *getStyle().font;
    const auto widthIn = [&font](const std::string& s, int bytes) {
        return font.stringWidth(s.c_str(), s.c_str() + std::min(bytes, lengthOf(s)));
    };
    constexpr int overhang = 8; // of a glyph beyond its cell, and the caret
    const int left = widthIn(text, from) - overhang;
    const int right = std::max(widthIn(text, to), widthIn(before.text, to)) + overhang;
    const Rect changed(invalidated.originX + left, 0, invalidated.originX + right, getHeight());
    invalidate(rfb::Region(changed.intersect(getRect())));
}

bool WEdit::sizeChanged(Widget* origin) {
    if (origin == this)
        keepCursorInside();
    return Widget::sizeChanged(origin);
}

Point WEdit::getPreferredSize() { return {textWidth() + 2 * padX, getStyle().font->height + 2 * padY}; }

void WEdit::paint(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    if (frame) {
        fill(pb, getRect().expandBy(-1), isEnabled() ? look.contentBg : look.canvas);
        drawBevel(pb, getRect(), /*sunken=*/true, /*thin=*/false);
    }
    if (frame && hasFocus())
        rfb::frameRect(pb, getRect().expandBy(-1), pixel(pb, themeColour("customBigBtnBg", look.selectionBg)));
    // The text may touch the frame, and nothing beyond.
    const Rect inner = getRect().expandBy(-2).intersect(pb.getRect());
    if (inner.isEmpty())
        return;
    rfb::FullFramePixelBuffer view(pb, inner, inner.tl);
    paintText(view);
}

Rect WEdit::opaqueWithin(const Rect& part) const { return frame ? part.intersect(getRect().expandBy(-1)) : Rect(); }

void WEdit::paintText(rfb::FullFramePixelBuffer& pb) {
    const WStyle& look = getStyle();
    const hxutil::Font& font = *look.font;
    const Point origin = textOrigin();
    if (text.empty() && !placeholder.isEmpty()) {
        const bool rightToLeft = hxutil::TextLine(font, placeholder.c_str()).isRightToLeft();
        hxutil::drawAligned(font, pb, placeholder.c_str(), textArea(), pixel(pb, look.disabled),
                            rightToLeft ? 2 - hAlign : hAlign, vAlign);
    }
    const std::string glyphs = shown();
    const hxutil::TextLine shownLine(font, glyphs.c_str());
    // Stars stand at the top of their cells: lowered, they are in the middle of the field.
    const Point at(origin.x, origin.y + (password ? font.height / 5 : 0));
    shownLine.draw(pb, at, pixel(pb, isEnabled() ? look.text : look.disabled));
    const int from = std::min(cursor, insertionPoint());
    const int to = std::max(cursor, insertionPoint());
    if (from < to && isEnabled() && password) {
        const Rect marked(origin.x + caretX(from), origin.y, origin.x + caretX(to), origin.y + font.height);
        const Rect part = marked.intersect(pb.getRect());
        fill(pb, part, look.selectionBg);
        rfb::FullFramePixelBuffer view(pb, part, part.tl);
        shownLine.draw(view, at, pixel(pb, look.selectionText));
    } else if (from < to && isEnabled())
        drawSelected(pb, shownLine, origin, shownIndex(from), shownIndex(to));
    else if (hasFocus())
        fill(pb, Rect::xywh(origin.x + caretX(from), origin.y, 1, font.height), look.text);
}

bool WEditUnsignedNumberFilter::accept(WEdit*, const char* newText, uint32_t) {
    int value = 0;
    return !*newText || plat::parseIntInRange(newText, 0, std::numeric_limits<int>::max(), value);
}

} // namespace wvw

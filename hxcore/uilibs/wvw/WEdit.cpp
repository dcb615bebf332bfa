#include "wvw/WEdit.h"

#include "wvw/WParent.h"
#include "wvw/WidgetWatch.h"
#include "wvw/editText.h"

#include "hxutil/Font.h"
#include "hxutil/TextLine.h"
#include "hxutil/scripts.h"
#include "hxutil/textChars.h"
#include "plat/LogSrc.h"
#include "plat/numbers.h"
#include "plat/utf8.h"
#include "rfb/keySymbols.h"

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
constexpr unsigned doublePressMs = 500;
constexpr unsigned dragScrollMs = 50;

/// At most `maxLength` bytes of whole characters.
void cutTo(std::string& s, int maxLength) {
    if (lengthOf(s) > maxLength)
        s.resize(static_cast<size_t>(plat::utf8::cutPartial(s.c_str(), std::max(0, maxLength))));
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

bool WEditUnsignedNumberFilter::accept(WEdit*, const char* newText, uint32_t) {
    int value = 0;
    return !*newText || plat::parseIntInRange(newText, 0, std::numeric_limits<int>::max(), value);
}

} // namespace wvw

#include "wvw/WRichText.h"

#include "wvw/RichTextLayout.h"
#include "wvw/WParent.h"
#include "wvw/WidgetWatch.h"

#include "hxutil/Font.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"
#include "rfb/keySymbols.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <utility>

namespace wvw {

namespace {
constexpr int focusRoom = 2; // pixels between a link and the dots around it
} // namespace

using rfb::Point;
using rfb::Rect;

WRichText::WRichText(WLayout* layout, const char* markup, int hAlign_)
    : WLabel(layout, nullptr, hAlign_), runs(std::make_unique<RichTextLayout>()) {
    WRichText::setText(markup);
}

WRichText::~WRichText() = default;

void WRichText::setText(const char* markup) { WLabel::setText(markup); }

void WRichText::layoutText() {
    const bool hadFocus = focusRun >= 0;
    hover = focusRun = pressedRun = -1;
    runs->layOut(getText(), getStyle(), wrap ? getWidth() - 2 * margin : 0);
    runs->place(getSize(), margin, hAlign, vAlign);
    if (hadFocus && hasFocus())
        focusRun = runs->nextLink(-1, /*backward=*/false);
    repaint();
}

Point WRichText::getPreferredSize() {
    RichTextLayout natural;
    natural.layOut(getText(), getStyle(), /*wrapWidth=*/0);
    return natural.getSize() + Point(2 * margin, 0);
}

int WRichText::getPreferredHeight(int width) {
    RichTextLayout wrapped;
    wrapped.layOut(getText(), getStyle(), wrap ? std::max(1, width - 2 * margin) : 0);
    return wrapped.getSize().y;
}

bool WRichText::sizeChanged(Widget* origin) {
    if (origin == this && !wrap)
        runs->place(getSize(), margin, hAlign, vAlign);
    return WLabel::sizeChanged(origin);
}

const std::string& WRichText::shownText() const { return runs->getText(); }

size_t WRichText::indexAt(const Point& position) const { return runs->indexAt(position); }

int WRichText::linkAt(const Point& position) const {
    const int run = runs->runAt(position);
    return run >= 0 && !runs->getRuns()[static_cast<size_t>(run)].link.isNull() ? run : -1;
}

int WRichText::linkCount() const {
    int count = 0;
    for (int i = runs->nextLink(-1, /*backward=*/false); i >= 0; i = runs->nextLink(i, /*backward=*/false))
        ++count;
    return count;
}

const char* WRichText::linkTarget(int link) const {
    int run = runs->nextLink(-1, /*backward=*/false);
    for (; link > 0 && run >= 0; --link)
        run = runs->nextLink(run, /*backward=*/false);
    return run < 0 ? "" : runs->getRuns()[static_cast<size_t>(run)].link.c_str();
}

int WRichText::focusedLink() const {
    if (focusRun < 0)
        return -1;
    int link = 0;
    int next = runs->nextLink(-1, /*backward=*/false);
    while ((next = runs->nextLink(next, /*backward=*/false)) >= 0 && next <= focusRun)
        ++link;
    return link;
}

void WRichText::setHot(int newHover, int newFocus) {
    if (newHover == hover && newFocus == focusRun)
        return;
    // Of a long text, only the links that change their looks.
    rfb::Region area;
    const auto addLink = [&](int link) {
        const auto& all = runs->getRuns();
        for (size_t i = 0; i < all.size(); ++i) {
            if (runs->sameLink(static_cast<int>(i), link))
                area.assign_union(rfb::Region(all[i].rect.expandBy(focusRoom).intersect(getRect())));
        }
    };
    for (const int link : {hover, focusRun, newHover, newFocus})
        addLink(link);
    hover = newHover;
    focusRun = newFocus;
    invalidate(area);
}

void WRichText::paint(rfb::FullFramePixelBuffer& pb) {
    paintBackground(pb);
    const auto count = static_cast<int>(runs->getRuns().size());
    for (int i = 0; i < count; ++i)
        paintRun(pb, i);
    for (int i = 0; i < count && hasFocus(); ++i) {
        const Rect& run = runs->getRuns()[static_cast<size_t>(i)].rect;
        // A cell has a spare row at its top: one row higher, the frame would strike the descenders of the line above.
        const Rect around(run.tl.x - focusRoom, run.tl.y, run.br.x + focusRoom, run.br.y + 1);
        if (runs->sameLink(i, focusRun))
            drawFocus(pb, around.intersect(getRect()), /*dotted=*/true);
    }
    if (selectable && hasFocus() && focusRun < 0)
        drawFocus(pb, getRect(), /*dotted=*/true);
}

void WRichText::paintRun(rfb::FullFramePixelBuffer& pb, int index) {
    const RichTextLayout::Run& run = runs->getRuns()[static_cast<size_t>(index)];
    if (!run.rect.overlaps(pb.getRect()))
        return;
    const WStyle& look = getStyle();
    const bool hot = runs->sameLink(index, hover) || runs->sameLink(index, focusRun);
    const uint32_t ink = pixel(pb, !isEnabled() ? look.disabled : hot ? look.linkHot() : run.colour);
    const hxutil::TextLine shown = runs->textLine(run);
    shown.draw(pb, run.rect.tl, ink);
    if (run.underline || underline)
        rfb::fillRect(pb, {run.rect.tl.x, run.rect.br.y - 2, run.rect.br.x, run.rect.br.y - 1}, ink);

    const size_t len = static_cast<size_t>(run.text.len());
    const size_t from = std::clamp(selectionStart(), run.start, run.start + len) - run.start;
    const size_t to = std::clamp(selectionEnd(), run.start, run.start + len) - run.start;
    if (from < to)
        drawSelected(pb, shown, run.rect.tl, from, to);
}

bool WRichText::acceptsFocus() {
    return isEnabled() && isVisible() && (selectable || runs->nextLink(-1, /*backward=*/false) >= 0);
}

bool WRichText::pressTakesFocus() { return selectable || linkAt(mousePos) >= 0; }

bool WRichText::focusChanged(bool backward, Widget* origin) {
    if (origin == this) {
        if (!hasFocus())
            setHot(hover, -1);
        else if (focusRun < 0)
            setHot(hover, runs->nextLink(-1, backward));
    }
    return WLabel::focusChanged(backward, origin);
}

void WRichText::travel(bool backward) {
    const int next = focusRun < 0 ? -1 : runs->nextLink(focusRun, backward);
    if (next < 0) {
        WLabel::travel(backward);
        return;
    }
    setHot(hover, next);
    parent->ensureVisible(this, runs->getRuns()[static_cast<size_t>(next)].rect);
}

bool WRichText::ownKey(uint32_t keysym) {
    if (keysym != rfb::key::Return || focusRun < 0 || !isEnabled())
        return WLabel::ownKey(keysym);
    followLink(focusRun);
    return true;
}

void WRichText::followLink(int run) {
    // A copy: what follows the link may replace the text, or delete us.
    const plat::String target = runs->getRuns()[static_cast<size_t>(run)].link;
    if (linkCallback)
        linkCallback->linkClicked(target.c_str());
}

bool WRichText::mouseMove(const Point& position, Widget* origin) {
    if (origin == this) {
        setHot(isEnabled() ? linkAt(position) : -1, focusRun);
        setCursor(hover >= 0 ? CursorShape::Hand : selectable ? CursorShape::Text : CursorShape::Default);
    }
    return WLabel::mouseMove(position, origin);
}

bool WRichText::mouseDown(int button, Widget* origin) {
    if (origin == this && button == 0 && isEnabled()) {
        pressedRun = linkAt(mousePos);
        if (pressedRun >= 0)
            setHot(pressedRun, pressedRun);
    }
    return WLabel::mouseDown(button, origin);
}

bool WRichText::mouseUp(int button, Widget* origin) {
    const WidgetWatch self(this);
    const int pressed = origin == this && button == 0 ? std::exchange(pressedRun, -1) : -1;
    const bool used = WLabel::mouseUp(button, origin);
    if (!self.alive() || pressed < 0 || !isEnabled())
        return used;
    // The text may have been replaced meanwhile: then pressedRun was reset, but not our copy.
    const int run = linkAt(mousePos);
    const int count = static_cast<int>(runs->getRuns().size());
    if (run < 0 || pressed >= count || !runs->sameLink(pressed, run) || selectionStart() != selectionEnd())
        return used;
    followLink(run);
    return true;
}

bool WRichText::mouseExit(Widget* origin) {
    if (origin == this)
        setHot(-1, focusRun);
    return WLabel::mouseExit(origin);
}

} // namespace wvw

#include "wvw/WTable.h"

#include "wvw/WidgetWatch.h"
#include "wvw/foldText.h"

#include "hxutil/Font.h"
#include "hxutil/drawText.h"
#include "plat/ConfigParameter.h"
#include "plat/utf8.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"
#include "rfb/keySymbols.h"
#include "rfb/renderOps.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace wvw {
namespace {

namespace key = rfb::key;
using rfb::Point;
using rfb::Rect;

plat::IntParameter doubleClickTime("DoubleClickTime",
                                   "Maximum time in milliseconds between two mouse button clicks to count as a double "
                                   "click",
                                   500, /*isAdvanced=*/false, /*owner=*/nullptr, /*minValue=*/0);

constexpr int border = 2;
constexpr int cellPad = 4;
constexpr int imagePad = 2;
constexpr int defaultImage = 16;
constexpr unsigned typeAheadMs = 1000;

} // namespace

WImage::Image WTable::Callback::getCellImage(WTable*, int, int) { return {}; }

bool WTable::Callback::isRowSelectable(WTable*, int) { return true; }

int WTable::Callback::getCellWidth(WTable*, int, int) { return 0; }

void WTable::Callback::getCellStyle(WTable*, int, int, WStyle&) {}
void WTable::Callback::rowActivated(WTable*, int, int) {}

WTable::WTable(WLayout* layout, Callback* target, bool showHeading_, bool keepSelection_)
    : WLayout(layout, /*routeMouse=*/true, /*propagateEnable=*/true), callback(target), showHeading(showHeading_),
      keepSelection(keepSelection_), scrollbar(nullptr, /*vertical=*/true), clickWindow(this), typedTimer(this) {
    scrollbar.setVisible(false);
    addChild(&scrollbar);
}

void WTable::addColumn(int id, int type, const char* heading, int width, const Point& imageSize, int align, int extra) {
    const Point image = imageSize == Point() ? Point(defaultImage, defaultImage) : imageSize;
    columns.push_back({id, type, heading, width, image, align, extra});
    arrange();
}

void WTable::removeColumn(int id) {
    std::erase_if(columns, [id](const Column& column) { return column.id == id; });
    if (selectedColumn == id)
        selectedColumn = -1;
    arrange();
}

void WTable::setRowCount(int count) {
    rowCount = std::max(0, count);
    const bool lost = selectedRow >= rowCount;
    if (lost)
        selectedRow = selectedColumn = -1;
    arrange();
    if (lost)
        valueChanged(this);
}

void WTable::setActivateByEnter(bool on) { activateByEnter = on; }

void WTable::setEmptyText(const char* sentence) {
    emptyText = sentence;
    repaint();
}

int WTable::getRowHeight() const {
    int height = getStyle().font->height + 2 * cellPad;
    for (const Column& column : columns) {
        if (column.type == Image)
            height = std::max(height, column.imageSize.y + 2 * imagePad);
    }
    return height;
}

int WTable::visibleRows() const { return std::max(0, (getHeight() - 2 * border - headingHeight()) / getRowHeight()); }

Rect WTable::contentRect() const {
    const int bar = scrollbar.isVisible() ? WScrollbar::thickness : 0;
    const int left = border;
    const int top = border + headingHeight();
    return {left, top, std::max(left, getWidth() - border - bar), std::max(top, getHeight() - border)};
}

// Rows come by the hundred: between two paints only the first is told to the window.
void WTable::repaintRows() {
    if (allInvalid)
        return;
    repaint();
    allInvalid = isAttached();
}

void WTable::invalidateChild(Widget* child, const rfb::Region& region) {
    if (!allInvalid)
        WLayout::invalidateChild(child, region);
}

void WTable::arrange() {
    repaintRows();
    const int shown = visibleRows();
    scrollbar.setVisible(rowCount > shown && getHeight() > 0);
    scrollbar.setRange(std::max(0, rowCount - shown));
    scrollbar.setPage(std::max(1, shown));
    setChildRect(&scrollbar, Rect::xywh(getWidth() - border - WScrollbar::thickness, border, WScrollbar::thickness,
                                        std::max(0, getHeight() - 2 * border)));
}

std::vector<int> WTable::columnWidths() const {
    std::vector<int> widths;
    int left = contentRect().width();
    int stretches = 0;
    for (const Column& column : columns) {
        const bool stretch = column.width < 0 && column.type == Text;
        const int automatic = column.type == Image ? column.imageSize.x + 2 * imagePad : 0;
        widths.push_back(stretch ? -1 : column.width < 0 ? automatic : column.width);
        stretches += stretch;
        left -= std::max(0, widths.back());
    }
    for (int& width : widths) {
        if (width >= 0)
            continue;
        width = std::max(0, left / stretches);
        left -= width;
        --stretches;
    }
    return widths;
}

bool WTable::hitTest(const Point& position, int& row, int& column) const {
    const Rect content = contentRect();
    if (!content.contains(position))
        return false;
    row = (position.y - content.tl.y) / getRowHeight() + firstVisibleRow();
    if (row >= rowCount)
        row = -1;
    column = -1;
    int x = content.tl.x;
    const std::vector<int> widths = columnWidths();
    for (size_t i = 0; i < columns.size(); ++i) {
        x += widths[i];
        if (position.x < x) {
            column = columns[i].id;
            break;
        }
    }
    return true;
}

Rect WTable::rowRect(int row) const {
    const Rect content = contentRect();
    const int height = getRowHeight();
    const int top = content.tl.y + (row - firstVisibleRow()) * height;
    return row < 0 ? Rect() : Rect(content.tl.x, top, content.br.x, top + height).intersect(content);
}

void WTable::invalidateRow(int row) {
    const Rect area = rowRect(row);
    if (!area.isEmpty())
        invalidate(rfb::Region(area));
}

void WTable::ensureRowVisible(int row) {
    const int first = firstVisibleRow();
    const int shown = std::max(1, visibleRows());
    int wanted = first;
    if (row < first)
        wanted = row;
    else if (row >= first + shown)
        wanted = row - shown + 1;
    scrollRowsTo(wanted);
}

void WTable::select(int row, int column) {
    const bool possible = row >= 0 && row < rowCount && callback->isRowSelectable(this, row);
    const int old = std::exchange(selectedRow, possible ? row : -1);
    selectedColumn = possible ? column : -1;
    if (possible)
        ensureRowVisible(row);
    invalidateRow(old);
    invalidateRow(selectedRow);
    // Without a row the focus is shown around all of them.
    if (hasFocus() && (old < 0) != (selectedRow < 0))
        repaint();
    valueChanged(this);
}

bool WTable::step(int from, int direction, int count) {
    for (int row = from; row >= 0 && row < rowCount && count > 0; row += direction, --count) {
        if (callback->isRowSelectable(this, row)) {
            select(row, selectedColumn);
            return true;
        }
    }
    return false;
}

bool WTable::moveBy(int direction) {
    // With nothing selected the first step down leads to the first row, and a step up to nothing. Past the last row
    // that can be selected, what can't be is at least seen.
    return step(selectedRow + direction, direction, rowCount) ||
           scrollRowsTo(direction < 0 ? 0 : firstVisibleRow() + 1);
}

bool WTable::scrollRowsTo(int first) {
    if (!scrollbar.setValue(first))
        return false;
    repaint();
    return true;
}

bool WTable::jumpTo(int row, int direction) {
    // What cannot be selected there is passed over, or, at the end, gone back from.
    const int target = std::clamp(row, 0, std::max(0, rowCount - 1));
    if (!step(target, direction, rowCount))
        step(target, -direction, rowCount);
    return true;
}

bool WTable::ownKey(uint32_t keysym) {
    if (!isEnabled())
        return false;
    const int page = std::max(1, visibleRows() - 1);
    switch (keysym) {
    case key::Up:
    case key::Down:
        moveBy(keysym == key::Up ? -1 : 1);
        return true;
    case key::PageUp:
    case key::PageDown:
        if (ctrlDown())
            return false; // for pages with tabs
        return keysym == key::PageUp ? jumpTo(selectedRow - page, 1) : jumpTo(std::max(0, selectedRow) + page, -1);
    case key::Home:
        return jumpTo(0, 1);
    case key::End:
        return jumpTo(rowCount - 1, -1);
    case key::Return:
        if (!activateByEnter || selectedRow < 0)
            return false;
        callback->rowActivated(this, selectedRow, selectedColumn);
        return true;
    default:
        return typeAhead(keysym);
    }
}

plat::String WTable::typeAheadText(int row) const {
    const auto column =
        std::find_if(columns.begin(), columns.end(), [](const Column& one) { return one.type != Image; });
    return column == columns.end() ? plat::String() : callback->getCellText(const_cast<WTable*>(this), row, column->id);
}

bool WTable::typeAhead(uint32_t keysym) {
    const uint32_t codepoint = foldCodepoint(rfb::unicodeFromKeysym(keysym));
    const bool first = !typedTimer.isActive();
    if (codepoint < 32 || codepoint == 127 || (codepoint == ' ' && first) || ctrlDown() || altDown() || rowCount == 0)
        return false;
    char bytes[5] = {};
    char* end = bytes;
    plat::encodeUtf8(codepoint, &end);
    if (first)
        typed.clear();
    typed += bytes;
    typedTimer.start(typeAheadMs);
    // One letter again and again walks through the rows that begin with it.
    const std::string one(bytes);
    bool repeated = true;
    for (size_t i = 0; i < typed.size(); i += one.size())
        repeated = repeated && typed.compare(i, one.size(), one) == 0;
    const std::string& wanted = repeated ? one : typed;
    const int start = std::max(0, selectedRow) + (repeated && selectedRow >= 0 ? 1 : 0);
    for (int i = 0; i < rowCount; ++i) {
        const int row = (start + i) % rowCount;
        if (!callback->isRowSelectable(this, row) ||
            foldText(typeAheadText(row).c_str()).compare(0, wanted.size(), wanted) != 0)
            continue;
        if (row != selectedRow)
            select(row, selectedColumn);
        break;
    }
    return true;
}

const char* WTable::getTooltip() const {
    const char* own = WLayout::getTooltip();
    int row = -1;
    int columnHit = -1;
    if (*own || !hitTest(getPointer(), row, columnHit) || row < 0 || columnHit < 0)
        return own;
    const std::vector<int> widths = columnWidths();
    for (size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].id != columnHit || columns[i].type == Image)
            continue;
        cellTooltip = callback->getCellText(const_cast<WTable*>(this), row, columnHit);
        if (getStyle().font->stringWidth(cellTooltip.c_str()) > widths[i] - 2 * cellPad)
            return cellTooltip.c_str();
    }
    return own;
}

bool WTable::valueChanged(Widget* origin) {
    if (origin != &scrollbar)
        return WLayout::valueChanged(origin);
    repaint();
    return true;
}

bool WTable::focusChanged(bool backward, Widget* origin) {
    if (origin == this && selectedRow >= 0)
        invalidateRow(selectedRow);
    else if (origin == this)
        repaint();
    return WLayout::focusChanged(backward, origin);
}

bool WTable::mouseDown(int button, Widget* origin) {
    const WidgetWatch self(this);
    // At its end, and sideways, the wheel is for what is around us.
    const int step = button == 3 ? -1 : 1;
    if ((button == 3 || button == 4) && !shiftDown() &&
        (isEnabled() ? moveBy(step) : scrollRowsTo(firstVisibleRow() + step)))
        return true;
    if (!self.alive())
        return true;
    const bool used = WLayout::mouseDown(button, origin);
    int row = -1;
    int column = -1;
    if (!self.alive() || origin != this || button != 0 || !isEnabled() || !hitTest(getPointer(), row, column))
        return used;
    if (row >= 0 && callback->isRowSelectable(this, row))
        select(row, column);
    else if (!keepSelection)
        select(-1);
    return true;
}

bool WTable::mouseUp(int button, Widget* origin) {
    const WidgetWatch self(this);
    const bool used = WLayout::mouseUp(button, origin);
    int row = -1;
    int column = -1;
    if (!self.alive() || origin != this || button != 0 || !isEnabled() || !hitTest(getPointer(), row, column) ||
        row < 0)
        return used;
    const bool second = clickWindow.isActive() && row == clickedRow && column == clickedColumn;
    clickWindow.cancel();
    if (second) {
        callback->rowActivated(this, row, column);
        return true;
    }
    clickedRow = row;
    clickedColumn = column;
    if (isAttached())
        clickWindow.start(static_cast<uint32_t>(doubleClickTime.value()));
    activated(this);
    return true;
}

bool WTable::timerExpired(plat::Timer* timer) {
    return timer != &clickWindow && timer != &typedTimer && WLayout::timerExpired(timer);
}

void WTable::detach() {
    clickWindow.cancel();
    typedTimer.cancel();
    WLayout::detach();
}

void WTable::styleChanged() {
    WLayout::styleChanged();
    arrange();
}

bool WTable::sizeChanged(Widget* origin) {
    if (origin == this)
        arrange();
    return WLayout::sizeChanged(origin);
}

Point WTable::getPreferredSize() {
    int width = 2 * border;
    for (size_t i = 0; i < columns.size(); ++i)
        width += std::max(columns[i].width, columns[i].type == Image ? columns[i].imageSize.x + 2 * imagePad : 0);
    return {width, 2 * border + headingHeight() + rowCount * getRowHeight()};
}

void WTable::paint(rfb::FullFramePixelBuffer& pb) {
    allInvalid = false;
    const WStyle& look = getStyle();
    fill(pb, getRect().expandBy(-1), look.contentBg);
    const Rect inner = getRect().expandBy(-border).intersect(pb.getRect());
    if (!inner.isEmpty()) {
        rfb::FullFramePixelBuffer view(pb, inner, inner.tl);
        const std::vector<int> widths = columnWidths();
        const Rect content = contentRect();
        // A row that is cut is not shown, unless there is no whole one.
        const int end = std::min(rowCount, firstVisibleRow() + std::max(1, visibleRows()));
        for (int row = firstVisibleRow(); row < end; ++row)
            paintRow(view, row, widths);
        if (showHeading)
            paintHeading(view, widths);
        if (rowCount == 0)
            hxutil::drawWrapped(*look.font, view, emptyText.c_str(), content, pixel(pb, look.disabled), 1, 1);
        if (hasFocus() && selectedRow < 0)
            drawFocus(view, content.expandBy(-1), /*dotted=*/true);
    }
    paintChildren(pb);
    drawBevel(pb, getRect(), /*sunken=*/true, /*thin=*/false);
}

Rect WTable::opaqueWithin(const Rect& part) const { return part.intersect(getRect().expandBy(-1)); }

void WTable::paintHeading(rfb::FullFramePixelBuffer& pb, const std::vector<int>& widths) {
    const WStyle& look = getStyle();
    const int height = headingHeight();
    const Rect bar = Rect::xywh(border, border, contentRect().width(), height);
    const uint32_t ink = pixel(pb, isEnabled() ? themeColour("buttonText", look.text) : look.disabled);
    fill(pb, bar, themeColour("buttonBg", look.buttonFace));
    int x = border;
    for (size_t i = 0; i < columns.size(); ++i) {
        const Rect cell = Rect::xywh(x + cellPad, border, std::max(0, widths[i] - 2 * cellPad), height);
        hxutil::drawAligned(*look.font, pb, columns[i].heading.c_str(), cell, ink, columns[i].align, 1);
        if (i > 0) {
            fill(pb, {x, border + 3, x + 1, border + height - 3}, look.bevelDark);
            fill(pb, {x + 1, border + 3, x + 2, border + height - 3}, look.bevelLight);
        }
        x += widths[i];
    }
    fill(pb, {bar.tl.x, bar.br.y - 1, bar.br.x, bar.br.y}, look.bevelDark);
}

void WTable::paintRow(rfb::FullFramePixelBuffer& pb, int row, const std::vector<int>& widths) {
    const Rect content = contentRect();
    const int height = getRowHeight();
    const int top = content.tl.y + (row - firstVisibleRow()) * height;
    const Rect line = Rect(content.tl.x, top, content.br.x, top + height);
    const Rect part = line.intersect(pb.getRect());
    if (part.isEmpty())
        return;
    rfb::FullFramePixelBuffer view(pb, part, part.tl);
    // Grey text could not be read on the blue of a selection that counts.
    if (row == selectedRow)
        fill(view, line, isEnabled() ? getStyle().selectionBg : getStyle().face(FaceState::Disabled).top);
    int x = line.tl.x;
    for (size_t i = 0; i < columns.size(); ++i) {
        paintCell(view, row, columns[i], Rect::xywh(x, top, widths[i], height));
        x += widths[i];
    }
    if (row == selectedRow && hasFocus())
        drawFocus(view, line.expandBy(-1), /*dotted=*/true);
}

void WTable::paintCell(rfb::FullFramePixelBuffer& pb, int row, const Column& column, const Rect& cell) {
    const Rect part = cell.intersect(pb.getRect());
    if (part.isEmpty())
        return;
    rfb::FullFramePixelBuffer view(pb, part, part.tl);
    if (column.type == Image) {
        const WImage::Image image = callback->getCellImage(this, row, column.id);
        if (!image)
            return;
        const Point room = cell.size() - image->size();
        rfb::compose(view, cell.tl + Point(room.x / 2, room.y / 2), *image, image->getRect(),
                     isEnabled() ? rfb::overOp : rfb::ghostOp);
        return;
    }
    WStyle look = getStyle();
    callback->getCellStyle(this, row, column.id, look);
    const rfb::Colour ink = !isEnabled() ? look.disabled : row == selectedRow ? look.selectionText : look.text;
    const Rect room(cell.tl.x + cellPad, cell.tl.y, std::max(cell.tl.x + cellPad, cell.br.x - cellPad), cell.br.y);
    hxutil::drawAligned(*look.font, view, callback->getCellText(this, row, column.id).c_str(), room, pixel(pb, ink),
                        column.align, 1);
}

} // namespace wvw

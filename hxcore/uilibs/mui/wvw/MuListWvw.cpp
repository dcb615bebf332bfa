#include "mui/wvw/MuListWvw.h"

#include "hxutil/NamedImagePixelBuffer.h"
#include "hxutil/metrics.h"
#include "plat/Assert.h"
#include "wvw/WidgetWatch.h"

#include <algorithm>

namespace mui {
namespace {
constexpr int fewestRows = 3;
constexpr int mostRows = 8;
constexpr int imageUnits = 32;
} // namespace

MuListWvw::MuListWvw(const char* name, unsigned listFlags_)
    : MuList(name, listFlags_), widget(nullptr, this, (listFlags_ & Heading) != 0, (listFlags_ & KeepSelection) != 0),
      commonWvw(this, &widget) {
    common = &commonWvw;
    widget.setActivateByEnter((listFlags_ & EnterActivates) != 0);
    widget.setHandler(this);
}

MuListWvw::~MuListWvw() {
    widget.setHandler(nullptr);
    common = nullptr;
}

int MuListWvw::addColumn(ColumnType type, const char* heading, int widthPx, Align align, const rfb::Point& imageSize) {
    const int side = hxutil::scaled(imageUnits);
    const rfb::Point shown = imageSize.x > 0 ? imageSize : rfb::Point(side, side);
    const int index = MuList::addColumn(type, heading, widthPx, align, shown);
    widget.addColumn(index, static_cast<int>(type), heading, widthPx, shown, static_cast<int>(align));
    return index;
}

void MuListWvw::setSelected(int row) {
    MuList::setSelected(row);
    settingSelection = true;
    widget.select(selected);
    settingSelection = false;
}

void MuListWvw::rowsChanged() {
    settingSelection = true;
    widget.setRowCount(getRowCount());
    if (widget.getSelectedRow() != selected)
        widget.select(selected);
    settingSelection = false;
}

void MuListWvw::rowChanged(int row) {
    const int shown = row - widget.firstVisibleRow();
    if (shown >= 0 && shown <= widget.visibleRows())
        widget.repaint();
}

int MuListWvw::rowAt(const rfb::Point& position) {
    int row = -1;
    int column = -1;
    return widget.hitTest(position, row, column) ? row : -1;
}

void MuListWvw::setSize(const rfb::Point& size) {
    const bool hadRoom = widget.visibleRows() > 0;
    MuList::setSize(size);
    if (hadRoom || selected < 0)
        return;
    // What was selected while nothing could be seen has scrolled further than it needs.
    widget.ensureRowVisible(0);
    widget.ensureRowVisible(selected);
}

int MuListWvw::getMinWidth(int height) { return MuList::getMinWidth(height) + wvw::WScrollbar::thickness; }

int MuListWvw::getMinHeight(int) {
    const int rowHeight = widget.getRowHeight();
    const int frame = widget.getPreferredSize().y - getRowCount() * rowHeight;
    const int count = visibleRows > 0 ? visibleRows : std::clamp(getRowCount(), fewestRows, mostRows);
    return frame + count * rowHeight;
}

/// A right click says "this one" before its menu opens.
void MuListWvw::mouseEvent(const hxutil::MouseEvent& event) {
    const wvw::WidgetWatch self(&widget);
    if (event.type == hxutil::MouseEvent::ContextClick && !isInert()) {
        const int row = rowAt({event.x, event.y});
        if (MuList::isRowSelectable(row) && row != selected)
            widget.select(row);
        if (self.alive())
            widget.takeFocus();
    }
    if (self.alive())
        MuList::mouseEvent(event);
}

plat::String MuListWvw::getCellText(wvw::WTable*, int row, int column) { return getCell(row, column); }

wvw::WImage::Image MuListWvw::getCellImage(wvw::WTable*, int row, int column) {
    const char* imageName = getCell(row, column);
    if (!*imageName)
        return nullptr;
    return hxutil::NamedImagePixelBuffer::getThemed(imageName, cols[static_cast<size_t>(column)].imageSize);
}

bool MuListWvw::isRowSelectable(wvw::WTable*, int row) { return MuList::isRowSelectable(row); }

void MuListWvw::getCellStyle(wvw::WTable*, int row, int column, wvw::WStyle& style) {
    // A colour of its own says more than that the row can't be selected.
    style.text =
        wvw::themeColour(getCellColour(row, column), MuList::isRowSelectable(row) ? style.text : style.disabled);
}

void MuListWvw::rowActivated(wvw::WTable*, int, int) {
    if (confirmAct())
        notify(EventRowActivated);
}

bool MuListWvw::activated(wvw::Widget* origin) {
    if (origin != &widget)
        return false;
    notify(EventActivated);
    return true;
}

bool MuListWvw::valueChanged(wvw::Widget* origin) {
    if (origin != &widget)
        return false;
    if (settingSelection || widget.getSelectedRow() == selected)
        return true;
    selected = widget.getSelectedRow();
    notify(EventChanged);
    return true;
}

} // namespace mui

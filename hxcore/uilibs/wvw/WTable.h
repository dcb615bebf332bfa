// Rows and columns.
#pragma once

#include "wvw/WImage.h"
#include "wvw/WScrollbar.h"

#include <string>
#include <vector>

namespace wvw {

/// A list of rows whose cells are asked for while they are painted; one row may be selected.
///
/// A change of the selection runs valueChanged(this), a click on a row activated(this). Keys: Up, Down, PageUp,
/// PageDown, Home, End; letters go to the next row whose text begins with them.
class WTable : public WLayout {
public:
    enum ColumnType { Text = 0, Image = 1, Other = 2 };

    class Callback {
    public:
        virtual ~Callback() = default;
        virtual plat::String getCellText(WTable* table, int row, int column) = 0;
        virtual WImage::Image getCellImage(WTable* table, int row, int column);       ///< default: null
        virtual bool isRowSelectable(WTable* table, int row);                         ///< default: true
        virtual int getCellWidth(WTable* table, int row, int column);                 ///< pixels; default: 0
        virtual void getCellStyle(WTable* table, int row, int column, WStyle& style); ///< may change its colours
        virtual void rowActivated(WTable* table, int row, int column);                ///< by a double click
    };

    /// `target` is borrowed. `keepSelection`: a press beside the rows leaves the selection.
    WTable(WLayout* layout, Callback* target, bool showHeading, bool keepSelection = false);

    /// `width` in pixels, -1 automatic. `imageSize` (0, 0) means 16 by 16. `align`: 0 start, 1 centre, 2 end.
    void addColumn(int id, int type, const char* heading, int width = -1, const rfb::Point& imageSize = {0, 0},
                   int align = 0, int extra = 0);
    void removeColumn(int id);
    int columnCount() const { return static_cast<int>(columns.size()); }
    int columnId(int index) const { return columns.at(static_cast<size_t>(index)).id; }

    void setRowCount(int count); ///< the selection stays while its row exists
    int getRowCount() const { return rowCount; }

    /// Scrolls to the row. One that is not selectable, or does not exist, becomes -1. The column is an id, or -1.
    void select(int row, int column = -1);
    int getSelectedRow() const { return selectedRow; }       ///< -1 for none
    int getSelectedColumn() const { return selectedColumn; } ///< an id, -1 for none
    void ensureRowVisible(int row);

    /// False outside the rows: on the border, the heading or the scrollbar. `row` becomes -1 below the last one,
    /// `column` an id or -1.
    bool hitTest(const rfb::Point& position, int& row, int& column) const;
    int getRowHeight() const;
    int visibleRows() const;
    int firstVisibleRow() const { return scrollbar.getValue(); }
    void setEmptyText(const char* sentence); ///< shown in the middle while there are no rows
    void setActivateByEnter(bool on);        ///< Enter on a row is a double click; false at first, for default buttons
    void invalidateRow(int row);             ///< its cells have other contents

    // Widget
    void styleChanged() override;
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Rect opaqueWithin(const rfb::Rect& part) const override; ///< all but the soft corners
    rfb::Point getPreferredSize() override;
    void detach() override;
    bool acceptsFocus() override { return isEnabled() && isVisible(); }
    const char* getTooltip() const override; ///< its own, else the text under the pointer where it is cut short
    bool sizeChanged(Widget* origin) override;
    bool valueChanged(Widget* origin) override;
    bool focusChanged(bool backward, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;
    bool timerExpired(plat::Timer* timer) override;

protected:
    // WLayout
    void invalidateChild(Widget* child, const rfb::Region& region) override;
    // Widget
    bool ownKey(uint32_t keysym) override;

private:
    struct Column {
        int id;
        int type;
        plat::String heading; // may be null
        int width;            // pixels, -1 automatic
        rfb::Point imageSize;
        int align;
        int extra;
    };

    int headingHeight() const { return showHeading ? getRowHeight() : 0; }
    rfb::Rect contentRect() const; // inside the border, without heading and scrollbar
    std::vector<int> columnWidths() const;
    rfb::Rect rowRect(int row) const; // empty while it is not in view
    void arrange();
    void repaintRows();
    bool step(int from, int direction, int count);
    bool moveBy(int direction);
    bool scrollRowsTo(int first); // false if it stays
    bool jumpTo(int row, int direction);
    bool typeAhead(uint32_t keysym);
    plat::String typeAheadText(int row) const;
    void paintHeading(rfb::FullFramePixelBuffer& pb, const std::vector<int>& widths);
    void paintRow(rfb::FullFramePixelBuffer& pb, int row, const std::vector<int>& widths);
    void paintCell(rfb::FullFramePixelBuffer& pb, int row, const Column& column, const rfb::Rect& cell);

    Callback* callback;
    std::vector<Column> columns;
    bool showHeading;
    bool keepSelection;
    WScrollbar scrollbar;
    int rowCount = 0;
    int selectedRow = -1;
    int selectedColumn = -1;
    plat::String emptyText;
    plat::Timer clickWindow; // runs while a second click is a double one
    int clickedRow = -1;
    int clickedColumn = -1;
    bool activateByEnter = false;
    bool allInvalid = false; // the window knows that it has to paint all of this
    std::string typed;       // small letters, that a row is looked for by
    plat::Timer typedTimer;
    mutable plat::String cellTooltip;
};

} // namespace wvw

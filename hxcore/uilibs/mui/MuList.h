// Rows and columns of text and pictures.
#pragma once

#include "mui/MuElement.h"

#include <vector>

namespace mui {

class MuContainer;

/// A list of rows, at most one of which is selected. It keeps its cells.
///
/// Raises EventChanged when the user selects another row, EventActivated for a click on a row and EventRowActivated
/// for a double click on one. What the program sets raises nothing.
class MuList : public MuElement {
public:
    enum Flag : unsigned {
        Heading = 1,        ///< a line with the columns' headings
        KeepSelection = 2,  ///< a press beside the rows leaves the selection
        EnterActivates = 4, ///< Enter on a row is as a double click, and not the dialog's default action
    };
    enum class ColumnType { Text = 0, Image = 1 };
    enum class Align { Start = 0, Centre = 1, End = 2 };
    /// For rows of which most are never looked at.
    class Callback {
    public:
        virtual ~Callback() = default;
        /// The text of a cell that was never set, or set to null. Asked once, when it is first needed.
        virtual plat::String getCellText(MuList* list, int row, int col) = 0;
    };

    static constexpr int automatic = -1; ///< a width: text columns share what is left

    static MuList* create(MuContainer* parent, const char* name, unsigned listFlags = 0);

    /// Gives the number of the column. `widthPx` may be `automatic`. `imageSize` in pixels, (0,0) for 32 units. Columns
    /// come before rows.
    virtual int addColumn(ColumnType type, const char* heading, int widthPx = automatic, Align align = Align::Start,
                          const rfb::Point& imageSize = {0, 0});
    int getColumnCount() const { return static_cast<int>(cols.size()); }

    // Rows. What stands beside them is counted from 0; the calls assert their range.
    void setCallback(Callback* target) { callback = target; } ///< borrowed; null, as at first, leaves such cells empty
    int addRow(const std::vector<plat::String>& cells = {});  ///< at the end; gives its number
    int insertRow(int row, const std::vector<plat::String>& cells = {}); ///< before `row`; the selection moves along
    void removeRow(int row);
    void removeAllRows();
    int getRowCount() const { return static_cast<int>(rows.size()); }
    bool isValidRow(int row) const { return row >= 0 && row < getRowCount(); }
    void setCell(int row, int col, const char* text);         ///< of an image column the name of the image
    const char* getCell(int row, int col);                    ///< "" for an empty one
    void setCellColour(int row, int col, const char* colour); ///< a theme colour or "#rrggbb"; null for the list's own
    const char* getCellColour(int row, int col) const;        ///< null for the list's own
    void setRowSelectable(int row, bool selectable);
    bool isRowSelectable(int row) const;
    void setRowKey(int row, int key); ///< a number of the caller's, 0 at first
    int getRowKey(int row) const;
    int findRowKey(int key) const; ///< the first row that has it, -1 if none

    virtual void setSelected(int row); ///< -1 for none; scrolls to it. A row that can't be selected counts as none
    int getSelected() const { return selected; } ///< -1 for none
    void activateRow(int row);                   ///< as a double click on it
    virtual void ensureRowVisible(int row) = 0;
    virtual void setEmptyText(const char* sentence) = 0; ///< shown while there are no rows
    virtual void setVisibleRows(int count) = 0;          ///< how many its minimum height shows
    virtual int rowAt(const rfb::Point& position) = 0;   ///< in the list, as mouse events tell it; -1 for none

    // MuElement
    const char* getType() override { return "list"; }
    plat::String getState() override;
    plat::String getItems() override;
    bool handleCommand(const char* command, const char* argument) override;

protected:
    struct Column {
        ColumnType type;
        plat::String heading;
        int width;
        Align align;
        rfb::Point imageSize;
    };

    MuList(const char* name, unsigned listFlags);

    virtual void rowsChanged() {}           ///< hook: rows came or went
    virtual void rowChanged(int /*row*/) {} ///< hook: it looks different

    unsigned getListFlags() const { return listFlags; }

    std::vector<Column> cols;
    int selected = -1;

private:
    struct Cell {
        plat::String text;   // null until it is set or asked for
        plat::String colour; // null for the list's own
    };
    struct Row {
        std::vector<Cell> cells;
        bool selectable = true;
        int key = 0;
    };

    const Cell& cell(int row, int col) const;

    std::vector<Row> rows;
    unsigned listFlags;
    Callback* callback = nullptr;
};

} // namespace mui

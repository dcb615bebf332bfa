#include "mui/MuList.h"

#include "mui/MuContainer.h"
#include "mui/muFactories.h"
#include "mui/oneLine.h"
#include "plat/Assert.h"
#include "plat/DString.h"
#include "plat/numbers.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace mui {

MuList* MuList::create(MuContainer* parent, const char* name, unsigned listFlags) {
    ASSERT(muListFactory);
    MuList* list = muListFactory(name, listFlags);
    parent->add(list);
    return list;
}

MuList::MuList(const char* name, unsigned listFlags_) : MuElement(name), listFlags(listFlags_) {}

int MuList::addColumn(ColumnType type, const char* heading, int widthPx, Align align, const rfb::Point& imageSize) {
    cols.push_back({type, heading, widthPx, align, imageSize});
    for (Row& row : rows)
        row.cells.resize(cols.size());
    return getColumnCount() - 1;
}

int MuList::addRow(const std::vector<plat::String>& cells) { return insertRow(getRowCount(), cells); }

int MuList::insertRow(int row, const std::vector<plat::String>& cells) {
    ASSERT(row >= 0 && row <= getRowCount());
    Row added;
    added.cells.resize(cols.size());
    for (size_t i = 0; i < std::min(cells.size(), cols.size()); ++i)
        added.cells[i].text = cells[i];
    rows.insert(rows.begin() + row, std::move(added));
    if (selected >= row)
        ++selected;
    rowsChanged();
    return row;
}

void MuList::removeRow(int row) {
    ASSERT(isValidRow(row));
    rows.erase(rows.begin() + row);
    if (selected == row)
        selected = -1;
    else if (selected > row)
        --selected;
    rowsChanged();
}

void MuList::removeAllRows() {
    rows.clear();
    selected = -1;
    rowsChanged();
}

const MuList::Cell& MuList::cell(int row, int col) const {
    ASSERT(isValidRow(row));
    ASSERT(col >= 0 && col < (int)cols.size());
    return rows[static_cast<size_t>(row)].cells[static_cast<size_t>(col)];
}

void MuList::setCell(int row, int col, const char* text) {
    auto& target = const_cast<Cell&>(cell(row, col));
    if (target.text == (text ? text : ""))
        return;
    target.text = text ? text : "";
    rowChanged(row);
}

const char* MuList::getCell(int row, int col) {
    auto& wanted = const_cast<Cell&>(cell(row, col));
    if (wanted.text.isNull())
        wanted.text = callback ? callback->getCellText(this, row, col).c_str() : "";
    return wanted.text.c_str();
}

void MuList::setCellColour(int row, int col, const char* colour) {
    const_cast<Cell&>(cell(row, col)).colour = colour;
    rowChanged(row);
}

const char* MuList::getCellColour(int row, int col) const { return cell(row, col).colour.get(); }

void MuList::setRowSelectable(int row, bool selectable) {
    ASSERT(isValidRow(row));
    rows[static_cast<size_t>(row)].selectable = selectable;
    if (!selectable && row == selected)
        setSelected(-1);
}

bool MuList::isRowSelectable(int row) const { return isValidRow(row) && rows[static_cast<size_t>(row)].selectable; }

void MuList::setRowKey(int row, int key) {
    ASSERT(isValidRow(row));
    rows[static_cast<size_t>(row)].key = key;
}

int MuList::getRowKey(int row) const {
    ASSERT(isValidRow(row));
    return rows[static_cast<size_t>(row)].key;
}

int MuList::findRowKey(int key) const {
    const auto found = std::find_if(rows.begin(), rows.end(), [=](const Row& row) { return row.key == key; });
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

void MuList::setSelected(int row) { selected = isRowSelectable(row) ? row : -1; }

void MuList::activateRow(int row) {
    ASSERT(isValidRow(row));
    setSelected(row);
    notify(EventRowActivated);
}

plat::String MuList::getState() {
    return plat::strFormat("element List\nvalue %d\n%s", selected, commonState().c_str());
}

plat::String MuList::getItems() {
    plat::DString list;
    for (int row = 0; row < getRowCount(); ++row) {
        list.format("%d:", row);
        for (int col = 0; col < getColumnCount(); ++col)
            list.format("%s\"%s\"", col > 0 ? "," : "", oneLine(getCell(row, col)).c_str());
        list.append("\n");
    }
    return list.isEmpty() ? plat::String() : list.take();
}

bool MuList::handleCommand(const char* command, const char* argument) {
    int row = 0;
    if (isInert())
        return false;
    if (std::strcmp(command, "dblclick") == 0) {
        notify(EventActivated);
        return true;
    }
    if (std::strcmp(command, "rightclick") == 0) {
        notify(EventRowActivated);
        return true;
    }
    if (std::strcmp(command, "select") != 0 || !plat::parseIntInRange(argument, INT_MIN, INT_MAX, row))
        return false;
    if (row != -1 && !isRowSelectable(row))
        return false;
    setSelected(row);
    notify(EventChanged);
    return true;
}

} // namespace mui

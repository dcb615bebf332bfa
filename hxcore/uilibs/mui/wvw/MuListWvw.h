// The widget side of a list.
#pragma once

#include "mui/MuList.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/InputHandler.h"
#include "wvw/WTable.h"

namespace mui {

/// The table asks for the cells that it paints, and for no others.
class MuListWvw : public MuList, private wvw::WTable::Callback, private wvw::WInputHandler {
public:
    MuListWvw(const char* name, unsigned listFlags);
    ~MuListWvw() override;

    // MuList
    int addColumn(ColumnType type, const char* heading, int widthPx, Align align, const rfb::Point& imageSize) override;
    void setSelected(int row) override;
    void ensureRowVisible(int row) override { widget.ensureRowVisible(row); }
    void setEmptyText(const char* sentence) override { widget.setEmptyText(sentence); }
    void setVisibleRows(int count) override { visibleRows = count; }
    int rowAt(const rfb::Point& position) override;

    // MuElement
    void setSize(const rfb::Point& size) override;
    int getMinWidth(int height) override;
    int getMinHeight(int width) override;
    void mouseEvent(const hxutil::MouseEvent& event) override;

private:
    // MuList
    void rowsChanged() override;
    void rowChanged(int row) override;

    // wvw::WTable::Callback
    plat::String getCellText(wvw::WTable* table, int row, int column) override;
    wvw::WImage::Image getCellImage(wvw::WTable* table, int row, int column) override;
    bool isRowSelectable(wvw::WTable* table, int row) override;
    void getCellStyle(wvw::WTable* table, int row, int column, wvw::WStyle& style) override;
    void rowActivated(wvw::WTable* table, int row, int column) override;

    // wvw::WInputHandler
    bool activated(wvw::Widget* origin) override;
    bool valueChanged(wvw::Widget* origin) override;

    wvw::WTable widget;
    MuCommonWvw commonWvw;
    int visibleRows = 0; // 0: as many as there are, within reason
    bool settingSelection = false;
};

} // namespace mui

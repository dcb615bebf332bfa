// The widget side of a pager.
#pragma once

#include "mui/MuPager.h"
#include "mui/wvw/MuCommonWvw.h"
#include "mui/wvw/MuHotKey.h"
#include "mui/wvw/PageHost.h"
#include "wvw/WTabSheets.h"

#include <memory>

namespace mui {

/// Tabs come from a wvw::WTabSheets; without tabs the pages lie in a plain layout.
class MuPagerWvw : public MuPager, public MuHotKey, private wvw::WTabSheets::Callback {
public:
    MuPagerWvw(const char* name, Type type);
    ~MuPagerWvw() override;

    // MuPager, MuContainer, MuElement
    rfb::Point getContentOrigin() override;
    int getMinWidth(int height) override;
    int getMinHeight(int width) override;
    void doLayout() override;

    // MuHotKey
    bool hotKey(uint32_t keysym) override;

private:
    // MuPager
    void pagesChanged() override;

    // wvw::WTabSheets::Callback
    void sheetChanged(wvw::WTabSheets* sheets, int index) override;

    wvw::Widget* root() const;

    std::unique_ptr<wvw::WTabSheets> tabs; // one of the two
    std::unique_ptr<wvw::WLayout> plain;
    std::vector<std::unique_ptr<PageHost>> hosts; // in the order of the pages
    MuCommonWvw commonWvw;
};

} // namespace mui

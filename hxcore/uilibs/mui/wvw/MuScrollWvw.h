// The widget side of a scrolled view.
#pragma once

#include "mui/MuScroll.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/InputHandler.h"
#include "wvw/WBgLayout.h"
#include "wvw/WScrollView.h"

namespace mui {

/// The child's widget lies in a layout that is as large as the child needs and as the view at least.
class MuScrollWvw : public MuScroll, private wvw::WInputHandler {
public:
    MuScrollWvw(const char* name, unsigned scrollStyle);
    ~MuScrollWvw() override;

    // MuContainer, MuElement
    void adopt(MuElement* element) override;
    void setSize(const rfb::Point& size) override;
    int getMinWidth(int height) override;
    int getMinHeight(int width) override;
    void styleChanged() override;
    void doLayout() override;

private:
    class View : public wvw::WScrollView {
    public:
        explicit View(MuScrollWvw* scroll) : owner(scroll) {}
        rfb::Point contentSizeFor(int width) override;

    private:
        MuScrollWvw* owner;
    };

    // wvw::WInputHandler
    bool sizeChanged(wvw::Widget* origin) override;

    wvw::WBgLayout content;
    View view;
    MuCommonWvw commonWvw;
};

} // namespace mui

// What tests of widget twins share: a layout in a pretended window.
#pragma once

#include "mui/wvw/MuLayoutWvw.h"
#include "mui/wvw/MuiWvw.h"
#include "plat/Markup.h"
#include "wvw/WCanvas.h"
#include "wvw/test/FakeParent.h"

#include <gtest/gtest.h>

#include <utility>

namespace mui {

/// A layout with a style, hosted by a pretended window of 300 by 200.
class TwinsTest : public testing::Test, protected MuObserver, protected plat::Markup::LinkCallback {
protected:
    TwinsTest() : window(&canvas, {300, 200}) {
        Mui::setInstance(&toolkit);
        MuiWvw::fillWidgetFactories();
        column = new MuLayoutWvw("top", Orientation::Vertical);
        column->setSpacing(10);
        column->setFontSize(120);
        column->addObserver(this, true);
        canvas.addChild(MuCommonWvw::commonOf(column, true)->getWidget());
        column->setSize({300, 200});
    }
    ~TwinsTest() override { delete column; }

    void muEvent(MuElement* element, int type) override {
        heard += std::string(element->getName()) + "/" + std::to_string(type) + " ";
        if (toDelete)
            column->remove(std::exchange(toDelete, nullptr));
    }
    void linkClicked(const char* href) override { heard += std::string(href) + " "; }

    void layOut() {
        column->doLayout();
        window.paintAll();
        window.clearInvalid();
    }
    rfb::Point middleOf(MuElement* element) {
        const rfb::Point size = element->getSize();
        const rfb::Point at = element->getPosition();
        return {at.x + size.x / 2, at.y + size.y / 2};
    }
    void click(MuElement* element) { window.click(middleOf(element).x, middleOf(element).y); }
    bool paintsNothing() { return window.invalidArea().isEmpty(); }

    wvw::FakeClock clock;
    MuiWvw toolkit;
    wvw::WCanvas canvas;
    wvw::FakeParent window;
    MuLayout* column;
    MuElement* toDelete = nullptr;
    std::string heard;
};

} // namespace mui

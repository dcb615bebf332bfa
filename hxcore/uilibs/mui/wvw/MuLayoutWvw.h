// The widget side of a layout.
#pragma once

#include "mui/MuLayout.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/InputHandler.h"
#include "wvw/WLayout.h"

namespace mui {

/// Keeps the children's widgets in a wvw::WLayout, in the order of the elements, and lays out when that changes size.
///
/// A layout pass that finds everything in its place paints nothing.
class MuLayoutWvw : public MuLayout, private wvw::WInputHandler {
public:
    MuLayoutWvw(const char* name, Orientation orientation);
    ~MuLayoutWvw() override;

    // MuLayout, MuContainer, MuElement
    void adopt(MuElement* element) override;
    void remove(MuElement* element) override;
    void childrenChanged() override;
    void setSize(const rfb::Point& size) override;
    void doLayout() override;

private:
    /// With _DebugLayout it shows its bounds.
    class Widget : public wvw::WLayout {
    public:
        Widget() : wvw::WLayout(nullptr, /*routeMouse=*/true) {}
        void paint(rfb::FullFramePixelBuffer& pb) override;
    };
    struct Place {
        const MuElement* element;
        rfb::Rect rect;
        bool operator==(const Place&) const = default;
    };

    // wvw::WInputHandler
    bool sizeChanged(wvw::Widget* origin) override;

    std::vector<Place> shownPlaces();

    Widget widget;
    MuCommonWvw commonWvw;
    std::vector<Place> lastPlaces; // after the last pass
    bool settingSize = false;
};

} // namespace mui

// The widget side of a frame.
#pragma once

#include "mui/MuFrame.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/InputHandler.h"
#include "wvw/WBgLayout.h"

#include <memory>

namespace wvw {
class WPanel;
}

namespace mui {

/// A background with a border and one child; with a title it lies inside a panel.
///
/// The background is painted only if the frame's own style states one.
class MuFrameWvw : public MuFrame, private wvw::WInputHandler {
public:
    MuFrameWvw(const char* name, Type type, const char* title);
    ~MuFrameWvw() override;

    // MuFrame, MuContainer, MuElement
    void setTitle(const char* title) override;
    void adopt(MuElement* element) override;
    rfb::Point getContentOrigin() override;
    void setSize(const rfb::Point& size) override;
    int getMinWidth(int height) override;
    int getMinHeight(int width) override;
    void styleChanged() override;
    void doLayout() override;

private:
    class Background : public wvw::WBgLayout {
    public:
        explicit Background(Type frameType) : type(frameType) {}
        void paint(rfb::FullFramePixelBuffer& pb) override;

    private:
        Type type;
    };

    // wvw::WInputHandler
    bool sizeChanged(wvw::Widget* origin) override;

    rfb::Point chrome(); // what the panel takes from our size

    std::unique_ptr<wvw::WPanel> panel; // only with a title
    Background background;
    MuCommonWvw commonWvw;
    bool settingSize = false;
};

} // namespace mui

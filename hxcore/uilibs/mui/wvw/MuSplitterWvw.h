// The widget side of a splitter.
#pragma once

#include "mui/MuSplitter.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/InputHandler.h"
#include "wvw/WCustom.h"

namespace mui {

/// Paints the handles and shows by the pointer that they move.
class MuSplitterWvw : public MuSplitter, private wvw::WInputHandler, private wvw::WCustom::Callback {
public:
    MuSplitterWvw(const char* name, Orientation orientation, bool thin, Mode mode);
    ~MuSplitterWvw() override;

    // MuContainer, MuElement
    void adopt(MuElement* element) override;
    void setSize(const rfb::Point& size) override;
    void doLayout() override;

private:
    // MuSplitter
    void beginDrag() override;
    void endDrag() override;
    void hover(int over) override;

    // wvw::WInputHandler
    bool sizeChanged(wvw::Widget* origin) override;

    // wvw::WCustom::Callback
    void paintCustom(wvw::WCustom* custom, rfb::FullFramePixelBuffer& pb) override;

    void paintHandle(rfb::FullFramePixelBuffer& pb, const rfb::Rect& area);

    wvw::WCustom widget;
    MuCommonWvw commonWvw;
    std::vector<int> lastHandles; // after the last layout
    bool settingSize = false;
};

} // namespace mui

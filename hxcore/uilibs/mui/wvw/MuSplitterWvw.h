// The widget side of a splitter.
#pragma once

#include "mui/MuSplitter.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/InputHandler.h"
#include "wvw/WCustom.h"

#include <memory>

namespace mui {

/// Paints the handles and shows by the pointer that they move. Each handle is a stop of the Tab key.
class MuSplitterWvw : public MuSplitter, private wvw::WInputHandler, private wvw::WCustom::Callback {
public:
    MuSplitterWvw(const char* name, Orientation orientation, bool thin, Mode mode);
    ~MuSplitterWvw() override;

    // MuContainer, MuElement
    void adopt(MuElement* element) override;
    void setSize(const rfb::Point& size) override;
    void doLayout() override;

private:
    class Handle;

    // MuSplitter
    void beginDrag() override;
    void endDrag() override;
    void hover(int over) override;

    // wvw::WInputHandler
    bool sizeChanged(wvw::Widget* origin) override;

    // wvw::WCustom::Callback
    void paintCustom(wvw::WCustom* custom, rfb::FullFramePixelBuffer& pb) override;

    rfb::Rect handleRect(int start) const;
    void placeHandles(const std::vector<Placed>& placed);
    void paintHandle(rfb::FullFramePixelBuffer& pb, const rfb::Rect& area);

    wvw::WCustom widget;
    MuCommonWvw commonWvw;
    std::vector<std::unique_ptr<Handle>> handles; // one for each gap between shown children
    std::vector<size_t> handleIndices;            // the children before them
    std::vector<int> lastHandles;                 // where they were after the last layout
    bool settingSize = false;
};

} // namespace mui

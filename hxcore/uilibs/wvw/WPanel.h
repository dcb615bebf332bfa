// A labelled group.
#pragma once

#include "wvw/WLabel.h"
#include "wvw/WLayout.h"

namespace wvw {

/// An etched frame with a title, around a content layout.
class WPanel : public WLayout {
public:
    static int margin(); ///< pixels between the frame and the content

    explicit WPanel(WLayout* layout = nullptr, const char* titleText = nullptr);

    WLayout& getContent() { return content; }
    WLabel& getTitle() { return title; }

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    int getPreferredHeight(int width) override;
    bool sizeChanged(Widget* origin) override;
    void setEnabled(bool on) override;

private:
    WLayout content;
    WLabel title;
};

} // namespace wvw

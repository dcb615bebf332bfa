// The widget side of an image.
#pragma once

#include "mui/MuImage.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/WImage.h"

namespace mui {

class MuImageWvw : public MuImage {
public:
    MuImageWvw(const char* name, const char* imageName, const rfb::Point& size);
    ~MuImageWvw() override { common = nullptr; }

    // MuImage, MuElement
    void setImage(const char* imageName, const rfb::Point& size) override;
    void setAlignment(int hAlign, int vAlign) override { widget.setAlign(hAlign, vAlign); }
    int getMinWidth(int height) override;
    int getMinHeight(int width) override;
    void styleChanged() override;

private:
    class Widget : public wvw::WImage {
    public:
        explicit Widget(MuImageWvw* target) : owner(target) {}
        void paint(rfb::FullFramePixelBuffer& pb) override {
            wvw::WImage::paint(pb);
            owner->painted();
        }

    private:
        MuImageWvw* owner;
    };

    Widget widget;
    MuCommonWvw commonWvw;
};

} // namespace mui

// A layout that someone else paints and sizes.
#pragma once

#include "wvw/WLayout.h"

namespace wvw {

/// Paint and size by delegate; keys and mouse go to the handlers as with every widget.
class WCustom : public WLayout {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// The origin of `pb` is the corner of the widget. The children are painted afterwards.
        virtual void paintCustom(WCustom* custom, rfb::FullFramePixelBuffer& pb) = 0;

        /// In pixels. Default: that of a layout with the same children.
        virtual rfb::Point customSize(WCustom* custom);
        virtual int customWidth(WCustom* custom, int height); ///< default: of customSize
        virtual int customHeight(WCustom* custom, int width); ///< default: of customSize

        /// Asked only while enabled and visible. Default: whether a child accepts.
        virtual bool customAcceptsFocus(WCustom* custom);
    };

    /// `target` is borrowed and outlives the widget.
    WCustom(WLayout* layout, Callback* target, bool routeMouse = true);

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    int getPreferredWidth(int height) override;
    int getPreferredHeight(int width) override;
    bool acceptsFocus() override;

private:
    Callback* callback;
};

} // namespace wvw

#include "wvw/WCustom.h"

#include "rfb/PixelBuffer.h"

namespace wvw {

rfb::Point WCustom::Callback::customSize(WCustom* custom) { return custom->WLayout::getPreferredSize(); }

int WCustom::Callback::customWidth(WCustom* custom, int) { return customSize(custom).x; }

int WCustom::Callback::customHeight(WCustom* custom, int) { return customSize(custom).y; }

bool WCustom::Callback::customAcceptsFocus(WCustom* custom) { return custom->WLayout::acceptsFocus(); }

WCustom::WCustom(WLayout* layout, Callback* target, bool routeMouse_)
    : WLayout(layout, routeMouse_), callback(target) {}

void WCustom::paint(rfb::FullFramePixelBuffer& pb) {
    callback->paintCustom(this, pb);
    paintChildren(pb);
}

rfb::Point WCustom::getPreferredSize() { return callback->customSize(this); }

int WCustom::getPreferredWidth(int height) { return callback->customWidth(this, height); }

int WCustom::getPreferredHeight(int width) { return callback->customHeight(this, width); }

bool WCustom::acceptsFocus() { return isEnabled() && isVisible() && callback->customAcceptsFocus(this); }

} // namespace wvw

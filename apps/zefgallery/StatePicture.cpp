#include "zefgallery/StatePicture.h"

#include "mui/wvw/MuLayoutWvw.h"
#include "mui/wvw/MuiWvw.h"
#include "rfb/PixelBuffer.h"
#include "rfb/Region.h"
#include "wvw/WCanvas.h"
#include "wvw/WRoot.h"

#include <algorithm>

namespace gallery {
namespace {

constexpr int rim = 2; // pixels round the element

/// The window that there is not: it has the focus or not, and shows nothing.
class NoWindow : public wvw::WParent, private wvw::WInputHandler, private wvw::WMouseInputHandler {
public:
    NoWindow(wvw::Widget& widget, bool withFocus) : root(widget), focused(withFocus) { root.attach(this, this, this); }
    ~NoWindow() override { root.detach(); }

    // wvw::WParent
    void invalidate(wvw::Widget*, const rfb::Region&) override {}
    void bell() override {}
    bool setFocus(wvw::Widget*) override { return focused; }
    bool isFocused(const wvw::Widget* child) const override { return focused && child == &root; }
    bool focusNext() override { return false; }
    bool focusPrev() override { return false; }
    bool isKeyDown(uint32_t) const override { return false; }
    plat::String getCutText() override { return {}; }
    void setCutText(const char*) override {}
    wvw::WRoot* getRoot(rfb::Point*) override { return nullptr; }
    void ensureVisible(wvw::Widget*, const rfb::Rect&) override {}
    void startDrag(std::unique_ptr<hxutil::DragDropData>, const rfb::PixelBuffer*) override {}

private:
    wvw::Widget& root;
    bool focused;
};

void makeOpaque(rfb::ManagedPixelBuffer& pixels) {
    int stride = 0;
    auto* pixel = reinterpret_cast<uint32_t*>(pixels.getPixelsRW(pixels.getRect(), &stride));
    for (int y = 0; y < pixels.height(); ++y, pixel += stride)
        for (int x = 0; x < pixels.width(); ++x)
            pixel[x] |= 0xff000000u;
}

} // namespace

StatePicture::StatePicture(const MakeElement& make_, State state_, int widthPx, const rfb::Point& pointer_)
    : MuButtonWvw(nullptr, nullptr, Type::Image, NoFocus), make(make_), state(state_), width(widthPx),
      pointer(pointer_) {
    takePicture();
}

void StatePicture::styleChanged() {
    takePicture();
    MuButtonWvw::styleChanged();
}

void StatePicture::takePicture() {
    wvw::WCanvas canvas;
    const wvw::WStyle look = mui::MuiWvw::instance()->getStyle(mui::MuStyle());
    canvas.setStyle(&look);
    mui::MuLayoutWvw column(nullptr, mui::Orientation::Vertical);
    column.ownStyle();
    canvas.addChildAt(mui::MuCommonWvw::commonOf(&column, /*assertCommon=*/true)->getWidget(), {rim, rim});
    mui::MuElement* element = make(&column);
    const int wide = std::min(width - 2 * rim, column.getMinWidth(0));
    const rfb::Point size(wide, std::max(1, column.getMinHeight(wide)));
    column.setSize(size);
    canvas.setSize(size + rfb::Point(2 * rim, 2 * rim));
    element->setEnabled(state != State::Disabled);
    element->setLocked(state == State::Locked);

    NoWindow window(canvas, state == State::Focused);
    canvas.focusChanged(/*backward=*/false, &canvas);
    const rfb::Point at(rim + size.x * pointer.x / 100, rim + size.y * pointer.y / 100);
    if (state == State::Hover || state == State::Pressed)
        canvas.mouseEvent(at, /*mask=*/0);
    if (state == State::Pressed)
        canvas.mouseEvent(at, /*mask=*/1);
    auto pixels = std::make_shared<rfb::ManagedPixelBuffer>(rfb::pfARGB8888(), canvas.getWidth(), canvas.getHeight());
    canvas.paint(*pixels);
    makeOpaque(*pixels);
    setImage(ImageNormal, stateNames[static_cast<int>(state)], pixels);
}

} // namespace gallery

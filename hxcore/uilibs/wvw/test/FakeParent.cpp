#include "wvw/test/FakeParent.h"

#include "plat/monoTime.h"
#include "registerBuiltInResources.h"
#include "rfb/renderOps.h"

#include <utility>

namespace wvw {
namespace {

int64_t fakeTicks = 0;

int64_t readFakeClock(int64_t, bool*) { return fakeTicks; }

class Assets : public testing::Environment {
public:
    void SetUp() override { registerBuiltInResources(); }
};

[[maybe_unused]] const auto* assets = testing::AddGlobalTestEnvironment(new Assets);

} // namespace

FakeClock::FakeClock() { plat::setTimeSource(readFakeClock); }

FakeClock::~FakeClock() { plat::setTimeSource(nullptr); }

void FakeClock::advance(unsigned ms) {
    for (const int64_t end = fakeTicks + ms * plat::ticksPerMs;;) {
        const int next = manager.timeUntilNext();
        const int64_t due = fakeTicks + next * plat::ticksPerMs;
        fakeTicks = next < 0 || due > end ? end : due;
        manager.processTimers();
        if (next < 0 || due > end)
            return;
    }
}

FakeParent::FakeParent(Widget* root_, const rfb::Point& size, FakeParent* screen_, const rfb::Point& position_)
    : root(root_), position(position_), screen(screen_), pixels(rfb::pfRGB888(), size.x, size.y) {
    root->setSize(size);
    root->attach(this, this, this);
    root->focusChanged(/*backward=*/false, root);
}

FakeParent::~FakeParent() { close(); }

void FakeParent::close() {
    while (!popups.empty())
        showPopup(popups.begin()->second->root, /*show=*/false, /*grab=*/false, {});
    if (Widget* gone = std::exchange(root, nullptr))
        gone->detach();
}

bool FakeParent::key(uint32_t keysym) {
    keys.insert(keysym);
    const bool used = root->handleKey(keysym, /*down=*/true);
    keys.erase(keysym);
    if (root)
        root->handleKey(keysym, /*down=*/false);
    return used;
}

void FakeParent::hold(uint32_t keysym) {
    keys.insert(keysym);
    root->handleKey(keysym, /*down=*/true);
}

void FakeParent::letGo(uint32_t keysym) {
    keys.erase(keysym);
    root->handleKey(keysym, /*down=*/false);
}

void FakeParent::move(int x, int y) {
    pointer = {x, y};
    root->mouseEvent(pointer, mask);
}

void FakeParent::press(int button) {
    mask |= 1 << button;
    if (root)
        root->mouseEvent(pointer, mask);
}

void FakeParent::release(int button) {
    mask &= ~(1 << button);
    if (root)
        root->mouseEvent(pointer, mask);
}

void FakeParent::click(int x, int y, int button) {
    move(x, y);
    press(button);
    release(button);
}

void FakeParent::leave() { root->mouseLeft(); }

void FakeParent::paint() {
    std::vector<rfb::Rect> rects;
    invalid.intersect(rfb::Region(pixels.getRect())).get_rects(&rects);
    for (const rfb::Rect& rect : rects) {
        rfb::FullFramePixelBuffer view(pixels, rect, rect.tl);
        root->paint(view);
    }
    invalid.clear();
}

void FakeParent::paintAll() {
    rfb::fillRect(pixels, pixels.getRect(), 0xff00ff);
    root->paint(pixels);
    invalid.clear();
}

void FakeParent::paintInTiles(const rfb::Point& tile) {
    rfb::fillRect(pixels, pixels.getRect(), 0xff00ff);
    for (int y = 0; y < pixels.height(); y += tile.y) {
        for (int x = 0; x < pixels.width(); x += tile.x) {
            const rfb::Rect rect = rfb::Rect::at({x, y}, tile).intersect(pixels.getRect());
            rfb::FullFramePixelBuffer view(pixels, rect, rect.tl);
            root->paint(view);
        }
    }
}

std::vector<uint32_t> FakeParent::getRgb() const {
    std::vector<uint32_t> rgb(static_cast<size_t>(pixels.width() * pixels.height()));
    pixels.getImage(rgb.data(), pixels.getRect());
    for (uint32_t& pixel : rgb)
        pixel &= 0xffffff;
    return rgb;
}

uint32_t FakeParent::pixelAt(int x, int y) const {
    uint32_t value = 0;
    pixels.getImage(&value, rfb::Rect::xywh(x, y, 1, 1));
    return value & 0xffffff;
}

int FakeParent::countPixels(const rfb::Rect& area, uint32_t rgb) const {
    int count = 0;
    const rfb::Rect part = area.intersect(pixels.getRect());
    for (int y = part.tl.y; y < part.br.y; ++y) {
        for (int x = part.tl.x; x < part.br.x; ++x)
            count += pixelAt(x, y) == rgb;
    }
    return count;
}

FakeParent* FakeParent::popupOf(const Widget* widget) {
    const auto i = popups.find(widget);
    return i == popups.end() ? nullptr : i->second.get();
}

void FakeParent::invalidate(Widget*, const rfb::Region& region) { invalid.assign_union(region); }

WRoot* FakeParent::getRoot(rfb::Point* originOut) {
    if (originOut)
        *originOut = position;
    return screen ? screen : this;
}

void FakeParent::showPopup(Widget* widget, bool show, bool grab, const rfb::Point& at) {
    const auto old = popups.find(widget);
    if (old != popups.end() && show) { // the window stays, and goes where it is wanted
        FakeParent& popup = *old->second;
        popup.position = at;
        popup.pixels.setSize(widget->getWidth(), widget->getHeight());
        popup.invalid.reset(widget->getRect());
        return;
    }
    if (old != popups.end()) {
        // It may be in the middle of an event: it loses its widget at once, and its life with us.
        closed.push_back(std::move(old->second));
        popups.erase(old);
        closed.back()->close();
    }
    if (!show)
        return;
    auto popup = std::make_unique<FakeParent>(widget, widget->getSize(), this, at);
    popup->grabbed = grab;
    popups[widget] = std::move(popup);
}

bool FakeParent::keyEvent(uint32_t keysym, bool down, Widget*) {
    if (down)
        unusedKeys.push_back(keysym);
    return false;
}

bool FakeParent::activated(Widget* origin) {
    activations.push_back(origin);
    return false;
}

bool FakeParent::valueChanged(Widget* origin) {
    changes.push_back(origin);
    return false;
}

void Box::note(const std::string& word) {
    log += (log.empty() ? "" : " ") + word;
    if (sharedLog)
        *sharedLog += (sharedLog->empty() ? "" : " ") + name + ":" + word;
}

void Box::paint(rfb::FullFramePixelBuffer& pb) {
    ++paints;
    painted = pb.getRect();
    fill(pb, getRect(), colour);
}

bool Box::focusChanged(bool backward, Widget* origin) {
    note(std::string(hasFocus() ? "focus" : "blur") + (backward ? "-back" : ""));
    return Widget::focusChanged(backward, origin);
}

bool Box::mouseMove(const rfb::Point& at, Widget* origin) {
    note("move" + std::to_string(at.x) + "," + std::to_string(at.y));
    return Widget::mouseMove(at, origin);
}

bool Box::mouseDown(int button, Widget* origin) {
    note("down" + std::to_string(button));
    return Widget::mouseDown(button, origin);
}

bool Box::mouseUp(int button, Widget* origin) {
    note("up" + std::to_string(button));
    return Widget::mouseUp(button, origin);
}

bool Box::mouseExit(Widget* origin) {
    note("exit");
    return Widget::mouseExit(origin);
}

bool Box::sizeChanged(Widget* origin) {
    note("size");
    return Widget::sizeChanged(origin);
}

} // namespace wvw

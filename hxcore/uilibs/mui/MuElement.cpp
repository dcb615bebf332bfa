#include "mui/MuElement.h"

#include "mui/MuContainer.h"
#include "mui/oneLine.h"
#include "plat/Assert.h"
#include "plat/ConfigParameter.h"
#include "plat/DString.h"

#include <algorithm>

namespace mui {
namespace {
plat::BoolParameter debugLayout("_DebugLayout", plat::LocKey("mui_param_debuglayout"), false);
} // namespace

bool isLayoutDebugged() { return debugLayout.value(); }

/// One element's part of a notification that is under way. It stands on the stack, so the records of an element come
/// and go in turn.
struct MuElement::ActiveNotify {
    explicit ActiveNotify(MuElement* target) : element(target), outer(target->activeNotify) {
        target->activeNotify = this;
    }
    ~ActiveNotify() {
        if (element)
            element->activeNotify = outer;
    }
    ActiveNotify(const ActiveNotify&) = delete;
    ActiveNotify& operator=(const ActiveNotify&) = delete;

    MuElement* element; // null once it was deleted
    ActiveNotify* outer;
    std::list<MuObserver*> pending;
    std::vector<MuObserver*>* removed = nullptr; // who left during this walk
};

MuElement::MuElement(const char* name, const char* label_) : label(label_), name_(name) {}

MuElement::~MuElement() {
    for (ActiveNotify* active = activeNotify; active; active = active->outer)
        active->element = nullptr;
    if (parent_)
        getTop()->forgetElement(this);
}

plat::String MuElement::getFullName() const {
    if (!parent_)
        return "";
    plat::String above = parent_->getFullName();
    if (name_.isEmpty())
        return above;
    return above.isEmpty() ? name_ : plat::strFormat("%s.%s", above.c_str(), name_.c_str());
}

MuElement* MuElement::getTop() {
    MuElement* top = this;
    while (top->parent_)
        top = top->parent_;
    return top;
}

void MuElement::addObserver(MuObserver* observer, bool add) {
    if (add) {
        if (std::find(observers.begin(), observers.end(), observer) == observers.end())
            observers.push_back(observer);
        return;
    }
    observers.remove(observer);
    for (ActiveNotify* active = activeNotify; active; active = active->outer) {
        active->pending.remove(observer);
        if (active->removed)
            active->removed->push_back(observer);
    }
}

void MuElement::notify(MuElement* source, int type) {
    ActiveNotify sourceWatch(source);
    std::vector<MuObserver*> removed;
    for (MuElement* element = this; element; element = element->parent_) {
        ActiveNotify active(element);
        active.removed = &removed;
        for (MuObserver* observer : element->observers)
            if (std::find(removed.begin(), removed.end(), observer) == removed.end())
                active.pending.push_back(observer);
        while (!active.pending.empty()) {
            MuObserver* observer = active.pending.front();
            active.pending.pop_front();
            observer->muEvent(source, type);
            // Without its source the event means nothing any more, and the way up may be gone.
            if (!active.element || !sourceWatch.element)
                return;
        }
    }
}

void MuElement::setEnabled(bool enabled) {
    flags_ = enabled ? flags_ & ~static_cast<unsigned>(Disabled) : flags_ | Disabled;
    if (common)
        common->setEnabled(flags_ == 0);
    stateChanged();
}

void MuElement::setLocked(bool locked) {
    flags_ = locked ? flags_ | Locked : flags_ & ~static_cast<unsigned>(Locked);
    if (common)
        common->setEnabled(flags_ == 0);
    stateChanged();
}

void MuElement::setDeliberate(bool on) {
    if (common)
        common->setDeliberate(on);
}

bool MuElement::confirmAct() { return !common || common->confirmAct(); }

bool MuElement::isShownFully() {
    for (MuElement* element = this; element; element = element->parent_)
        if (!element->isShown())
            return false;
    return true;
}

const MuStyle& MuElement::getStyle() const {
    if (style_)
        return *style_;
    MuElement* parent = parent_;
    ASSERT(parent);
    return parent_->getStyle();
}

const MuStyle* MuElement::findStyle() const {
    const MuElement* element = this;
    while (element && !element->style_)
        element = element->parent_;
    return element ? element->style_.get() : nullptr;
}

MuStyle& MuElement::ownStyle() {
    if (!style_)
        style_ = std::make_unique<MuStyle>();
    return *style_;
}

void MuElement::setFontSize(int size) {
    ownStyle().size = size;
    styleChanged();
}

void MuElement::setTextColour(const char* colour) {
    ownStyle().textColour = colour;
    styleChanged();
}

void MuElement::setBgColour(const char* colour) {
    ownStyle().bgColour = colour;
    styleChanged();
}

void MuElement::setShown(bool shown) {
    if (common)
        common->setShown(shown);
}

bool MuElement::isShown() { return common && common->isShown(); }

bool MuElement::isLocked() { return (flags_ & Locked) != 0; }

void MuElement::setFocus() {
    if (common)
        common->setFocus();
    else
        getTop()->setDefaultFocus(this);
}

bool MuElement::hasFocus() { return common && common->hasFocus(); }

MuElement* MuElement::focusedElement() { return hasFocus() ? this : nullptr; }

void MuElement::setTooltip(const char* text) {
    if (common)
        common->setTooltip(text);
}

void MuElement::setSize(const rfb::Point& size) {
    if (common)
        common->setSize(size);
}

rfb::Point MuElement::getSize() { return common ? common->getSize() : rfb::Point{0, 0}; }

void MuElement::setPosition(const rfb::Point& position) {
    if (common)
        common->setPosition(position);
}

rfb::Point MuElement::getPosition() { return common ? common->getPosition() : rfb::Point{0, 0}; }

rfb::Point MuElement::getRootPosition() {
    MuElement* parent = parent_;
    ASSERT(parent);
    return getPosition() + parent->getRootPosition();
}

int MuElement::getMinWidth(int height) { return common ? common->getMinWidth(height) : 0; }

int MuElement::getMinHeight(int width) { return common ? common->getMinHeight(width) : 0; }

void MuElement::setStyle(const MuStyle& newStyle) {
    ownStyle() = newStyle;
    styleChanged();
}

void MuElement::styleChanged() {
    if (common)
        common->styleChanged();
}

void MuElement::ensureVisible(const rfb::Rect& rect) {
    if (common)
        common->ensureVisible(rect);
}

void MuElement::repaint(const rfb::Rect& rect) {
    if (common)
        common->repaint(rect);
}

plat::String MuElement::getState() { return commonState(); }

MuElement* MuElement::findElement(const char* path) { return path && *path ? nullptr : this; }

bool MuElement::handleCommand(const char*, const char*) { return false; }

void MuElement::mouseEvent(const hxutil::MouseEvent& event) {
    if (mouseCallback)
        mouseCallback->mouseEvent(event);
}

void MuElement::checkLayout(MuLayoutCheckObserver* observer) {
    const rfb::Point size = getSize();
    const int over = getMinHeight(size.x) - size.y;
    if (over > 0)
        observer->overflow(this, plat::strFormat("Overflowing by %d units", over).c_str());
}

plat::String MuElement::commonState() {
    const rfb::Point position = getPosition();
    const rfb::Point size = getSize();
    plat::DString state;
    state.format("shown %d\nenabled %d\nlocked %d\npos %d,%d\nsize %d,%d\n", isShown(), isEnabled(), isLocked(),
                 position.x, position.y, size.x, size.y);
    if (label.get())
        state.format("label %s\n", oneLine(label.get()).c_str());
    return state.take();
}

} // namespace mui

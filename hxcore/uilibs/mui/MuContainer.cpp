#include "mui/MuContainer.h"

#include "plat/Assert.h"

#include <cstring>
#include <string>

namespace mui {

void MuContainer::add(MuElement* element) {
    ASSERT(element);
    adopt(element);
}

void MuContainer::setParent(MuElement* child, MuContainer* parent) {
    child->parent_ = parent;
    // What the child shows may depend on the style that it inherits from here on.
    if (parent && parent->findStyle())
        child->styleChanged();
}

bool MuContainer::isLocked() {
    if (MuElement::isLocked())
        return true;
    for (int i = 0; i < getChildCount(); ++i)
        if (getChild(i)->isShown() && getChild(i)->isLocked())
            return true;
    return false;
}

MuElement* MuContainer::focusedElement() {
    for (int i = 0; i < getChildCount(); ++i)
        if (MuElement* focused = getChild(i)->focusedElement())
            return focused;
    return MuElement::focusedElement();
}

void MuContainer::styleChanged() {
    for (int i = 0; i < getChildCount(); ++i)
        getChild(i)->styleChanged();
    MuElement::styleChanged();
}

void MuContainer::addChildrenTo(std::vector<MuElement*>& out) {
    for (int i = 0; i < getChildCount(); ++i)
        out.push_back(getChild(i));
}

MuElement* MuContainer::findElement(const char* path) {
    if (!path || !*path)
        return this;
    const char* dot = std::strchr(path, '.');
    const std::string_view first = dot ? std::string_view(path, static_cast<size_t>(dot - path)) : path;
    const char* rest = dot ? dot + 1 : "";
    for (int i = 0; i < getChildCount(); ++i) {
        MuElement* child = getChild(i);
        const std::string_view name = child->getName();
        MuElement* found = nullptr;
        if (name.empty())
            found = child->findElement(path);
        else if (name == first)
            found = child->findElement(rest);
        if (found)
            return found;
    }
    return nullptr;
}

void MuContainer::checkLayout(MuLayoutCheckObserver* observer) {
    MuElement::checkLayout(observer);
    for (int i = 0; i < getChildCount(); ++i)
        if (getChild(i)->isShown())
            getChild(i)->checkLayout(observer);
}

MuContainerSingle::~MuContainerSingle() = default;

MuElement* MuContainerSingle::getChild(int index) { return index == 0 || index == -1 ? child.get() : nullptr; }

void MuContainerSingle::adopt(MuElement* element) {
    if (child)
        remove(child.get());
    child.reset(element);
    setParent(element, this);
}

void MuContainerSingle::remove(MuElement* element) {
    ASSERT(element == child.get());
    element->willBeDeleted();
    child.reset();
}

} // namespace mui

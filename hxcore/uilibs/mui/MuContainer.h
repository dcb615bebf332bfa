// Elements that hold elements.
#pragma once

#include "mui/MuElement.h"

namespace mui {

/// An element that owns others.
class MuContainer : public MuElement {
public:
    virtual MuElement* getChild(int index) = 0; ///< a negative one counts from the end; null if out of range
    virtual int getChildCount() = 0;
    virtual void add(MuElement* element);        ///< asserts that there is one, then adopts it
    virtual void adopt(MuElement* element) = 0;  ///< takes ownership
    virtual void remove(MuElement* element) = 0; ///< deletes the child
    virtual rfb::Point getContentOrigin() { return {0, 0}; }

    // MuElement
    bool isLocked() override;
    MuElement* focusedElement() override;
    void styleChanged() override;
    void addChildrenTo(std::vector<MuElement*>& out) override;
    const char* getType() override { return "container"; }
    MuElement* findElement(const char* path) override;
    void checkLayout(MuLayoutCheckObserver* observer) override;

protected:
    using MuElement::MuElement;

    static void setParent(MuElement* child, MuContainer* parent); ///< null parts them
};

/// A container of at most one child; a new child replaces the old one.
class MuContainerSingle : public MuContainer {
public:
    ~MuContainerSingle() override;

    // MuContainer
    MuElement* getChild(int index) override;
    int getChildCount() override { return child ? 1 : 0; }
    void adopt(MuElement* element) override;
    void remove(MuElement* element) override; ///< asserts that it is the child

protected:
    using MuContainer::MuContainer;

    std::unique_ptr<MuElement> child;
};

} // namespace mui

// Elements side by side, with borders that the user moves.
#pragma once

#include "mui/MuContainer.h"
#include "mui/MuLayout.h"

#include <cstdint>
#include <vector>

namespace mui {

/// Places its shown children along its axis with a handle between neighbours; the last one takes what is left.
///
/// Raises EventChanged while the user moves a handle, with the pointer or with the arrow keys, and when a child goes.
class MuSplitter : public MuContainer {
public:
    /// Which extent of a child counts toward the splitter's own minimum.
    enum class Mode { MinSizes = 0, Sizes = 1 };

    static MuSplitter* create(MuContainer* parent, const char* name, Orientation orientation, bool thin = false,
                              Mode mode = Mode::MinSizes);

    ~MuSplitter() override;

    Orientation getOrientation() const { return orientation; }
    virtual int handleSize() const { return thin ? 3 : 5; } ///< pixels

    // Extents along the axis, in pixels, by child; that of the last child counts for nothing but the minimum.
    std::vector<int> getSizes() const;
    void setSizes(const std::vector<int>& sizes); ///< of as many children as are named
    void setChildSize(int index, int size);       ///< asserts that it is not the last child
    std::vector<int> getMinSizes() const;
    void setMin(int index, int minSize);
    std::vector<int> getHandlePositions(); ///< where each handle begins, by gap between shown children
    bool moveHandle(int index, int size);  ///< as the user does: keeps the minimum of both sides; false: as it was
    int getDraggedHandle() const { return dragging ? handle : -1; } ///< the child before it, -1 for none

    // MuContainer
    MuElement* getChild(int index) override;
    int getChildCount() override { return static_cast<int>(children.size()); }
    void adopt(MuElement* element) override;
    void remove(MuElement* element) override;

    // MuElement
    void setSize(const rfb::Point& size) override; ///< always lays out
    int getMinWidth(int height) override;
    int getMinHeight(int width) override;
    const char* getType() override { return "splitter"; }
    plat::String getState() override;
    void doLayout() override;
    void mouseEvent(const hxutil::MouseEvent& event) override;

protected:
    MuSplitter(const char* name, Orientation orientation, bool thin, Mode mode);

    // Hooks
    virtual void beginDrag() {}
    virtual void endDrag() {}
    virtual void hover(int /*handle*/) {} ///< the pointer is over the handle behind that child, -1: over none

    void clear(); ///< deletes all children, the last first

    /// A key for the handle of that gap between shown children: arrows along the axis, Home, End. True if it is one.
    bool handleKey(int gap, uint32_t canonicalKey);

    struct Placed {
        size_t index; ///< of the child
        int start;
        int extent;
    };
    std::vector<Placed> places() { return places(along(getSize())); }

private:
    struct Child {
        int minSize = 30;
        int size = 30;
        MuElement* element = nullptr;
    };

    bool isHorizontal() const { return orientation == Orientation::Horizontal; }
    int along(const rfb::Point& p) const { return isHorizontal() ? p.x : p.y; }
    std::vector<Placed> places(int extent);
    int handleAt(int position);
    int largestSize(int index);
    int minAlong();
    int minAcross(int extent); ///< 0 when not known

    Orientation orientation;
    bool thin;
    Mode mode;
    std::vector<Child> children; // owned
    bool dragging = false;
    int handle = -1; // the child before the handle in question
    int startPosition = 0;
    int startSize = 0;
};

} // namespace mui

// A row or a column of elements.
#pragma once

#include "mui/MuContainer.h"

#include <vector>

namespace mui {

enum class Orientation { Vertical = 0, Horizontal = 1 };

/// Places its children one after another along its main axis and over the whole of its cross axis.
///
/// Each child is as large as its minimum, or as told, or takes a share of what is left. Hidden children take no room.
/// Minimum sizes are asked afresh on each pass.
class MuLayout : public MuContainer {
public:
    /// Flags of a child. The low four bits say how its extent along the main axis is found, the next four where it
    /// stands across it.
    enum ChildFlag : unsigned {
        Natural = 0, ///< its minimum
        Fixed = 1,   ///< `size` in pixels
        Stretch = 2, ///< `size` is its weight among those that stretch
        SizingMask = 0xf,
        Fill = 0,
        Start = 0x10,
        End = 0x20,
        Centre = 0x30,
        AlignmentMask = 0xf0,
    };

    /// Where moveChild puts a child.
    enum class Where { First = 0, Last = 1, Before = 2, After = 3 };

    /// Makes one in `parent`, which owns it. `name` may be "" or null: then paths lead through it.
    static MuLayout* create(MuContainer* parent, const char* name, Orientation orientation);

    ~MuLayout() override;

    Orientation getOrientation() const { return orientation; }
    void setSpacing(int spacingPx); ///< between children; metric 0 at first
    int getSpacing() const { return spacing; }
    void setDefaultFlags(unsigned flags) { defaultFlags = flags; } ///< of children still to come; `size` is 1
    unsigned getDefaultFlags() const { return defaultFlags; }
    void moveChild(MuElement* child, Where where, MuElement* reference = nullptr);
    void addGap(bool expand); ///< a gap as above a button row; `expand` makes the next children stretch by default

    virtual void clear(); ///< deletes all children, the last first
    virtual void setChildLayout(MuElement* child, unsigned flags, int size = 1);
    virtual void childrenChanged() {} ///< hook: children came, went or moved

    // MuContainer
    MuElement* getChild(int index) override;
    int getChildCount() override { return static_cast<int>(children.size()); }
    void adopt(MuElement* element) override;
    void remove(MuElement* element) override;

    // MuElement
    void setSize(const rfb::Point& size) override; ///< always lays out
    int getMinWidth(int height) override;
    int getMinHeight(int width) override;
    const char* getType() override { return "layout"; }
    plat::String getState() override;
    void doLayout() override;

protected:
    struct Child {
        MuElement* element;
        unsigned flags;
        int size;
    };

    MuLayout(const char* name, Orientation orientation);

    std::vector<Child> children; // owned

private:
    // Along is the main axis of the layout, across the other one.
    int minAlong(int across);
    int minAcross(int along);
    std::vector<Child>::iterator findChild(MuElement* element);
    void placeChild(const Child& child, int position, int extent, int across);

    Orientation orientation;
    int spacing;
    unsigned defaultFlags = Natural;
};

} // namespace mui

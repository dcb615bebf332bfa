// A dividing line.
#pragma once

#include "mui/MuElement.h"
#include "mui/MuLayout.h"

namespace mui {

/// A line along its orientation: solid in the text colour of its own style ("contentText" without one), or etched.
///
/// A solid line fills its whole extent, so its thickness is what the layout gives it; by itself it is one pixel, an
/// etched one two.
class MuLine : public MuElement {
public:
    enum class Type { Colour = 0, Etched = 1 };

    static MuLine* create(MuContainer* parent, const char* name, Type type = Type::Etched,
                          Orientation orientation = Orientation::Horizontal);

    Type getLineType() const { return type; }
    Orientation getOrientation() const { return orientation; }

    // MuElement
    const char* getType() override { return "line"; }
    plat::String getState() override;

protected:
    MuLine(const char* name, Type type, Orientation orientation);

private:
    Type type;
    Orientation orientation;
};

} // namespace mui

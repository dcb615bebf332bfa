// A thumb on a scale.
#pragma once

#include "mui/MuElement.h"
#include "mui/MuLayout.h"

namespace mui {

/// A whole number within limits. Raises EventChanged when the user moves the thumb.
class MuSlider : public MuElement {
public:
    static MuSlider* create(MuContainer* parent, const char* name, int min, int max,
                            Orientation orientation = Orientation::Horizontal);

    Orientation getOrientation() const { return orientation; }
    virtual void setRange(int min, int max); ///< keeps the value inside; a `max` below `min` counts as `min`
    int getMin() const { return min; }
    int getMax() const { return max; }
    virtual void setValue(int newValue); ///< clamped; raises no event
    int getValue() const { return value; }

    // MuElement
    const char* getType() override { return "slider"; }
    plat::String getState() override;
    bool handleCommand(const char* command, const char* argument) override;

protected:
    MuSlider(const char* name, Orientation orientation, int min, int max);

    int min;
    int max;
    int value;

private:
    Orientation orientation;
};

} // namespace mui

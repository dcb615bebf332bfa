// Controls that bring their label along, and forms of them.
#pragma once

namespace mui {

class MuContainer;

/// A control with a label at its left.
class MuLabelled {
public:
    virtual ~MuLabelled() = default;

    virtual int getLabelWidth() = 0; ///< pixels that the label wants, 0 without one
    /// The room of the label and the gap after it, in pixels; 0 for as much as it wants.
    virtual void setLabelColumn(int width, int gap) = 0;
};

/// Brings the labels of a form to one width, that of the widest, so that the fields begin on one line, a layout's
/// spacing (metric 0) after it. Concerns the shown children of `form` and of the unnamed containers in it; those
/// without a label stay as they are. To be called anew when labels or the size of text change. Gives the pixels from
/// the left edge to the fields, 0 without labels.
int alignLabels(MuContainer* form);

} // namespace mui

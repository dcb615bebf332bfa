// Plain text.
#pragma once

#include "mui/MuElement.h"

namespace mui {

class MuContainer;

/// A text without markup, which wraps at blanks.
class MuStatic : public MuElement {
public:
    enum class Align { Left = 0, Centre = 1, Right = 2 };

    static MuStatic* create(MuContainer* parent, const char* name, const char* text, Align align = Align::Left);

    virtual void setText(const char* text);
    const char* getText() const { return getLabel(); }
    void setBold(bool bold); ///< sets the weight of the own style
    bool isBold();
    Align getAlign() const { return align; }
    virtual void setWrap(bool wrap) = 0; ///< on at first

    // MuElement
    const char* getType() override { return "static"; }
    plat::String getState() override;

protected:
    MuStatic(const char* name, const char* text, Align align);

private:
    Align align;
};

} // namespace mui

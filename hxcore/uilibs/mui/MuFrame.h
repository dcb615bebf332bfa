// A box round one element.
#pragma once

#include "mui/MuContainer.h"

namespace mui {

/// Holds one child inside a margin, on a background of its own if its style states one.
class MuFrame : public MuContainerSingle {
public:
    enum class Type {
        Plain = 0,  ///< nothing to see but the background
        Line = 1,   ///< a thin line all round
        Sunken = 2, ///< a sunken bevel
        Titled = 3, ///< an etched line with the title in it
    };

    /// A title makes it Titled whatever `type` says.
    static MuFrame* create(MuContainer* parent, const char* name, Type type = Type::Plain, const char* title = nullptr);

    Type getFrameType() const { return type; }
    virtual void
    setMargin(const rfb::Point& marginPx); ///< across (left, right) and down (top, bottom); metric 3 at first
    void setMargin(int marginPx) { setMargin({marginPx, marginPx}); }
    const rfb::Point& getMargin() const { return margin; }
    virtual void setTitle(const char* title);

    // MuElement
    void setSize(const rfb::Point& size) override; ///< always lays out
    const char* getType() override { return "frame"; }
    plat::String getState() override;

protected:
    MuFrame(const char* name, Type type, const char* title);

    rfb::Point margin;

private:
    Type type;
};

} // namespace mui

// The widget side of a line.
#pragma once

#include "mui/MuLine.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/Widget.h"

namespace mui {

class MuLineWvw : public MuLine {
public:
    MuLineWvw(const char* name, Type type, Orientation orientation);
    ~MuLineWvw() override { common = nullptr; }

private:
    class Line : public wvw::Widget {
    public:
        explicit Line(const MuLineWvw* line) : owner(line) {}
        void paint(rfb::FullFramePixelBuffer& pb) override;
        rfb::Point getPreferredSize() override;

    private:
        const MuLineWvw* owner;
    };

    Line widget;
    MuCommonWvw commonWvw;
};

} // namespace mui

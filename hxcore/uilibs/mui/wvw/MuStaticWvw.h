// The widget side of a plain text.
#pragma once

#include "mui/MuStatic.h"
#include "mui/wvw/MuCommonWvw.h"
#include "wvw/WLabel.h"

namespace mui {

/// The text is shown literally, whatever it holds. It begins on the element's own left edge.
class MuStaticWvw : public MuStatic {
public:
    MuStaticWvw(const char* name, const char* text, Align align);
    ~MuStaticWvw() override { common = nullptr; }

    // MuStatic
    void setText(const char* text) override;
    void setWrap(bool wrap) override { widget.setWrap(wrap); }

private:
    wvw::WLabel widget;
    MuCommonWvw commonWvw;
};

} // namespace mui

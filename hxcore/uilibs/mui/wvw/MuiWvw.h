// The toolkit object of elements that are drawn by widgets.
#pragma once

#include "mui/Mui.h"
#include "rfb/Rect.h"
#include "wvw/WStyle.h"

namespace mui {

class MuButton;
class MuCheck;
class MuChoice;
class MuEdit;
class MuElement;
class MuFrame;
class MuImage;
class MuLayout;
class MuLine;
class MuList;
class MuPager;
class MuScroll;
class MuSlider;
class MuSplitter;
class MuStatic;
class MuText;
struct MuStyle;

/// Theme, default style, and one operation for each kind of element whose twin needs no window.
class MuiWvw : public Mui {
public:
    MuiWvw();

    static MuiWvw* instance(); ///< the current one; asserts that it is of this class

    wvw::WStyle getStyle() const;                              ///< for new dialogs
    wvw::WStyle getStyle(const MuStyle& style) const;          ///< with the font and colours of an element's style
    unsigned getStyleGeneration() const { return generation; } ///< another number after each refreshTheme

    /// Takes theme, scale and fonts anew and passes them on to all dialogs.
    void refreshTheme();

    /// Fills the factories of the elements whose twins need no window: no display is needed for them.
    static void fillWidgetFactories();

    // What the factories call
    static MuButton* makeButton(const char* name, const char* label, int type, unsigned flags);
    static MuCheck* makeCheck(const char* name, const char* label, void* group);
    static MuChoice* makeChoice(const char* name, const char* label, bool editable);
    static MuEdit* makeEdit(const char* name, const char* label, int type);
    static MuFrame* makeFrame(const char* name, int type, const char* title);
    static MuImage* makeImage(const char* name, const char* imageName, const rfb::Point& size);
    static MuLayout* makeLayout(const char* name, int orientation);
    static MuLine* makeLine(const char* name, int type, int orientation);
    static MuList* makeList(const char* name, unsigned flags);
    static MuPager* makePager(const char* name, int type);
    static MuScroll* makeScroll(const char* name, unsigned style);
    static MuSlider* makeSlider(const char* name, int orientation, int min, int max);
    static MuSplitter* makeSplitter(const char* name, int orientation, bool thin, int mode);
    static MuStatic* makeStatic(const char* name, const char* text, int align);
    static MuText* makeText(const char* name, const char* markup, int align);

private:
    wvw::WStyle baseStyle;
    unsigned generation = 1;
};

} // namespace mui

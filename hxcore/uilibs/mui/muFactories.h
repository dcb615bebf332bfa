// Where elements get their twins from.
#pragma once

#include "rfb/Rect.h"

namespace mui {

class MuAutoHider;
class MuButton;
class MuCheck;
class MuChoice;
class MuContainer;
class MuDialog;
class MuEdit;
class MuFrame;
class MuImage;
class MuLayout;
class MuLine;
class MuList;
class MuPager;
class MuPopupMenu;
class MuScroll;
class MuSlider;
class MuSplitter;
class MuStatic;
class MuSuperbox;
class MuText;

// Each makes an element together with its widget, for a create function to add to its parent. All are null until the
// binding fills them at start; the enums travel as int, in the values of the element's header.
extern MuButton* (*muButtonFactory)(const char* name, const char* label, int type, unsigned flags);
extern MuCheck* (*muCheckFactory)(const char* name, const char* label, void* group);
extern MuChoice* (*muChoiceFactory)(const char* name, const char* label, bool editable);
extern MuDialog* (*muDialogFactory)(const char* name, const char* title, const rfb::Point& size, unsigned flags,
                                    MuDialog* parent);
extern MuEdit* (*muEditFactory)(const char* name, const char* label, int type);
extern MuFrame* (*muFrameFactory)(const char* name, int type, const char* title);
extern MuImage* (*muImageFactory)(const char* name, const char* imageName, const rfb::Point& size);
extern MuLayout* (*muLayoutFactory)(const char* name, int orientation);
extern MuLine* (*muLineFactory)(const char* name, int type, int orientation);
extern MuList* (*muListFactory)(const char* name, unsigned flags);
extern MuPager* (*muPagerFactory)(const char* name, int type);
extern MuPopupMenu* (*muPopupMenuFactory)(const char* name);
extern MuScroll* (*muScrollFactory)(const char* name, unsigned style);
extern MuSlider* (*muSliderFactory)(const char* name, int orientation, int min, int max);
extern MuSplitter* (*muSplitterFactory)(const char* name, int orientation, bool thin, int mode);
extern MuStatic* (*muStaticFactory)(const char* name, const char* text, int align);
extern MuSuperbox* (*muSuperboxFactory)(const char* name, const char* label, void* callback, int popupHeight);
extern MuText* (*muTextFactory)(const char* name, const char* markup, int align);
extern MuAutoHider* (*muAutoHiderFactory)(MuDialog* dialog);

} // namespace mui

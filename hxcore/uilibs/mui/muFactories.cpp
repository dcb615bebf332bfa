#include "mui/muFactories.h"

namespace mui {

MuButton* (*muButtonFactory)(const char*, const char*, int, unsigned) = nullptr;
MuCheck* (*muCheckFactory)(const char*, const char*, void*) = nullptr;
MuChoice* (*muChoiceFactory)(const char*, const char*, bool) = nullptr;
MuDialog* (*muDialogFactory)(const char*, const char*, const rfb::Point&, unsigned, MuDialog*) = nullptr;
MuEdit* (*muEditFactory)(const char*, const char*, int) = nullptr;
MuFrame* (*muFrameFactory)(const char*, int, const char*) = nullptr;
MuImage* (*muImageFactory)(const char*, const char*, const rfb::Point&) = nullptr;
MuLayout* (*muLayoutFactory)(const char*, int) = nullptr;
MuLine* (*muLineFactory)(const char*, int, int) = nullptr;
MuList* (*muListFactory)(const char*, unsigned) = nullptr;
MuPager* (*muPagerFactory)(const char*, int) = nullptr;
MuPopupMenu* (*muPopupMenuFactory)(const char*) = nullptr;
MuScroll* (*muScrollFactory)(const char*, unsigned) = nullptr;
MuSlider* (*muSliderFactory)(const char*, int, int, int) = nullptr;
MuSplitter* (*muSplitterFactory)(const char*, int, bool, int) = nullptr;
MuStatic* (*muStaticFactory)(const char*, const char*, int) = nullptr;
MuSuperbox* (*muSuperboxFactory)(const char*, const char*, void*, int) = nullptr;
MuText* (*muTextFactory)(const char*, const char*, int) = nullptr;
MuAutoHider* (*muAutoHiderFactory)(MuDialog*) = nullptr;

} // namespace mui

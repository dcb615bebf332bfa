#include "zefgallery/Gallery.h"

#include "hxutil/metrics.h"
#include "mui/MuDialog.h"
#include "mui/MuLayout.h"
#include "mui/MuList.h"
#include "mui/MuPager.h"
#include "mui/MuScroll.h"
#include "mui/MuSplitter.h"
#include "mui/MuText.h"
#include "os/AppLoop.h"
#include "plat/Xml.h"

namespace gallery {
namespace {
struct Row {
    const char* name;
    MakePage make;
};
constexpr Row rows[] = {
    {"Buttons", makeButtons},       {"Choices", makeChoices}, {"Fields", makeFields},   {"Texts", makeTexts},
    {"Scripts", makeScripts},       {"Lists", makeLists},     {"Frames", makeFrames},   {"Containers", makeContainers},
    {"Infoframes", makeInfoFrames}, {"Images", makeImages},   {"Windows", makeWindows},
};
} // namespace

mui::MuLayout* row(mui::MuLayout* parent) {
    auto* made = mui::MuLayout::create(parent, "", mui::Orientation::Horizontal);
    made->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Centre);
    return made;
}

mui::MuLayout* column(mui::MuLayout* parent) { return mui::MuLayout::create(parent, "", mui::Orientation::Vertical); }

void heading(mui::MuLayout* parent, const char* text) {
    auto* made = mui::MuText::create(parent, "", plat::xmlEscape(text).c_str());
    made->ownStyle().weight = 700;
    made->styleChanged();
}

Gallery::Gallery() : dialog(mui::MuDialog::create("gallery", "Gallery", {hxutil::scaled(1800), hxutil::scaled(1300)})) {
    dialog->addObserver(this, true);
    auto* split = mui::MuSplitter::create(dialog.get(), "split", mui::Orientation::Horizontal);
    names = mui::MuList::create(split, "names", mui::MuList::KeepSelection);
    names->addColumn(mui::MuList::ColumnType::Text, nullptr);
    pager = mui::MuPager::create(split, "pages", mui::MuPager::Type::Plain);
    split->setSizes({hxutil::scaled(300), 0});
    for (const Row& each : rows) {
        auto* scroll = mui::MuScroll::create(pager, "");
        auto* page = mui::MuLayout::create(scroll, each.name, mui::Orientation::Vertical);
        page->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Start);
        pages.push_back(each.make(dialog.get(), page));
        pager->addPage(scroll, each.name);
        names->addRow({plat::String(each.name)});
    }
    names->setSelected(0);
    pager->setPage(0);
    dialog->setDefaultFocus(names);
    dialog->setShown(true);
}

Gallery::~Gallery() {
    pages.clear();
    dialog->addObserver(this, false);
}

void Gallery::muChanged(mui::MuElement* element) {
    if (element == names && names->getSelected() >= 0)
        pager->setPage(names->getSelected());
}

void Gallery::muClosed(mui::MuDialog* closed) {
    if (closed == dialog.get())
        os::AppLoop::exit(0);
}

} // namespace gallery

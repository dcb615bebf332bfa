#include "zefgallery/Gallery.h"

#include "hxutil/metrics.h"
#include "mui/MuDialog.h"
#include "mui/MuLayout.h"
#include "mui/MuList.h"
#include "mui/MuPager.h"
#include "mui/MuScroll.h"
#include "mui/MuSpacer.h"
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
    {"Infoframes", makeInfoFrames}, {"Images", makeImages},   {"Windows", makeWindows}, {"Forms", makeForms},
    {"States", makeStates},
};
} // namespace

mui::MuLayout* row(mui::MuLayout* parent) {
    auto* made = mui::MuLayout::create(parent, "", mui::Orientation::Horizontal);
    made->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Centre);
    return made;
}

mui::MuLayout* column(mui::MuLayout* parent) { return mui::MuLayout::create(parent, "", mui::Orientation::Vertical); }

mui::MuLayout* group(mui::MuLayout* page, const char* title) {
    mui::MuLayout* made = column(page);
    page->setChildLayout(made, mui::MuLayout::Natural | mui::MuLayout::Fill);
    auto* heading = mui::MuText::create(made, "", plat::xmlEscape(title).c_str());
    heading->ownStyle().weight = 700;
    heading->styleChanged();
    return made;
}

Gallery::Gallery() : dialog(mui::MuDialog::create("gallery", "Gallery", {hxutil::scaled(1900), hxutil::scaled(1340)})) {
    dialog->setMinSize({hxutil::scaled(1500), hxutil::scaled(800)}); // rows of buttons stay whole
    dialog->addObserver(this, /*add=*/true);
    auto* split = mui::MuSplitter::create(dialog.get(), "split", mui::Orientation::Horizontal);
    names = mui::MuList::create(split, "names", mui::MuList::KeepSelection);
    names->addColumn(mui::MuList::ColumnType::Text, nullptr);
    // The pages stand a step off the handle.
    auto* right = mui::MuLayout::create(split, "", mui::Orientation::Horizontal);
    right->setSpacing(0);
    mui::MuSpacer::create(right, "", {mui::Mui::instance()->metric(mui::MetricSpacing), 0});
    pager = mui::MuPager::create(right, "pages", mui::MuPager::Type::Plain);
    right->setChildLayout(pager, mui::MuLayout::Stretch);
    split->setSizes({hxutil::scaled(300), 0});
    for (const Row& each : rows) {
        auto* scroll = mui::MuScroll::create(pager, "");
        auto* page = mui::MuLayout::create(scroll, each.name, mui::Orientation::Vertical);
        page->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Start);
        page->setSpacing(mui::Mui::instance()->metric(mui::MetricLargeGap));
        pages.push_back(each.make(dialog.get(), page));
        pager->addPage(scroll, each.name);
        names->addRow({plat::String(each.name)});
    }
    names->setSelected(0);
    pager->setPage(0);
    dialog->setDefaultFocus(names);
    dialog->setShown(/*shown=*/true);
}

Gallery::~Gallery() {
    pages.clear();
    dialog->addObserver(this, /*add=*/false);
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

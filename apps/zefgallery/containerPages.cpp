// Frames, containers, info frames, images.
#include "hxutil/metrics.h"
#include "mui/MuAnimation.h"
#include "mui/MuButton.h"
#include "mui/MuCheck.h"
#include "mui/MuEdit.h"
#include "mui/MuFrame.h"
#include "mui/MuImage.h"
#include "mui/MuInfoFrame.h"
#include "mui/MuLayout.h"
#include "mui/MuPager.h"
#include "mui/MuScroll.h"
#include "mui/MuSplitter.h"
#include "mui/MuText.h"
#include "mui/Mui.h"
#include "plat/SysColors.h"
#include "zefgallery/pages.h"

#include <string>

namespace gallery {
namespace {

class FramesPage : public Page {
public:
    explicit FramesPage(mui::MuLayout* page) {
        page->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Fill);
        page->setSpacing(mui::Mui::instance()->metric(mui::MetricSpacing));
        const std::pair<mui::MuFrame::Type, const char*> kinds[] = {{mui::MuFrame::Type::Plain, "Plain"},
                                                                    {mui::MuFrame::Type::Line, "Line"},
                                                                    {mui::MuFrame::Type::Sunken, "Sunken"}};
        for (const auto& [type, text] : kinds)
            mui::MuText::create(mui::MuFrame::create(page, "frame", type), "text", text);
        auto* titled = mui::MuFrame::create(page, "titled", mui::MuFrame::Type::Titled, "A title");
        mui::MuLayout* inside = mui::MuLayout::create(titled, "", mui::Orientation::Vertical);
        mui::MuCheck::create(inside, "check", "A box in it");
        mui::MuEdit::create(inside, "edit", "A field:")->setText("as wide as the frame");
        auto* coloured = mui::MuFrame::create(page, "coloured", mui::MuFrame::Type::Line);
        coloured->setBgColour("selectedBg");
        mui::MuText::create(coloured, "text", "A ground of its own");
        auto* endless = mui::MuFrame::create(page, "endless", mui::MuFrame::Type::Titled,
                                             "A title that is longer than the frame can be wide, whatever the window's "
                                             "width may be, so that it has to be cut somewhere before the corner");
        mui::MuText::create(endless, "text", "Under a title that is too long");
    }
};

class ContainersPage : public Page {
public:
    explicit ContainersPage(mui::MuLayout* page) {
        mui::MuLayout* tabs = group(page, "Tabs");
        auto* pager = mui::MuPager::create(tabs, "pager");
        for (const char* title : {"First", "Second page", "Третья", "A page with a title that is rather long"}) {
            auto* tab = mui::MuLayout::create(pager, title, mui::Orientation::Vertical);
            mui::MuText::create(tab, "text", title);
            mui::MuEdit::create(tab, "edit", "Field:");
            pager->addPage(tab, title);
        }
        mui::MuLayout* handles = group(page, "Handles to drag");
        auto* frame = mui::MuFrame::create(handles, "splitframe", mui::MuFrame::Type::Line);
        frame->setMargin(0);
        frame->setBgColour("contentBg");
        auto* split = mui::MuSplitter::create(frame, "split", mui::Orientation::Horizontal, /*thin=*/false,
                                              mui::MuSplitter::Mode::MinSizes);
        for (const char* text : {"Left", "Middle", "Right"})
            mui::MuText::create(mui::MuFrame::create(split, ""), text, text);
        split->setSizes({hxutil::scaled(300), hxutil::scaled(300), 0});
        handles->setChildLayout(frame, mui::MuLayout::Fixed, hxutil::scaled(120));
        mui::MuLayout* views = group(page, "A view onto more than fits");
        auto* scroll = mui::MuScroll::create(views, "scroll", mui::MuScroll::Both);
        auto* lines = mui::MuLayout::create(scroll, "lines", mui::Orientation::Vertical);
        for (int i = 0; i < 30; ++i)
            mui::MuCheck::create(lines, "line",
                                 ("Box number " + std::to_string(i + 1) +
                                  " with a label that is wide enough to need the other bar as well, "
                                  "which stands below when the window is not wide enough for all of it")
                                     .c_str());
        views->setChildLayout(scroll, mui::MuLayout::Fixed, hxutil::scaled(400));
    }
};

class InfoFramesPage : public Page {
public:
    explicit InfoFramesPage(mui::MuLayout* page) {
        using Kind = mui::MuInfoFrame::Kind;
        page->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Fill);
        page->setSpacing(mui::Mui::instance()->metric(mui::MetricSpacing));
        const std::pair<Kind, const char*> kinds[] = {
            {Kind::Success, "It worked."},
            {Kind::Notify, "Something that is good to know."},
            {Kind::Error, "It failed: the disk is full."},
            {Kind::Preference, "A preference that is worth a look."},
            {Kind::Warning, "Anybody may connect without a password."},
            {Kind::Locked,
             "Your administrator has set some of these options, and therefore they can't be changed here. "
             "This text is long enough to take two lines or more."}};
        int number = 0;
        for (const auto& [kind, text] : kinds) {
            frames.push_back(std::make_unique<mui::MuInfoFrame>(page, ("info" + std::to_string(number)).c_str(), kind,
                                                                text, number % 2 ? "more" : nullptr,
                                                                number % 2 ? "Learn more" : nullptr));
            ++number;
        }
    }

private:
    std::vector<std::unique_ptr<mui::MuInfoFrame>> frames;
};

class ImagesPage : public Page, private mui::MuObserver {
public:
    explicit ImagesPage(mui::MuLayout* page) {
        mui::MuLayout* named = group(page, "Images by name");
        mui::MuLayout* line = nullptr;
        int count = 0;
        for (const char* name : {"sdOkay",
                                 "sdWarning",
                                 "sdError",
                                 "sdUser",
                                 "sdHamburger",
                                 "sdAuth",
                                 "sdConn",
                                 "sdIdCheck",
                                 "security",
                                 "permissions",
                                 "connections",
                                 "privacy",
                                 "troubleshooting",
                                 "printing",
                                 "updatenotification",
                                 "expert",
                                 "user",
                                 "group",
                                 "global",
                                 "guest",
                                 "noguest",
                                 "accept",
                                 "deny",
                                 "prompt",
                                 "entryup",
                                 "entrydown",
                                 "badge1",
                                 "badge9",
                                 "badge9plus",
                                 "filedlg_file",
                                 "filedlg_folder",
                                 "filedlg_folder_noaccess",
                                 "statusError",
                                 "statusWarning",
                                 "statusInfo",
                                 "statusQuestion",
                                 "statusPrivate",
                                 "screenRecord",
                                 "connectionGraphic",
                                 "zefserver",
                                 "zefserverConnected",
                                 "FTClose",
                                 "FTPause",
                                 "FTPlay",
                                 "FTRetry",
                                 "FTFiles",
                                 "FTFail",
                                 "FTFileUNIX",
                                 "FTFolderUNIX",
                                 "pl_confirmed",
                                 "pl_unconfirmed",
                                 "pl_logo",
                                 "ZEFConnectLogo",
                                 "downArrow",
                                 "rightArrow"}) {
            if (count++ % 11 == 0)
                line = row(named);
            mui::MuImage::create(line, name, name)->setTooltip(name);
        }
        mui::MuLayout* waiting = group(page, "Waiting");
        mui::MuLayout* wheels = row(waiting);
        spinner = std::make_unique<mui::MuSpinner>(wheels, plat::isDarkMode());
        run = mui::MuCheck::create(wheels, "run", "&Turns");
        run->addObserver(this, /*add=*/true);
    }

    ~ImagesPage() override { run->addObserver(this, /*add=*/false); }

private:
    void muChanged(mui::MuElement*) override { spinner->setRunning(run->isChecked()); }

    std::unique_ptr<mui::MuSpinner> spinner; // stands still at first, so that a gallery at rest sleeps
    mui::MuCheck* run;
};

} // namespace

std::unique_ptr<Page> makeFrames(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<FramesPage>(page); }
std::unique_ptr<Page> makeContainers(mui::MuDialog*, mui::MuLayout* page) {
    return std::make_unique<ContainersPage>(page);
}
std::unique_ptr<Page> makeInfoFrames(mui::MuDialog*, mui::MuLayout* page) {
    return std::make_unique<InfoFramesPage>(page);
}
std::unique_ptr<Page> makeImages(mui::MuDialog*, mui::MuLayout* page) { return std::make_unique<ImagesPage>(page); }

} // namespace gallery

#include "mui/MuInfoFrame.h"

#include "hxutil/metrics.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuText.h"
#include "plat/MString.h"

namespace mui {
namespace {
constexpr int iconUnits = 32;
constexpr int iconGapUnits = 24;
constexpr int linkGapUnits = 8;

const char* imageOf(MuInfoFrame::Kind kind) {
    constexpr const char* names[] = {"infoframe_success",    "infoframe_notify",  "infoframe_error",
                                     "infoframe_preference", "infoframe_warning", "infoframe_locked"};
    return names[static_cast<int>(kind)];
}

rfb::Point iconSize() { return {hxutil::scaled(iconUnits), hxutil::scaled(iconUnits)}; }
} // namespace

MuInfoFrame::MuInfoFrame(MuContainer* parent, const char* name, Kind kind, const char* markup, const char* linkName,
                         const char* linkText, Callback* callback_)
    : callback(callback_), frame(MuFrame::create(parent, name)) {
    MuStyle style;
    style.bgColour = "helpBg";
    style.textColour = "helpText";
    frame->setStyle(style);
    frame->setMargin(hxutil::scaled(iconUnits) / 2);
    MuLayout* split = MuLayout::create(frame, "split", Orientation::Horizontal);
    split->setSpacing(hxutil::scaled(iconGapUnits));
    icon = MuImage::create(split, "icon", imageOf(kind), iconSize());
    split->setChildLayout(icon, MuLayout::Natural | MuLayout::Start);
    MuLayout* texts = MuLayout::create(split, "textLayout", Orientation::Vertical);
    texts->setSpacing(hxutil::scaled(linkGapUnits));
    split->setChildLayout(texts, MuLayout::Stretch | MuLayout::Centre);
    text = MuText::create(texts, "text", markup);
    text->setLinkCallback(this);
    if (!linkName)
        return;
    plat::MString link;
    link.a(plat::strFormat("app://infoframe//%s", linkName).c_str(), linkText);
    MuText::create(texts, "link", link.c_str())->setLinkCallback(this);
}

void MuInfoFrame::setKind(Kind kind) { icon->setImage(imageOf(kind), iconSize()); }

void MuInfoFrame::setText(const char* markup) { text->setText(markup); }

void MuInfoFrame::linkClicked(const char* href) {
    if (callback)
        callback->infoLinkClicked(this, href);
}

} // namespace mui

#include "mui/MuPopupNotification.h"

#include "hxutil/metrics.h"
#include "mui/MuFrame.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuLine.h"
#include "mui/MuSpacer.h"
#include "mui/MuText.h"
#include "plat/Markup.h"

namespace mui {
namespace {
constexpr int widthUnits = 640;
constexpr int imageUnits = 88;
constexpr int stripeUnits = 8;
constexpr int textGapUnits = 24;
constexpr int edge = 1; // pixels
constexpr unsigned windowFlags =
    MuDialog::Popup | MuDialog::NoFocusOnShow | MuDialog::NoDecoration | MuDialog::AutoHeight | MuDialog::FixedSize;
} // namespace

MuPopupNotification::MuPopupNotification(const char* imageName, const char* markup, int timeoutMs, Callback* target)
    : callback(target), dialog(MuDialog::create("notification", plat::Markup::strip(markup).c_str(),
                                                {hxutil::scaled(widthUnits), 0}, windowFlags)),
      timer(this) {
    dialog->setBgColour("contentBg");
    dialog->setTextColour("contentText");
    dialog->setMargin(0);
    // What the stripe and the body leave free of the frame is its edge.
    MuFrame* frame = MuFrame::create(dialog.get(), "frame");
    frame->setBgColour("disabledText");
    frame->setMargin({0, edge});
    MuLayout* parts = MuLayout::create(frame, "", Orientation::Horizontal);
    parts->setSpacing(0);
    MuLine* stripe = MuLine::create(parts, "stripe", MuLine::Type::Colour, Orientation::Vertical);
    stripe->setTextColour("customBigBtnBg");
    parts->setChildLayout(stripe, MuLayout::Fixed, hxutil::scaled(stripeUnits));
    MuFrame* body = MuFrame::create(parts, "");
    body->setBgColour("contentBg");
    parts->setChildLayout(body, MuLayout::Stretch);
    MuSpacer::create(parts, "", {edge, 0});
    MuLayout* column = MuLayout::create(body, "vertLayout", Orientation::Vertical);
    MuLayout* row = MuLayout::create(column, "layout", Orientation::Horizontal);
    row->setSpacing(hxutil::scaled(textGapUnits));
    const int imageSize = hxutil::scaled(imageUnits);
    MuImage* image = MuImage::create(row, "image", imageName, {imageSize, imageSize});
    row->setChildLayout(image, MuLayout::Natural | MuLayout::Start);
    MuFrame* textFrame = MuFrame::create(row, "textFrame");
    textFrame->setMargin(0);
    row->setChildLayout(textFrame, MuLayout::Stretch | MuLayout::Centre);
    MuText::create(textFrame, "text", markup);
    dialog->setMoveCallback(this);
    dialog->addObserver(this, /*add=*/true);
    dialog->nativeLayout();
    // Placed before it is seen.
    ui::PopupNotificationMgr::instance().add(this);
    dialog->setShown(true);
    if (timeoutMs > 0)
        timer.start(static_cast<unsigned>(timeoutMs));
}

MuPopupNotification::~MuPopupNotification() {
    end();
    dialog->addObserver(this, /*add=*/false);
}

void MuPopupNotification::end() {
    if (ended)
        return;
    ended = true;
    timer.cancel();
    dialog->setShown(false);
    ui::PopupNotificationMgr::instance().remove(this);
}

void MuPopupNotification::tellEnded() {
    if (ended)
        return;
    end();
    callback->popupEnded(this);
}

rfb::Point MuPopupNotification::popupSize() { return dialog->getSize(); }

void MuPopupNotification::movePopup(const rfb::Point& rootPosition) { dialog->setPosition(rootPosition); }

ui::PopupNotificationMgr::Screen MuPopupNotification::readScreen() {
    return {dialog->getScreenArea(), dialog->getScreenSize()};
}

bool MuPopupNotification::pressed(MuDialog*, MuElement*, const rfb::Point&) {
    if (!ended)
        callback->popupClicked(this);
    return true;
}

bool MuPopupNotification::timerExpired(plat::Timer*) {
    tellEnded();
    return false;
}

} // namespace mui

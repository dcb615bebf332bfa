#include "mui/MuPopupNotification.h"

#include "hxutil/metrics.h"
#include "mui/MuFrame.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuText.h"
#include "plat/Markup.h"

namespace mui {
namespace {
constexpr int widthUnits = 640;
constexpr int imageUnits = 88;
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
    MuFrame* frame = MuFrame::create(dialog.get(), "frame", MuFrame::Type::Line);
    MuLayout* column = MuLayout::create(frame, "vertLayout", Orientation::Vertical);
    MuLayout* row = MuLayout::create(column, "layout", Orientation::Horizontal);
    row->setSpacing(Mui::instance()->metric(MetricLargeGap));
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

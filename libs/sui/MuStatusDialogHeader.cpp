#include "sui/MuStatusDialogHeader.h"

#include "hxutil/NamedImagePixelBuffer.h"
#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "mui/MuImage.h"
#include "mui/MuSpacer.h"
#include "mui/MuStatic.h"
#include "rfb/renderOps.h"
#include "score/Mode.h"
#include "sui/StatusDialogModel.h"
#include "sui/TextStyle.h"

#include <algorithm>
#include <cstring>

namespace sui {
namespace {
constexpr TextStyle bannerStyle{120, 400, 0, "buttonText"};
constexpr int iconUnitsOfBar = 64;
constexpr int minSparePx = 16; // below it the text leaves the middle

int barIconPx() { return hxutil::scaled(iconUnitsOfBar); }

const char* alertImage(uint32_t severity) {
    switch (severity) {
    case 1:
        return "sdWarning";
    case 2:
        return "sdError";
    default:
        return "sdOkay";
    }
}

// The icon in the middle of a square of the bar's icon size, with the count in its lower right corner.
mui::MuButton::PixelBufferPtr composeBadge(const hxutil::NamedImagePixelBuffer& icon, uint32_t count) {
    const int size = barIconPx();
    auto pixels = std::make_shared<rfb::ManagedPixelBuffer>(rfb::pfARGB8888(), size, size);
    rfb::fillRect(*pixels, pixels->getRect(), 0);
    const rfb::Rect iconRect = icon.getRect();
    rfb::compose(*pixels, {(size - iconRect.width()) / 2, (size - iconRect.height()) / 2}, icon, iconRect, rfb::copyOp);
    const plat::String name = plat::strFormat("badge%u%s", std::min(count, 9U), count > 9 ? "plus" : "");
    const hxutil::NamedImagePixelBuffer::Ptr number = hxutil::NamedImagePixelBuffer::get(name.c_str());
    const rfb::Rect numberRect = number->getRect();
    rfb::compose(*pixels, {size - numberRect.width(), size - numberRect.height()}, *number, numberRect, rfb::overOp);
    return pixels;
}

void setImages(mui::MuButton* button, const char* name, uint32_t count) {
    const plat::String hoverName = plat::strFormat("%s_hover", name);
    const rfb::Point size(barIconPx(), barIconPx());
    if (count == 0) {
        button->setImage(mui::MuButton::ImageNormal, name, size);
        button->setImage(mui::MuButton::ImageHover, hoverName.c_str(), size);
        return;
    }
    const auto icon = hxutil::NamedImagePixelBuffer::getThemed(name, size);
    const auto hover = hxutil::NamedImagePixelBuffer::getThemed(hoverName.c_str(), size);
    button->setImage(mui::MuButton::ImageNormal, name, composeBadge(*icon, count));
    button->setImage(mui::MuButton::ImageHover, hoverName.c_str(), composeBadge(*hover, count));
}
} // namespace

MuStatusDialogHeader::MuStatusDialogHeader(mui::MuContainer* dialog)
    : frame(mui::MuFrame::create(dialog, "header")),
      row(mui::MuLayout::create(frame, "", mui::Orientation::Horizontal)) {
    frame->setBgColour("buttonBg");
    frame->setMargin({hxutil::scaled(18), hxutil::scaled(10)});
    row->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Centre);
    logo = mui::MuImage::create(row, "logo", "ZEFConnectLogo", {barIconPx(), barIconPx()});
    leftSpacer = mui::MuSpacer::create(row, "leftSpacer");
    text = mui::MuStatic::create(row, "text", "");
    text->setWrap(/*wrap=*/false);
    bannerStyle.applyTo(text);
    mui::MuSpacer* rest = mui::MuSpacer::create(row, "rightSpacer");
    row->setChildLayout(rest, mui::MuLayout::Stretch);

    mui::MuLayout* buttons = mui::MuLayout::create(row, "", mui::Orientation::Horizontal);
    alert = addButton(buttons, "alert", LOC_TEXT("sui_statusdialog_alert_tooltip"));
    user = addButton(buttons, "user", LOC_TEXT("sui_statusdialog_connections_tooltip"));
    setting = addButton(buttons, "setting", LOC_TEXT("sui_statusdialog_menu_tooltip"));
    setImages(setting, "sdHamburger", 0);
}

mui::MuButton* MuStatusDialogHeader::addButton(mui::MuLayout* buttons, const char* name, const char* tooltip) {
    mui::MuButton* button = mui::MuButton::create(buttons, name, nullptr, mui::MuButton::Type::Image);
    button->setTooltip(tooltip);
    return button;
}

void MuStatusDialogHeader::update(const StatusDialogModel& model) {
    plat::DString banner;
    banner.append(model.banner.c_str());
    if (model.hasMode)
        banner.format(" - %s", score::productModeText(score::productMode()));
    text->setText(banner.c_str());
    setImages(alert, alertImage(model.severity), model.eventCount);
    setImages(user, "sdUser", model.connections);
    updateBadge(model.editionBadge.get());
}

void MuStatusDialogHeader::updateBadge(const char* edition) {
    if (!edition) {
        if (badge)
            badge->setShown(/*shown=*/false);
        return;
    }
    if (!badge) {
        badge = mui::MuImage::create(row, "editionBadge", nullptr);
        row->moveChild(badge, mui::MuLayout::Where::After, logo);
    }
    if (strcmp(badge->getImageName() ? badge->getImageName() : "", edition) != 0)
        badge->setImage(edition);
    badge->setShown(/*shown=*/true);
}

void MuStatusDialogHeader::centreText(int widthPx) {
    const int gap = row->getSpacing();
    const int rowWidth = widthPx - 2 * frame->getMargin().x;
    int spare = rowWidth / 2 - text->getMinWidth(0) / 2 - barIconPx() - gap;
    if (badge && badge->isShown())
        spare -= badge->getMinWidth(0) + gap;
    if (spare < minSparePx) {
        row->setChildLayout(leftSpacer, mui::MuLayout::Stretch);
        return;
    }
    // The spare room holds the spacer and the gap behind it.
    row->setChildLayout(leftSpacer, mui::MuLayout::Fixed, spare - gap);
}

} // namespace sui

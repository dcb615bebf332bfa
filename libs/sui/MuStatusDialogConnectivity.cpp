#include "sui/MuStatusDialogConnectivity.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "loc/format.h"
#include "mui/MuSpacer.h"
#include "mui/MuStatic.h"
#include "mui/MuText.h"
#include "mui/Mui.h"
#include "product/ProductUri.h"
#include "sui/StatusDialogModel.h"
#include "sui/TextStyle.h"

namespace sui {
namespace {
constexpr TextStyle bodyStyle{120, 400, 0, "contentText"};
constexpr int arrowUnits = 20;

plat::String detailHtml(const char* fromCore) {
    const plat::String url = product::productUri("/download/viewer/");
    const plat::String safeUrl = escapedText(url.c_str());
    if (!fromCore || !*fromCore)
        return loc::formatted(LOC_RAW("sui_statusdialog_conn_html_fmt"), {safeUrl});
    plat::DString html(fromCore);
    html.append("<br/><br/>");
    loc::format(html, LOC_RAW("sui_statusdialog_conn_sign_in_html_fmt"), {safeUrl});
    return html.take();
}
} // namespace

MuStatusDialogConnectivity::MuStatusDialogConnectivity(mui::MuContainer* parent, plat::Markup::LinkCallback* links,
                                                       Callback* target)
    : callback(target), block(mui::MuLayout::create(parent, "connectivity", mui::Orientation::Vertical)) {
    block->setSpacing(mui::Mui::instance()->metric(mui::MetricLargeGap));
    addHeading(block, LOC_TEXT("sui_statusdialog_connectivity"));
    mui::MuLayout* body = mui::MuLayout::create(block, "", mui::Orientation::Vertical);
    const TitleRow row(body, "", "nhIm", "sdConn", "connText", LOC_TEXT("sui_statusdialog_noconnectivity"));
    connText = row.title;

    detailRow = addTextRow(body, "");
    connDetail = mui::MuText::create(detailRow, "connDetail", "");
    detailRow->setChildLayout(connDetail, mui::MuLayout::Stretch);
    bodyStyle.applyTo(connDetail);
    connDetail->setLinkCallback(links);
    detailRow->setShown(/*shown=*/false);
    addOtherWays(body);
}

MuStatusDialogConnectivity::~MuStatusDialogConnectivity() = default;

void MuStatusDialogConnectivity::addOtherWays(mui::MuContainer* parent) {
    const int columnPx = hxutil::scaled(iconUnits);
    const int arrowPx = hxutil::scaled(arrowUnits);
    otherWaysRow = mui::MuLayout::create(parent, "", mui::Orientation::Horizontal);
    otherWaysRow->setSpacing(0);
    otherWaysRow->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Centre);
    // The arrow stands in the middle of the icon column.
    mui::MuSpacer::create(otherWaysRow, "", {(columnPx - arrowPx) / 2, 0});
    arrowBtn =
        mui::MuButton::create(otherWaysRow, "arrowBtn", nullptr, mui::MuButton::Type::Image, mui::MuButton::NoFocus);
    const int behindArrow = columnPx - arrowPx - (columnPx - arrowPx) / 2;
    mui::MuSpacer::create(otherWaysRow, "", {behindArrow + hxutil::scaled(iconGapUnits), 0});
    otherWaysBtn = mui::MuButton::create(otherWaysRow, "otherWaysBtn", LOC_TEXT("sui_statusdialog_otherways"),
                                         mui::MuButton::Type::Link);
    arrowBtn->addObserver(this, /*add=*/true);
    otherWaysBtn->addObserver(this, /*add=*/true);

    otherWaysList = addTextRow(parent, "");
    otherWays = mui::MuStatic::create(otherWaysList, "otherWays", "");
    otherWaysList->setChildLayout(otherWays, mui::MuLayout::Stretch);
    bodyStyle.applyTo(otherWays);
    otherWaysRow->setShown(/*shown=*/false);
    showList(/*open=*/false);
}

void MuStatusDialogConnectivity::showList(bool open) {
    isOpen = open;
    const int arrowPx = hxutil::scaled(arrowUnits);
    arrowBtn->setImage(open ? "downArrow" : "rightArrow", {arrowPx, arrowPx});
    otherWaysList->setShown(open && otherWaysRow->isShown());
}

void MuStatusDialogConnectivity::update(const StatusDialogModel& model) {
    const bool connected = !model.connText.isNull();
    connText->setText(connected ? model.connText.c_str() : LOC_TEXT("sui_statusdialog_noconnectivity"));
    detailRow->setShown(connected);
    if (connected)
        connDetail->setText(
            styledHtml(bodyStyle, detailHtml(model.connDetailHtml.get()).c_str(), themedLinkColour()).c_str());

    plat::DString all;
    for (const plat::String& way : model.otherWays)
        all.append(all.isEmpty() ? "" : "\n").append(way);
    otherWays->setText(all.c_str());
    otherWaysRow->setShown(model.otherWays.size() >= 2);
    otherWaysList->setShown(isOpen && otherWaysRow->isShown());
}

void MuStatusDialogConnectivity::muActivated(mui::MuElement*) {
    showList(!isOpen);
    callback->blockResized();
}

} // namespace sui

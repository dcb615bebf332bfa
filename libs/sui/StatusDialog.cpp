#include "sui/StatusDialog.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "mui/MuFrame.h"
#include "mui/MuLine.h"
#include "mui/MuPopupMenu.h"
#include "mui/MuText.h"
#include "mui/Mui.h"
#include "score/StatusEvent.h"
#include "sui/MuStatusDialogHeader.h"
#include "sui/MuStatusDialogSecurity.h"
#include "sui/TextStyle.h"

namespace sui {
namespace {
constexpr int widthUnits = 1560;
constexpr int marginUnits = 70;
constexpr int dividerUnits = 4;
constexpr TextStyle footerStyle{120, 700, 0, "#ffffff"};
} // namespace

StatusDialog::StatusDialog(score::StatusDb* info, score::StatusEventDb* eventDb, Callback* target,
                           plat::Markup::LinkCallback* links)
    : StatusObserver(info, eventDb), infoDb(info), events(eventDb), callback(target),
      dialog(mui::MuDialog::create("statusdialog", LOC_TEXT("sui_statusdialog_title"), {hxutil::scaled(widthUnits), 1},
                                   mui::MuDialog::FixedSize | mui::MuDialog::NoHide | mui::MuDialog::AutoHeight)),
      moreMenu(mui::MuPopupMenu::create("moreMenu")) {
    dialog->setBgColour("contentBg");
    dialog->setMinSize({hxutil::scaled(widthUnits), hxutil::scaled(1)});
    dialog->setMargin(0);
    header = std::make_unique<MuStatusDialogHeader>(dialog.get());
    dialog->setPanelPosition(header->getFrame(), mui::MuDialog::PanelTop);
    addMainBlocks(links);
    addFooter(links);
    header->update(model);
    dialog->addObserver(this, /*add=*/true);
    layOut();
}

StatusDialog::~StatusDialog() { dialog->addObserver(this, /*add=*/false); }

void StatusDialog::addMainBlocks(plat::Markup::LinkCallback* links) {
    const mui::Mui& mui = *mui::Mui::instance();
    mui::MuFrame* frame = mui::MuFrame::create(dialog.get(), "main");
    frame->setMargin(hxutil::scaled(marginUnits));
    mui::MuLayout* column = mui::MuLayout::create(frame, "", mui::Orientation::Vertical);
    column->setSpacing(mui.metric(mui::MetricLargeGap) + mui.metric(mui::MetricSpacing));
    connectivity = std::make_unique<MuStatusDialogConnectivity>(
        column, links, static_cast<MuStatusDialogConnectivity::Callback*>(this));
    mui::MuLine* divider = mui::MuLine::create(column, "divider", mui::MuLine::Type::Colour);
    divider->setTextColour("disabledText");
    column->setChildLayout(divider, mui::MuLayout::Fixed, hxutil::scaled(dividerUnits));
    security = std::make_unique<MuStatusDialogSecurity>(column, links);
}

void StatusDialog::addFooter(plat::Markup::LinkCallback* links) {
    footerFrame = mui::MuFrame::create(dialog.get(), "footerFrame");
    dialog->setPanelPosition(footerFrame, mui::MuDialog::PanelBottom);
    footerFrame->setBgColour("#288cf4");
    footerText = mui::MuText::create(footerFrame, "footerText", "", mui::MuText::Align::Centre);
    footerText->setLinkCallback(links);
    footerFrame->setShown(/*shown=*/false);
}

void StatusDialog::refresh() {
    StatusDialogModel fresh = StatusDialogModel::from(*infoDb, *events, callback->connectionCount());
    if (fresh == model)
        return;
    model = std::move(fresh);
    header->update(model);
    connectivity->update(model);
    security->update(model);
    callback->statusChanged();
    updateFooter();
    layOut();
}

void StatusDialog::updateFooter() {
    if (!model.footerHtml.isNull()) {
        TextStyle style = footerStyle;
        style.weight = weightFor(style.size, style.weight);
        footerText->setText(styledHtml(style, model.footerHtml.c_str(), footerStyle.colour).c_str());
    }
    footerFrame->setShown(!model.footerHtml.isNull());
}

void StatusDialog::layOut() {
    header->centreText(dialog->getSize().x > 0 ? dialog->getSize().x : hxutil::scaled(widthUnits));
    dialog->nativeLayout();
}

void StatusDialog::muActivated(mui::MuElement* element) {
    if (element == header->getAlertButton())
        callback->openInfoCenter("status");
    else if (element == header->getUserButton())
        callback->openInfoCenter("connections");
    else if (element == header->getSettingButton())
        moreMenu->showUnder(element, /*rightAligned=*/true);
}

} // namespace sui

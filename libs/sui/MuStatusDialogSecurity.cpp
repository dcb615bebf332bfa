#include "sui/MuStatusDialogSecurity.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuSpacer.h"
#include "mui/MuStatic.h"
#include "mui/MuText.h"
#include "mui/Mui.h"
#include "score/Mode.h"
#include "sui/StatusDialogModel.h"
#include "sui/TextStyle.h"
#include "svr/SAuthentication.h"

namespace sui {
namespace {
constexpr TextStyle bodyStyle{120, 400, 0, "contentText"};
constexpr int shieldUnits = 32;

// A bold line and the value below it.
plat::String namedValue(const char* name, const char* value) {
    const TextStyle boldStyle{bodyStyle.size, weightFor(bodyStyle.size, 700), 0, bodyStyle.colour};
    plat::DString html;
    html.format("<span style=\"%s\">%s</span><br/>%s", boldStyle.css().c_str(), escapedText(name).c_str(),
                escapedText(value).c_str());
    return styledHtml(bodyStyle, html.c_str(), nullptr);
}
} // namespace

MuStatusDialogSecurity::MuStatusDialogSecurity(mui::MuContainer* parent, plat::Markup::LinkCallback* links) {
    const int largeGap = mui::Mui::instance()->metric(mui::MetricLargeGap);
    mui::MuLayout* block = mui::MuLayout::create(parent, "security", mui::Orientation::Vertical);
    block->setSpacing(largeGap);
    addHeading(block, LOC_TEXT("sui_statusdialog_security"));
    idBlock = mui::MuLayout::create(block, "", mui::Orientation::Vertical);
    idBlock->setSpacing(largeGap);
    addIdentity(idBlock);
    addAuthentication(mui::MuLayout::create(block, "", mui::Orientation::Vertical), links);
}

void MuStatusDialogSecurity::addIdentity(mui::MuContainer* parent) {
    mui::MuLayout* words = mui::MuLayout::create(parent, "", mui::Orientation::Vertical);
    TitleRow(words, "", "idIm", "sdIdCheck", "idTitle", LOC_TEXT("sui_statusdialog_id_check"));
    mui::MuLayout* messageRow = addTextRow(words, "");
    mui::MuStatic* message = mui::MuStatic::create(messageRow, "idMsg", LOC_TEXT("sui_statusdialog_id_desc"));
    messageRow->setChildLayout(message, mui::MuLayout::Stretch);
    bodyStyle.applyTo(message);

    idValues = addTextRow(parent, "");
    mui::MuLayout* values = mui::MuLayout::create(idValues, "", mui::Orientation::Horizontal);
    idValues->setChildLayout(values, mui::MuLayout::Stretch);
    values->setSpacing(mui::Mui::instance()->metric(mui::MetricLargeGap));
    values->setDefaultFlags(mui::MuLayout::Stretch);
    signature = mui::MuText::create(values, "signature", "");
    catchphrase = mui::MuText::create(values, "catchphrase", "");
    for (mui::MuText* value : {signature, catchphrase}) {
        bodyStyle.applyTo(value);
        value->setSelectable(/*selectable=*/true);
    }
    idBlock->setShown(/*shown=*/false);
}

void MuStatusDialogSecurity::addAuthentication(mui::MuContainer* parent, plat::Markup::LinkCallback* links) {
    TitleRow(parent, "", "authIm", "sdAuth", "authTitle", LOC_TEXT("sui_statusdialog_auth"));
    mui::MuLayout* row = addTextRow(parent, "");
    authentication = mui::MuStatic::create(row, "authentication", svr::authenticationText(0).c_str());
    bodyStyle.applyTo(authentication);
    mui::MuLayout* changeRow = mui::MuLayout::create(row, "", mui::Orientation::Horizontal);
    changeRow->setSpacing(hxutil::scaled(8));
    const int shieldPx = hxutil::scaled(shieldUnits);
    shield = mui::MuImage::create(changeRow, "shield", "shield", {shieldPx, shieldPx});
    change = mui::MuText::create(changeRow, "change", "");
    // The shield may be taller than the words beside it.
    for (mui::MuElement* each : {static_cast<mui::MuElement*>(shield), static_cast<mui::MuElement*>(change)})
        changeRow->setChildLayout(each, mui::MuLayout::Natural | mui::MuLayout::Centre);
    row->setChildLayout(authentication, mui::MuLayout::Natural | mui::MuLayout::Centre);
    row->setChildLayout(changeRow, mui::MuLayout::Natural | mui::MuLayout::Centre);
    change->setWrap(/*wrap=*/false);
    bodyStyle.applyTo(change);
    change->setLinkCallback(links);
    shield->setShown(/*shown=*/false);
    change->setShown(/*shown=*/false);
}

void MuStatusDialogSecurity::update(const StatusDialogModel& model) {
    idBlock->setShown(!model.signature.isNull() || !model.catchphrase.isNull());
    idValues->setShown(!model.signature.isEmpty() || !model.catchphrase.isEmpty());
    signature->setShown(!model.signature.isEmpty());
    signature->setText(namedValue(LOC_TEXT("sui_statusdialog_signature"), model.signature.c_str()).c_str());
    catchphrase->setShown(!model.catchphrase.isEmpty());
    catchphrase->setText(namedValue(LOC_TEXT("sui_statusdialog_catchphrase"), model.catchphrase.c_str()).c_str());

    const int preset = svr::authenticationPreset(model.authentication.c_str());
    const bool known = preset != svr::AuthCustom;
    authentication->setText(known ? svr::authenticationText(preset).c_str() : model.authentication.c_str());
    updateChangeLink(preset, model.canChangePassword);
}

void MuStatusDialogSecurity::updateChangeLink(int preset, bool canChangePassword) {
    const char* words = nullptr;
    const char* target = nullptr;
    if (preset == svr::AuthNone) {
        words = LOC_TEXT("sui_statusdialog_change_auth");
        target = "app://options/security";
    } else if (preset == svr::AuthZef && canChangePassword) {
        words = LOC_TEXT("sui_statusdialog_change_pwd");
        target = "app://changezefauthpassword";
    }
    if (words) {
        plat::DString html;
        html.format("<a href=\"%s\">%s</a>", target, escapedText(words).c_str());
        change->setText(styledHtml(bodyStyle, html.c_str(), themedLinkColour()).c_str());
    }
    change->setShown(words != nullptr);
    // In service mode the change asks for more rights.
    shield->setShown(words != nullptr && score::productMode() == score::ProductMode::Service);
}

} // namespace sui

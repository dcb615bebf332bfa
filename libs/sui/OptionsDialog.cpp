#include "sui/OptionsDialog.h"

#include "loc/Localize.h"
#include "mui/MuButtonBar.h"
#include "os/launchFailures.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "score/Mode.h"
#include "sui/SUiModule.h"

namespace sui {
namespace {
plat::LogSrc log("OptionsDialog");
}

OptionsDialog::OptionsDialog(mui::MuDialog* parent, Callback* target)
    : callback(target), config("server"), box(parent, LOC_TEXT("sui_optionsdialog_title"),
                                              mui::MuMessageBox::Icon::Info, {LOC_TEXT("sui_optionsdialog_nopages")},
                                              mui::MuButtonBar::Ok, static_cast<mui::MuMessageBox::Callback*>(this)) {}

OptionsDialog::~OptionsDialog() = default;

void OptionsDialog::load() {
    if (isDebugUi())
        return;
    try {
        config.dumpXML();
    } catch (const os::ElevateCancelled&) {
        throw;
    } catch (const plat::Exception&) {
        if (score::productMode() == score::ProductMode::Service)
            failure = LOC_TEXT("sui_unix_serverui_cannot_configure_service");
        throw;
    }
}

void OptionsDialog::show() { box.show(); }

void OptionsDialog::select(const char* section) { log.debug("section: %s", section ? section : "(default)"); }

} // namespace sui

#include "sui/DiagnosticsTab.h"

#include "loc/Localize.h"
#include "mui/MuButton.h"
#include "mui/MuButtonBar.h"
#include "mui/MuDialog.h"
#include "mui/MuFrame.h"
#include "mui/MuPager.h"
#include "mui/MuScroll.h"
#include "mui/MuSpacer.h"
#include "mui/MuStatic.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/Time.h"
#include "plat/TransactedFile.h"
#include "plat/cstr.h"
#include "plat/monoTime.h"
#include "plat/path.h"
#include "score/StatusEvent.h"
#include "sui/Diagnostics.h"
#include "sui/SUiModule.h"
#include "sui/ServerUiCallback.h"
#include "sui/TextStyle.h"

#include <cstdlib>
#include <cstring>

namespace sui {
namespace {
plat::LogSrc log("Diagnostics");
constexpr int tabOrder = 10;
constexpr TextStyle textStyle{120, 400, 0, "contentText"};
constexpr unsigned rebuildMs = 10;
constexpr int64_t displayTicks = plat::ticksPerSecond; // a burst of commits asks the display once a second
constexpr int dateChars = 10;                          // of an ISO 8601 time

plat::String defaultPath() {
    const plat::String now = plat::toIso8601Local(plat::Time::now());
    const plat::String name = plat::strFormat("velthar-server-status-%.*s.txt", dateChars, now.c_str());
    const char* home = getenv("HOME");
    return home && plat::path::isAbsolute(home) ? plat::path::join(home, name.c_str()) : name;
}
} // namespace

bool isEnglish(const char* locale) {
    const std::string_view language(locale, strcspn(locale, "_-.@"));
    return language.empty() || language == "en" || language == "C" || language == "POSIX";
}

void saveReport(const char* path, const plat::String& text) {
    plat::TransactedFile file(path, plat::FilePrivate); // names of users, and addresses
    file.write(text.c_str(), text.view().size());
    file.commit();
}

DiagnosticsTab::DiagnosticsTab(SUiModuleMgr* manager, score::StatusDb* infoDb, score::StatusEventDb* eventDb,
                               ServerUiCallback* platformObject)
    : InformationCenterTab(manager, "diagnostics", LOC_TEXT("sui_diagnosticstab_title"), tabOrder),
      StatusObserver(infoDb, eventDb), info(infoDb), events(eventDb), platform(platformObject), rebuildTimer(this) {}

void DiagnosticsTab::build(mui::MuPager* tabs) {
    InformationCenterTab::build(tabs);
    if (!isEnglish(loc::Localize::instance().firstLocale().c_str()))
        languageNotice =
            std::make_unique<mui::MuInfoFrame>(page(), "lang", mui::MuInfoFrame::Kind::Notify,
                                               escapedText(LOC_TEXT("sui_diagnosticstab_langframe")).c_str());
    auto* border = mui::MuFrame::create(page(), "", mui::MuFrame::Type::Line);
    border->setMargin(1);
    border->setBgColour("contentBg");
    page()->setChildLayout(border, mui::MuLayout::Stretch);
    scroll = mui::MuScroll::create(border, "scroll");
    scroll->setBgColour("contentBg");
    auto* frame = mui::MuFrame::create(scroll, "frame");
    label = mui::MuStatic::create(frame, "diagnostics", "");
    textStyle.applyTo(label);
    auto* buttons = mui::MuLayout::create(page(), "buttons", mui::Orientation::Horizontal);
    manager()->addDiagnosticsButtons(buttons);
    buttons->setChildLayout(mui::MuSpacer::create(buttons, ""), mui::MuLayout::Stretch);
    saveButton = mui::MuButton::create(buttons, "save", LOC_TEXT("sui_diagnosticstab_save"));
}

void DiagnosticsTab::aboutToShow() {
    readDisplays();
    rebuild();
}

mui::MuElement* DiagnosticsTab::firstFocus() { return saveButton; }

void DiagnosticsTab::onCommit(score::StatusDb*) {
    // What nobody sees is made when it is about to show; that also spares the start the search for monitors.
    if (label && label->isShownFully() && !rebuildTimer.isActive())
        rebuildTimer.start(rebuildMs);
}

bool DiagnosticsTab::timerExpired(plat::Timer*) {
    if (label->isShownFully() && plat::monoTicks() - displaysTicks >= displayTicks)
        readDisplays();
    try {
        rebuild();
    } catch (const plat::AssertionFail& e) {
        log.error("%s", e.what()); // the commit of such an event has ended the link
    }
    return false;
}

void DiagnosticsTab::readDisplays() {
    DisplayInfo found = platform->displayInfo();
    found.desktop = platform->desktopName();
    displays = displayInfoStr(found);
    displaysTicks = plat::monoTicks();
}

void DiagnosticsTab::rebuild() {
    if (!label)
        return;
    plat::String fresh = Diagnostics::report(*info, *events, displays.c_str());
    if (fresh == text)
        return;
    text = std::move(fresh);
    label->setText(text.c_str());
    scroll->doLayout();
}

void DiagnosticsTab::muActivated(mui::MuElement* element) {
    if (element == saveButton)
        askForFile();
}

void DiagnosticsTab::askForFile() {
    if (!fileDialog)
        fileDialog =
            mui::MuFileDialog::create(mui::MuDialog::topLevel(page()), static_cast<mui::MuFileDialog::Callback*>(this));
    fileDialog->showSave(LOC_TEXT("sui_diagnosticstab_save_title"), defaultPath().c_str(), "txt",
                         LOC_TEXT("sui_diagnosticstab_save_filedesc"), /*filesMode=*/true);
}

void DiagnosticsTab::fileChosen(const char* path) {
    if (!path)
        return;
    readDisplays(); // the dialog may have been open for long
    rebuild();
    save(path);
}

void DiagnosticsTab::fileFailed(const char* message) {
    tell(mui::MuMessageBox::Icon::Error, {escapedText(message).c_str()});
}

void DiagnosticsTab::save(const char* path) {
    try {
        saveReport(path, text);
    } catch (const plat::Exception& e) {
        log.error("The report was not saved: %s", e.what());
        tell(mui::MuMessageBox::Icon::Error,
             {LOC_TEXT("sui_diagnosticstab_save_failed"), escapedText(e.what()).c_str()});
        return;
    }
    tell(mui::MuMessageBox::Icon::Info, {LOC_TEXT("sui_diagnosticstab_saved_file")});
}

void DiagnosticsTab::tell(mui::MuMessageBox::Icon icon, std::initializer_list<const char*> messages) {
    box = std::make_unique<mui::MuMessageBox>(mui::MuDialog::topLevel(page()), getTitle(), icon, messages,
                                              mui::MuButtonBar::Ok, static_cast<mui::MuMessageBox::Callback*>(this));
    box->show();
}

void DiagnosticsTab::messageBoxClosed(mui::MuMessageBox*, unsigned) { box.reset(); }

} // namespace sui

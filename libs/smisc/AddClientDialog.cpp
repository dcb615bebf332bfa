#include "smisc/AddClientDialog.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "mui/MuButton.h"
#include "mui/MuEdit.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuSpacer.h"
#include "mui/MuStatic.h"
#include "plat/SysColors.h"
#include "plat/visibleText.h"

namespace smisc {
namespace {
constexpr int widthUnits = 800;
constexpr int graphicUnits = 96;
constexpr int errorIconUnits = 32;
constexpr int spinnerUnits = 32;
constexpr int maxAddressBytes = 255; // of a string8
} // namespace

AddClientDialog::AddClientDialog(Callback* target)
    : callback(target), dialog(mui::MuDialog::create("addclients", LOC_TEXT("smisc_addclientdialog_title"),
                                                     {hxutil::scaled(widthUnits), 0},
                                                     mui::MuDialog::AutoHeight | mui::MuDialog::FixedSize)) {
    addContent();
    dialog->setActionCallback(this);
    dialog->setActionButton(mui::MuDialog::ActionDefault, button);
    dialog->addObserver(this, /*add=*/true);
    setState(State::Input);
}

AddClientDialog::~AddClientDialog() { dialog->addObserver(this, /*add=*/false); }

void AddClientDialog::addContent() {
    constexpr unsigned centred = mui::MuLayout::Natural | mui::MuLayout::Centre;
    mui::MuLayout* main = mui::MuLayout::create(dialog.get(), "", mui::Orientation::Vertical);
    mui::MuLayout* row = mui::MuLayout::create(main, "hlay", mui::Orientation::Horizontal);
    row->setSpacing(mui::Mui::instance()->metric(mui::MetricLargeGap));
    const int graphicPx = hxutil::scaled(graphicUnits);
    mui::MuImage* graphic = mui::MuImage::create(row, "graphic", "connectionGraphic", {graphicPx, graphicPx});
    row->setChildLayout(graphic, mui::MuLayout::Natural | mui::MuLayout::Start);

    mui::MuLayout* column = mui::MuLayout::create(row, "vlay", mui::Orientation::Vertical);
    row->setChildLayout(column, mui::MuLayout::Stretch);
    mui::MuStatic::create(column, "text", LOC_TEXT("smisc_addclientdialog_client"));

    viewerRow = mui::MuLayout::create(column, "viewerlyt", mui::Orientation::Horizontal);
    edit = mui::MuEdit::create(viewerRow, "viewer", nullptr);
    edit->setMaxLength(maxAddressBytes);
    viewerRow->setChildLayout(edit, mui::MuLayout::Stretch);
    const int spinnerPx = hxutil::scaled(spinnerUnits);
    spinner = std::make_unique<mui::MuSpinner>(viewerRow, plat::isDarkMode(), rfb::Point{spinnerPx, spinnerPx});
    viewerRow->setChildLayout(spinner->getImage(), centred);

    errorRow = mui::MuLayout::create(column, "errorlyt", mui::Orientation::Horizontal);
    const int errorPx = hxutil::scaled(errorIconUnits);
    mui::MuImage* image = mui::MuImage::create(errorRow, "image", "statusError", {errorPx, errorPx});
    errorRow->setChildLayout(image, mui::MuLayout::Natural | mui::MuLayout::Start);
    error = mui::MuStatic::create(errorRow, "error", "");
    errorRow->setChildLayout(error, mui::MuLayout::Stretch);

    main->addGap(/*expand=*/false);
    mui::MuLayout* buttons = mui::MuLayout::create(main, "btnlyt", mui::Orientation::Horizontal);
    mui::MuSpacer* spare = mui::MuSpacer::create(buttons, "");
    buttons->setChildLayout(spare, mui::MuLayout::Stretch);
    button = mui::MuButton::create(buttons, "connect", LOC_TEXT("smisc_addclientdialog_connect"));
}

void AddClientDialog::show() {
    dialog->setDefaultFocus(state == State::Input ? static_cast<mui::MuElement*>(edit) : button);
    dialog->setShown(/*shown=*/true);
    dialog->raise();
}

void AddClientDialog::failed(const char* text) {
    if (!dialog->isShown()) {
        setState(State::Input);
        return;
    }
    // The core's words about an address that somebody typed: text and nothing else.
    error->setText(plat::visibleText(text).c_str());
    setState(State::Failed);
}

void AddClientDialog::succeeded() {
    dialog->setShown(/*shown=*/false);
    reset();
}

void AddClientDialog::reset() {
    edit->setText("");
    setState(State::Input);
}

bool AddClientDialog::hasAddress() { return !plat::visibleText(edit->getText()).isEmpty(); }

void AddClientDialog::setState(State next) {
    state = next;
    edit->setEnabled(state == State::Input);
    viewerRow->setShown(state != State::Failed);
    edit->setShown(state != State::Failed);
    spinner->setRunning(state == State::Connecting);
    spinner->getImage()->setShown(state == State::Connecting);
    errorRow->setShown(state == State::Failed);
    button->setLabel(LOC_TEXT(state == State::Failed ? "ui_button_ok" : "smisc_addclientdialog_connect"));
    button->setEnabled(state == State::Failed || (state == State::Input && hasAddress()));
    dialog->nativeLayout();
    if (!dialog->isShown())
        return;
    // Where typing goes on.
    if (state == State::Input)
        edit->setFocus();
    else if (state == State::Failed)
        button->setFocus();
}

void AddClientDialog::muEvent(mui::MuElement* element, int type) {
    if (element == edit && type == mui::EventChanged)
        button->setEnabled(state == State::Input && hasAddress());
    else
        MuObserver::muEvent(element, type);
}

void AddClientDialog::muActivated(mui::MuElement* element) {
    if (element != button)
        return;
    if (state == State::Failed) {
        setState(State::Input);
        edit->selectAll();
    } else if (state == State::Input && hasAddress()) {
        setState(State::Connecting); // first: the answer may come before the message is out
        callback->connectTo(edit->getText());
    }
}

void AddClientDialog::muClosed(mui::MuDialog*) { reset(); }

bool AddClientDialog::actionKey(int action, mui::MuDialog*) {
    if (action != mui::MuDialog::ActionCancel)
        return false;
    dialog->close();
    return true;
}

} // namespace smisc

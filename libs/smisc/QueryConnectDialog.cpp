#include "smisc/QueryConnectDialog.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "mui/MuButton.h"
#include "mui/MuFrame.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuScroll.h"
#include "mui/MuSpacer.h"
#include "mui/MuStatic.h"
#include "mui/MuText.h"
#include "plat/MString.h"
#include "plat/monoTime.h"
#include "smisc/promptTexts.h"
#include "sui/TextStyle.h"

#include <algorithm>

namespace smisc {
namespace {

constexpr unsigned storedOnly = 0x4000; // a flag without effect
constexpr unsigned dialogFlags = storedOnly | mui::MuDialog::NoFocusOnShow | mui::MuDialog::KeepAbove |
                                 mui::MuDialog::AutoHeight | mui::MuDialog::NoHide | mui::MuDialog::FixedSize;
constexpr unsigned tickMs = 1000;
constexpr int maxNameChars = 255;
constexpr int minNameChars = 8;             // before the window gives up
constexpr const char* rightsOfAccept = "f"; // group letters
constexpr const char* rightsOfViewOnly = "v";

// Units
constexpr int minWidthUnits = 800;
constexpr int maxWidthUnits = 1600;
constexpr int maxHeightUnits = 1200;
constexpr int headerUnits = 88;
constexpr int headerIconUnits = 48;
constexpr int brandUnits = 88;
constexpr int leastMessageUnits = 32; // a line, however little room there is

constexpr sui::TextStyle headerStyle{240, 300, 0, "statusText"};
constexpr sui::TextStyle questionStyle{120, 700, 0, "contentText"};
constexpr sui::TextStyle plainStyle{120, 400, 0, "contentText"};
constexpr sui::TextStyle warningStyle{120, 700, 0, "warningText"};

int metric(mui::Metric index) { return mui::Mui::instance()->metric(index); }

} // namespace

QueryConnectDialog::QueryConnectDialog(QueryResultCallback* target)
    : callback(target),
      dialog(mui::MuDialog::create("Query", LOC_TEXT("smisc_queryconnect_title"),
                                   {hxutil::scaled(minWidthUnits), hxutil::scaled(minWidthUnits)}, dialogFlags)) {
    dialog->setBgColour("contentBg");
    // A coloured header runs to the edge: the body stands as far in as a frame in a dialog does.
    dialog->setMargin(metric(mui::MetricDialogMargin) + metric(mui::MetricFrameMargin));
    addHeader();
    addContent();
    dialog->setActionButton(mui::MuDialog::ActionCancel, rejectButton);
    dialog->addObserver(this, /*add=*/true);
}

QueryConnectDialog::~QueryConnectDialog() {
    hide();
    dialog->addObserver(this, /*add=*/false);
}

void QueryConnectDialog::addHeader() {
    header = mui::MuFrame::create(dialog.get(), "header");
    dialog->setPanelPosition(header, mui::MuDialog::PanelTop);
    header->setBgColour("statusYellow");
    mui::MuLayout* row = mui::MuLayout::create(header, "hlay", mui::Orientation::Horizontal);
    row->setDefaultFlags(mui::MuLayout::Natural | mui::MuLayout::Centre);
    const int iconPx = hxutil::scaled(headerIconUnits);
    mui::MuSpacer* left = mui::MuSpacer::create(row, "");
    mui::MuImage::create(row, "icon", "bannerStatusQuestion", {iconPx, iconPx});
    mui::MuStatic* label = mui::MuStatic::create(row, "header", LOC_TEXT("smisc_queryconnect_header"));
    label->setWrap(/*wrap=*/false);
    headerStyle.applyTo(label);
    mui::MuSpacer* right = mui::MuSpacer::create(row, "");
    row->setChildLayout(left, mui::MuLayout::Stretch);
    row->setChildLayout(right, mui::MuLayout::Stretch);
    const int spare = hxutil::scaled(headerUnits) - row->getMinHeight(0);
    header->setMargin({metric(mui::MetricFrameMargin), std::max(0, spare / 2)});
}

void QueryConnectDialog::addContent() {
    body = mui::MuLayout::create(dialog.get(), "dlglay", mui::Orientation::Vertical);
    body->setSpacing(0);
    mui::MuLayout* row = mui::MuLayout::create(body, "iconlay", mui::Orientation::Horizontal);
    row->setSpacing(metric(mui::MetricLargeGap));
    brand = mui::MuFrame::create(row, "brframe");
    brand->setMargin(0);
    const int brandPx = hxutil::scaled(brandUnits);
    mui::MuImage::create(brand, "brand", "zefserver", {brandPx, brandPx});
    row->setChildLayout(brand, mui::MuLayout::Natural | mui::MuLayout::Start);

    column = mui::MuLayout::create(row, "vlay", mui::Orientation::Vertical);
    row->setChildLayout(column, mui::MuLayout::Stretch);
    question = mui::MuText::create(column, "text1", "");
    questionStyle.applyTo(question);
    scroll = mui::MuScroll::create(column, "scroll");
    custom = mui::MuText::create(scroll, "textcustom", "");
    plainStyle.applyTo(custom);
    consequence = mui::MuStatic::create(column, "text2", "");

    // Where the window can't be as high as its text, the text gives way, not the buttons.
    body->setChildLayout(row, mui::MuLayout::Stretch);
    mui::MuSpacer::create(body, "spacer", {0, metric(mui::MetricBarGap)});
    buttonRow = mui::MuLayout::create(body, "btnLyt", mui::Orientation::Horizontal);
    mui::MuSpacer* spare = mui::MuSpacer::create(buttonRow, "");
    buttonRow->setChildLayout(spare, mui::MuLayout::Stretch);
    viewButton = addButton(buttonRow, "view", LOC_TEXT("smisc_queryconnect_action_viewonly"));
    rejectButton = addButton(buttonRow, "reject", LOC_TEXT("smisc_queryconnect_action_reject"));
    acceptButton = addButton(buttonRow, "accept", LOC_TEXT("smisc_queryconnect_action_accept"));
}

mui::MuButton* QueryConnectDialog::addButton(mui::MuLayout* row, const char* name, const char* text) {
    mui::MuButton* button = mui::MuButton::create(row, name, text);
    button->setDeliberate(/*on=*/true);
    return button;
}

// A request

void QueryConnectDialog::start(const ConnectRequest& request) {
    hide(); // what was pressed for another request must not answer this one: the window comes up afresh
    fill(request);
    fitLine(request);
    dialog->setDefaultFocus(acceptButton);
    showQuietly();
    if (dialog->getSize().y > fitted.y)
        dialog->setSize(fitted); // showing it gave it all the height that its text wants
    shownAt = plat::monoTicks();
    deadline = shownAt + request.timeoutS * plat::ticksPerSecond;
    timer.start(tickMs);
    asking = true;
}

void QueryConnectDialog::fill(const ConnectRequest& request) {
    timeoutRights = request.timeoutRights;
    grants = !hxauth::Permissions::sameEntries(timeoutRights, hxauth::Permissions());
    viewButton->setShown(request.offerViewOnly);
    notify(promptLine(request.userName.get(), request.userType.get()), request.timeoutS);
    scroll->setShown(!request.message.isEmpty());
    custom->setText(promptMessage(request.message.get()).c_str());
    (grants ? warningStyle : plainStyle).applyTo(consequence);
}

void QueryConnectDialog::notify(const plat::String& line, uint16_t timeoutS) {
    if (!notifier)
        return;
    plat::MString plain;
    plain.text(plat::Markup::strip(line.c_str()).c_str());
    ui::Notifier::Notification raised;
    raised.text = plain.take();
    raised.timeoutMs = (timeoutS + 1) * static_cast<int>(tickMs);
    raised.callback = this;
    notification = notifier->notify(raised);
}

void QueryConnectDialog::showTimeLeft(int seconds) { consequence->setText(promptConsequence(seconds, grants).c_str()); }

// Size

/// The height of the dialog at a width, its message as high as the text, or as there is room for.
struct QueryConnectDialog::Measure : PromptMeasure {
    Measure(QueryConnectDialog& owner_, int maxHeight_, int timeoutS_)
        : owner(owner_), maxHeight(maxHeight_), timeoutS(timeoutS_) {}
    int heightAt(int width) override {
        owner.showTimeLeft(timeoutS);
        return owner.wantedHeight(width, maxHeight);
    }

    QueryConnectDialog& owner;
    int maxHeight;
    int timeoutS;
};

PromptLimits QueryConnectDialog::limits() {
    // Nothing may lie beyond the screen, however large its points are.
    const rfb::Rect area = dialog->getScreenArea();
    const rfb::Point frame = frameSize();
    const int room = std::max(1, area.width() - frame.x);
    PromptLimits out{};
    out.least = std::min(room, buttonRow->getMinWidth(0) + 2 * dialog->getMargin());
    out.maxWidth = std::max(out.least, std::min(room, hxutil::scaled(maxWidthUnits)));
    out.minWidth = std::clamp(hxutil::scaled(minWidthUnits), out.least, out.maxWidth);
    out.maxHeight = std::max(1, std::min(area.height() - frame.y, hxutil::scaled(maxHeightUnits)));
    return out;
}

/// What stands beside the column of texts.
int QueryConnectDialog::chromeWidth() {
    const int side = hxutil::scaled(minWidthUnits);
    dialog->setSize({side, side});
    dialog->doLayout();
    return side - column->getSize().x;
}

int QueryConnectDialog::wantedHeight(int width, int maxHeight) {
    dialog->setSize({width, maxHeight});
    dialog->doLayout();
    const int messageHeight = custom->getMinHeight(std::max(1, column->getSize().x));
    column->setChildLayout(scroll, mui::MuLayout::Fixed, messageHeight);
    dialog->fitHeight();
    const int natural = dialog->getSize().y;
    if (scroll->isShown() && natural > maxHeight) {
        const int shortened = std::max(leastMessagePx, messageHeight - (natural - maxHeight));
        column->setChildLayout(scroll, mui::MuLayout::Fixed, shortened);
        dialog->fitHeight();
    }
    return dialog->getSize().y;
}

/// On a small screen the picture gives way, then the end of a long name, at last the message, so that what silence
/// does can be read.
void QueryConnectDialog::fitLine(const ConnectRequest& request) {
    const PromptLimits bounds = limits();
    const auto fits = [&](int nameChars) {
        question->setText(promptLine(request.userName.get(), request.userType.get(), nameChars).c_str());
        return fit(request.timeoutS, bounds);
    };
    brand->setShown(/*shown=*/true);
    leastMessagePx = scroll->getMinHeight(1); // as a long message needs
    if (fits(maxNameChars))
        return;
    brand->setShown(/*shown=*/false);
    for (int chars = maxNameChars; chars >= minNameChars; chars /= 2) {
        if (fits(chars))
            return;
    }
    leastMessagePx = hxutil::scaled(leastMessageUnits);
    fits(minNameChars);
}

/// False if the dialog wants to be higher than it may be.
bool QueryConnectDialog::fit(int timeoutS, const PromptLimits& bounds) {
    const int chrome = chromeWidth();
    const int customWidth = scroll->isShown() ? custom->getMinWidth(0) : 0;
    const int textWidth = std::max(question->getMinWidth(0), customWidth);
    Measure measure(*this, bounds.maxHeight, timeoutS);
    fitted = fitPrompt(std::min(textWidth, bounds.maxWidth) + chrome, bounds, measure);
    const bool fits = measure.heightAt(fitted.x) <= bounds.maxHeight;
    if (dialog->getSize() != fitted)
        dialog->setSize(fitted);
    dialog->doLayout();
    const rfb::Rect area = dialog->getScreenArea();
    const rfb::Point outer = fitted + frameSize();
    dialog->setPosition({area.tl.x + std::max(0, (area.width() - outer.x) / 2),
                         area.tl.y + std::max(0, (area.height() - outer.y) / 2)});
    return fits;
}

// Answers

bool QueryConnectDialog::mayTakeFocus() const { return asking && plat::monoTicks() - shownAt > plat::ticksPerSecond; }

bool QueryConnectDialog::timerExpired(plat::Timer*) {
    const int left = roundedSeconds(deadline - plat::monoTicks());
    if (left <= 0) {
        finish(hxauth::Permissions(timeoutRights), /*byUser=*/false); // the next request replaces ours
        return false;
    }
    showTimeLeft(left);
    keepInView();
    return true;
}

void QueryConnectDialog::muEvent(mui::MuElement* element, int type) {
    if (type == mui::EventFocusGained && mayTakeFocus())
        allowFocus();
    MuObserver::muEvent(element, type);
}

void QueryConnectDialog::muActivated(mui::MuElement* element) {
    if (!asking)
        return;
    if (element == acceptButton)
        finish(hxauth::Permissions(rightsOfAccept), /*byUser=*/true);
    else if (element == viewButton)
        finish(hxauth::Permissions(rightsOfViewOnly), /*byUser=*/true);
    else if (element == rejectButton)
        finish(hxauth::Permissions(), /*byUser=*/true);
}

void QueryConnectDialog::muClosed(mui::MuDialog*) {
    // Who asked for it can't be told: any client may send that message. It must not open what silence would open.
    if (asking)
        finish(hxauth::Permissions(), /*byUser=*/false);
}

bool QueryConnectDialog::notified(ui::Notifier::Handle, int reason) {
    if (reason == ui::Notifier::Ended)
        notification = 0;
    else
        keepInView();
    return true;
}

void QueryConnectDialog::cancel() { hide(); }

void QueryConnectDialog::hide() {
    asking = false;
    timer.cancel();
    if (dialog->isShown())
        dialog->setShown(/*shown=*/false);
    if (notifier && notification)
        notifier->cancel(notification);
    notification = 0;
}

void QueryConnectDialog::finish(const hxauth::Permissions& rights, bool byUser) {
    hide();
    callback->queryResult(rights, byUser);
}

} // namespace smisc

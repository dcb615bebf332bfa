#include "sui/StatusTab.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "loc/format.h"
#include "mui/MuButton.h"
#include "mui/MuFrame.h"
#include "mui/MuList.h"
#include "mui/MuScroll.h"
#include "mui/MuSpacer.h"
#include "mui/MuStatic.h"
#include "mui/Mui.h"
#include "plat/cstr.h"
#include "plat/visibleText.h"
#include "sui/SUiModule.h"
#include "sui/ServerComms.h"
#include "sui/TextStyle.h"

#include <algorithm>

namespace sui {
namespace {
using score::StatusEvent;

constexpr int tabOrder = 2;
constexpr int iconColumnUnits = 40;
constexpr int cellPaddings = 8; // pixels, which a cell has on both sides
constexpr int severityUnits = 32;
constexpr int visibleRows = 5;
constexpr TextStyle titleStyle{120, 700, 0, "buttonText"};
constexpr TextStyle numberStyle{120, 400, 0, "buttonText"};
constexpr TextStyle textStyle{120, 400, 0, "contentText"};

bool sameText(const plat::String& a, const plat::String& b) { return a.isNull() == b.isNull() && a == b.c_str(); }

bool same(const StatusEvent& a, const StatusEvent& b) {
    return a.severity == b.severity && a.recovery == b.recovery && a.recFlags == b.recFlags && sameText(a.id, b.id) &&
           sameText(a.title, b.title) && sameText(a.description, b.description) && sameText(a.solution, b.solution) &&
           sameText(a.resolver, b.resolver);
}

const char* iconOf(uint32_t severity) {
    return severity == StatusEvent::Error     ? "infoframe_error"
           : severity == StatusEvent::Warning ? "infoframe_warning"
                                              : "infoframe_notify";
}

const char* actionText(uint32_t recovery) {
    switch (recovery) {
    case StatusEvent::OpenUrl:
        return LOC_TEXT("sui_statustab_online");
    case StatusEvent::CheckUpdate:
        return LOC_TEXT("sui_statustab_check_update");
    default:
        return LOC_TEXT("sui_statustab_resolve");
    }
}

int indexOfTitle(const std::deque<StatusEvent>& events, const plat::String& title) {
    const auto found = std::find_if(events.begin(), events.end(),
                                    [&](const StatusEvent& each) { return sameText(each.title, title); });
    return found == events.end() ? -1 : static_cast<int>(found - events.begin());
}
} // namespace

bool standsBefore(const StatusEvent& a, const StatusEvent& b) {
    if (a.severity != b.severity)
        return a.severity > b.severity;
    if (a.title.isNull() || b.title.isNull())
        return a.title.isNull() && !b.title.isNull();
    return plat::strCompareNoCase(a.title.c_str(), b.title.c_str()) < 0;
}

StatusTab::StatusTab(SUiModuleMgr* manager, score::StatusEventDb* eventDb)
    : InformationCenterTab(manager, "status", LOC_TEXT("sui_statustab_title"), tabOrder), StatusObserver(eventDb),
      events(eventDb) {}

void StatusTab::build(mui::MuPager* tabs) {
    InformationCenterTab::build(tabs);
    above = mui::MuSpacer::create(page(), "");
    header = mui::MuStatic::create(page(), "header", LOC_TEXT("sui_statustab_no_issues"));
    below = mui::MuSpacer::create(page(), "");
    for (mui::MuSpacer* spacer : {above, below})
        page()->setChildLayout(spacer, mui::MuLayout::Stretch);
    listLayout = mui::MuLayout::create(page(), "layout", mui::Orientation::Vertical);
    page()->setChildLayout(listLayout, mui::MuLayout::Stretch);
    table = mui::MuList::create(listLayout, "issues", mui::MuList::KeepSelection | mui::MuList::EnterActivates);
    const int iconPx = hxutil::scaled(severityUnits);
    table->addColumn(mui::MuList::ColumnType::Image, nullptr, hxutil::scaled(iconColumnUnits) + cellPaddings,
                     mui::MuList::Align::Centre, {iconPx, iconPx}); // "statusicon"
    table->addColumn(mui::MuList::ColumnType::Text, nullptr);       // "issue"
    table->setVisibleRows(visibleRows);
    buildDetails(listLayout);
    shown = sortedEvents();
    show(0);
}

void StatusTab::buildDetails(mui::MuLayout* parent) {
    details = mui::MuFrame::create(parent, "issueframe", mui::MuFrame::Type::Line);
    details->setMargin(1); // the line
    details->setBgColour("contentBg");
    parent->setChildLayout(details, mui::MuLayout::Stretch);
    auto* column = mui::MuLayout::create(details, "issuedetails", mui::Orientation::Vertical);
    column->setSpacing(0);
    auto* headerFrame = mui::MuFrame::create(column, "headerFrame");
    headerFrame->setBgColour("buttonBg");
    auto* row = mui::MuLayout::create(headerFrame, "issuetitle", mui::Orientation::Horizontal);
    title = mui::MuStatic::create(row, "title", "");
    title->setWrap(/*wrap=*/false);
    titleStyle.applyTo(title);
    row->setChildLayout(title, mui::MuLayout::Stretch);
    number = mui::MuStatic::create(row, "number", "", mui::MuStatic::Align::Right);
    number->setWrap(/*wrap=*/false);
    numberStyle.applyTo(number);
    buildDetailBody(column);
}

void StatusTab::buildDetailBody(mui::MuLayout* parent) {
    auto* inset = mui::MuFrame::create(parent, "inset");
    parent->setChildLayout(inset, mui::MuLayout::Stretch);
    auto* column = mui::MuLayout::create(inset, "insetLayout", mui::Orientation::Vertical);
    mui::MuSpacer::create(column, ""); // a step more under the coloured band
    scroll = mui::MuScroll::create(column, "scroll");
    text = mui::MuStatic::create(static_cast<mui::MuScroll*>(scroll), "issuetext", "");
    textStyle.applyTo(text);
    column->setChildLayout(scroll, mui::MuLayout::Stretch);
    auto* buttons = mui::MuLayout::create(column, "buttons", mui::Orientation::Horizontal);
    buttons->setChildLayout(mui::MuSpacer::create(buttons, ""), mui::MuLayout::Stretch);
    action = mui::MuButton::create(buttons, "resolve", LOC_TEXT("sui_statustab_resolve"));
}

mui::MuElement* StatusTab::firstFocus() { return shown.empty() ? nullptr : table; }

void StatusTab::setOptionsDisabled(bool disabled) {
    optionsDisabled = disabled;
    if (table)
        showDetails(); // a veto of a module may have come or gone as well
}

std::deque<StatusEvent> StatusTab::sortedEvents() const {
    std::deque<StatusEvent> sorted = events->list();
    std::sort(sorted.begin(), sorted.end(), standsBefore);
    return sorted;
}

void StatusTab::refresh() {
    std::deque<StatusEvent> fresh = sortedEvents();
    if (!table || std::equal(fresh.begin(), fresh.end(), shown.begin(), shown.end(), same))
        return;
    const int row = table->getSelected();
    const int selected = row < 0 ? -1 : indexOfTitle(fresh, shown[static_cast<size_t>(row)].title);
    shown = std::move(fresh);
    show(std::max(0, selected));
}

void StatusTab::show(int selected) {
    fillTable();
    // Selecting scrolls, so only where there is a reason to.
    if (!shown.empty() && table->getSelected() != selected)
        table->setSelected(selected);
    showDetails();
}

/// Row by row, so that what has been scrolled to stays in view.
void StatusTab::fillTable() {
    while (table->getRowCount() > static_cast<int>(shown.size()))
        table->removeRow(table->getRowCount() - 1);
    int row = 0;
    for (const StatusEvent& event : shown) {
        if (row == table->getRowCount())
            table->addRow();
        table->setCell(row, 0, iconOf(event.severity));
        table->setCell(row, 1, plat::visibleText(event.title.c_str()).c_str());
        ++row;
    }
    const bool any = !shown.empty();
    header->setText(any ? LOC_TEXT("sui_statustab_there_are_issues") : LOC_TEXT("sui_statustab_no_issues"));
    page()->setChildLayout(header, mui::MuLayout::Natural | (any ? mui::MuLayout::Fill : mui::MuLayout::Centre));
    above->setShown(!any);
    below->setShown(!any);
    listLayout->setShown(any);
    details->setShown(any);
    page()->doLayout();
}

void StatusTab::showDetails() {
    const int row = table->getSelected();
    if (row < 0 || row >= static_cast<int>(shown.size())) {
        for (mui::MuStatic* each : {title, number, text})
            each->setText("");
        action->setShown(/*shown=*/false);
        return;
    }
    const StatusEvent& event = shown[static_cast<size_t>(row)];
    title->setText(plat::visibleText(event.title.c_str()).c_str());
    number->setText(
        loc::formatted(LOC_RAW("sui_statustab_n_of_n_fmt"), {row + 1, static_cast<int>(shown.size())}).c_str());
    plat::String words = literalText(event.description.c_str());
    if (!event.solution.isEmpty())
        words = plat::strFormat("%s\n\n%s", words.c_str(), literalText(event.solution.c_str()).c_str());
    text->setText(words.c_str());
    showAction(event);
    page()->doLayout();
    scroll->doLayout();
}

void StatusTab::showAction(const StatusEvent& event) {
    action->setShown(event.recovery != StatusEvent::NoRecovery);
    action->setLabel(actionText(event.recovery));
    const int iconPx = hxutil::scaled(severityUnits);
    action->setImage(event.recFlags & StatusEvent::ShowsElevation ? "shield" : nullptr, {iconPx, iconPx});
    const bool off =
        (event.recFlags & StatusEvent::FollowsOptionsItem) && (optionsDisabled || manager()->anyVetoOptions());
    action->setEnabled(!off);
}

void StatusTab::muEvent(mui::MuElement* element, int type) {
    if (element == table && type == mui::EventChanged)
        showDetails();
    else if (element == table && type == mui::EventRowActivated && action->isShown() && action->isEnabled())
        action->setFocus(); // the act itself takes one more key
    else if (element == action && type == mui::EventActivated)
        resolve();
}

void StatusTab::resolve() {
    const int row = table->getSelected();
    if (row >= 0 && row < static_cast<int>(shown.size()))
        manager()->comms()->sendResolveEvent(shown[static_cast<size_t>(row)].id.c_str());
}

} // namespace sui

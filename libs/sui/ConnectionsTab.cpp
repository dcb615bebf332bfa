#include "sui/ConnectionsTab.h"

#include "hxauth/Permissions.h"
#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "loc/TimeString.h"
#include "mui/MuButton.h"
#include "mui/MuFrame.h"
#include "mui/MuList.h"
#include "mui/MuPager.h"
#include "mui/MuScroll.h"
#include "mui/MuSpacer.h"
#include "mui/MuStatic.h"
#include "mui/Mui.h"
#include "plat/Assert.h"
#include "plat/visibleText.h"
#include "sui/SUiModule.h"
#include "sui/ServerComms.h"
#include "sui/TextStyle.h"

#include <algorithm>

namespace sui {
namespace {
constexpr int tabOrder = 1;
constexpr int addressUnits = 650;
constexpr int halfUnits = 8;
constexpr int leastRows = 2;
constexpr int pastRows = 3;
constexpr TextStyle textStyle{120, 400, 0, "contentText"};

enum Column { UserColumn, AddressColumn, PermissionsColumn };
enum Value { UserValue, AddressValue, PermissionsValue, SinceValue, ValueCount };
constexpr struct {
    const char* name;
    const char* key;
} valueRows[ValueCount] = {
    {"user", "sui_connectionstab_user"},
    {"addr", "sui_connectionstab_address"},
    {"perms", "sui_connectionstab_perms"},
    {"since", "sui_connectionstab_since"},
};

plat::String momentText(plat::Time moment) {
    const time_t seconds = moment.toUnix();
    tm local{};
    localtime_r(&seconds, &local);
    plat::DString text;
    loc::TimeString::formatDateTime(text, loc::TimeString::DateStyle::Numeric, loc::TimeString::TimeStyle::NoSeconds,
                                    local);
    return text.take();
}

plat::String periodText(int seconds) {
    plat::DString text;
    loc::TimeString::formatPeriod(text, seconds);
    return text.take();
}

plat::String shownUser(const score::ConnectionInfo& info) { return plat::visibleText(info.displayName().c_str()); }
plat::String shownAddress(const score::ConnectionInfo& info) { return plat::visibleText(info.address.c_str()); }
} // namespace

ConnectionsTab::ConnectionsTab(SUiModuleMgr* manager)
    : InformationCenterTab(manager, "connections", LOC_TEXT("sui_connectionstab_title"), tabOrder) {}

void ConnectionsTab::build(mui::MuPager* tabs) {
    InformationCenterTab::build(tabs);
    nobody = mui::MuLayout::create(page(), "noconnslyt", mui::Orientation::Vertical);
    page()->setChildLayout(nobody, mui::MuLayout::Stretch);
    nobody->setChildLayout(mui::MuSpacer::create(nobody, "spc"), mui::MuLayout::Stretch);
    mui::MuStatic::create(nobody, "text", LOC_TEXT("sui_connectionstab_no_users"), mui::MuStatic::Align::Centre);
    nobody->setChildLayout(mui::MuSpacer::create(nobody, "spc"), mui::MuLayout::Stretch);
    buildTable();
    buildDetails();
    auto* buttons = mui::MuLayout::create(page(), "buttonlyt", mui::Orientation::Horizontal);
    buttons->setChildLayout(mui::MuSpacer::create(buttons, ""), mui::MuLayout::Stretch);
    disconnectButton = mui::MuButton::create(buttons, "disconnect", LOC_TEXT("sui_connectionstab_disconnect"));
    buildHistory();
    for (const score::ConnectionInfo& info : data)
        appendRow(info);
    showWhatIsThere();
}

void ConnectionsTab::buildTable() {
    using mui::MuList;
    table = MuList::create(page(), "connlist", MuList::Heading | MuList::KeepSelection | MuList::EnterActivates);
    table->addColumn(MuList::ColumnType::Text, LOC_TEXT("sui_connectionstab_usercolumn"));
    table->addColumn(MuList::ColumnType::Text, LOC_TEXT("sui_connectionstab_addresscolumn"),
                     hxutil::scaled(addressUnits));
    table->addColumn(MuList::ColumnType::Text, LOC_TEXT("sui_connectionstab_permscolumn"));
    table->setVisibleRows(leastRows);
    page()->setChildLayout(table, mui::MuLayout::Stretch);
}

void ConnectionsTab::buildDetails() {
    details = mui::MuFrame::create(page(), "detailsfr", mui::MuFrame::Type::Line);
    textStyle.applyTo(details);
    details->setBgColour("contentBg");
    // Always as high as four lines: a long name scrolls, and nothing below it moves.
    auto* view = mui::MuScroll::create(details, "");
    auto* column = mui::MuLayout::create(view, "detailslyt", mui::Orientation::Vertical);
    column->setSpacing(hxutil::scaled(halfUnits));
    mui::MuLayout* rows[ValueCount];
    mui::MuStatic* labels[ValueCount];
    int labelWidth = 0;
    for (int i = 0; i < ValueCount; ++i) {
        rows[i] = mui::MuLayout::create(column, valueRows[i].name, mui::Orientation::Horizontal);
        labels[i] = mui::MuStatic::create(rows[i], "label", LOC_TEXT(valueRows[i].key));
        values[i] = mui::MuStatic::create(rows[i], "value", "");
        rows[i]->setChildLayout(values[i], mui::MuLayout::Stretch);
        labelWidth = std::max(labelWidth, labels[i]->getMinWidth(0));
    }
    for (int i = 0; i < ValueCount; ++i)
        rows[i]->setChildLayout(labels[i], mui::MuLayout::Fixed, labelWidth);
    page()->setChildLayout(details, mui::MuLayout::Fixed, column->getMinHeight(0) + 2 * details->getMargin().y);
    detailsView = view;
}

void ConnectionsTab::buildHistory() {
    using mui::MuList;
    pastLayout = mui::MuLayout::create(page(), "history", mui::Orientation::Vertical);
    pastLayout->setSpacing(hxutil::scaled(halfUnits));
    mui::MuSpacer::create(pastLayout, ""); // a new group
    mui::MuStatic::create(pastLayout, "heading", LOC_TEXT("sui_connectionstab_past"));
    pastTable = MuList::create(pastLayout, "pastlist", MuList::Heading | MuList::KeepSelection);
    for (const char* key : {"sui_connectionstab_usercolumn", "sui_connectionstab_addresscolumn",
                            "sui_connectionstab_begincolumn", "sui_connectionstab_periodcolumn"})
        pastTable->addColumn(MuList::ColumnType::Text, LOC_TEXT(key));
    pastTable->setVisibleRows(pastRows);
    for (int row = static_cast<int>(past.entries().size()) - 1; row >= 0; --row)
        showPast(row);
}

mui::MuElement* ConnectionsTab::firstFocus() { return data.empty() ? nullptr : table; }

void ConnectionsTab::addConnection(const score::ConnectionInfo& info) {
    data.push_back(info);
    starts.push_back(ConnectionHistory::Start::now());
    if (!table)
        return;
    appendRow(info);
    showWhatIsThere();
}

void ConnectionsTab::removeConnection(const score::ConnectionInfo& info) {
    const auto found = std::find_if(data.begin(), data.end(),
                                    [&](const score::ConnectionInfo& each) { return each.isSameConnection(info); });
    if (found == data.end())
        return;
    const auto index = static_cast<int>(found - data.begin());
    past.add(shownUser(*found).c_str(), shownAddress(*found).c_str(), starts[static_cast<size_t>(index)]);
    data.erase(found);
    starts.erase(starts.begin() + index);
    if (!table)
        return;
    const int selected = table->getSelected();
    table->removeRow(index);
    if (index == selected)
        table->setSelected(selected - 1); // of one above, the selection moves along by itself
    showPast(0);
    showWhatIsThere();
}

void ConnectionsTab::appendRow(const score::ConnectionInfo& info) {
    const plat::String permissions = hxauth::Permissions::description(info.permissions.c_str());
    table->addRow({shownUser(info), shownAddress(info), plat::visibleText(permissions.c_str())});
}

/// Puts a row for that entry on top.
void ConnectionsTab::showPast(int row) {
    const ConnectionHistory::Entry& entry = past.entries()[static_cast<size_t>(row)];
    pastTable->insertRow(0, {entry.user, entry.address, momentText(entry.begin), periodText(entry.seconds)});
    if (pastTable->getRowCount() > static_cast<int>(ConnectionHistory::maxEntries))
        pastTable->removeRow(pastTable->getRowCount() - 1);
}

void ConnectionsTab::showWhatIsThere() {
    nobody->setShown(data.empty());
    table->setShown(!data.empty());
    details->setShown(!data.empty());
    pastLayout->setShown(!past.entries().empty());
    showDetails();
}

void ConnectionsTab::showDetails() {
    const int sel = table->getSelected();
    ASSERT(sel < (int)data.size());
    for (int i = 0; i < SinceValue; ++i)
        values[i]->setText(sel < 0 ? "" : table->getCell(sel, i));
    values[SinceValue]->setText(sel < 0 ? "" : momentText(starts[static_cast<size_t>(sel)].wall).c_str());
    disconnectButton->setEnabled(sel >= 0);
    page()->doLayout();
    detailsView->doLayout();
}

void ConnectionsTab::muEvent(mui::MuElement* element, int type) {
    if (element == table && type == mui::EventChanged)
        showDetails();
    else if (element == table && type == mui::EventRowActivated && disconnectButton->isEnabled())
        disconnectButton->setFocus(); // cutting somebody off takes one more key
    else if (element == disconnectButton && type == mui::EventActivated)
        disconnect(table->getSelected());
}

void ConnectionsTab::disconnect(int i) {
    ASSERT(i >= 0 && i < (int)data.size());
    const score::ConnectionInfo& info = data[static_cast<size_t>(i)];
    manager()->comms()->sendDisconnClient(info.idA.c_str(), info.idB.c_str());
}

} // namespace sui

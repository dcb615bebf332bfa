#include "sui/InformationCenterDialog.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "mui/MuLayout.h"
#include "mui/MuPager.h"
#include "mui/Mui.h"
#include "sui/InformationCenterTab.h"

#include <algorithm>
#include <cstring>

namespace sui {
namespace {
constexpr int widthUnits = 1400;
constexpr int heightUnits = 1040;
constexpr int minWidthUnits = 960;
constexpr int minHeightUnits = 800; // all parts of the connections tab have room
} // namespace

InformationCenterDialog::InformationCenterDialog()
    : dialog(mui::MuDialog::create("infocenterdlg", LOC_TEXT("sui_infocenterdialog_title"),
                                   {hxutil::scaled(widthUnits), hxutil::scaled(heightUnits)}, 0)) {
    dialog->setMinSize({hxutil::scaled(minWidthUnits), hxutil::scaled(minHeightUnits)});
    auto* main = mui::MuLayout::create(dialog.get(), "main", mui::Orientation::Vertical);
    pager = mui::MuPager::create(main, "tabs");
    main->setChildLayout(pager, mui::MuLayout::Stretch);
    dialog->setActionCallback(this);
}

InformationCenterDialog::~InformationCenterDialog() {
    tabs.clear(); // they let go of elements, which the dialog owns
}

void InformationCenterDialog::addTab(std::unique_ptr<InformationCenterTab> tab) { tabs.push_back(std::move(tab)); }

void InformationCenterDialog::tabsReady() {
    std::stable_sort(tabs.begin(), tabs.end(),
                     [](const auto& a, const auto& b) { return a->getOrder() < b->getOrder(); });
    for (const auto& tab : tabs)
        tab->build(pager);
}

void InformationCenterDialog::show(const char* tabName) {
    for (const auto& tab : tabs)
        tab->aboutToShow();
    dialog->setShown(/*shown=*/true);
    dialog->raise(); // it may lie under other windows
    dialog->nativeLayout();
    if (tabName)
        select(tabName);
    for (const auto& tab : tabs) {
        mui::MuElement* first = isCurrent(*tab) ? tab->firstFocus() : nullptr;
        if (first)
            first->setFocus();
    }
}

void InformationCenterDialog::select(const char* tabName) {
    for (int i = 0; i < pager->getChildCount(); ++i)
        if (strcmp(pager->getChild(i)->getName(), tabName) == 0)
            pager->setPage(i);
}

bool InformationCenterDialog::isCurrent(const InformationCenterTab& tab) const {
    return tab.page() && pager->getChild(pager->getPage()) == tab.page();
}

bool InformationCenterDialog::actionKey(int action, mui::MuDialog*) {
    if (action != mui::MuDialog::ActionCancel)
        return false;
    dialog->close();
    return true;
}

} // namespace sui

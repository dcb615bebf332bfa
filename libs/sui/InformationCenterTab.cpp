#include "sui/InformationCenterTab.h"

#include "mui/MuPager.h"

namespace sui {

InformationCenterTab::InformationCenterTab(SUiModuleMgr* manager, const char* tabName, const char* tabTitle,
                                           int sortOrder, mui::Orientation pageDirection)
    : mgr(manager), name(tabName), title(tabTitle), order(sortOrder), direction(pageDirection) {}

InformationCenterTab::~InformationCenterTab() {
    if (pageLayout)
        pageLayout->addObserver(this, /*add=*/false);
}

void InformationCenterTab::build(mui::MuPager* tabs) {
    pageLayout = mui::MuLayout::create(tabs, name.c_str(), direction);
    tabs->addPage(pageLayout, title.c_str());
    pageLayout->addObserver(this, /*add=*/true);
}

} // namespace sui

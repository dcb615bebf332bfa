// A tab of the information center.
#pragma once

#include "mui/MuLayout.h"
#include "mui/MuObserver.h"
#include "plat/NonCopyable.h"
#include "plat/String.h"

namespace mui {
class MuPager;
}

namespace sui {

class SUiModuleMgr;

/// One page of the information center: a name by which it is shown, a title, and a place among the others.
///
/// Modules make theirs in their constructors and hand them to InformationCenterDialog::addTab. It keeps what it shows
/// up to date while the window is closed. Until build() there are no elements.
class InformationCenterTab : public mui::MuObserver, private plat::NonCopyable {
public:
    /// `tabTitle` is text in the user's language; tabs stand in ascending `sortOrder`.
    InformationCenterTab(SUiModuleMgr* manager, const char* tabName, const char* tabTitle, int sortOrder,
                         mui::Orientation pageDirection = mui::Orientation::Vertical);
    ~InformationCenterTab() override;

    virtual void aboutToShow() {} ///< before each showing of the window, whichever tab is asked for

    /// Called once, after all modules are there: makes the page. An override calls this first, then fills page().
    virtual void build(mui::MuPager* tabs);

    /// What takes the keys when the window opens on this tab; null leaves that to the order of the elements.
    virtual mui::MuElement* firstFocus() { return nullptr; }

    const char* getName() const { return name.c_str(); }
    const char* getTitle() const { return title.c_str(); }
    int getOrder() const { return order; }
    mui::MuLayout* page() const { return pageLayout; } ///< null before build()

protected:
    SUiModuleMgr* manager() const { return mgr; }

private:
    SUiModuleMgr* mgr;
    mui::MuLayout* pageLayout = nullptr;
    plat::String name;
    plat::String title;
    int order;
    mui::Orientation direction;
};

} // namespace sui

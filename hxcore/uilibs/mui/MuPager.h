// Pages, one of which is seen.
#pragma once

#include "mui/MuContainer.h"

#include <vector>

namespace mui {

/// Elements as pages in one place, with a tab for each. Raises EventChanged when the page changes.
class MuPager : public MuContainer {
public:
    enum class Type {
        Tabs = 0,
        Plain = 1, ///< no tabs: the program turns the pages
    };

    /// Pages are made with the pager as their parent and then named by addPage.
    static MuPager* create(MuContainer* parent, const char* name, Type type = Type::Tabs);

    ~MuPager() override;

    Type getPagerType() const { return type; }
    virtual void addPage(MuElement* element, const char* title); ///< takes it in, unless it is a page; sets its title
    void removePage(int index);                                  ///< deletes it; those behind it move up
    virtual void setPage(int index);        ///< asserts "isValid(i)"; raises the event if it is another one
    int getPage() const { return current; } ///< 0 while there are none
    const char* getTitle(int index) const;
    bool isValid(int i) const { return i >= 0 && i < getChildCount(); }

    // MuContainer
    MuElement* getChild(int index) override;
    int getChildCount() override { return static_cast<int>(pages.size()); }
    int getChildCount() const { return static_cast<int>(pages.size()); }
    void adopt(MuElement* element) override; ///< a page with its label as the title
    void remove(MuElement* element) override;

    // MuElement
    void setSize(const rfb::Point& size) override; ///< always lays out
    const char* getType() override { return "pager"; }
    plat::String getState() override;
    plat::String getItems() override;
    void doLayout() override; ///< shows the current page, and no other
    bool handleCommand(const char* command, const char* argument) override;

protected:
    struct Page {
        MuElement* element;
        plat::String title;
    };

    MuPager(const char* name, Type type);

    void clear();                  ///< deletes all pages, the last first
    void turnTo(int index);        ///< makes it the current one and raises the event
    virtual void pagesChanged() {} ///< hook: pages came or went, a title is another

    std::vector<Page> pages; // owned
    int current = 0;

private:
    Type type;
};

} // namespace mui

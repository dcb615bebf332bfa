#include "mui/MuPager.h"

#include "mui/muFactories.h"
#include "mui/oneLine.h"
#include "plat/Assert.h"
#include "plat/DString.h"
#include "plat/numbers.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace mui {

MuPager* MuPager::create(MuContainer* parent, const char* name, Type type) {
    ASSERT(muPagerFactory);
    MuPager* pager = muPagerFactory(name, static_cast<int>(type));
    parent->add(pager);
    return pager;
}

MuPager::MuPager(const char* name, Type type_) : MuContainer(name), type(type_) {}

MuPager::~MuPager() { clear(); }

void MuPager::clear() {
    while (!pages.empty())
        MuPager::remove(pages.back().element);
}

void MuPager::addPage(MuElement* element, const char* title) {
    if (element && element->getParent() != this)
        add(element);
    const auto page = std::find_if(pages.begin(), pages.end(), [=](const Page& p) { return p.element == element; });
    ASSERT(page != pages.end());
    page->title = title ? title : "";
    pagesChanged();
}

void MuPager::removePage(int index) {
    ASSERT(isValid(index));
    remove(getChild(index));
}

void MuPager::setPage(int i) {
    ASSERT(isValid(i));
    if (i != current)
        turnTo(i);
}

void MuPager::turnTo(int index) {
    current = index;
    doLayout();
    notify(EventChanged);
}

const char* MuPager::getTitle(int index) const {
    ASSERT(isValid(index));
    return pages[static_cast<size_t>(index)].title.c_str();
}

MuElement* MuPager::getChild(int index) {
    if (index < 0)
        index += getChildCount();
    return isValid(index) ? pages[static_cast<size_t>(index)].element : nullptr;
}

void MuPager::adopt(MuElement* element) {
    pages.push_back({element, element->getLabel() ? element->getLabel() : ""});
    setParent(element, this);
    pagesChanged();
    doLayout();
}

void MuPager::remove(MuElement* element) {
    const auto page = std::find_if(pages.begin(), pages.end(), [=](const Page& p) { return p.element == element; });
    ASSERT(page != pages.end());
    element->willBeDeleted();
    const int index = static_cast<int>(page - pages.begin());
    pages.erase(page);
    if (index < current || (current > 0 && current >= getChildCount()))
        --current;
    delete element;
    pagesChanged();
    doLayout();
}

void MuPager::setSize(const rfb::Point& size) {
    MuContainer::setSize(size);
    doLayout();
}

plat::String MuPager::getState() {
    return plat::strFormat("element Pager\npage %d\n%s", current, commonState().c_str());
}

plat::String MuPager::getItems() {
    plat::DString list;
    for (int i = 0; i < getChildCount(); ++i)
        list.format("%d:%s\n", i, oneLine(getTitle(i)).c_str());
    return list.isEmpty() ? plat::String() : list.take();
}

void MuPager::doLayout() {
    for (int i = 0; i < getChildCount(); ++i)
        getChild(i)->setShown(i == current);
}

bool MuPager::handleCommand(const char* command, const char* argument) {
    int page = 0;
    if (std::strcmp(command, "select") != 0 || !plat::parseIntInRange(argument, INT_MIN, INT_MAX, page))
        return false;
    if (!isValid(page) || isInert())
        return false;
    if (page == current)
        notify(EventChanged);
    else
        setPage(page);
    return true;
}

} // namespace mui

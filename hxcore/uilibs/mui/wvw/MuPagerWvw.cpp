#include "mui/wvw/MuPagerWvw.h"

#include <algorithm>

namespace mui {

MuPagerWvw::MuPagerWvw(const char* name, Type type_)
    : MuPager(name, type_), tabs(type_ == Type::Tabs ? new wvw::WTabSheets(nullptr, this) : nullptr),
      plain(tabs ? nullptr : std::make_unique<wvw::WLayout>()), commonWvw(this, root()) {
    common = &commonWvw;
}

MuPagerWvw::~MuPagerWvw() {
    while (!pages.empty())
        MuPager::remove(pages.back().element);
    common = nullptr;
}

wvw::Widget* MuPagerWvw::root() const { return tabs ? static_cast<wvw::Widget*>(tabs.get()) : plain.get(); }

/// Brings hosts and tabs in line with the pages, which change one at a time.
void MuPagerWvw::pagesChanged() {
    for (size_t i = hosts.size(); i-- > 0;) {
        const bool there = std::any_of(pages.begin(), pages.end(),
                                       [&](const Page& page) { return page.element == hosts[i]->getElement(); });
        if (there)
            continue;
        if (tabs)
            tabs->removeSheet(static_cast<int>(i));
        hosts.erase(hosts.begin() + static_cast<long>(i));
    }
    for (size_t i = 0; i < pages.size(); ++i) {
        if (i < hosts.size()) {
            if (tabs)
                tabs->setTitle(static_cast<int>(i), pages[i].title.c_str());
            continue;
        }
        hosts.push_back(std::make_unique<PageHost>(pages[i].element));
        if (tabs)
            tabs->addSheet(pages[i].title.c_str(), hosts.back().get());
        else
            plain->addChild(hosts.back().get());
    }
    root()->repaint();
}

rfb::Point MuPagerWvw::getContentOrigin() {
    if (!tabs)
        return {0, 0};
    return tabs->sheetRect().tl + rfb::Point(wvw::WSheet::margin, wvw::WSheet::margin);
}

int MuPagerWvw::getMinWidth(int height) {
    if (tabs)
        return MuPager::getMinWidth(height);
    int most = 0;
    for (const Page& page : pages)
        most = std::max(most, page.element->getMinWidth(height));
    return most;
}

int MuPagerWvw::getMinHeight(int width) {
    if (tabs)
        return MuPager::getMinHeight(width);
    int most = 0;
    for (const Page& page : pages)
        most = std::max(most, page.element->getMinHeight(width));
    return most;
}

void MuPagerWvw::doLayout() {
    MuPager::doLayout();
    if (tabs && current < tabs->count() && tabs->current() != current)
        tabs->setSheet(current);
    for (size_t i = 0; i < hosts.size(); ++i) {
        if (tabs)
            continue; // it sizes its sheets itself
        hosts[i]->setVisible(static_cast<int>(i) == current);
        hosts[i]->setSize(plain->getSize());
    }
}

bool MuPagerWvw::hotKey(uint32_t keysym) { return tabs && !isInert() && isShownFully() && tabs->hotKey(keysym); }

void MuPagerWvw::sheetChanged(wvw::WTabSheets*, int index) {
    if (isValid(index) && index != current)
        turnTo(index);
}

} // namespace mui

// The gallery's window.
#pragma once

#include "mui/MuObserver.h"
#include "plat/NonCopyable.h"
#include "zefgallery/pages.h"

#include <memory>
#include <vector>

namespace mui {
class MuDialog;
class MuList;
class MuPager;
} // namespace mui

namespace gallery {

/// A list of pages and the page that is chosen in it. Closing the window ends the program.
class Gallery : private mui::MuObserver, private plat::NonCopyable {
public:
    Gallery();
    ~Gallery() override;

private:
    // mui::MuObserver
    void muChanged(mui::MuElement* element) override;
    void muClosed(mui::MuDialog* closed) override;

    std::unique_ptr<mui::MuDialog> dialog;
    mui::MuList* names;
    mui::MuPager* pager;
    std::vector<std::unique_ptr<Page>> pages; // destroyed before the elements that they listen to
};

} // namespace gallery

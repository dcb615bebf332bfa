// The pages of the gallery, each made once into its own layout.
#pragma once

#include <memory>

namespace mui {
class MuDialog;
class MuLayout;
} // namespace mui

namespace gallery {

/// What a page keeps beside its elements: observers, menus, dialogs. It goes before the elements do.
class Page {
public:
    virtual ~Page() = default;
};

using MakePage = std::unique_ptr<Page> (*)(mui::MuDialog* dialog, mui::MuLayout* page);

std::unique_ptr<Page> makeButtons(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeChoices(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeFields(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeTexts(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeScripts(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeLists(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeFrames(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeContainers(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeInfoFrames(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeImages(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeForms(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeStates(mui::MuDialog* dialog, mui::MuLayout* page);
std::unique_ptr<Page> makeWindows(mui::MuDialog* dialog, mui::MuLayout* page);

/// A row or a column in `parent` whose children are as large as they want to be.
mui::MuLayout* row(mui::MuLayout* parent);
mui::MuLayout* column(mui::MuLayout* parent);

/// A line in bold that says what stands below it; gives the column that its things go into, as wide as the page.
mui::MuLayout* group(mui::MuLayout* page, const char* title);

} // namespace gallery

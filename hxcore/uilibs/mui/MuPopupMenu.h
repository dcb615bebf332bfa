// A menu that pops up.
#pragma once

#include "plat/NonCopyable.h"
#include "rfb/Rect.h"
#include "ui/Menu.h"

namespace mui {

class MuElement;

/// A ui::Menu that is shown at a place on the screen. Inspection finds it by its name.
///
/// The user's choice hides it, then calls the item's callback, which may delete the menu.
class MuPopupMenu : public ui::Menu, private plat::NonCopyable {
public:
    static MuPopupMenu* create(const char* name); ///< the caller owns the result

    ~MuPopupMenu() override;

    const char* getName() const { return name.c_str(); }

    virtual void show(const rfb::Point& rootPosition) = 0;         ///< its upper left corner; kept on the screen
    void showUnder(MuElement* element, bool rightAligned = false); ///< for a button that opens it
    virtual void hide() = 0;
    virtual bool isShown() const = 0;

protected:
    explicit MuPopupMenu(const char* name);

    virtual void showRightAligned(const rfb::Point& rootPosition) = 0; ///< its upper right corner

private:
    plat::String name;
};

} // namespace mui

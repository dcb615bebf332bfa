// The context menu of edits and labels.
#pragma once

#include "wvw/InputHandler.h"

#include "plat/NonCopyable.h"

#include <memory>
#include <vector>

namespace rfb {
struct Point;
}

namespace wvw {

class WMenuItem;
class WRootMenu;

/// Copy, paste and select all, as far as they are asked for.
class WEditMenu : public WInputHandler, private plat::NonCopyable {
public:
    enum Choice { Copy = 1, Paste = 2, SelectAll = 4 };

    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void editMenuChosen(int choice) = 0; ///< one of Choice
    };

    /// `mask` ORs the choices to offer. `target` is borrowed.
    WEditMenu(Callback* target, int mask);
    ~WEditMenu() override;

    void show(Widget* widget, const rfb::Point& position); ///< position in the widget, which is attached
    void hide();

    // WInputHandler
    bool activated(Widget* origin) override;

private:
    void addItem(int choice, const char* text); // not for choice 0

    Callback* callback;
    std::unique_ptr<WRootMenu> menu;
    std::vector<std::unique_ptr<WMenuItem>> items;
    std::vector<int> values; // beside items
};

} // namespace wvw

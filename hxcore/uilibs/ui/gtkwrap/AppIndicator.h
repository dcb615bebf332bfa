// The icon of a desktop that has indicators.
#pragma once

#include "ui/gtkwrap/ctypes.h"

namespace gtkwrap {

class Menu;

class AppIndicator {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void indicatorChanged(bool shown) = 0; ///< the desktop took it, or lost it
    };

    static bool available();

    /// `id` names the program. The callback is borrowed; it comes from GTK and must not throw.
    AppIndicator(Callback* target, const char* id, Menu& menu);
    ~AppIndicator();
    AppIndicator(const AppIndicator&) = delete;
    AppIndicator& operator=(const AppIndicator&) = delete;

    void setActive(bool on);                                    ///< passive ones are not shown
    void setIcon(const char* iconName, const char* spokenText); ///< a name in the icon theme
    void setMenu(Menu& menu);                                   ///< takes what it has become

private:
    static void connectionChanged(c::Object*, c::Bool connected, void* self);

    Callback* callback;
    Ref indicator;
};

} // namespace gtkwrap

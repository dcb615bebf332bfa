// The icon of an XEmbed tray.
#pragma once

#include "ui/gtkwrap/ctypes.h"

namespace gtkwrap {

class Menu;
class Pixbuf;

class StatusIcon {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void statusIconChanged() = 0;   ///< it came into a tray or left it, or its visibility changed
        virtual void statusIconActivated() = 0; ///< it was clicked
    };

    static bool available();

    /// Both are borrowed. Callbacks come from GTK and must not throw.
    StatusIcon(Callback* target, Menu* menu);
    ~StatusIcon(); ///< the icon disappears
    StatusIcon(const StatusIcon&) = delete;
    StatusIcon& operator=(const StatusIcon&) = delete;

    void setImage(const Pixbuf& image);
    void setTooltip(const char* text);
    void setVisible(bool on);

    bool isShown() const; ///< visible, and a tray holds it
    bool isVisible() const;

private:
    static void changed(c::Object*, void* param, void* self);
    static void activate(c::Object*, void* self);
    static void popupMenu(c::Object*, unsigned button, unsigned time, void* self);

    Callback* callback;
    Menu* menu;
    Ref icon;
};

} // namespace gtkwrap

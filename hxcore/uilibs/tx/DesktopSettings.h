// The look that the desktop asks of its applications.
#pragma once

#include "plat/NonCopyable.h"
#include "tx/TXEventHandler.h"
#include "tx/desktopTexts.h"

namespace tx {

/// Takes scale and theme from the desktop, and follows the theme.
///
/// The resolution is Xft.dpi of the resource database, else that of XSETTINGS; it sets the parameters ppmm and
/// TextSizeFactor once, in the constructor. A dark theme of XSETTINGS sets _DarkMode, and is watched, through managers
/// of settings that come and go. All are set at a priority below the user's, and left alone where the desktop says
/// nothing.
class DesktopSettings : private TXEventHandler, private plat::NonCopyable {
public:
    static constexpr int priority = 5; ///< of the parameters that are set

    class Callback {
    public:
        virtual ~Callback() = default;

        /// The dark mode in force is another one.
        virtual void desktopThemeChanged(DesktopSettings*) {}
    };

    DesktopSettings(); ///< the display must be open
    ~DesktopSettings() override;

    void setCallback(Callback* target) { callback = target; } ///< borrowed, may be null

private:
    /// Managers announce themselves on the root window (ICCCM 2.8).
    class Announcements : public TXEventHandler {
    public:
        explicit Announcements(DesktopSettings* target) : owner(target) {}
        bool handleEvent(XEvent* event) override;

    private:
        DesktopSettings* owner;
    };

    // TXEventHandler
    bool handleEvent(XEvent* event) override;

    void findManager();
    void readSettings();
    void applyScale();
    void applyTheme();

    Announcements announcements{this};
    Callback* callback = nullptr;
    Atom selection;
    Atom property;
    Atom managerMessage;
    Window manager = none; // of the settings; none while nobody owns the selection
    XSettings settings;
};

} // namespace tx

// Where notification popups stand.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/Timer.h"
#include "rfb/Rect.h"

#include <vector>

namespace ui {

/// Stacks the popups of this process in a corner of the screen, the oldest in the corner, and follows the work area.
///
/// There is always room for the newest: where the stack would outgrow the work area, the oldest popups end. Those that
/// stay move up in the next round of the loop, once for all that came and went.
class PopupNotificationMgr : private plat::Timer::Callback, private plat::NonCopyable {
public:
    enum class Corner { Auto, TopLeft, TopRight, BottomLeft, BottomRight };

    /// What panels leave free, and all there is; in pixels, of the root window.
    struct Screen {
        rfb::Rect workArea;
        rfb::Point size;
        bool operator==(const Screen&) const = default;
    };

    class Popup {
    public:
        virtual ~Popup() = default;
        virtual rfb::Point popupSize() = 0; ///< outer, pixels
        virtual void movePopup(const rfb::Point& rootPosition) = 0;
        virtual Screen readScreen() = 0; ///< as it is at this moment
        virtual void expirePopup() = 0;  ///< there is no room for it: it must leave by remove()
    };

    static PopupNotificationMgr& instance();

    void add(Popup* popup); ///< borrowed; it gets its place here
    void remove(Popup* popup);

    /// The upper left corners for popups of these sizes, in order of appearance. Auto takes a corner beside a panel.
    static std::vector<rfb::Point> places(Corner corner, const Screen& screen, const std::vector<rfb::Point>& sizes);

private:
    PopupNotificationMgr();

    // plat::Timer::Callback
    bool timerExpired(plat::Timer*) override;

    std::vector<rfb::Point> spots() const;
    void makeRoom();
    void forget(const Popup* popup);

    struct Entry {
        Popup* popup;
        rfb::Point place;
    };

    std::vector<Entry> popups; // the oldest first
    Screen screen;             // that they were placed for
    plat::Timer timer;
};

} // namespace ui

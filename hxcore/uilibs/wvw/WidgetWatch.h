// Notices the death of a widget during a call.
#pragma once

#include "plat/NonCopyable.h"

namespace wvw {

class Widget;

/// Made on the stack around a call to a handler, which may delete the widget: afterwards alive() tells.
class WidgetWatch : private plat::NonCopyable {
public:
    explicit WidgetWatch(Widget* watched); ///< may be null
    ~WidgetWatch();

    bool alive() const { return widget != nullptr; }
    Widget* get() const { return widget; } ///< null once it is dead

private:
    friend class Widget;

    Widget* widget;
    WidgetWatch* next = nullptr;
};

} // namespace wvw

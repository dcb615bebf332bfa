// What is dragged from one widget to another.
#pragma once

#include "wvw/WidgetWatch.h"

#include "hxutil/DragDropData.h"
#include "plat/String.h"

namespace wvw {

/// The widget that a drag began in, and a text for targets that take no more than that.
class WDragDropData : public hxutil::DragDropData {
public:
    explicit WDragDropData(Widget* from, const char* text_ = nullptr) : source(from), text(text_) {}

    Widget* getSource() const { return source.get(); } ///< null once it is dead
    const char* getText() const { return text.c_str(); }

private:
    WidgetWatch source;
    plat::String text;
};

} // namespace wvw

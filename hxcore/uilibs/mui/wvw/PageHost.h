// A widget that an element fills.
#pragma once

#include "wvw/WLayout.h"

namespace mui {

class MuElement;

/// For widgets that ask their children for sizes: it answers with what the element needs, and gives it its own size.
class PageHost : public wvw::WLayout {
public:
    /// Takes the element's widget, if it has one, as its child. The element is borrowed and outlives it.
    explicit PageHost(MuElement* element);

    MuElement* getElement() const { return element; }

    // wvw::Widget
    rfb::Point getPreferredSize() override;
    int getPreferredHeight(int width) override;
    bool sizeChanged(wvw::Widget* origin) override;

private:
    MuElement* element;
};

} // namespace mui

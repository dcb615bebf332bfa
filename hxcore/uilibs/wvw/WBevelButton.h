// Buttons with a face and a bevel.
#pragma once

#include "wvw/WArrow.h"
#include "wvw/WButton.h"
#include "wvw/WImage.h"
#include "wvw/WLabel.h"

namespace wvw {

/// A raised face around one child, inset by 3.
class WBevelButton : public WButton {
public:
    explicit WBevelButton(WLayout* layout = nullptr) : WButton(layout) {}

    void setChild(Widget* newChild); ///< borrowed; null for none
    Widget* getChild() const { return child; }

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    int getPreferredHeight(int width) override;
    bool sizeChanged(Widget* origin) override;
    void removeChild(Widget* gone) override;

protected:
    virtual rfb::Rect childRect() const; ///< while not pressed

    // WButton
    void stateChanged() override;

private:
    void placeChild();

    Widget* child = nullptr;
};

/// A button with a text in its middle.
class WLabelButton : public WBevelButton {
public:
    explicit WLabelButton(WLayout* layout = nullptr, const char* text = nullptr);

    void setText(const char* text);
    const char* getText() const { return label.getText(); }
    WLabel& getLabel() { return label; }

private:
    WLabel label;
};

/// A button with a picture in its middle.
class WIconButton : public WBevelButton {
public:
    WIconButton(WLayout* layout, const char* imageName, const rfb::Point& imageSize = {0, 0});

    WIcon& getIcon() { return icon; }

private:
    WIcon icon;
};

/// A button with a triangle, for scrollbars and choices. It takes no focus.
class WArrowButton : public WBevelButton {
public:
    WArrowButton(WLayout* layout, WArrow::Direction towards, const rfb::Point& preferred = {8, 8});

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override { return preferredSize; }

private:
    WArrow arrow;
    rfb::Point preferredSize;
};

} // namespace wvw

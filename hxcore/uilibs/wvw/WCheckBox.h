// Check marks and radio marks.
#pragma once

#include "wvw/WButton.h"
#include "wvw/WImage.h"

namespace wvw {

/// A mark that is off, on, or neither.
///
/// A press of a check turns it on or off; a press of a radio mark turns it on. Then valueChanged(this) runs, and
/// activated(this).
class WCheckBox : public WButton {
public:
    enum class State { Off, On, Indeterminate };

    /// "WCheck_check" and "WCheck_dot" are drawn; any other name takes the images "off-", "on-" and "ind-" with it.
    explicit WCheckBox(WLayout* layout = nullptr, const char* imageName = "WCheck_check");

    void setState(State newState); ///< runs valueChanged if it is another
    State getState() const { return state; }
    bool isOn() const { return state == State::On; }
    bool isRadio() const { return kind == Kind::Dot; }
    void setLit(bool on);      ///< as under the pointer, for a label beside it
    void setLabelled(bool on); ///< a label beside it shows the focus

    // Widget
    void styleChanged() override;
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;

protected:
    // WButton
    void pressedByUser() override;

private:
    enum class Kind { Check, Dot, Images };

    State afterPress() const;
    void loadImages();
    void paintBox(rfb::FullFramePixelBuffer& pb, State shown);
    rfb::Colour edgeColour(State shown) const;
    rfb::Colour wellColour(State shown) const;

    Kind kind;
    plat::String name;
    State state = State::Off;
    WImage::Image images[3]; // in the order of State; the mark alone, as images[1], for what is drawn
    bool lit = false;
    bool labelled = false;
};

} // namespace wvw

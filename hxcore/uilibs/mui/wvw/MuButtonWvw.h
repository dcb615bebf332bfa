// The widget side of a button.
#pragma once

#include "hxutil/NamedImagePixelBuffer.h"
#include "mui/MuButton.h"
#include "mui/wvw/MuCommonWvw.h"
#include "mui/wvw/MuHotKey.h"
#include "wvw/InputHandler.h"
#include "wvw/MouseInputHandler.h"
#include "wvw/WCustom.h"

namespace mui {

/// Paints itself and does the press logic: down and up inside, Enter, Space, or its hot key.
class MuButtonWvw : public MuButton,
                    public MuHotKey,
                    private wvw::WInputHandler,
                    private wvw::WMouseInputHandler,
                    private wvw::WCustom::Callback {
public:
    MuButtonWvw(const char* name, const char* label, Type type, unsigned buttonFlags);
    ~MuButtonWvw() override;

    bool isHovered() const { return hovered; }
    bool isPressed() const { return pressed; }

    // MuElement
    void mouseEvent(const hxutil::MouseEvent& event) override;
    void styleChanged() override;

    // MuHotKey
    bool hotKey(uint32_t keysym) override;

private:
    // MuButton
    void contentChanged() override;

    // wvw::WInputHandler
    bool keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) override;
    bool focusChanged(bool backward, wvw::Widget* origin) override;
    bool visibilityChanged(wvw::Widget* origin) override;
    bool enabledChanged(wvw::Widget* origin) override;
    bool detached(wvw::Widget* origin) override;

    // wvw::WMouseInputHandler: a press ends here, so that it doesn't count as one on the dialog's background
    bool mouseDown(int button, wvw::Widget* origin) override;
    bool mouseUp(int button, wvw::Widget* origin) override;

    // wvw::WCustom::Callback
    void paintCustom(wvw::WCustom* custom, rfb::FullFramePixelBuffer& pb) override;
    rfb::Point customSize(wvw::WCustom* custom) override;
    bool customAcceptsFocus(wvw::WCustom* custom) override;

    void setState(bool nowHovered, bool nowPressed);
    void loadImages();
    const rfb::PixelBuffer* pixelsFor(bool hover, bool pressing) const; // null for none
    const rfb::PixelBuffer* pixelsOf(ImageState state) const;
    rfb::Colour textColour() const;
    rfb::Point padding() const;
    rfb::Point contentSize() const;
    void paintFace(rfb::FullFramePixelBuffer& pb);
    void paintContent(rfb::FullFramePixelBuffer& pb, const rfb::Point& offset);
    void paintLabel(rfb::FullFramePixelBuffer& pb, const rfb::Point& position);
    void paintImage(rfb::FullFramePixelBuffer& pb);

    wvw::WCustom widget;
    MuCommonWvw commonWvw;
    plat::String shownLabel; // without the mark of its key
    uint32_t mnemonic = 0;   // keysym, 0 for none
    int mnemonicIndex = -1;  // byte in the shown label
    hxutil::NamedImagePixelBuffer::Ptr named[ImageStates];
    bool hovered = false;
    bool held = false; // the button went down on us and is not up yet
    bool pressed = false;
};

} // namespace mui

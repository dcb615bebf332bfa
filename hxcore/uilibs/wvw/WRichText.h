// Text with markup and links.
#pragma once

#include "wvw/WLabel.h"

#include "plat/Markup.h"

namespace wvw {

class RichTextLayout;

/// A label whose text is markup. Links light up under the pointer and with the keyboard focus, which travels from link
/// to link before it leaves; a click or Enter follows one.
///
/// Markup that can't be parsed is shown as the text of the error.
class WRichText : public WLabel {
public:
    explicit WRichText(WLayout* layout = nullptr, const char* markup = nullptr, int hAlign = 0);
    ~WRichText() override;

    void setLinkCallback(plat::Markup::LinkCallback* callback) { linkCallback = callback; } ///< borrowed; null: none
    int linkCount() const;
    const char* linkTarget(int link) const; ///< of the link with this number, counted from 0 in reading order
    int focusedLink() const;                ///< its number, -1 for none

    // WLabel
    void setText(const char* markup) override;

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    int getPreferredHeight(int width) override;
    bool sizeChanged(Widget* origin) override;
    bool acceptsFocus() override;
    bool focusChanged(bool backward, Widget* origin) override;
    bool mouseMove(const rfb::Point& position, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;
    bool mouseExit(Widget* origin) override;

protected:
    // Widget
    bool ownKey(uint32_t keysym) override;
    void travel(bool backward) override; ///< to the next link, if there is one
    bool pressTakesFocus() override;

    // WLabel
    void layoutText() override;
    size_t indexAt(const rfb::Point& position) const override;
    const std::string& shownText() const override;

private:
    void paintRun(rfb::FullFramePixelBuffer& pb, int index);
    void followLink(int run);
    void setHot(int newHover, int newFocus);
    int linkAt(const rfb::Point& position) const; // run index, -1 for none

    std::unique_ptr<RichTextLayout> runs;
    plat::Markup::LinkCallback* linkCallback = nullptr;
    int hover = -1;      // run index
    int focusRun = -1;   // run index
    int pressedRun = -1; // run index, while the left button is held
};

} // namespace wvw

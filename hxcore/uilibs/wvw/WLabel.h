// Static text.
#pragma once

#include "wvw/WEditMenu.h"
#include "wvw/Widget.h"

#include <string>
#include <vector>

namespace wvw {

/// Text that wraps, and that the user may select and copy when the owner allows it.
class WLabel : public Widget, public WEditMenu::Callback {
public:
    /// `hAlign`: 0 left, 1 centre, 2 right.
    explicit WLabel(WLayout* layout = nullptr, const char* text = nullptr, int hAlign = 0);
    ~WLabel() override;

    virtual void setText(const char* newText); ///< UTF-8; null is empty
    const char* getText() const { return text.c_str(); }

    void setHAlign(int align);
    void setVAlign(int align); ///< 0 top, 1 middle (at first), 2 bottom
    void setMargin(int px);    ///< on the left and right, 4 at first
    void setWrap(bool on);     ///< true at first
    void setTransparent(bool on);
    void setUnderline(bool on);
    void setSelectable(bool on);
    int getMargin() const { return margin; }

    /// The range of bytes from `start`, in the shown text.
    void setSelection(size_t start, size_t lenBytes);
    plat::String getSelectedText() const;

    // Widget
    void styleChanged() override;
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    int getPreferredHeight(int width) override;
    bool acceptsFocus() override { return selectable && isEnabled() && isVisible(); }
    bool sizeChanged(Widget* origin) override;
    void detach() override;
    bool copy(Widget* origin) override;
    bool focusChanged(bool backward, Widget* origin) override;
    bool mouseMove(const rfb::Point& position, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;

    // WEditMenu::Callback
    void editMenuChosen(int choice) override;

protected:
    struct Line {
        size_t start; // in text
        size_t lenBytes;
        int width;  // pixels
        bool atEnd; // of a paragraph from right to left that takes several lines: those begin at the right
    };

    // Widget
    bool ownKey(uint32_t keysym) override; ///< Ctrl+A, and the keys of the menu

    /// Splits the text anew for the current width and style, and repaints.
    virtual void layoutText();
    /// The byte of the shown text nearest to `position`.
    virtual size_t indexAt(const rfb::Point& position) const;
    /// The text that indexes and selection count in.
    virtual const std::string& shownText() const { return text; }
    void paintBackground(rfb::FullFramePixelBuffer& pb);
    rfb::Point lineOrigin(size_t line) const;
    hxutil::TextLine textLine(const Line& line) const;
    const std::vector<Line>& getLines() const { return lines; }
    size_t selectionStart() const; ///< the lower end
    size_t selectionEnd() const;

    int hAlign;
    int vAlign = 1;
    int margin = 4;
    bool wrap = true;
    bool transparent = false;
    bool underline = false;
    bool selectable = false;

private:
    template <class T>
    void change(T& field, T value);
    std::vector<Line> split(int width) const; ///< a width below 1 does not wrap
    void alignParagraph(std::vector<Line>& paragraphs, size_t first) const;
    void paintLine(rfb::FullFramePixelBuffer& pb, size_t line);
    void showMenu(const rfb::Point& position);
    void offerSelection();

    std::string text;
    bool simple = true; // no character of it needs a layout
    std::vector<Line> lines;
    size_t anchor = 0; // where the selection began
    size_t caret = 0;  // where it ends; equal means nothing is selected
    bool dragging = false;
    std::unique_ptr<WEditMenu> menu; // made on first use
};

} // namespace wvw

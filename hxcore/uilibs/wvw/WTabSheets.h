// Pages with tabs.
#pragma once

#include "wvw/WBevelButton.h"
#include "wvw/WLabelWithMnemonic.h"

#include <memory>
#include <vector>

namespace wvw {

class WTabSheets;

/// A page: one child, with a margin around it.
class WSheet : public WLayout {
public:
    static constexpr int margin = 10; // pixels

    explicit WSheet(WLayout* layout = nullptr);

    void setChild(Widget* newChild); ///< borrowed; null for none
    Widget* getChild() const { return child; }

    // Widget
    rfb::Point getPreferredSize() override;
    int getPreferredHeight(int width) override;
    bool sizeChanged(Widget* origin) override;
    void removeChild(Widget* gone) override;

private:
    Widget* child = nullptr;
};

/// The button that brings a page to the front. Only the current one takes the focus by Tab.
class WTab : public WBevelButton {
public:
    WTab(WTabSheets* sheets, const char* markedTitle);

    void setTitle(const char* markedTitle);
    WLabelWithMnemonic& getLabel() { return label; }
    bool isCurrent() const { return current; }
    void setCurrent(bool on);

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    bool acceptsFocus() override { return current && WBevelButton::acceptsFocus(); }

protected:
    // WBevelButton
    rfb::Rect childRect() const override;

    // Widget
    bool ownKey(uint32_t keysym) override; ///< arrows, Home and End go to other tabs

private:
    WTabSheets* owner;
    WLabelWithMnemonic label;
    bool current = false;
};

/// Shows one page at a time, under a row of tabs; the tabs scroll when they don't fit.
class WTabSheets : public WLayout {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void sheetChanged(WTabSheets* sheets, int index) = 0; ///< by the user
    };

    explicit WTabSheets(WLayout* layout = nullptr, Callback* target = nullptr); ///< borrowed, may be null
    ~WTabSheets() override;

    int addSheet(const char* markedTitle, Widget* child); ///< gives its index; the child is borrowed
    void removeSheet(int index);                          ///< before the current one, that one stays
    void setTitle(int index, const char* markedTitle);
    void setSheet(int index); ///< does not run sheetChanged
    WSheet* getSheet(int index) const;
    WTab* getTab(int index) const;
    int count() const { return static_cast<int>(sheets.size()); }
    int current() const { return currentIndex; } ///< -1 without sheets
    int tabHeight() const;                       ///< of the row above the frame
    rfb::Rect sheetRect() const;                 ///< what each sheet gets

    void chooseSheet(int index, bool focusTab); ///< as the user would
    bool hotKey(uint32_t keysym);               ///< Alt and the mnemonic of a title, for a dialog that sees unused keys

    // Widget
    void styleChanged() override;
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Point getPreferredSize() override;
    int getPreferredHeight(int width) override;
    bool sizeChanged(Widget* origin) override;
    bool activated(Widget* origin) override;
    bool keyEvent(uint32_t keysym, bool down, Widget* origin) override; ///< Ctrl with PageUp, PageDown or Tab
    bool mouseDown(int button, Widget* origin) override;                ///< the wheel over the tabs

private:
    void arrange();
    void placeTabs();
    void revealTab(int index);
    int tabRoom() const; // for the tabs alone
    int buttonWidth() const;
    int tabWidths(int from, int to) const;
    int indexOf(const Widget* tab) const;

    Callback* callback;
    std::vector<std::unique_ptr<WSheet>> sheets;
    std::vector<std::unique_ptr<WTab>> tabs;
    WLayout tabRow;
    WArrowButton back;
    WArrowButton forth;
    int currentIndex = -1;
    int firstTab = 0; // the leftmost one on show
};

} // namespace wvw

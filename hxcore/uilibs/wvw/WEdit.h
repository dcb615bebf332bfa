// A one-line editor.
#pragma once

#include "wvw/DeadKeyUtil.h"
#include "wvw/UndoStack.h"
#include "wvw/WEditMenu.h"
#include "wvw/Widget.h"

#include <string>

namespace wvw {

/// One line of text that the user edits. Each change, also by setText, runs valueChanged(this).
///
/// Besides the keys that type, move and erase: Ctrl+A, C, X, V, Z, Y, their older forms with Insert and Delete, and the
/// menu key. The middle button pastes what was selected last in any program; what the user selects here is that for
/// others, unless it is a password.
///
/// Text from right to left stands at the right; Left and Right move the caret to the left and right on the screen.
///
/// Positions are bytes, and always lie between characters, where marks belong to their base. The text of a password
/// field is wiped before it is freed.
class WEdit : public Widget, public WEditMenu::Callback {
public:
    class Filter {
    public:
        virtual ~Filter() = default;

        /// Asked before the user's change, with the text already cut to the limit. `character` is the key's code
        /// point, 0 for a paste or a removal. False keeps the old text.
        virtual bool accept(WEdit* edit, const char* newText, uint32_t character) = 0;
    };

    explicit WEdit(WLayout* layout = nullptr, int maxLengthBytes = 1024);
    ~WEdit() override;

    void setText(const char* newText, bool cursorToEnd = true);
    const char* getText() const { return text.c_str(); }
    void setMaxLength(int bytes);
    int getMaxLength() const { return maxLength; }

    void setSelection(int start, int end); ///< bytes; `end` is where it may be extended
    void selectAll();
    int getCursor() const { return cursor; }       ///< where the selection began
    int getSelection() const { return selection; } ///< its length from the cursor, negative to the left
    plat::String getSelectedText() const;
    bool replaceSelection(const char* newText, uint32_t character = 0); ///< false if the filter refused

    void setFilter(Filter* newFilter) { filter = newFilter; } ///< borrowed, may be null
    void setPassword(bool on);
    void setPlaceholder(const char* hint);
    void setFocusable(bool on) { focusable = on; }
    void setContextMenu(bool on) { contextMenu = on; } ///< true at first
    void setAlign(int newHAlign, int newVAlign);       ///< 0 start, 1 centre, 2 end
    void setFrame(bool on);                            ///< true at first; without, the text alone is painted

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;
    rfb::Rect opaqueWithin(const rfb::Rect& part) const override; ///< all but the soft corners
    rfb::Point getPreferredSize() override;
    bool acceptsFocus() override { return focusable && isEnabled() && isVisible(); }
    bool sizeChanged(Widget* origin) override;
    void detach() override;
    bool focusChanged(bool backward, Widget* origin) override;
    bool mouseMove(const rfb::Point& position, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;
    bool mouseUp(int button, Widget* origin) override;
    bool timerExpired(plat::Timer* timer) override;
    bool copy(Widget* origin) override;
    bool paste(Widget* origin) override;

    // WEditMenu::Callback
    void editMenuChosen(int choice) override;

protected:
    // Widget
    bool ownKey(uint32_t keysym) override;

private:
    int insertionPoint() const { return cursor + selection; }
    void place(int position, bool extend);
    void offerSelection();
    bool moveByKey(uint32_t keysym);
    bool eraseByKey(uint32_t keysym);
    bool clipboardKey(uint32_t keysym);
    bool undoKey(uint32_t keysym);
    void cut();
    bool insertPasted(const plat::String& pasted);
    bool dragBeyondEdge();
    void showMenu(const rfb::Point& position);
    bool typeKey(uint32_t keysym);
    hxutil::TextLine line() const; ///< of the text itself
    int step(int position, bool forward) const;
    int stepChar(int position, bool forward) const; ///< one code point
    int stepBackspace(int position) const;
    int stepByKey(int position, bool right) const;
    int stepWord(int position, bool forward) const;
    void storeText(std::string newText);
    void changed();
    int positionAt(int x) const;
    int caretX(int position) const; ///< pixels from the left of the shown text
    int textWidth() const;
    int starsWidth(int position) const;
    size_t shownIndex(int position) const; ///< byte of the shown text
    std::string shown() const;
    void keepCursorInside();
    rfb::Rect textArea() const;
    rfb::Point textOrigin() const;
    void tellCaret();
    void repaintChange();
    void paintText(rfb::FullFramePixelBuffer& pb);

    /// What the picture of the text depends on, besides the style and the size.
    struct Look {
        std::string text;
        int originX = 0;
        int cursor = 0;
        int selection = 0;
    };

    std::string text;
    Look invalidated; // the last state whose differences from the screen are all known to the parent
    plat::String placeholder;
    rfb::DeadKeyUtil deadKeys;
    int maxLength;
    int scroll = 0; // pixels
    int cursor = 0;
    int selection = 0;
    bool password = false;
    bool focusable = true;
    bool dragging = false;
    bool contextMenu = true;
    bool frame = true;
    UndoStack undoStack; // of the user's changes; not for passwords
    Filter* filter = nullptr;
    int hAlign = 0;
    int vAlign = 1;
    std::unique_ptr<WEditMenu> menu; // made on first use
    plat::Timer pressTimer;          // runs while a second press selects all
    rfb::Point lastPress;            // root position
    plat::Timer scrollTimer;         // runs while the pointer drags outside
    int dragX = 0;
};

/// Accepts nothing but whole numbers from 0 up, and the empty text.
class WEditUnsignedNumberFilter : public WEdit::Filter {
public:
    bool accept(WEdit* edit, const char* newText, uint32_t character) override;
};

} // namespace wvw

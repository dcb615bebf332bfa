// A search field with a list that drops from it.
#pragma once

#include "mui/MuElement.h"
#include "mui/MuLabelled.h"

#include <cstdint>
#include <memory>

namespace mui {

class MuContainer;
class MuDialog;

/// An edit with a dialog of the caller's making under it, which is shown and hidden as the caller says.
///
/// Raises EventChanged when the user changes the text. Enter, Escape and Tab hide the popup.
class MuSuperbox : public MuElement, public MuLabelled {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        /// A key went down in the field, before anything else hears of it; `canonicalKey` is a keysym. True takes it.
        virtual bool onKey(MuSuperbox* superbox, uint32_t canonicalKey) = 0;
    };

    /// `callback` is borrowed and may be null. `popupHeight` in pixels, without the popup's border.
    static MuSuperbox* create(MuContainer* parent, const char* name, const char* label, Callback* callback,
                              int popupHeight);

    ~MuSuperbox() override;

    virtual void setText(const char* text) = 0; ///< raises no event
    virtual const char* getText() = 0;
    virtual void selectAll() = 0;
    virtual void setPlaceholder(const char* text) = 0;

    /// Made at the first call, when the superbox is in the tree of a dialog: "<dialog>_<full name, with '_' for
    /// dots>_popup". Ours; the caller fills it with panels.
    MuDialog* getPopup();
    bool isPopupShown() const;
    virtual void showPopup(bool show); ///< under the field, as wide as the superbox

    // MuElement
    void setShown(bool shown) override; ///< takes its popup along
    void willBeDeleted() override;
    const char* getType() override { return "superbox"; }
    plat::String getState() override;
    bool handleCommand(const char* command, const char* argument) override;

protected:
    MuSuperbox(const char* name, const char* label, Callback* callback, int popupHeight);

    /// A key that went down in the field. True if it was used here.
    bool handleKey(uint32_t canonicalKey);
    void textChangedByUser(); ///< raises the event unless the program is setting the text
    void dropPopup();         ///< hides and deletes it
    virtual void popupMade(MuDialog*) {}

    bool settingText = false; // the change is the program's

private:
    Callback* callback;
    int popupHeight;
    std::unique_ptr<MuDialog> popup;
};

} // namespace mui

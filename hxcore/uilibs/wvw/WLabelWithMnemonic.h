// A label with an underlined character.
#pragma once

#include "wvw/WLabel.h"

namespace wvw {

/// A text in which "&" marks the character to press; "&&" stands for one "&".
class WLabelWithMnemonic : public WLabel {
public:
    explicit WLabelWithMnemonic(WLayout* layout = nullptr, const char* markedText = nullptr, int hAlign = 0);

    void setShowMnemonic(bool on);
    uint32_t getMnemonic() const { return mnemonic; } ///< keysym, folded to lower case; 0 for none

    // WLabel
    void setText(const char* markedText) override;

    // Widget
    void paint(rfb::FullFramePixelBuffer& pb) override;

private:
    uint32_t mnemonic = 0;
    int mnemonicIndex = -1; // byte in the shown text
    bool showMnemonic = true;
};

/// Takes the "&" marks out of `marked`. `keysym` becomes that of the first marked character, 0 for none, and `index`
/// its byte in the result, -1 for none.
plat::String stripMnemonic(const char* marked, uint32_t& keysym, int& index);

/// A capital letter of Latin-1 as its small one; any other keysym as it is.
uint32_t foldKeysym(uint32_t keysym);

} // namespace wvw

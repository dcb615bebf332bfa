// A message with buttons, without the element layer.
#pragma once

#include "tx/TXDialog.h"

#include <vector>

namespace wvw {
class WImage;
class WLabel;
} // namespace wvw

namespace tx {

/// The one dialog for code that has no elements: an icon, a text, one to three buttons. A text that is too high for the
/// screen scrolls; the buttons are always in view.
class TXMsgBox : public TXDialog {
public:
    enum class Icon { Info, Warning, Error, Question };

    // In the order in which they stand; several are combined.
    static constexpr unsigned Ok = 1;
    static constexpr unsigned Yes = 2;
    static constexpr unsigned No = 4;
    static constexpr unsigned Cancel = 8;

    /// `owner` may be null. The product's name is added to `title`. `text` is plain: it may come from a peer.
    TXMsgBox(TXWindow* owner, const char* title, const char* text, Icon icon, unsigned buttons);
    ~TXMsgBox() override;

    /// Shows it until a button ends it. Closing and Escape count as Cancel, else No, else the only button.
    unsigned run();

    // TXDialog
    void initDialog() override;
    void deleteWindow(TXWindow* window) override;

    // wvw::WInputHandler, from the widgets
    bool activated(wvw::Widget* origin) override;
    bool keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) override;
    using TXDialog::keyEvent;

private:
    struct Button;
    class TextView;

    void layout();
    void end(unsigned button);
    unsigned escapeButton() const;

    std::unique_ptr<wvw::WImage> icon;
    std::unique_ptr<wvw::WLabel> label;
    std::unique_ptr<TextView> view; // around a label that is too high, else null
    std::vector<std::unique_ptr<Button>> buttons_;
    unsigned chosen = 0;
};

} // namespace tx

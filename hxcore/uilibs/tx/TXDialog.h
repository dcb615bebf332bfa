// A dialog window, modal or not.
#pragma once

#include "tx/TXWParent.h"

#include <memory>

namespace wvw {
class WCanvas;
}

namespace tx {

/// A managed top-level window with a canvas as its root widget, and a result.
class TXDialog : public TXWParent, public TXDeleteWindowCallback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;

        /// The dialog has been hidden with this result. It may be deleted here.
        virtual void dialogClosed(TXDialog*, bool /*result*/) {}
    };

    /// `parentWindow` may be null: the dialog is transient for it. `centred` puts it in the middle of the screen
    /// whenever its size is set.
    TXDialog(TXWindow* parentWindow, const char* name, bool centred = false);
    ~TXDialog() override;

    /// Just before the dialog is mapped. The default does nothing.
    virtual void initDialog() {}

    /// The user closes the window: hide(false).
    void deleteWindow(TXWindow* window) override;

    using TXWParent::show;
    void show();
    /// Shows the dialog and returns its result once it is hidden. Meanwhile X events and timers started inside run;
    /// other descriptors and older timers wait. Throws plat::SystemException "select".
    bool showModal();
    void hide(bool result);
    void setSize(const rfb::Point& size);                     ///< of the canvas and the window
    void setCallback(Callback* target) { callback = target; } ///< borrowed, may be null
    void setParentWindow(TXWindow* window) { parentWindow = window; }

    wvw::WCanvas& canvas() { return *canvas_; }
    bool isShowingModal() const { return modalRun != nullptr; }

private:
    struct ModalRun;

    std::unique_ptr<wvw::WCanvas> canvas_;
    bool done = false;
    bool result = false;
    bool centred;
    ModalRun* modalRun = nullptr; // the innermost showModal under way
    TXWindow* parentWindow;
    Callback* callback = nullptr;
};

/// A descriptor that modal loops serve beside X. What isn't such a source waits for the end of the dialog.
class ModalSource {
public:
    virtual ~ModalSource() = default;
    virtual int modalFd() = 0;        ///< -1 while there is none
    virtual void modalReadable() = 0; ///< may remove itself and other sources
};

/// Borrowed.
void addModalSource(ModalSource* source, bool add);

} // namespace tx

// A chooser of files and folders for code that has no elements.
#pragma once

#include "tx/TXDialog.h"
#include "ui/DirBrowser.h"
#include "ui/wvw/WFileList.h"
#include "wvw/WBevelButton.h"
#include "wvw/WEdit.h"
#include "wvw/WLabelWidget.h"

#include <memory>

namespace tx {
class TXMsgBox;
}

namespace ui {

/// A list of what lies in a folder, and the path, to be chosen or typed.
///
/// A folder that is chosen is entered; a file goes into the path. Ok, or Enter in the path, ends the dialog with true:
/// the path is then getPath(). Of a folder that is typed without "/" at its end the contents are shown first.
class WFileDialog : public tx::TXDialog,
                    private WFileList::Callback,
                    private WFileList::ItemGetter,
                    private tx::TXDialog::Callback {
public:
    /// `path` is a file or a folder to begin with, null for the working directory; `flags` are DirBrowser's.
    WFileDialog(tx::TXWindow* owner, const char* title, const char* path = nullptr, unsigned flags = 0);
    ~WFileDialog() override;

    plat::String getPath() const { return enteredPath(); }
    bool isShowingError() const { return error != nullptr; }

    // tx::TXDialog
    void initDialog() override;
    void resized() override;

    // wvw::WInputHandler, from the widgets
    bool activated(wvw::Widget* origin) override;
    bool valueChanged(wvw::Widget* origin) override;
    bool keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) override;
    using tx::TXDialog::keyEvent;

private:
    // ui::WFileList::Callback
    void itemChosen(WFileList* which, int index) override;
    // ui::WFileList::ItemGetter
    int itemCount() override;
    plat::String itemText(int index) override;
    // tx::TXDialog::Callback
    void dialogClosed(tx::TXDialog* dialog, bool result) override;

    bool enterFolder(const char* path); // false if it is none
    void accept();
    void showPath(const plat::String& path);
    plat::String enteredPath() const;
    void showError(const char* text);
    void arrange();

    DirBrowser browser;
    plat::String folder;    // ends in "/"
    plat::String shownPath; // what was put into the field
    plat::String shownText; // what it held of that
    wvw::WLabel label;
    wvw::WEdit edit;
    wvw::WLabelCheckBoxHK hidden;
    wvw::WLabelButton cancel;
    wvw::WLabelButton ok;
    WFileList list;
    std::unique_ptr<tx::TXMsgBox> error;
    std::unique_ptr<tx::TXMsgBox> closedError; // which may be on the stack still
};

} // namespace ui

// A message with an icon and buttons.
#pragma once

#include "mui/MuDialog.h"
#include "mui/MuObserver.h"
#include "plat/NonCopyable.h"

#include <initializer_list>
#include <memory>

namespace mui {

class MuButtonBar;
class MuLayout;
class MuText;

/// The dialog "messagebox": tells or asks something and says how it ended.
class MuMessageBox : private MuObserver, private plat::NonCopyable {
public:
    enum class Icon { Info, Warning, Error, Question };

    class Callback {
    public:
        virtual ~Callback() = default;
        /// Once for each show, after the dialog has closed; the box may be deleted here.
        virtual void messageBoxClosed(MuMessageBox* box, unsigned button) = 0; ///< a MuButtonBar::Button, 0 for none
    };

    /// `title` is followed by " - " and the product's name. The messages are markup and stand on lines of their own;
    /// null ones are left out. `buttons` is a mask of MuButtonBar::Button. `callback` is borrowed and may be null.
    MuMessageBox(MuDialog* parent, const char* title, Icon icon, std::initializer_list<const char*> messages,
                 unsigned buttons = 1, Callback* callback = nullptr, unsigned dialogFlags = MuDialog::Modal);
    ~MuMessageBox() override;

    void show();                                  ///< with MuDialog::ModalBlocking returns when the box was closed
    unsigned getResult() const { return result; } ///< of the last showing: a MuButtonBar::Button, 0 for none
    MuDialog* getDialog() { return dialog.get(); }
    MuText* getText() { return text; }

    /// Shows one and waits. Only for questions whose answer a function must return.
    static unsigned ask(MuDialog* parent, const char* title, Icon icon, std::initializer_list<const char*> messages,
                        unsigned buttons);

private:
    void makeText(MuLayout* split, const char* name, const char* markup, int iconSize);

    // MuObserver
    void muActivated(MuElement* element) override;
    void muClosed(MuDialog*) override;

    Callback* callback;
    unsigned result = 0;
    MuText* text = nullptr;
    std::unique_ptr<MuDialog> dialog;
    std::unique_ptr<MuButtonBar> buttonBar;
};

} // namespace mui

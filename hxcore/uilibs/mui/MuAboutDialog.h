// What this program is.
#pragma once

#include "mui/MuDialog.h"
#include "mui/MuObserver.h"
#include "plat/Markup.h"
#include "plat/NonCopyable.h"

#include <memory>

namespace mui {

/// The dialog "aboutdlg": the product's picture, name and what the caller says of it. Made once, shown often.
class MuAboutDialog : private MuObserver, private plat::NonCopyable {
public:
    /// `productName` for the title, `imageName` of a picture, `markup` the text; its links go to `links` (borrowed, may
    /// be null).
    MuAboutDialog(MuDialog* parent, const char* productName, const char* imageName, const char* markup,
                  plat::Markup::LinkCallback* links);
    ~MuAboutDialog() override;

    void show();
    MuDialog* getDialog() { return dialog.get(); }

private:
    // MuObserver
    void muActivated(MuElement* element) override;

    std::unique_ptr<MuDialog> dialog;
};

} // namespace mui

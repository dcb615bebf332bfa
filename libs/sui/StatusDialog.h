// The main window of the server UI.
#pragma once

#include "mui/MuDialog.h"
#include "mui/MuObserver.h"
#include "plat/Markup.h"
#include "score/StatusDb.h"
#include "sui/MuStatusDialogConnectivity.h"
#include "sui/StatusDialogModel.h"

#include <memory>

namespace score {
class StatusEventDb;
}
namespace mui {
class MuFrame;
class MuPopupMenu;
class MuText;
} // namespace mui

namespace sui {

class MuStatusDialogHeader;
class MuStatusDialogSecurity;

/// Who is looking, how to connect, and whether all is well: the dialog "statusdialog".
///
/// Its content comes from the two databases alone. Each commit is compared with what is shown, and only a difference
/// costs a layout and a repaint.
class StatusDialog : public score::StatusObserver,
                     private mui::MuObserver,
                     private MuStatusDialogConnectivity::Callback {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual uint32_t connectionCount() = 0;
        virtual void statusChanged() = 0;                 ///< something that is shown is another
        virtual void openInfoCenter(const char* tab) = 0; ///< "status" or "connections"
    };

    /// All borrowed; they outlive the dialog.
    StatusDialog(score::StatusDb* infoDb, score::StatusEventDb* events, Callback* target,
                 plat::Markup::LinkCallback* links);
    ~StatusDialog() override;

    void refresh(); ///< derives the model afresh and shows it if it is another
    mui::MuDialog* getDialog() { return dialog.get(); }
    mui::MuPopupMenu* getMoreMenu() { return moreMenu.get(); } ///< "moreMenu", empty at first
    const StatusDialogModel& getModel() const { return model; }

private:
    // score::StatusDb::Observer
    void onCommit(score::StatusDb*) override { refresh(); }
    // mui::MuObserver
    void muActivated(mui::MuElement* element) override;
    // MuStatusDialogConnectivity::Callback
    void blockResized() override { layOut(); }

    void addMainBlocks(plat::Markup::LinkCallback* links);
    void addFooter(plat::Markup::LinkCallback* links);
    void updateFooter();
    void layOut();

    score::StatusDb* infoDb;
    score::StatusEventDb* events;
    Callback* callback;
    StatusDialogModel model;
    std::unique_ptr<mui::MuDialog> dialog;
    std::unique_ptr<mui::MuPopupMenu> moreMenu;
    std::unique_ptr<MuStatusDialogHeader> header;
    std::unique_ptr<MuStatusDialogConnectivity> connectivity;
    std::unique_ptr<MuStatusDialogSecurity> security;
    mui::MuFrame* footerFrame = nullptr;
    mui::MuText* footerText = nullptr;
};

} // namespace sui

// The file chooser's dialog.
#pragma once

#include "mui/MuButtonBar.h"
#include "mui/MuDialog.h"
#include "mui/MuEdit.h"
#include "mui/MuFileDialog.h"
#include "mui/MuList.h"
#include "mui/MuObserver.h"
#include "mui/MuSuperbox.h"
#include "mui/tx/listFolder.h"
#include "plat/Timer.h"

#include <vector>

namespace mui {

class MuButton;
class MuChoice;
class MuLayout;

/// The dialog "saveDlg": a name, the folder that it is in, places to go to, and what the folder holds.
///
/// A name that begins with "/" is a path, which is completed as it is typed. The folder's field takes a path as well,
/// and drops the folders that it may mean.
class MuFileDialogTxImpl : private MuObserver,
                           private MuList::Callback,
                           private MuEdit::Filter,
                           private ActionKeyCallback,
                           private MuSuperbox::Callback,
                           private plat::Timer::Callback,
                           private plat::NonCopyable {
public:
    MuFileDialogTxImpl(MuDialog* parent, MuFileDialog::Callback* callback);
    ~MuFileDialogTxImpl() override;

    void show(const char* title, const char* path, const char* patterns, const char* patternLabel, bool saveMode,
              bool filesMode);

private:
    struct Place {
        plat::String label;
        plat::String path;
    };

    // MuObserver
    void muActivated(MuElement* element) override;
    void muChanged(MuElement* element) override;
    void muClosed(MuDialog* closed) override;
    void muEvent(MuElement* element, int type) override;

    // MuList::Callback
    plat::String getCellText(MuList* list, int row, int col) override;

    // MuEdit::Filter
    bool accept(MuEdit* edit, const char* newText, uint32_t character) override;

    // ActionKeyCallback
    bool actionKey(int action, MuDialog* source) override;

    // MuSuperbox::Callback
    bool onKey(MuSuperbox* superbox, uint32_t canonicalKey) override;

    // plat::Timer::Callback
    bool timerExpired(plat::Timer* timer) override;

    // Making it
    void makeElements();
    void findPlaces();
    void fillFilter(const char* patterns, const char* patternLabel);
    void addColumns();

    // Going about
    void enterFolder(const char* path);
    void enterTypedFolder();
    void dropFolders();           // those that the folder's field may mean
    plat::String droppedFolder(); // the one chosen among them; null if there is none
    void begin(const char* path);
    void refreshList();
    void showEntry(size_t index);
    const FolderEntry& entryOf(int row); // of the files
    FolderFilter folderFilter(bool includeHidden) const;

    // The name
    void completeIn(const plat::String& dir);
    void fileSelected();
    void nameTyped();
    void fileActivated(int row);
    void updateOk();
    plat::String chosenPath() const;

    // The end
    void finish();
    void closeWithResult(const char* text); // null: cancelled
    void fail(const char* message);         // the first one wins
    MuButton* okButton();

    MuFileDialog::Callback* callback;
    plat::String result; // the path, or the message after a failure; null for cancel
    bool failed = false;
    plat::Timer timer; // runs the callback from the event loop
    std::vector<FolderEntry> completions;
    plat::String completionDir;
    bool completionDirWritable = false;
    std::vector<FolderEntry> entries;
    plat::String currentDir{"/"}; // always absolute
    bool currentDirWritable = false;
    std::vector<Place> placeList;
    std::vector<plat::String> suffixes; // of the custom filter
    bool saveMode = false;
    bool filesMode = true;
    bool hasColumns = false;
    bool hasSizeColumn = false;

    std::unique_ptr<MuDialog> dialog;
    std::unique_ptr<MuButtonBar> buttonBar;
    MuEdit* name = nullptr;
    MuSuperbox* folder = nullptr;
    MuList* folders = nullptr; // in the popup of `folder`; null until it drops
    MuButton* upBtn = nullptr;
    MuList* places = nullptr;
    MuList* files = nullptr;
    MuChoice* filter = nullptr;
};

} // namespace mui

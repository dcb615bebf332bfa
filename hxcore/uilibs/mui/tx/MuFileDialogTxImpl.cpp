#include "mui/tx/MuFileDialogTxImpl.h"

#include "hxutil/Font.h"
#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "loc/TimeString.h"
#include "mui/MuButton.h"
#include "mui/MuChoice.h"
#include "mui/MuLayout.h"
#include "mui/MuList.h"
#include "mui/MuMessageBox.h"
#include "mui/MuSpacer.h"
#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/cstr.h"
#include "plat/path.h"
#include "plat/visibleText.h"
#include "wvw/WStyle.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace mui {
namespace {

constexpr uint32_t keyEnter = 0xff0d;
constexpr uint32_t keyUp = 0xff52;
constexpr uint32_t keyDown = 0xff54;
constexpr int maxDropped = 200; // folders under the folder's field
constexpr int nameColumn = 1;   // of the files; the image stands before it
enum FilterRow { AllWithHidden = 0, All = 1, Custom = 2 };

bool isAbsolutePath(const char* path) { return plat::path::isAbsolute(path); }

bool isFolder(const char* path) {
    struct stat info {};
    return stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

bool exists(const char* path) {
    struct stat info {};
    return lstat(path, &info) == 0;
}

/// A file system that takes no files is no failure: one may still look around in it.
bool isWritable(const char* dir, bool missingIsFailure) {
    if (access(dir, W_OK) == 0)
        return true;
    if (errno != EACCES && errno != EROFS && (missingIsFailure || (errno != ENOENT && errno != ENOTDIR)))
        throw plat::StdlibException("access");
    return false;
}

/// Units that grow with the text as well. No further than its font does: the density has grown them already.
int textScaled(int units) {
    constexpr int usualFontUnits = 30; // 15 pixels at ppmm 4
    const int plain = hxutil::scaled(units);
    const int byFont = units * wvw::defaultStyle().font->height / usualFontUnits;
    return std::min(hxutil::scaled(units * hxutil::textSizeFactor() / 100), std::max(plain, byFont));
}

/// "~" and what lies below it are meant from the home folder.
plat::String expanded(const char* path) {
    const char* const home = getenv("HOME");
    if (path[0] != '~' || (path[1] && path[1] != '/') || !home || !isAbsolutePath(home))
        return path;
    return path[1] && path[2] ? plat::path::join(home, path + 2) : plat::path::normalize(home);
}

/// Names come from anywhere: as they can be told apart, and in the order in which they are written.
plat::String shownName(const plat::String& name) {
    const plat::String shown = plat::visibleText(name.c_str());
    return shown.isEmpty() ? plat::String("\ufffd") : shown;
}

plat::String workingDir() {
    char dir[PATH_MAX];
    return getcwd(dir, sizeof dir) ? plat::String(dir) : plat::String("/");
}

plat::String absolutePath(const char* path) {
    return plat::path::normalize(isAbsolutePath(path) ? path : plat::path::join(workingDir().c_str(), path).c_str());
}

/// Of a path that is being typed: what stands before its last "/", and the last "/" itself for the root.
plat::String typedDir(const char* path) {
    const char* const slash = strrchr(path, '/');
    return slash == path ? plat::String("/") : plat::String(path, static_cast<int>(slash - path));
}

const char* typedName(const char* text) {
    const char* const slash = strrchr(text, '/');
    return slash ? slash + 1 : text;
}

} // namespace

MuFileDialogTxImpl::MuFileDialogTxImpl(MuDialog* parent, MuFileDialog::Callback* callback_)
    : callback(callback_), timer(this),
      dialog(MuDialog::create("saveDlg", "", {textScaled(1300), textScaled(900)}, MuDialog::Modal, parent)) {
    makeElements();
    findPlaces();
    dialog->addObserver(this, true);
    dialog->setActionCallback(this);
    dialog->setDefaultFocus(name);
}

MuFileDialogTxImpl::~MuFileDialogTxImpl() {
    if (folders)
        folders->addObserver(this, false);
    dialog->addObserver(this, false);
    dialog->setActionCallback(nullptr);
}

void MuFileDialogTxImpl::makeElements() {
    auto* mainLyt = MuLayout::create(dialog.get(), "mainLyt", Orientation::Vertical);
    name = MuEdit::create(mainLyt, "name", LOC_TEXT("mui_filedlgtx_name_label"));
    name->setFilter(this);
    auto* folderLyt = MuLayout::create(mainLyt, "folderLyt", Orientation::Horizontal);
    folder = MuSuperbox::create(folderLyt, "folder", LOC_TEXT("mui_filedlgtx_folder_label"), this, textScaled(300));
    folderLyt->setChildLayout(folder, MuLayout::Stretch);
    upBtn = MuButton::create(folderLyt, "upBtn", LOC_TEXT("mui_filedlgtx_up_btn"));
    auto* browseLyt = MuLayout::create(mainLyt, "browseLyt", Orientation::Horizontal);
    mainLyt->setChildLayout(browseLyt, MuLayout::Stretch);
    places = MuList::create(browseLyt, "places", MuList::Heading | MuList::KeepSelection);
    places->addColumn(MuList::ColumnType::Text, LOC_TEXT("mui_filedlgtx_places_heading"));
    browseLyt->setChildLayout(places, MuLayout::Fixed, textScaled(300));
    files = MuList::create(browseLyt, "files", MuList::Heading);
    files->setCallback(this);
    files->setEmptyText(LOC_TEXT("mui_filedlgtx_nothing"));
    browseLyt->setChildLayout(files, MuLayout::Stretch);
    auto* filterLyt = MuLayout::create(mainLyt, "filterLyt", Orientation::Horizontal);
    filterLyt->setChildLayout(MuSpacer::create(filterLyt, "sp"), MuLayout::Stretch);
    filter = MuChoice::create(filterLyt, "filter", LOC_TEXT("mui_filedlgtx_show_label"));
    buttonBar = std::make_unique<MuButtonBar>(dialog.get());
    const int labelColumn = std::max(name->getLabelWidth(), folder->getLabelWidth());
    const int gap = Mui::instance()->metric(MetricSpacing);
    name->setLabelColumn(labelColumn, gap);
    folder->setLabelColumn(labelColumn, gap);
}

void MuFileDialogTxImpl::findPlaces() {
    const plat::String home = plat::path::normalize(plat::strOrEmpty(getenv("HOME")));
    if (isAbsolutePath(home.c_str()))
        placeList.push_back({plat::String(LOC_TEXT("mui_filedlgtx_place_home")), home});
    const char* const stated = getenv("XDG_DESKTOP_DIR");
    const plat::String desktop = stated && *stated ? plat::String(stated) : plat::path::join(home.c_str(), "Desktop");
    if (isAbsolutePath(desktop.c_str()) && exists(desktop.c_str()))
        placeList.push_back({plat::path::baseName(desktop.c_str()), desktop});
    placeList.push_back({plat::String(LOC_TEXT("mui_filedlgtx_place_root")), plat::String("/")});
    for (const Place& place : placeList)
        places->addRow({place.label});
}

void MuFileDialogTxImpl::show(const char* title, const char* path, const char* patterns, const char* patternLabel,
                              bool saveMode_, bool filesMode_) {
    saveMode = saveMode_;
    filesMode = filesMode_;
    result = plat::String();
    failed = false;
    timer.cancel();
    completionDir = ""; // what was read then may have changed
    dialog->setTitle(title);
    buttonBar->addButtons(MuButtonBar::Cancel | (saveMode ? MuButtonBar::Save : MuButtonBar::Open));
    dialog->setActionButton(MuDialog::ActionDefault, okButton());
    fillFilter(plat::strOrEmpty(patterns), plat::strOrEmpty(patternLabel));
    addColumns();
    begin(absolutePath(plat::strOrEmpty(path)).c_str());
    if (!failed)
        dialog->setShown(true);
}

void MuFileDialogTxImpl::fillFilter(const char* patterns, const char* patternLabel) {
    filter->removeAll();
    filter->addItem(AllWithHidden, filesMode ? LOC_TEXT("mui_filedlgtx_filter_allfileswithhidden")
                                             : LOC_TEXT("mui_filedlgtx_filter_alldirswithhidden"));
    filter->addItem(All, filesMode ? LOC_TEXT("mui_filedlgtxwin_filter_allfiles")
                                   : LOC_TEXT("mui_filedlgtx_filter_alldirs"));
    suffixes.clear();
    if (*patterns && *patternLabel) {
        filter->addItem(Custom, patternLabel);
        for (const char* start = patterns; start;) {
            const char* const comma = strchr(start, ',');
            const std::string piece = comma ? std::string(start, comma) : std::string(start);
            if (!piece.empty())
                suffixes.emplace_back((piece[0] == '.' ? piece : "." + piece).c_str());
            start = comma ? comma + 1 : nullptr;
        }
    }
    filter->setSelected(suffixes.empty() ? All : Custom);
}

void MuFileDialogTxImpl::addColumns() {
    if (hasColumns)
        return;
    hasColumns = true;
    hasSizeColumn = filesMode;
    files->addColumn(MuList::ColumnType::Image, nullptr);
    files->addColumn(MuList::ColumnType::Text, LOC_TEXT("mui_filedlgtx_name_heading"));
    if (hasSizeColumn)
        files->addColumn(MuList::ColumnType::Text, LOC_TEXT("mui_filedlgtx_size_heading"), textScaled(150),
                         MuList::Align::End);
    files->addColumn(MuList::ColumnType::Text, LOC_TEXT("mui_filedlgtx_modified_heading"), textScaled(200),
                     MuList::Align::End);
}

void MuFileDialogTxImpl::begin(const char* path) {
    plat::String start(path);
    if (isFolder(path) || !filesMode) {
        name->setText("");
    } else {
        const plat::String base = plat::path::baseName(path);
        const char* const dot = strrchr(base.c_str(), '.');
        name->setText(base.c_str());
        name->setSelection(dot ? static_cast<int>(dot - base.c_str()) : base.len(), 0);
        start = plat::path::dirName(path);
    }
    enterFolder(isFolder(start.c_str()) ? start.c_str() : "/");
}

void MuFileDialogTxImpl::enterFolder(const char* path) {
    ASSERT(isAbsolutePath(path));
    currentDir = plat::path::normalize(path);
    folder->setText(currentDir.c_str());
    folder->showPopup(false);
    upBtn->setEnabled(strcmp(currentDir.c_str(), "/") != 0);
    try {
        currentDirWritable = isWritable(currentDir.c_str(), /*missingIsFailure=*/true);
    } catch (const plat::Exception& failure) {
        currentDirWritable = false;
        fail(failure.what());
        return;
    }
    updateOk();
    const auto here = std::find_if(placeList.begin(), placeList.end(), [&](const Place& place) {
        return strcmp(place.path.c_str(), currentDir.c_str()) == 0;
    });
    places->setSelected(here == placeList.end() ? -1 : static_cast<int>(here - placeList.begin()));
    files->setSelected(-1);
    refreshList();
}

FolderFilter MuFileDialogTxImpl::folderFilter(bool includeHidden) const {
    FolderFilter wanted;
    wanted.hidden = includeHidden || filter->getSelected() == AllWithHidden;
    if (filter->getSelected() == Custom)
        wanted.suffixes = suffixes;
    return wanted;
}

void MuFileDialogTxImpl::refreshList() {
    files->removeAllRows();
    entries.clear();
    try {
        entries = listFolder(currentDir.c_str(), folderFilter(/*includeHidden=*/false));
    } catch (const plat::Exception& failure) {
        fail(failure.what());
        return;
    }
    for (size_t i = 0; i < entries.size(); ++i)
        if (filesMode || entries[i].isDir)
            showEntry(i);
    updateOk();
}

void MuFileDialogTxImpl::showEntry(size_t index) {
    const FolderEntry& entry = entries[index];
    const bool closed = entry.isDir && !entry.accessible;
    const int row = files->addRow();
    files->setRowKey(row, static_cast<int>(index));
    if (closed) {
        files->setCellColour(row, nameColumn, "#c86464");
        files->setRowSelectable(row, false);
    }
}

plat::String MuFileDialogTxImpl::getCellText(MuList*, int row, int col) {
    const FolderEntry& entry = entryOf(row);
    plat::DString text;
    tm local{};
    if (col == 0)
        return !entry.isDir ? "filedlg_file" : entry.accessible ? "filedlg_folder" : "filedlg_folder_noaccess";
    if (col == nameColumn)
        return shownName(entry.name);
    if (col == nameColumn + 1 && hasSizeColumn) {
        if (!entry.isDir)
            loc::TimeString::formatByteSize(text, entry.size);
    } else if (localtime_r(&entry.modified, &local)) {
        loc::TimeString::formatDateTime(text, loc::TimeString::DateStyle::Numeric,
                                        loc::TimeString::TimeStyle::NoSeconds, local);
    }
    return text.take();
}

const FolderEntry& MuFileDialogTxImpl::entryOf(int row) { return entries[static_cast<size_t>(files->getRowKey(row))]; }

void MuFileDialogTxImpl::dropFolders() {
    if (!folders) {
        folders = MuList::create(folder->getPopup(), "folders");
        folders->addColumn(MuList::ColumnType::Text, nullptr);
        folders->addObserver(this, true);
    }
    const plat::String text = expanded(folder->getText());
    folders->removeAllRows();
    if (!isAbsolutePath(text.c_str())) {
        folder->showPopup(false);
        return;
    }
    const plat::String dir = typedDir(text.c_str());
    const char* const base = typedName(text.c_str());
    std::vector<FolderEntry> found;
    try {
        found = listFolder(dir.c_str(), {/*hidden=*/*base == '.', {}});
    } catch (const plat::Exception&) {
        found.clear(); // while it is typed, a path need not lead anywhere
    }
    for (const FolderEntry& entry : found)
        if (entry.isDir && entry.accessible && folders->getRowCount() < maxDropped &&
            strncmp(entry.name.c_str(), base, strlen(base)) == 0)
            folders->addRow({plat::path::join(dir.c_str(), entry.name.c_str())});
    folder->showPopup(folders->getRowCount() > 0);
}

plat::String MuFileDialogTxImpl::droppedFolder() {
    if (!folder->isPopupShown() || !folders || folders->getSelected() < 0)
        return {};
    return plat::String(folders->getCell(folders->getSelected(), 0));
}

void MuFileDialogTxImpl::enterTypedFolder() {
    const plat::String dropped = droppedFolder();
    const plat::String typed = expanded(folder->getText());
    const plat::String whole =
        isAbsolutePath(typed.c_str()) ? typed : plat::path::join(currentDir.c_str(), typed.c_str());
    const plat::String path = dropped.isNull() ? plat::path::normalize(whole.c_str()) : dropped;
    if (isFolder(path.c_str()))
        enterFolder(path.c_str());
}

bool MuFileDialogTxImpl::onKey(MuSuperbox*, uint32_t canonicalKey) {
    if (canonicalKey == keyEnter) {
        enterTypedFolder();
        return true;
    }
    if (canonicalKey != keyDown && canonicalKey != keyUp)
        return false;
    if (!folder->isPopupShown()) {
        dropFolders();
        return true;
    }
    const int step = canonicalKey == keyDown ? 1 : -1;
    folders->setSelected(std::clamp(folders->getSelected() + step, 0, folders->getRowCount() - 1));
    return true;
}

bool MuFileDialogTxImpl::accept(MuEdit*, const char* newText, uint32_t character) {
    if (character == '/' && strcmp(newText, "~/") == 0 && expanded("~") != "~") {
        name->setText(plat::strFormat("%s/", expanded("~").c_str()).c_str());
        updateOk();
        return false;
    }
    if (newText[0] != '/')
        return strchr(newText, '/') == nullptr; // a name in the current folder
    if (character == '/') {
        int start, end;
        name->getSelection(&start, &end);
        if (start == end)
            return true;
        if (name->getText()[end - 1] == '/') { // it accepts the completion, which has one already
            name->setSelection(end, end);
            return false;
        }
    }
    const plat::String dir = typedDir(newText);
    if (strcmp(dir.c_str(), completionDir.c_str()) != 0)
        completeIn(dir);
    const std::string typed = newText;
    if (character < 1 || (character == '.' && typed.ends_with("/.")))
        return true;
    const char* const base = typedName(newText);
    const auto found = std::find_if(completions.begin(), completions.end(), [&](const FolderEntry& entry) {
        return strncmp(entry.name.c_str(), base, strlen(base)) == 0;
    });
    if (found == completions.end())
        return true;
    const plat::String completed = plat::strFormat("%s/%s%s", strcmp(dir.c_str(), "/") == 0 ? "" : dir.c_str(),
                                                   found->name.c_str(), found->isDir ? "/" : "");
    name->setText(completed.c_str());
    name->setSelection(static_cast<int>(typed.size()), completed.len());
    updateOk();
    return false;
}

void MuFileDialogTxImpl::completeIn(const plat::String& dir) {
    completionDir = dir;
    completions.clear();
    completionDirWritable = false;
    try {
        completionDirWritable = isWritable(dir.c_str(), /*missingIsFailure=*/false);
        completions = listFolder(dir.c_str(), folderFilter(/*includeHidden=*/true));
    } catch (const plat::Exception&) {
        completions.clear(); // a folder that can't be read has nothing to complete with
    }
}

void MuFileDialogTxImpl::updateOk() {
    const char* const text = name->getText();
    const bool isPath = text[0] == '/';
    // A text that was not typed has not been through the filter.
    if (isPath && strcmp(typedDir(text).c_str(), completionDir.c_str()) != 0)
        completeIn(typedDir(text));
    const char* const base = typedName(text);
    bool isDir = isPath && !*base; // what ends in "/" is no file
    for (const FolderEntry& entry : isPath ? completions : entries)
        if (strcmp(entry.name.c_str(), base) == 0)
            isDir = entry.isDir;
    const bool writable = isPath ? completionDirWritable : currentDirWritable;
    if (MuButton* const button = okButton())
        button->setEnabled(!filesMode || (writable && !isDir && *text));
}

void MuFileDialogTxImpl::nameTyped() {
    const char* const text = name->getText();
    int match = -1;
    for (int row = 0; row < files->getRowCount(); ++row)
        if (strcmp(entryOf(row).name.c_str(), text) == 0)
            match = row;
    files->setSelected(match);
    updateOk();
}

void MuFileDialogTxImpl::fileSelected() {
    const int row = files->getSelected();
    if (row < 0)
        return;
    const FolderEntry& entry = entryOf(row);
    if (!entry.isDir || !filesMode)
        name->setText(entry.name.c_str());
    updateOk();
}

void MuFileDialogTxImpl::fileActivated(int row) {
    if (!files->isValidRow(row) || !files->isRowSelectable(row))
        return;
    const FolderEntry entry = entryOf(row);
    name->setText(entry.isDir ? "" : entry.name.c_str());
    updateOk();
    if (entry.isDir)
        enterFolder(plat::path::join(currentDir.c_str(), entry.name.c_str()).c_str());
    else if (okButton() && !okButton()->isInert())
        finish();
}

plat::String MuFileDialogTxImpl::chosenPath() const {
    const char* const text = name->getText();
    return plat::path::normalize(text[0] == '/' ? text : plat::path::join(currentDir.c_str(), text).c_str());
}

void MuFileDialogTxImpl::finish() {
    const plat::String path = chosenPath();
    if (saveMode && filesMode && exists(path.c_str())) {
        const unsigned answer =
            MuMessageBox::ask(dialog.get(), dialog->getTitle(), MuMessageBox::Icon::Question,
                              {LOC_TEXT("mui_filedlgtx_overwrite")}, MuButtonBar::Yes | MuButtonBar::No);
        if (answer != MuButtonBar::Yes)
            return;
    }
    closeWithResult(path.c_str());
}

void MuFileDialogTxImpl::closeWithResult(const char* text) {
    if (failed)
        return;
    result = plat::String(text);
    folder->showPopup(false);
    dialog->setShown(false);
    timer.start(0);
}

void MuFileDialogTxImpl::fail(const char* message) {
    if (failed)
        return;
    closeWithResult(message);
    failed = true;
}

bool MuFileDialogTxImpl::timerExpired(plat::Timer*) {
    MuFileDialog::Callback* const told = callback;
    const plat::String text = result;
    if (failed)
        told->fileFailed(text.c_str()); // this may be gone after either
    else
        told->fileChosen(text.get());
    return false;
}

MuButton* MuFileDialogTxImpl::okButton() {
    return buttonBar->getButton(saveMode ? MuButtonBar::Save : MuButtonBar::Open);
}

void MuFileDialogTxImpl::muEvent(MuElement* element, int type) {
    if (type == EventRowActivated && element == files)
        fileActivated(files->getSelected());
    else
        MuObserver::muEvent(element, type);
}

void MuFileDialogTxImpl::muActivated(MuElement* element) {
    if (element == upBtn)
        enterFolder(plat::path::dirName(currentDir.c_str()).c_str());
    else if (element == okButton())
        finish();
    else if (element == folders)
        enterTypedFolder();
    else if (buttonBar->buttonOf(element) == MuButtonBar::Cancel)
        closeWithResult(nullptr);
}

void MuFileDialogTxImpl::muChanged(MuElement* element) {
    if (element == name)
        nameTyped();
    else if (element == files)
        fileSelected();
    else if (element == filter)
        refreshList();
    else if (element == places && places->getSelected() >= 0)
        enterFolder(placeList[static_cast<size_t>(places->getSelected())].path.c_str());
    else if (element == folder)
        dropFolders();
}

void MuFileDialogTxImpl::muClosed(MuDialog* closed) {
    if (closed == dialog.get())
        closeWithResult(nullptr);
}

bool MuFileDialogTxImpl::actionKey(int action, MuDialog*) {
    if (action != MuDialog::ActionDefault || !files->hasFocus() || files->getSelected() < 0)
        return false;
    files->activateRow(files->getSelected());
    return true;
}

} // namespace mui

#include "ui/tx/WFileDialog.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "plat/Exception.h"
#include "plat/path.h"
#include "plat/visibleText.h"
#include "rfb/keySymbols.h"
#include "tx/TXMsgBox.h"
#include "wvw/WCanvas.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace ui {
namespace {
namespace key = rfb::key;
constexpr int widthUnits = 800;
constexpr int heightUnits = 400;
constexpr int gapUnits = 16;
constexpr int buttonUnits = 140;
constexpr int pathLimitBytes = 255;

bool isFolder(const char* path) {
    struct stat info;
    return stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

plat::String workingDir() {
    char path[PATH_MAX];
    return getcwd(path, sizeof path) ? path : "/";
}

/// Without "." and "..", where the system can tell.
plat::String canonical(const char* path) {
    char* const resolved = realpath(path, nullptr);
    const plat::String result = resolved ? resolved : path;
    free(resolved);
    return result;
}

plat::String withSlash(const plat::String& path) {
    const int len = path.len();
    return len > 0 && path.c_str()[len - 1] == '/' ? path : plat::strFormat("%s/", path.c_str());
}

} // namespace

WFileDialog::WFileDialog(tx::TXWindow* owner, const char* title, const char* path, unsigned flags)
    : TXDialog(owner, title, /*centred=*/true), browser(flags), label(&canvas(), LOC_TEXT("ui_wfiledialog_path")),
      edit(&canvas(), pathLimitBytes), hidden(&canvas(), LOC_TEXT("ui_wfiledialog_show_hidden")),
      cancel(&canvas(), LOC_TEXT("ui_wfiledialog_cancel")), ok(&canvas(), LOC_TEXT("ui_wfiledialog_ok")),
      list(&canvas(), static_cast<WFileList::Callback*>(this), static_cast<WFileList::ItemGetter*>(this)) {
    label.setTransparent(true);
    hidden.getCheck().setState((flags & DirBrowser::ShowHidden) != 0 ? wvw::WCheckBox::State::On
                                                                     : wvw::WCheckBox::State::Off);
    const rfb::Point size(hxutil::scaled(widthUnits), hxutil::scaled(heightUnits));
    setSize(size);
    setMinSize(size.x, size.y);
    arrange();
    const plat::String start = path && *path ? canonical(path) : workingDir();
    if (enterFolder(start.c_str()))
        return;
    const plat::String parent = plat::path::dirName(start.c_str());
    if (!enterFolder(parent.c_str()))
        enterFolder("/");
    else
        showPath(start);
}

WFileDialog::~WFileDialog() {
    if (isMapped())
        unmap();
    setRootWidget(nullptr); // before its children go
}

void WFileDialog::initDialog() { canvas().setFocusChild(&list); }

void WFileDialog::resized() {
    TXDialog::resized();
    arrange();
}

bool WFileDialog::activated(wvw::Widget* origin) {
    if (origin == &ok)
        accept();
    else if (origin == &cancel)
        hide(false);
    else
        return false;
    return true;
}

bool WFileDialog::valueChanged(wvw::Widget* origin) {
    if (origin != &hidden.getCheck())
        return false;
    const unsigned others = browser.getFlags() & ~static_cast<unsigned>(DirBrowser::ShowHidden);
    browser.setFlags(others | (hidden.getCheck().isOn() ? DirBrowser::ShowHidden : 0U));
    const plat::String path = enteredPath();
    enterFolder(folder.c_str());
    showPath(path);
    return true;
}

bool WFileDialog::keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) {
    if (!down)
        return false;
    if (keysym == key::Escape) {
        hide(false);
    } else if (keysym == key::Return && origin == &edit) {
        accept();
    } else if (keysym == key::BackSpace && origin == &list) {
        enterFolder(canonical(plat::strFormat("%s..", folder.c_str()).c_str()).c_str());
    } else {
        return hidden.hotKey(keysym);
    }
    return true;
}

void WFileDialog::itemChosen(WFileList*, int index) {
    const TreeBrowser::Entry entry = browser.entries().at(static_cast<size_t>(index));
    if (entry.isBranch && enterFolder(canonical(entry.path.c_str()).c_str()))
        return;
    showPath(entry.path);
}

int WFileDialog::itemCount() { return static_cast<int>(browser.entries().size()); }

plat::String WFileDialog::itemText(int index) {
    const TreeBrowser::Entry& entry = browser.entries().at(static_cast<size_t>(index));
    const plat::String name = plat::visibleText(plat::path::baseName(entry.path.c_str()).c_str());
    return entry.isBranch ? withSlash(name) : name;
}

bool WFileDialog::enterFolder(const char* path) {
    if (!isFolder(path))
        return false;
    const plat::String whole = withSlash(path);
    try {
        browser.browse(whole.c_str());
    } catch (const plat::Exception& failure) {
        showError(failure.what());
        return true; // it is a folder, but stays closed
    }
    folder = whole;
    showPath(folder);
    list.refill();
    return true;
}

/// The field may hold less of it than there is.
void WFileDialog::showPath(const plat::String& path) {
    edit.setText(path.c_str());
    shownPath = path;
    shownText = edit.getText();
}

plat::String WFileDialog::enteredPath() const {
    const plat::String typed = edit.getText();
    return typed == shownText ? shownPath : typed;
}

void WFileDialog::accept() {
    const plat::String typed = enteredPath();
    if (typed.isEmpty()) {
        bell();
        return;
    }
    // What is not absolute lies in the folder that is shown.
    const plat::String path =
        plat::path::isAbsolute(typed.c_str()) ? typed : plat::strFormat("%s%s", folder.c_str(), typed.c_str());
    const bool isShown = withSlash(path) == folder;
    if (!isShown && isFolder(path.c_str())) {
        enterFolder(path.c_str());
        return;
    }
    const bool wantsFolder = (browser.getFlags() & DirBrowser::FoldersOnly) != 0;
    if (isShown != wantsFolder) { // a folder where a file is wanted, or the other way round
        bell();
        return;
    }
    showPath(path);
    hide(true);
}

void WFileDialog::showError(const char* text) {
    closedError.reset();
    error = std::make_unique<tx::TXMsgBox>(this, LOC_TEXT("ui_wfiledialog_unreadable"), text,
                                           tx::TXMsgBox::Icon::Warning, tx::TXMsgBox::Ok);
    error->setCallback(this);
    error->show();
    error->pushModal(); // above us, where we are modal ourselves
}

void WFileDialog::dialogClosed(tx::TXDialog*, bool) { closedError = std::move(error); }

void WFileDialog::arrange() {
    const int gap = hxutil::scaled(gapUnits);
    const rfb::Point size = canvas().getSize();
    const int rowHeight = std::max(edit.getPreferredSize().y, ok.getPreferredSize().y);
    const int lowest = size.y - gap - rowHeight;
    const int buttonWidth =
        std::max({hxutil::scaled(buttonUnits), ok.getPreferredSize().x, cancel.getPreferredSize().x});
    const int labelWidth = label.getPreferredSize().x;
    const auto place = [this](wvw::Widget& widget, int x, int y, int width, int height) {
        canvas().setChildRect(&widget, rfb::Rect::xywh(x, y, std::max(1, width), std::max(1, height)));
    };
    const int editTop = lowest - gap - rowHeight;
    place(list, gap, gap, size.x - 2 * gap, editTop - 2 * gap);
    place(label, gap, editTop + (rowHeight - label.getPreferredSize().y) / 2, labelWidth, label.getPreferredSize().y);
    const int editLeft = gap + labelWidth + gap / 2;
    place(edit, editLeft, editTop, size.x - gap - editLeft, rowHeight);
    const rfb::Point check = hidden.getPreferredSize();
    const int buttonsLeft = size.x - 2 * gap - 2 * buttonWidth;
    place(hidden, gap, lowest + (rowHeight - check.y) / 2, std::min(check.x, buttonsLeft - 2 * gap), check.y);
    place(cancel, buttonsLeft, lowest, buttonWidth, rowHeight);
    place(ok, buttonsLeft + buttonWidth + gap, lowest, buttonWidth, rowHeight);
}

} // namespace ui

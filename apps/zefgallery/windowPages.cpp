// Windows of every kind, and the dialogs that are made of them.
#include "hxutil/metrics.h"
#include "mui/MuAboutDialog.h"
#include "mui/MuButton.h"
#include "mui/MuButtonBar.h"
#include "mui/MuDialog.h"
#include "mui/MuEdit.h"
#include "mui/MuFileDialog.h"
#include "mui/MuLayout.h"
#include "mui/MuMessageBox.h"
#include "mui/MuText.h"
#include "product/init.h"
#include "zefgallery/pages.h"
#include "zefgallery/tx/PlainChooser.h"

#include <string>
#include <vector>

namespace gallery {
namespace {

struct Kind {
    const char* name; // of the button and of the dialog
    unsigned flags;
};
constexpr Kind kinds[] = {
    {"Plain", 0},
    {"Fixed", mui::MuDialog::FixedSize},
    {"Modal", mui::MuDialog::Modal | mui::MuDialog::AutoHeight},
    {"Blocking", mui::MuDialog::ModalBlocking},
    {"Popup", mui::MuDialog::Popup | mui::MuDialog::Bordered},
    {"Above", mui::MuDialog::KeepAbove},
    {"Undecorated", mui::MuDialog::NoDecoration | mui::MuDialog::Bordered},
    {"Nofocus", mui::MuDialog::NoFocusOnShow},
    {"Transient", mui::MuDialog::Transient | mui::MuDialog::Bordered},
    {"Stays", mui::MuDialog::DisableClose},
};

class WindowsPage : public Page,
                    private mui::MuObserver,
                    private mui::MuFileDialog::Callback,
                    private PlainChooser::Callback {
public:
    WindowsPage(mui::MuDialog* top_, mui::MuLayout* page_) : top(top_), page(page_) {
        heading(page, "A dialog of each kind");
        mui::MuLayout* line = nullptr;
        for (size_t i = 0; i < std::size(kinds); ++i) {
            if (i % 5 == 0)
                line = row(page);
            openers.push_back(mui::MuButton::create(line, kinds[i].name, kinds[i].name));
        }
        dialogs.resize(std::size(kinds));
        bars.resize(std::size(kinds));
        heading(page, "Message boxes");
        mui::MuLayout* boxes = row(page);
        for (const char* name : {"Info", "Warning", "Error", "Question"})
            boxOpeners.push_back(mui::MuButton::create(boxes, name, name));
        answer = result("answer");
        heading(page, "Files and folders");
        mui::MuLayout* choosers = row(page);
        openFile = mui::MuButton::create(choosers, "open", "&Open...");
        saveFile = mui::MuButton::create(choosers, "save", "&Save...");
        chooseFolder = mui::MuButton::create(choosers, "folder", "&Folder...");
        choosePlainly = mui::MuButton::create(choosers, "plain", "&Plain...");
        chosen = result("chosen");
        chooser = mui::MuFileDialog::create(top, this);
        heading(page, "About");
        about = mui::MuButton::create(row(page), "About", "&About...");
        page->addObserver(this, true);
    }
    ~WindowsPage() override {
        page->addObserver(this, false);
        for (const auto& dialog : dialogs)
            if (dialog)
                dialog->addObserver(this, false);
    }

private:
    void muActivated(mui::MuElement* element) override {
        for (size_t i = 0; i < openers.size(); ++i)
            if (element == openers[i])
                open(i);
        for (size_t i = 0; i < boxOpeners.size(); ++i)
            if (element == boxOpeners[i])
                ask(static_cast<mui::MuMessageBox::Icon>(i));
        for (size_t i = 0; i < bars.size(); ++i)
            if (bars[i] && bars[i]->buttonOf(element))
                dialogs[i]->close();
        if (element == openFile)
            chooser->showOpen("Open", nullptr, "png,svg", "Pictures", /*filesMode=*/true);
        else if (element == saveFile)
            chooser->showSave("Save", "report.txt", nullptr, nullptr, /*filesMode=*/true);
        else if (element == chooseFolder)
            chooser->showOpen("Folder", nullptr, nullptr, nullptr, /*filesMode=*/false);
        else if (element == choosePlainly)
            plainChooser->show();
        if (element != about)
            return;
        if (!aboutDialog)
            aboutDialog =
                std::make_unique<mui::MuAboutDialog>(top, "Gallery", "zefserver", product::aboutMarkup(), nullptr);
        aboutDialog->show();
    }

    /// A field that shows what came of something.
    mui::MuEdit* result(const char* name) {
        mui::MuEdit* const field = mui::MuEdit::create(page, name, nullptr);
        field->setFieldWidth(hxutil::scaled(1000));
        field->setLocked(true);
        return field;
    }

    // gallery::PlainChooser::Callback
    void plainChosen(const char* path) override { chosen->setText(path ? path : "cancelled"); }
    // mui::MuFileDialog::Callback
    void fileChosen(const char* path) override { chosen->setText(path ? path : "cancelled"); }
    void fileFailed(const char* message) override { chosen->setText(message); }

    void open(size_t index) {
        if (!dialogs[index]) {
            const Kind& kind = kinds[index];
            auto dialog = std::unique_ptr<mui::MuDialog>(mui::MuDialog::create(
                kind.name, kind.name, {hxutil::scaled(700), hxutil::scaled(400)}, kind.flags, top));
            auto* body = mui::MuLayout::create(dialog.get(), "", mui::Orientation::Vertical);
            mui::MuText::create(body, "text", "A text that fills the dialog, over more than one line if it has to.");
            mui::MuEdit::create(body, "field", "&Field:")->setText("and something to type in");
            bars[index] =
                std::make_unique<mui::MuButtonBar>(dialog.get(), mui::MuButtonBar::Ok | mui::MuButtonBar::Cancel);
            dialog->addObserver(this, true);
            dialogs[index] = std::move(dialog);
        }
        dialogs[index]->setShown(true);
    }

    void ask(mui::MuMessageBox::Icon icon) {
        const bool question = icon == mui::MuMessageBox::Icon::Question;
        const unsigned buttons = question ? mui::MuButtonBar::Yes | mui::MuButtonBar::No : mui::MuButtonBar::Ok;
        const unsigned result = mui::MuMessageBox::ask(
            top, "Gallery", icon,
            {"A message with one line.", "A second message, which is markup with <b>bold</b> in it."}, buttons);
        answer->setText(("button " + std::to_string(result)).c_str());
    }

    mui::MuDialog* top;
    mui::MuLayout* page;
    std::vector<mui::MuButton*> openers;
    std::vector<mui::MuButton*> boxOpeners;
    std::vector<std::unique_ptr<mui::MuDialog>> dialogs; // made when first opened
    std::vector<std::unique_ptr<mui::MuButtonBar>> bars;
    mui::MuEdit* answer;
    mui::MuButton* openFile;
    mui::MuButton* saveFile;
    mui::MuButton* chooseFolder;
    mui::MuEdit* chosen;
    std::unique_ptr<mui::MuFileDialog> chooser;
    mui::MuButton* choosePlainly;
    std::unique_ptr<PlainChooser> plainChooser = PlainChooser::create(this);
    mui::MuButton* about;
    std::unique_ptr<mui::MuAboutDialog> aboutDialog;
};

} // namespace

std::unique_ptr<Page> makeWindows(mui::MuDialog* dialog, mui::MuLayout* page) {
    return std::make_unique<WindowsPage>(dialog, page);
}

} // namespace gallery

// Windows of every kind, and the dialogs that are made of them.
#include "hxutil/metrics.h"
#include "mui/MuAboutDialog.h"
#include "mui/MuAutoHider.h"
#include "mui/MuButton.h"
#include "mui/MuButtonBar.h"
#include "mui/MuDialog.h"
#include "mui/MuEdit.h"
#include "mui/MuFileDialog.h"
#include "mui/MuLayout.h"
#include "mui/MuMessageBox.h"
#include "mui/MuPopupNotifier.h"
#include "mui/MuText.h"
#include "product/init.h"
#include "ui/MenuBar.h"
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
                    private PlainChooser::Callback,
                    private ui::Menu::ActionCallback {
public:
    WindowsPage(mui::MuDialog* top_, mui::MuLayout* page_) : top(top_), page(page_) {
        mui::MuLayout* windows = group(page, "A dialog of each kind");
        mui::MuLayout* line = nullptr;
        for (size_t i = 0; i < std::size(kinds); ++i) {
            if (i % 5 == 0)
                line = row(windows);
            openers.push_back(mui::MuButton::create(line, kinds[i].name, kinds[i].name));
        }
        dialogs.resize(std::size(kinds));
        bars.resize(std::size(kinds));
        mui::MuLayout* messages = group(page, "Message boxes");
        mui::MuLayout* boxes = row(messages);
        for (const char* name : {"Info", "Warning", "Error", "Question", "Long"})
            boxOpeners.push_back(mui::MuButton::create(boxes, name, name));
        answer = result(messages, "answer");
        mui::MuLayout* files = group(page, "Files and folders");
        mui::MuLayout* choosers = row(files);
        openFile = mui::MuButton::create(choosers, "open", "&Open...");
        saveFile = mui::MuButton::create(choosers, "save", "&Save...");
        chooseFolder = mui::MuButton::create(choosers, "folder", "&Folder...");
        choosePlainly = mui::MuButton::create(choosers, "plain", "&Plain...");
        chosen = result(files, "chosen");
        chooser = mui::MuFileDialog::create(top, this);
        mui::MuLayout* others =
            row(group(page, "Others: menus, a row of buttons for each use, one that hides itself, notifications"));
        for (const char* name : {"Menus", "Steps", "Saves", "Hides"})
            special.push_back(mui::MuButton::create(others, name, name));
        notify = mui::MuButton::create(others, "Notify", "&Notify");
        about = mui::MuButton::create(others, "About", "&About...");
        page->addObserver(this, /*add=*/true);
    }
    ~WindowsPage() override {
        page->addObserver(this, /*add=*/false);
        for (const auto& dialog : dialogs)
            if (dialog)
                dialog->addObserver(this, /*add=*/false);
        for (const auto& dialog : specials)
            if (dialog)
                dialog->addObserver(this, /*add=*/false);
    }

private:
    void muActivated(mui::MuElement* element) override {
        for (size_t i = 0; i < openers.size(); ++i)
            if (element == openers[i])
                open(i);
        for (size_t i = 0; i < boxOpeners.size(); ++i)
            if (element == boxOpeners[i])
                ask(i);
        for (size_t i = 0; i < special.size(); ++i)
            if (element == special[i])
                openSpecial(i);
        for (size_t i = 0; i < bars.size(); ++i)
            if (bars[i] && bars[i]->buttonOf(element))
                dialogs[i]->close();
        for (size_t i = 0; i < std::size(specials); ++i)
            if (specialBars[i] && specialBars[i]->buttonOf(element))
                specials[i]->close();
        if (element == openFile)
            chooser->showOpen("Open", nullptr, "png,svg", "Pictures", /*filesMode=*/true);
        else if (element == saveFile)
            chooser->showSave("Save", "report.txt", nullptr, nullptr, /*filesMode=*/true);
        else if (element == chooseFolder)
            chooser->showOpen("Folder", nullptr, nullptr, nullptr, /*filesMode=*/false);
        else if (element == choosePlainly)
            plainChooser->show();
        else if (element == notify)
            notifications.notify(
                {plat::String(
                     "<b>maria</b> hat sich verbunden und sieht diesen Bildschirm. Ein Klick zeigt, was sie darf."),
                 8000});
        if (element != about)
            return;
        if (!aboutDialog)
            aboutDialog =
                std::make_unique<mui::MuAboutDialog>(top, "Gallery", "zefserver", product::aboutMarkup(), nullptr);
        aboutDialog->show();
    }

    /// A field that shows what came of something.
    static mui::MuEdit* result(mui::MuLayout* parent, const char* name) {
        mui::MuEdit* const field = mui::MuEdit::create(parent, name, nullptr);
        field->setFieldWidth(hxutil::scaled(1000));
        field->setLocked(/*locked=*/true);
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
            dialog->addObserver(this, /*add=*/true);
            dialogs[index] = std::move(dialog);
        }
        // A popup has no keyboard of its own: what opened it closes it.
        const bool again = (kinds[index].flags & mui::MuDialog::Popup) && dialogs[index]->isShown();
        dialogs[index]->setShown(!again);
    }

    void ask(size_t index) {
        using mui::MuButtonBar;
        const bool isLong = index == boxOpeners.size() - 1;
        const auto icon = isLong ? mui::MuMessageBox::Icon::Question : static_cast<mui::MuMessageBox::Icon>(index);
        unsigned buttons = MuButtonBar::Ok;
        if (icon == mui::MuMessageBox::Icon::Question)
            buttons = MuButtonBar::Yes | MuButtonBar::No | (isLong ? MuButtonBar::Cancel : 0u);
        const unsigned result = mui::MuMessageBox::ask(
            top, "Gallery", icon,
            {"A message with one line.", "A second message, which is markup with <b>bold</b> in it.",
             isLong ? "Wenn Sie den Server beenden, werden alle drei Verbindungen getrennt, und niemand kann diesen "
                      "Rechner mehr erreichen, bis sich jemand vor Ort anmeldet. Eine Datei, die gerade übertragen "
                      "wird, bleibt unvollständig. Möchten Sie ihn trotzdem beenden?"
                    : nullptr},
            buttons);
        answer->setText(("button " + std::to_string(result)).c_str());
    }

    void openSpecial(size_t index) {
        using mui::MuButtonBar;
        std::unique_ptr<mui::MuDialog>& dialog = specials[index];
        if (!dialog) {
            const char* name = special[index]->getName();
            dialog.reset(mui::MuDialog::create(name, name, {hxutil::scaled(1000), hxutil::scaled(500)}, 0, top));
            auto* body = mui::MuLayout::create(dialog.get(), "", mui::Orientation::Vertical);
            mui::MuEdit::create(body, "field", "&Field:")->setText("and something to type in");
            dialog->addObserver(this, /*add=*/true);
        }
        switch (specialBars[index] ? -1 : static_cast<int>(index)) {
        case 0: {
            ui::MenuBar* bar = dialog->menuBar();
            ui::Menu* file = bar->getMenu(ui::MenuBar::File);
            file->addItem("&Options...", nullptr, nullptr, this)->setChecked(/*on=*/true);
            file->addSeparator();
            file->addItem("&Stop", nullptr, nullptr, this, ui::Menu::NeedsElevation);
            bar->getMenu(ui::MenuBar::Edit)->addItem("&Paste", nullptr, nullptr, this)->setEnabled(/*on=*/false);
            bar->addAbout(this);
            specialBars[index] = std::make_unique<MuButtonBar>(dialog.get(), MuButtonBar::Ok);
            dialog->setActionButton(mui::MuDialog::ActionCancel, specialBars[index]->getButton(MuButtonBar::Ok));
            break;
        }
        case 1:
            specialBars[index] = std::make_unique<MuButtonBar>(dialog.get(), MuButtonBar::Back | MuButtonBar::Next |
                                                                                 MuButtonBar::Cancel);
            break;
        case 2:
            specialBars[index] = std::make_unique<MuButtonBar>(dialog.get(), MuButtonBar::Save | MuButtonBar::Cancel |
                                                                                 MuButtonBar::Apply);
            break;
        case 3:
            specialBars[index] = std::make_unique<MuButtonBar>(dialog.get(), MuButtonBar::Continue);
            dialog->setActionButton(mui::MuDialog::ActionCancel, specialBars[index]->getButton(MuButtonBar::Continue));
            hider = mui::MuAutoHider::create(dialog.get());
            break;
        default:
            break;
        }
        dialog->setShown(/*shown=*/true);
        if (index == 3)
            hider->setEnabled(/*on=*/true);
    }

    // ui::Menu::ActionCallback
    void menuAction(ui::Menu::Item* item) override { answer->setText(item->getText()); }

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
    std::vector<mui::MuButton*> special;
    std::unique_ptr<mui::MuDialog> specials[4]; // made when first opened
    std::unique_ptr<mui::MuButtonBar> specialBars[4];
    std::unique_ptr<mui::MuAutoHider> hider;
    mui::MuButton* notify;
    mui::MuPopupNotifier notifications{"zefserver"};
    mui::MuButton* about;
    std::unique_ptr<mui::MuAboutDialog> aboutDialog;
};

} // namespace

std::unique_ptr<Page> makeWindows(mui::MuDialog* dialog, mui::MuLayout* page) {
    return std::make_unique<WindowsPage>(dialog, page);
}

} // namespace gallery

#include "zefgallery/tx/PlainChooser.h"

#include "ui/tx/WFileDialog.h"

namespace gallery {
namespace {

class Chooser : public PlainChooser, private tx::TXDialog::Callback {
public:
    explicit Chooser(PlainChooser::Callback* target) : callback(target) {}

    // gallery::PlainChooser
    void show() override {
        dialog = std::make_unique<ui::WFileDialog>(nullptr, "Choose plainly");
        dialog->setCallback(static_cast<tx::TXDialog::Callback*>(this));
        dialog->show();
    }

private:
    // tx::TXDialog::Callback
    void dialogClosed(tx::TXDialog*, bool result) override {
        callback->plainChosen(result ? dialog->getPath().get() : nullptr);
    }

    PlainChooser::Callback* callback;
    std::unique_ptr<ui::WFileDialog> dialog;
};

} // namespace

std::unique_ptr<PlainChooser> PlainChooser::create(Callback* callback) { return std::make_unique<Chooser>(callback); }

} // namespace gallery

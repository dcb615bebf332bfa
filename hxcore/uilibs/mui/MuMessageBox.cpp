#include "mui/MuMessageBox.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "mui/MuButtonBar.h"
#include "mui/MuFrame.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuScroll.h"
#include "mui/MuText.h"
#include "os/AppInfo.h"
#include "plat/DString.h"

#include <algorithm>

namespace mui {
namespace {
constexpr int widthUnits = 800;
constexpr int widestUnits = 1200;
constexpr int iconUnits = 64;

const char* imageOf(MuMessageBox::Icon icon) {
    constexpr const char* names[] = {"statusInfo", "statusWarning", "statusError", "statusQuestion"};
    return names[static_cast<int>(icon)];
}

plat::String withProduct(const char* title) {
    const char* key = os::AppInfo::displayNameKey();
    if (!key || !*key)
        return title;
    return plat::strFormat("%s - %s", title ? title : "", LOC_TEXT(key));
}

plat::String joined(std::initializer_list<const char*> messages) {
    plat::DString text;
    for (const char* message : messages) {
        if (!message)
            continue;
        if (!text.isEmpty())
            text.append("<br/>");
        text.append(message);
    }
    return text.take();
}
} // namespace

MuMessageBox::MuMessageBox(MuDialog* parent, const char* title, Icon icon, std::initializer_list<const char*> messages,
                           unsigned buttons, Callback* callback_, unsigned dialogFlags)
    : callback(callback_),
      dialog(MuDialog::create("messagebox", withProduct(title).c_str(), {hxutil::scaled(widthUnits), 0},
                              MuDialog::AutoHeight | MuDialog::FixedSize | dialogFlags, parent)) {
    MuLayout* main = MuLayout::create(dialog.get(), "main", Orientation::Vertical);
    MuFrame* frame = MuFrame::create(main, "frame");
    frame->setMargin(0);
    MuLayout* split = MuLayout::create(frame, "split", Orientation::Horizontal);
    split->setSpacing(Mui::instance()->metric(MetricLargeGap));
    const int iconSize = hxutil::scaled(iconUnits);
    MuImage* image = MuImage::create(split, "icon", imageOf(icon), {iconSize, iconSize});
    split->setChildLayout(image, MuLayout::Natural | MuLayout::Start);
    makeText(split, icon == Icon::Info ? "info" : "msg", joined(messages).c_str(), iconSize);
    buttonBar = std::make_unique<MuButtonBar>(dialog.get(), buttons);
    // Escape presses the only button there is.
    if (!dialog->getActionButton(MuDialog::ActionCancel) && (buttons & (buttons - 1)) == 0)
        dialog->setActionButton(MuDialog::ActionCancel, dialog->getActionButton(MuDialog::ActionDefault));
    dialog->setDefaultFocus(dialog->getActionButton(MuDialog::ActionDefault));
    dialog->addObserver(this, /*add=*/true);
}

/// A long text makes the box wider, one that is longer still scrolls: the buttons stay in view.
void MuMessageBox::makeText(MuLayout* split, const char* name, const char* markup, int iconSize) {
    text = MuText::create(split, name, markup);
    split->setChildLayout(text, MuLayout::Stretch | MuLayout::Centre);
    const int beside = 2 * Mui::instance()->metric(MetricDialogMargin) + iconSize + split->getSpacing();
    const int tallest = dialog->getScreenArea().height() / 2;
    int width = hxutil::scaled(widthUnits);
    if (text->getMinHeight(width - beside) <= width / 2)
        return;
    width = std::clamp(dialog->getScreenArea().width(), width, hxutil::scaled(widestUnits));
    dialog->setSize({width, dialog->getSize().y});
    if (text->getMinHeight(width - beside) <= tallest)
        return;
    split->remove(text);
    // Without names: the text is found where it always is.
    MuLayout* column = MuLayout::create(split, "", Orientation::Vertical);
    split->setChildLayout(column, MuLayout::Stretch);
    MuScroll* scroll = MuScroll::create(column, "");
    column->setChildLayout(scroll, MuLayout::Fixed, tallest);
    text = MuText::create(scroll, name, markup);
}

MuMessageBox::~MuMessageBox() { dialog->addObserver(this, /*add=*/false); }

void MuMessageBox::show() {
    result = 0;
    dialog->setShown(true);
}

unsigned MuMessageBox::ask(MuDialog* parent, const char* title, Icon icon, std::initializer_list<const char*> messages,
                           unsigned buttons) {
    MuMessageBox box(parent, title, icon, messages, buttons, nullptr, MuDialog::ModalBlocking);
    box.show();
    return box.getResult();
}

void MuMessageBox::muActivated(MuElement* element) {
    const unsigned button = buttonBar->buttonOf(element);
    if (!button)
        return;
    result = button;
    dialog->close();
}

void MuMessageBox::muClosed(MuDialog*) {
    if (callback)
        callback->messageBoxClosed(this, result);
}

} // namespace mui

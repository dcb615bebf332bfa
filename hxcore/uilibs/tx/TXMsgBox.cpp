#include "tx/TXMsgBox.h"

#include "hxutil/metrics.h"
#include "loc/Localize.h"
#include "os/AppInfo.h"
#include "tx/TX.h"
#include "wvw/WBevelButton.h"
#include "wvw/WCanvas.h"
#include "wvw/WImage.h"
#include "wvw/WLabel.h"
#include "wvw/WScrollView.h"

#include <X11/keysym.h>

#include <algorithm>
#include <array>

namespace tx {
namespace {

constexpr int textWidthUnits = 600;
constexpr int iconUnits = 64;
constexpr int gapUnits = 24;
constexpr int buttonWidthUnits = 160;

constexpr std::array<const char*, 4> iconNames = {"statusInfo", "statusWarning", "statusError", "statusQuestion"};

struct ButtonKind {
    unsigned flag;
    const char* key;
};

constexpr ButtonKind buttonKinds[] = {
    {TXMsgBox::Ok, "tx_msgbox_ok"},
    {TXMsgBox::Yes, "tx_msgbox_yes"},
    {TXMsgBox::No, "tx_msgbox_no"},
    {TXMsgBox::Cancel, "tx_msgbox_cancel"},
};

plat::String withProduct(const char* title) {
    const char* key = os::AppInfo::displayNameKey();
    if (!key || !*key)
        return title;
    return plat::strFormat("%s - %s", title ? title : "", LOC_TEXT(key));
}

} // namespace

struct TXMsgBox::Button {
    Button(wvw::WLayout* layout, const ButtonKind& kind) : flag(kind.flag), widget(layout, LOC_TEXT(kind.key)) {}

    unsigned flag;
    wvw::WLabelButton widget;
};

/// As wide as it is, and scrolled up and down.
class TXMsgBox::TextView : public wvw::WScrollView {
public:
    explicit TextView(wvw::WLabel* text) { setContent(text); }
    rfb::Point contentSizeFor(int width) override { return {width, getContent()->getPreferredHeight(width)}; }
};

TXMsgBox::TXMsgBox(TXWindow* owner, const char* title, const char* text, Icon icon_, unsigned buttons)
    : TXDialog(owner, withProduct(title).c_str(), /*centred=*/true) {
    const int iconSize = hxutil::scaled(iconUnits);
    icon =
        std::make_unique<wvw::WImage>(&canvas(), iconNames[static_cast<size_t>(icon_)], rfb::Point(iconSize, iconSize));
    label = std::make_unique<wvw::WLabel>(&canvas(), text);
    label->setTransparent(true);
    for (const ButtonKind& kind : buttonKinds) {
        if (buttons & kind.flag)
            buttons_.push_back(std::make_unique<Button>(&canvas(), kind));
    }
    layout();
    setFixedSize(true);
}

TXMsgBox::~TXMsgBox() {
    if (isMapped())
        unmap();
    setRootWidget(nullptr); // before its children go
}

unsigned TXMsgBox::run() {
    chosen = escapeButton();
    showModal();
    return chosen;
}

void TXMsgBox::initDialog() {
    if (!buttons_.empty())
        canvas().setFocusChild(&buttons_.front()->widget);
}

void TXMsgBox::deleteWindow(TXWindow*) { end(escapeButton()); }

bool TXMsgBox::activated(wvw::Widget* origin) {
    for (const auto& button : buttons_) {
        if (&button->widget == origin) {
            end(button->flag);
            return true;
        }
    }
    return false;
}

bool TXMsgBox::keyEvent(uint32_t keysym, bool down, wvw::Widget* origin) {
    const bool page = keysym == XK_Prior || keysym == XK_Next;
    if (down && page && view && origin != view.get())
        return view->handleKey(keysym, down);
    if (!down || keysym != XK_Escape)
        return false;
    end(escapeButton());
    return true;
}

void TXMsgBox::end(unsigned button) {
    chosen = button;
    hide((button & (Ok | Yes)) != 0);
}

unsigned TXMsgBox::escapeButton() const {
    unsigned flag = 0;
    for (const auto& button : buttons_) {
        if (button->flag == Cancel || flag == 0 || (button->flag == No && flag != Cancel))
            flag = button->flag;
    }
    return flag;
}

void TXMsgBox::layout() {
    const int gap = hxutil::scaled(gapUnits);
    const rfb::Point iconSize = icon->getPreferredSize();
    int textWidth = std::min(label->getPreferredSize().x, hxutil::scaled(textWidthUnits));
    int textHeight = label->getPreferredHeight(textWidth);
    // However long the text, the buttons stay on the screen.
    const int limit = getScreenSize().y * 2 / 3;
    if (textHeight > limit) {
        canvas().removeChild(label.get());
        view = std::make_unique<TextView>(label.get());
        canvas().addChild(view.get());
        textWidth += wvw::WScrollbar::thickness;
        textHeight = limit;
    }
    wvw::Widget* const text = view ? static_cast<wvw::Widget*>(view.get()) : label.get();
    const int bodyHeight = std::max(iconSize.y, textHeight);
    int buttonWidth = hxutil::scaled(buttonWidthUnits);
    int buttonHeight = 0;
    for (const auto& button : buttons_) {
        const rfb::Point preferred = button->widget.getPreferredSize();
        buttonWidth = std::max(buttonWidth, preferred.x);
        buttonHeight = std::max(buttonHeight, preferred.y);
    }
    const int count = static_cast<int>(buttons_.size());
    const int rowWidth = count * buttonWidth + std::max(count - 1, 0) * gap / 2;
    const int width = std::max(3 * gap + iconSize.x + textWidth, rowWidth + 2 * gap);
    canvas().setChildRect(icon.get(), rfb::Rect::at({gap, gap}, iconSize));
    canvas().setChildRect(
        text, rfb::Rect::xywh(2 * gap + iconSize.x, gap + (bodyHeight - textHeight) / 2, textWidth, textHeight));
    int x = width - gap - rowWidth;
    for (const auto& button : buttons_) {
        canvas().setChildRect(&button->widget, rfb::Rect::xywh(x, 2 * gap + bodyHeight, buttonWidth, buttonHeight));
        x += buttonWidth + gap / 2;
    }
    setSize({width, 3 * gap + bodyHeight + buttonHeight});
}

} // namespace tx

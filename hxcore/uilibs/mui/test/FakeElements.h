// Elements on pretended widgets, for tests of what lies above them.
#pragma once

#include "mui/MuButton.h"
#include "mui/MuCheck.h"
#include "mui/MuChoice.h"
#include "mui/MuDialog.h"
#include "mui/MuEdit.h"
#include "mui/MuFrame.h"
#include "mui/MuImage.h"
#include "mui/MuLayout.h"
#include "mui/MuList.h"
#include "mui/MuPager.h"
#include "mui/MuSlider.h"
#include "mui/MuSplitter.h"
#include "mui/MuSuperbox.h"
#include "mui/MuText.h"
#include "mui/muFactories.h"
#include "ui/Menu.h"

#include <functional>
#include <string>

namespace mui {

/// A widget that only remembers.
class FakeCommon : public MuCommon {
public:
    explicit FakeCommon(MuElement* target = nullptr) : element(target) {}

    void setShown(bool on) override { shown = on; }
    bool isShown() override { return shown; }
    void setEnabled(bool on) override { enabled = on; }
    void setFocus() override { focused = true; }
    bool hasFocus() override { return focused; }
    void setTooltip(const char* text) override { tooltip = text; }
    void setSize(const rfb::Point& s) override { size = s; }
    rfb::Point getSize() override { return size; }
    int getMinWidth(int height) override { return minWidth ? minWidth(height) : minSize.x; }
    int getMinHeight(int width) override { return minHeight ? minHeight(width) : minSize.y; }
    void setPosition(const rfb::Point& p) override { position = p; }
    rfb::Point getPosition() override { return position; }
    void styleChanged() override { ++styleChanges; }
    void ensureVisible(const rfb::Rect&) override {}
    void repaint(const rfb::Rect&) override {}

    MuElement* element;
    bool shown = true;
    bool enabled = true;
    bool focused = false;
    plat::String tooltip;
    rfb::Point size{0, 0};
    rfb::Point minSize{0, 0};
    std::function<int(int)> minWidth;
    std::function<int(int)> minHeight;
    rfb::Point position{0, 0};
    int styleChanges = 0;
};

/// An element of class Base with a FakeCommon.
template <class Base>
class Fake : public Base {
public:
    template <class... Args>
    explicit Fake(Args... args) : Base(args...) {
        this->common = &fake;
    }
    FakeCommon fake;
};

class FakeElement : public MuElement {
public:
    explicit FakeElement(const char* name, const rfb::Point& minSize = {0, 0}) : MuElement(name) {
        common = &fake;
        fake.minSize = minSize;
    }
    ~FakeElement() override {
        if (deaths)
            ++*deaths;
    }
    FakeCommon fake;
    int* deaths = nullptr;
};

class FakeLayout : public MuLayout {
public:
    explicit FakeLayout(Orientation o, const char* name = "") : MuLayout(name, o) { common = &fake; }
    FakeCommon fake;
};

class FakeFrame : public MuFrame {
public:
    FakeFrame(const char* name, Type kind, const char* title) : MuFrame(name, kind, title) { common = &fake; }
    int getMinWidth(int h) override { return (child ? child->getMinWidth(h) : 0) + 2 * getMargin().x; }
    int getMinHeight(int w) override { return (child ? child->getMinHeight(w) : 0) + 2 * getMargin().y; }
    FakeCommon fake;
};

class FakeButton : public MuButton {
public:
    FakeButton(const char* name, const char* text, Type kind = Type::Normal, unsigned flags = 0)
        : MuButton(name, text, kind, flags) {
        common = &fake;
    }
    using MuButton::imageFor;
    FakeCommon fake;
};

class FakeCheck : public MuCheck {
public:
    FakeCheck(const char* name, const char* text, Group* g) : MuCheck(name, text, g) { common = &fake; }
    FakeCommon fake;
};

class FakeText : public MuText {
public:
    explicit FakeText(const char* name, const char* text) : MuText(name, text, Align::Left) { common = &fake; }
    void setWrap(bool) override {}
    void setSelectable(bool) override {}
    FakeCommon fake;
};

class FakeImage : public MuImage {
public:
    FakeImage(const char* name, const char* image, const rfb::Point& s) : MuImage(name, image, s) { common = &fake; }
    void setAlignment(int, int) override {}
    using MuImage::painted;
    FakeCommon fake;
};

class FakeEdit : public MuEdit {
public:
    FakeEdit(const char* name, const char* text, Type kind) : MuEdit(name, text, kind) { common = &fake; }
    void setText(const char* text) override { content = text; }
    const char* getText() override { return content.c_str(); }
    void setMaxLength(int) override {}
    void setPlaceholder(const char*) override {}
    void selectAll() override {}
    void setSelection(int, int) override {}
    void getSelection(int* start, int* end) override { *start = *end = 0; }
    void setFieldWidth(int) override {}
    int getLabelWidth() override { return 0; }
    void setLabelColumn(int, int) override {}
    FakeCommon fake;
    plat::String content;
};

class FakeList : public MuList {
public:
    explicit FakeList(const char* name) : MuList(name, 0) { common = &fake; }
    void ensureRowVisible(int) override {}
    void setEmptyText(const char*) override {}
    void setVisibleRows(int) override {}
    int rowAt(const rfb::Point&) override { return -1; }
    FakeCommon fake;
};

// With constructors that anyone may call.
class TestChoice : public MuChoice {
public:
    TestChoice(const char* name, const char* marked, bool anyText) : MuChoice(name, marked, anyText) {}
    int getLabelWidth() override { return 0; }
    void setLabelColumn(int, int) override {}
};
class TestPager : public MuPager {
public:
    explicit TestPager(const char* name) : MuPager(name, Type::Tabs) {}
};
class TestSlider : public MuSlider {
public:
    TestSlider(const char* name, int least, int most) : MuSlider(name, Orientation::Horizontal, least, most) {}
};
class TestSplitter : public MuSplitter {
public:
    explicit TestSplitter(const char* name, Mode kind = Mode::MinSizes)
        : MuSplitter(name, Orientation::Horizontal, /*thin=*/false, kind) {}
};

class FakeSuperbox : public MuSuperbox {
public:
    FakeSuperbox(const char* name, Callback* target) : MuSuperbox(name, nullptr, target, 50) { common = &fake; }
    void setText(const char* text) override { content = text; }
    const char* getText() override { return content.c_str(); }
    void selectAll() override {}
    void setPlaceholder(const char*) override {}
    int getLabelWidth() override { return 0; }
    void setLabelColumn(int, int) override {}
    using MuSuperbox::handleKey;
    FakeCommon fake;
    plat::String content;
};

class FakeMenu : public ui::Menu {
public:
    /// Writes down the texts of what is chosen.
    class Action : public ActionCallback {
    public:
        explicit Action(std::string* target) : chosen(target) {}
        void menuAction(Item* item) override { *chosen += std::string(item->getText()) + " "; }

    private:
        std::string* chosen;
    };

    Item* addItem(const char* text, const char* image = nullptr, Item* = nullptr, ActionCallback* action = nullptr,
                  unsigned flags = 0) override {
        struct FakeItem : Item {
            using Item::Item;
            FakeItem(const char* t, const char* i, ActionCallback* a, unsigned f) : Item(t, i, a, f) {}
        };
        items.push_back(std::make_unique<FakeItem>(text, image, action, flags));
        return items.back().get();
    }
    void removeItem(Item* item) override {
        std::erase_if(items, [=](const auto& entry) { return entry.get() == item; });
    }
    int itemCount() const override { return static_cast<int>(items.size()); }
    Item* itemAt(int index) const override {
        return index >= 0 && index < itemCount() ? items[static_cast<size_t>(index)].get() : nullptr;
    }

private:
    std::vector<std::unique_ptr<Item>> items;
};

class FakeDialog : public MuDialog {
public:
    explicit FakeDialog(const char* name, const rfb::Point& s = {400, 300}, unsigned flags = 0,
                        MuDialog* above = nullptr)
        : MuDialog(name, "Title", s, flags, above) {
        common = &fake;
        fake.size = s;
        fake.shown = false;
    }
    ~FakeDialog() override { clear(); }
    void setMinSize(const rfb::Point&) override {}
    void* nativeWindow() override { return nullptr; }
    rfb::Point getOuterSize() override { return getSize(); }
    rfb::Rect getScreenArea() override { return {0, 0, 1000, 1000}; }
    rfb::Point getScreenSize() override { return {1000, 1000}; }
    ui::MenuBar* menuBar() override { return nullptr; }
    void showIconified() override { setShown(true); }
    void setDefaultFocus(MuElement* element) override { defaultFocus = element; }

    FakeCommon fake;
    MuElement* defaultFocus = nullptr;
};

/// Fills the factories with fakes, and is the Mui, for as long as it lives.
class FakeToolkit : public Mui {
public:
    FakeToolkit() {
        setInstance(this);
        muButtonFactory = [](const char* n, const char* l, int t, unsigned f) -> MuButton* {
            return new FakeButton(n, l, static_cast<MuButton::Type>(t), f);
        };
        muFrameFactory = [](const char* n, int t, const char* title) -> MuFrame* {
            return new FakeFrame(n, static_cast<MuFrame::Type>(t), title);
        };
        muImageFactory = [](const char* n, const char* i, const rfb::Point& s) -> MuImage* {
            return new FakeImage(n, i, s);
        };
        muLayoutFactory = [](const char* n, int o) -> MuLayout* {
            return new FakeLayout(static_cast<Orientation>(o), n);
        };
        muTextFactory = [](const char* n, const char* m, int) -> MuText* { return new FakeText(n, m); };
        muCheckFactory = [](const char* n, const char* l, void* g) -> MuCheck* {
            return new FakeCheck(n, l, static_cast<MuCheck::Group*>(g));
        };
        muDialogFactory = [](const char* n, const char*, const rfb::Point& s, unsigned f,
                             MuDialog* above) -> MuDialog* { return new FakeDialog(n, s, f, above); };
    }
};

/// Writes down what it hears, and does what it is told to on the way.
class Listener : public MuObserver {
public:
    Listener(std::string* target, const char* mark) : heard(target), name(mark) {}
    void muEvent(MuElement* element, int type) override {
        *heard += name + ":" + element->getName() + "/" + std::to_string(type) + " ";
        if (action)
            action();
    }
    std::function<void()> action;

private:
    std::string* heard;
    std::string name;
};

} // namespace mui

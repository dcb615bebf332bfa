// A label with a field or a drop-down list.
#pragma once

#include "wvw/WChoice.h"
#include "wvw/WLabelWidget.h"

namespace wvw {

/// A choice with its label on the left.
class WLabelChoice : public WLabelWidget {
public:
    explicit WLabelChoice(WLayout* layout = nullptr, const char* markedText = nullptr, bool editable = false);

    WChoice& getChoice() { return choice; }

private:
    WChoice choice;
};

/// An edit with its label on the left.
class WLabelEdit : public WLabelWidget {
public:
    explicit WLabelEdit(WLayout* layout = nullptr, const char* markedText = nullptr, int maxLengthBytes = 1024);

    WEdit& getEdit() { return edit; }

private:
    WEdit edit;
};

} // namespace wvw

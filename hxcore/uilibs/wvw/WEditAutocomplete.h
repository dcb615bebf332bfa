// A one-line editor with a list of completions.
#pragma once

#include "wvw/WEdit.h"

#include <vector>

namespace wvw {

/// Drops the candidates that go with the typed text under the field: first those that begin with it, then those that
/// hold it, capitals or not.
///
/// Down and Up walk through the list, Enter or a click takes an entry, Escape closes the list. Typing never waits for
/// it: the keyboard stays with the field.
class WEditAutocomplete : public WEdit {
public:
    explicit WEditAutocomplete(WLayout* layout = nullptr, int maxLengthBytes = 1024);
    ~WEditAutocomplete() override;

    void setCandidates(std::vector<plat::String> newCandidates); ///< UTF-8, in the order to show them
    bool isListShown() const;
    std::vector<plat::String> getShown() const; ///< the entries on show

    // Widget
    void detach() override;
    void setEnabled(bool on) override;
    void setVisible(bool on) override;
    bool sizeChanged(Widget* origin) override;
    bool focusChanged(bool backward, Widget* origin) override;
    bool mouseDown(int button, Widget* origin) override;

protected:
    // Widget
    bool ownKey(uint32_t keysym) override;

private:
    class List;

    bool refresh(bool all);
    void hideList();
    void take(const char* text);

    std::vector<plat::String> candidates;
    std::unique_ptr<List> list; // made on first use
};

} // namespace wvw

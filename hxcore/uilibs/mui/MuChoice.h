// One of several texts.
#pragma once

#include "mui/MuElement.h"
#include "mui/MuLabelled.h"

#include <map>

namespace mui {

class MuContainer;

/// A drop-down list of items that a number tells apart; an editable one takes any other text as well.
///
/// Raises EventActivated when it is clicked, before its list drops, and EventChanged when the user chose or typed.
class MuChoice : public MuElement, public MuLabelled {
public:
    /// `label` stands before the field and may mark its key with "&"; null or "" for none.
    static MuChoice* create(MuContainer* parent, const char* name, const char* label, bool editable = false);

    /// Items stand in the order of their keys. An "&" in the text is shown as it is. A known key gets the new text.
    virtual void addItem(int key, const char* text);
    virtual void removeAll(); ///< the field is empty then
    int getItemCount() const { return static_cast<int>(items.size()); }
    const std::map<int, plat::String>& getChoices() const { return items; }
    virtual void setLabel(const char* label);

    // None of these raises an event.
    virtual void setSelected(int key);      ///< a key without an item empties the field
    virtual void setText(const char* text); ///< selects the item of that text; without one only an editable shows it
    int getSelected() const { return selected; } ///< -1 if none is; the first of two items with the same text
    virtual const char* getText();               ///< what the field shows, "" for nothing
    bool isEditable() const { return editable; }

    // MuElement
    const char* getType() override { return "choice"; }
    plat::String getState() override;
    plat::String getItems() override;
    bool handleCommand(const char* command, const char* argument) override;

protected:
    MuChoice(const char* name, const char* label, bool editable);

    int keyOf(const char* itemText) const; // -1 if there is none

    std::map<int, plat::String> items;
    int selected = -1;
    plat::String text;

private:
    bool editable;
};

} // namespace mui

#include "mui/MuChoice.h"

#include "mui/MuContainer.h"
#include "mui/muFactories.h"
#include "mui/oneLine.h"
#include "plat/Assert.h"
#include "plat/DString.h"
#include "plat/numbers.h"

#include <climits>
#include <cstring>

namespace mui {

MuChoice* MuChoice::create(MuContainer* parent, const char* name, const char* label, bool editable) {
    ASSERT(muChoiceFactory);
    MuChoice* choice = muChoiceFactory(name, label, editable);
    parent->add(choice);
    return choice;
}

MuChoice::MuChoice(const char* name, const char* label_, bool editable_)
    : MuElement(name, label_), text(""), editable(editable_) {}

void MuChoice::addItem(int key, const char* itemText) {
    items[key] = itemText ? itemText : "";
    if (key == selected)
        text = items[key];
}

void MuChoice::removeAll() {
    items.clear();
    selected = -1;
    text = "";
}

void MuChoice::setLabel(const char* newLabel) { label = newLabel; }

void MuChoice::setSelected(int key) {
    const auto item = items.find(key);
    text = item == items.end() ? plat::String("") : item->second;
    selected = item == items.end() ? -1 : keyOf(text.c_str());
}

void MuChoice::setText(const char* newText) {
    const char* wanted = newText ? newText : "";
    selected = keyOf(wanted);
    text = selected >= 0 || editable ? wanted : "";
}

const char* MuChoice::getText() { return text.c_str(); }

int MuChoice::keyOf(const char* itemText) const {
    for (const auto& [key, itsText] : items)
        if (itsText == itemText)
            return key;
    return -1;
}

plat::String MuChoice::getState() {
    return plat::strFormat("element Choice\nvalue %d\nvaluestr %s\n%s", getSelected(), oneLine(getText()).c_str(),
                           commonState().c_str());
}

plat::String MuChoice::getItems() {
    plat::DString list;
    for (const auto& [key, itemText] : items)
        list.format("%d:%s\n", key, oneLine(itemText.get()).c_str());
    return list.isEmpty() ? plat::String() : list.take();
}

bool MuChoice::handleCommand(const char* command, const char* argument) {
    if (isInert() || !isShownFully())
        return false;
    if (std::strcmp(command, "click") == 0) {
        notify(EventActivated);
        return true;
    }
    int key = 0;
    if (std::strcmp(command, "select") == 0 && plat::parseIntInRange(argument, INT_MIN, INT_MAX, key)) {
        if (items.count(key) == 0)
            return false;
        setSelected(key);
    } else if (std::strcmp(command, "settext") == 0 && (editable || keyOf(argument ? argument : "") >= 0)) {
        setText(argument);
    } else {
        return false;
    }
    notify(EventChanged);
    return true;
}

} // namespace mui

#include "mui/MuCheck.h"

#include "mui/MuContainer.h"
#include "mui/muFactories.h"
#include "plat/Assert.h"
#include "plat/numbers.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace mui {

void MuCheck::Group::add(MuCheck* member) {
    members.push_back(member);
    member->addObserver(this, /*add=*/true);
}

void MuCheck::Group::remove(MuCheck* member) {
    member->addObserver(this, /*add=*/false);
    members.erase(std::remove(members.begin(), members.end(), member), members.end());
    if (members.empty())
        delete this;
}

void MuCheck::Group::memberChecked(MuCheck* checkedMember) {
    for (MuCheck* member : members)
        if (member != checkedMember)
            member->setChecked(/*on=*/false);
}

MuCheck* MuCheck::Group::neighbour(MuCheck* from, bool forward) const {
    const size_t count = members.size();
    const auto start = static_cast<size_t>(std::find(members.begin(), members.end(), from) - members.begin());
    for (size_t n = 1; n < count; ++n) {
        MuCheck* member = members[(start + (forward ? n : count - n)) % count];
        if (member->isShownFully() && !member->isInert())
            return member;
    }
    return from;
}

void MuCheck::Group::muChanged(MuElement* element) {
    auto* member = dynamic_cast<MuCheck*>(element);
    if (member && member->isChecked())
        memberChecked(member);
}

MuCheck* MuCheck::create(MuContainer* parent, const char* name, const char* label, Group* group) {
    ASSERT(muCheckFactory);
    MuCheck* check = muCheckFactory(name, label, group);
    parent->add(check);
    return check;
}

MuCheck::MuCheck(const char* name, const char* label_, Group* group_) : MuElement(name, label_), group(group_) {
    if (group)
        group->add(this);
}

MuCheck::~MuCheck() {
    if (group)
        group->remove(this);
}

void MuCheck::setChecked(bool on) {
    checked = on;
    indeterminate = false;
    if (on && group)
        group->memberChecked(this);
}

void MuCheck::setIndeterminate(bool on) { indeterminate = on; }

void MuCheck::setLabel(const char* newLabel) { label = newLabel; }

plat::String MuCheck::getState() {
    return plat::strFormat("element Check\ntype %s\nvalue %d\nindeterminate %d\n%s", isRadio() ? "Radio" : "Normal",
                           checked, indeterminate, commonState().c_str());
}

bool MuCheck::handleCommand(const char* command, const char* argument) {
    int value = 0;
    if (std::strcmp(command, "click") != 0 || !plat::parseIntInRange(argument, INT_MIN, INT_MAX, value))
        return false;
    if (isInert() || !isShownFully())
        return false;
    setChecked(value != 0);
    notify(EventChanged);
    return true;
}

} // namespace mui

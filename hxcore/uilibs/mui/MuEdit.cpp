#include "mui/MuEdit.h"

#include "mui/MuContainer.h"
#include "mui/muFactories.h"
#include "mui/oneLine.h"
#include "plat/Assert.h"
#include "plat/numbers.h"

#include <cctype>
#include <cstring>

namespace mui {

bool MuEdit::NumericFilter::accept(MuEdit*, const char* newText, uint32_t) {
    if (!*newText || (min < 0 && std::strcmp(newText, "-") == 0))
        return true;
    const char* digits = *newText == '-' || *newText == '+' ? newText + 1 : newText;
    if (!std::isdigit(static_cast<unsigned char>(*digits)) || (digits[0] == '0' && digits[1]))
        return false;
    int value = 0;
    return std::strcmp(newText, "-0") != 0 && plat::parseIntInRange(newText, min, max, value);
}

MuEdit* MuEdit::create(MuContainer* parent, const char* name, const char* label, Type type) {
    ASSERT(muEditFactory);
    MuEdit* edit = muEditFactory(name, label, static_cast<int>(type));
    parent->add(edit);
    return edit;
}

MuEdit::MuEdit(const char* name, const char* label_, Type type_) : MuElement(name, label_), type(type_) {}

void MuEdit::setLabel(const char* newLabel) { label = newLabel; }

plat::String MuEdit::getState() {
    const bool hidden = type == Type::Password;
    return plat::strFormat("element Edit\ntype %s\nvalue %s\n%s", hidden ? "Password" : "Normal",
                           hidden ? "<hidden>" : oneLine(getText()).c_str(), commonState().c_str());
}

bool MuEdit::handleCommand(const char* command, const char* argument) {
    if (std::strcmp(command, "settext") != 0 || isInert())
        return false;
    setText(argument);
    notify(EventChanged);
    return true;
}

} // namespace mui

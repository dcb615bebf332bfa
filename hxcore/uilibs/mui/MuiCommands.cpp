#include "mui/MuiCommands.h"

#include "mui/MuDialog.h"
#include "mui/oneLine.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/numbers.h"
#include "plat/utf8.h"
#include "ui/MenuBar.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <string>

namespace mui {
namespace {
plat::LogSrc log("MuiComms");

constexpr const char* success = "1\n";
constexpr const char* failure = "0\n";

/// Takes the text up to the next blank, and the blank. False, with `text` empty, if no blank was there.
bool takeWord(std::string_view& text, plat::String& word) {
    const size_t blank = text.find(' ');
    word = plat::String(text.substr(0, blank));
    text.remove_prefix(blank == std::string_view::npos ? text.size() : blank + 1);
    return blank != std::string_view::npos;
}

bool parseSwitch(const plat::String& text, bool& on) {
    int value = 0;
    if (!plat::parseIntInRange(text.get(), 0, 1, value))
        return false;
    on = value != 0;
    return true;
}

void listBelow(MuElement* element, plat::DString& reply) {
    std::vector<MuElement*> children;
    element->addChildrenTo(children);
    for (MuElement* child : children) {
        if (*child->getName())
            reply.format("%s (%s)\n", oneLine(child->getFullName().get()).c_str(), child->getType());
        listBelow(child, reply);
    }
}

/// The items of one menu, or of all menus of a bar one after the other.
std::vector<ui::Menu::Item*> itemsOf(const ui::Menu& menu) {
    std::vector<ui::Menu::Item*> items;
    for (int i = 0; i < menu.itemCount(); ++i)
        items.push_back(menu.itemAt(i));
    return items;
}

std::vector<ui::Menu::Item*> itemsOf(const ui::MenuBar& bar) {
    std::vector<ui::Menu::Item*> items;
    for (int i = 0; i < bar.menuCount(); ++i)
        for (ui::Menu::Item* item : itemsOf(*bar.menuAt(i)))
            items.push_back(item);
    return items;
}

/// An empty line would end the reply.
plat::String menuLabel(const ui::Menu::Item& item) {
    return item.isSeparator() ? plat::String("-") : oneLine(item.getText());
}

/// "listitems", "state item" or "invoke item", on a ui::Menu or a ui::MenuBar.
template <class AnyMenu>
bool menuCommand(AnyMenu& menu, std::string_view text, plat::DString& reply) {
    plat::String word;
    const bool hasItem = takeWord(text, word);
    if (word == "listitems" && !hasItem) {
        for (const ui::Menu::Item* item : itemsOf(menu))
            reply.append(menuLabel(*item)).append("\n");
        if (reply.isEmpty())
            reply.append("\n");
        return true;
    }
    ui::Menu::Item* item = hasItem ? menu.findItem(plat::String(text).c_str()) : nullptr;
    if (!item)
        return false;
    if (word == "state") {
        reply.format("%d %d\n", item->enabled(), item->checked());
        return true;
    }
    reply.append(success);
    return word == "invoke" && item->invoke();
}

/// Writes each problem to a reply.
class MuiCommsLayoutChecker : public MuLayoutCheckObserver {
public:
    explicit MuiCommsLayoutChecker(plat::DString& target) : reply(target) {}
    void overflow(MuElement* element, const char* message) override {
        reply.format("%s: %s\n", oneLine(element->getFullName().get()).c_str(), message);
        ++count;
    }
    int getCount() const { return count; }

private:
    plat::DString& reply;
    int count = 0;
};
} // namespace

const MuiCommands::Command MuiCommands::commands[] = {
    {"version", &MuiCommands::version},
    {"dialogs", &MuiCommands::dialogs},
    {"lists", &MuiCommands::lists},
    {"listitems", &MuiCommands::listItems},
    {"menubar", &MuiCommands::menuBar},
    {"popupmenu", &MuiCommands::popupMenu},
    {"menu", &MuiCommands::popupMenu},
    {"state", &MuiCommands::state},
    {"show", &MuiCommands::show},
    {"click", &MuiCommands::actWithNumber},
    {"dblclick", &MuiCommands::actWithNumber},
    {"rightclick", &MuiCommands::actWithNumber},
    {"select", &MuiCommands::actWithNumber},
    {"pressenter", &MuiCommands::actWithText},
    {"settext", &MuiCommands::actWithText},
    {"close", &MuiCommands::close},
    {"focus", &MuiCommands::focus},
    {"checklayout", &MuiCommands::checkLayout},
};

void MuiCommands::run(Mui* mui, std::string_view line, plat::DString& reply) {
    MuiCommands runner(mui);
    Words words;
    plat::DString answer;
    bool done = false;
    try {
        if (split(line, words))
            for (const Command& command : commands)
                if (words.command == command.name)
                    done = (runner.*command.handler)(words, answer);
    } catch (const plat::Exception& e) {
        log.error("%s: %s", words.command.c_str(), e.what());
        done = false;
    }
    reply.append(done ? answer.c_str() : failure).append("\n");
}

bool MuiCommands::split(std::string_view line, Words& words) {
    if (line.find('\0') != std::string_view::npos || !plat::utf8::isValid(line.data(), line.data() + line.size()))
        return false;
    if (!takeWord(line, words.command))
        return true;
    words.args = plat::String(line);
    if (takeWord(line, words.ref))
        words.rest = plat::String(line);
    return true;
}

MuElement* MuiCommands::find(const plat::String& ref) {
    const std::string_view whole = ref.view();
    const size_t dot = whole.find('.');
    MuElement* dialog = findDialog(whole.substr(0, dot));
    if (!dialog || dot == std::string_view::npos)
        return dialog;
    return dialog->findElement(ref.c_str() + dot + 1);
}

MuElement* MuiCommands::findDialog(std::string_view name) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const bool isSerial = !name.empty() && std::all_of(name.begin(), name.end(), isDigit);
    int serial = 0;
    if (isSerial && !plat::parseIntInRange(std::string(name).c_str(), 0, INT_MAX, serial))
        return nullptr;
    for (const auto& [number, dialog] : mui->getDialogs())
        if (isSerial ? number == serial : !name.empty() && name == dialog->getName())
            return dialog;
    if (isSerial)
        throw plat::Exception("map::at"); // what drivers look for in the log
    return nullptr;
}

bool MuiCommands::version(const Words&, plat::DString& reply) {
    reply.append(success);
    return true;
}

bool MuiCommands::dialogs(const Words&, plat::DString& reply) {
    for (const auto& [serial, dialog] : mui->getDialogs())
        reply.format("%d %s\n", serial, oneLine(dialog->getName()).c_str());
    if (reply.isEmpty())
        reply.append("\n");
    return true;
}

bool MuiCommands::lists(const Words& words, plat::DString& reply) {
    MuElement* element = find(words.ref);
    if (!element)
        return false;
    listBelow(element, reply);
    return true;
}

bool MuiCommands::listItems(const Words& words, plat::DString& reply) {
    MuElement* element = find(words.ref);
    if (!element)
        return false;
    const plat::String items = element->getItems();
    reply.append(items.isNull() ? "\n" : items.get());
    return true;
}

bool MuiCommands::menuBar(const Words& words, plat::DString& reply) {
    ui::MenuBar* bar = ui::MenuBar::instance();
    return bar && menuCommand(*bar, words.args.view(), reply);
}

bool MuiCommands::popupMenu(const Words& words, plat::DString& reply) {
    if (words.ref.isEmpty()) {
        for (const std::string& name : mui->getMenuNames())
            reply.append(oneLine(name.c_str())).append("\n");
        if (reply.isEmpty())
            reply.append("\n");
        return true;
    }
    ui::Menu* menu = mui->findMenu(words.ref.c_str());
    return menu && menuCommand(*menu, words.rest.view(), reply);
}

bool MuiCommands::state(const Words& words, plat::DString& reply) {
    MuElement* element = find(words.ref);
    if (!element)
        return false;
    reply.append(element->getState());
    return true;
}

bool MuiCommands::show(const Words& words, plat::DString& reply) {
    MuElement* element = find(words.ref);
    bool on = false;
    if (!element || !parseSwitch(words.rest, on) || element->isShown() == on)
        return false;
    reply.append(success);
    element->setShown(on);
    return true;
}

bool MuiCommands::actWithNumber(const Words& words, plat::DString& reply) {
    MuElement* element = find(words.ref);
    int number = 0;
    if (!element || (!words.rest.isNull() && !plat::parseIntInRange(words.rest.get(), INT_MIN, INT_MAX, number)))
        return false;
    reply.append(success);
    return element->handleCommand(words.command.c_str(), words.rest.get());
}

bool MuiCommands::actWithText(const Words& words, plat::DString& reply) {
    MuElement* element = find(words.ref);
    reply.append(success);
    return element && element->handleCommand(words.command.c_str(), words.rest.c_str());
}

bool MuiCommands::close(const Words& words, plat::DString& reply) {
    auto* dialog = dynamic_cast<MuDialog*>(find(words.ref));
    reply.append(success);
    return dialog && dialog->close();
}

bool MuiCommands::focus(const Words& words, plat::DString& reply) {
    MuElement* element = find(words.ref);
    bool gained = false;
    if (!element || !parseSwitch(words.rest, gained))
        return false;
    reply.append(success);
    element->notify(gained ? EventFocusGained : EventFocusLost);
    return true;
}

bool MuiCommands::checkLayout(const Words& words, plat::DString& reply) {
    MuElement* element = find(words.ref);
    if (!element)
        return false;
    MuiCommsLayoutChecker checker(reply);
    element->checkLayout(&checker);
    if (checker.getCount() == 0)
        reply.append("\n");
    return true;
}

} // namespace mui

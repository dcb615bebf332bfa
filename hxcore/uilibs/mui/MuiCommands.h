// The commands of user interface inspection.
#pragma once

#include "plat/DString.h"
#include "plat/NonCopyable.h"

#include <string_view>

namespace mui {

class Mui;
class MuElement;

/// Carries out inspection commands, one line each, on the elements of a Mui.
///
/// The line comes from another process and may hold anything: what can't be understood or done is answered by "0".
class MuiCommands : private plat::NonCopyable {
public:
    explicit MuiCommands(Mui* target) : mui(target) {} ///< borrowed

    /// Appends the whole reply, its closing empty line included. `line` comes without its line end. The command may
    /// end in any change of the user interface, in the death of this object too.
    static void run(Mui* mui, std::string_view line, plat::DString& reply);

private:
    /// What a command line is made of; texts end where the line ends or at the blank that parts them.
    struct Words {
        plat::String command;
        plat::String args; ///< all behind the command; null without any
        plat::String ref;
        plat::String rest; ///< all behind the blank after the reference; null without that blank
    };
    using Handler = bool (MuiCommands::*)(const Words&, plat::DString&);
    struct Command {
        const char* name;
        Handler handler;
    };
    static const Command commands[];

    static bool split(std::string_view line, Words& words);

    // Each gives false for failure; the reply is then dropped.
    bool version(const Words&, plat::DString& reply);
    bool dialogs(const Words&, plat::DString& reply);
    bool lists(const Words& words, plat::DString& reply);
    bool listItems(const Words& words, plat::DString& reply);
    bool menuBar(const Words& words, plat::DString& reply);
    bool popupMenu(const Words& words, plat::DString& reply);
    bool state(const Words& words, plat::DString& reply);
    bool show(const Words& words, plat::DString& reply);
    bool actWithNumber(const Words& words, plat::DString& reply);
    bool actWithText(const Words& words, plat::DString& reply);
    bool close(const Words& words, plat::DString& reply);
    bool focus(const Words& words, plat::DString& reply);
    bool checkLayout(const Words& words, plat::DString& reply);

    MuElement* find(const plat::String& ref); // null if there is none
    MuElement* findDialog(std::string_view name);

    Mui* mui;
};

} // namespace mui

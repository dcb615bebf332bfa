// Reading texts from files.
#pragma once

#include "plat/NonCopyable.h"

#include <string>
#include <string_view>

namespace rdr {
class InStream;
}

namespace loc {

/// Reads entries of msgid and msgstr, as gettext's PO files have them, with the entries parted by empty lines.
///
/// A line that is wrong is logged as an error and skipped, in whatever state the reader is. The header (the entry with
/// an empty msgid) is dropped.
class PoReader : private plat::NonCopyable {
public:
    class Callback {
    public:
        virtual ~Callback() = default;
        virtual void addText(const char* key, const char* text) = 0; ///< for each entry that is whole
    };

    PoReader(Callback& target, const char* fileName, const char* localeName); ///< all borrowed; names are for the log
    void read(rdr::InStream& in); ///< to the end of the stream; throws what the stream throws

private:
    enum class State { Nothing, Id, Text };

    void readLine(const std::string& line);
    void endEntry();
    void readCommand(std::string_view line);
    void addQuoted(std::string_view text);
    void repair(std::string& line);

    Callback& callback;
    const char* fileName;
    const char* localeName;
    State state = State::Nothing;
    int lineNo = 0;
    std::string id;
    std::string message;
};

} // namespace loc

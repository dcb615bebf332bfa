#include "loc/PoReader.h"

#include "loc/quotedText.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "plat/utf8.h"
#include "rdr/InStream.h"
#include "rdr/exceptions.h"

namespace loc {
namespace {

plat::LogSrc log("Localize");

[[noreturn]] void fail(const char* text) { throw plat::Exception(text); }

bool nextLine(rdr::InStream& in, std::string& line) {
    try {
        in.readLine(line, 0, /*repairUtf8=*/false);
        return true;
    } catch (const rdr::EndOfStream&) {
        return false;
    } catch (const rdr::EndOfMsg&) {
        return false;
    }
}

} // namespace

PoReader::PoReader(Callback& target, const char* file, const char* locale)
    : callback(target), fileName(file), localeName(locale) {}

void PoReader::read(rdr::InStream& in) {
    std::string line;
    bool more = true;
    while (more) {
        more = nextLine(in, line);
        if (!more)
            line.clear(); // the end closes an entry as an empty line does
        ++lineNo;
        repair(line);
        try {
            readLine(line);
        } catch (const plat::Exception& e) {
            log.error("%s:%d %s", fileName, lineNo, e.what());
        }
    }
}

void PoReader::repair(std::string& line) {
    if (plat::utf8::isValid(line.data(), line.data() + line.size()) && line.find('\0') == std::string::npos)
        return;
    log.error("%s:%d Bad UTF-8 (%s) for '%s' locale", fileName, lineNo, id.c_str(), localeName);
    line = plat::repairUtf8(line.data(), static_cast<int>(line.size())).c_str();
}

void PoReader::readLine(const std::string& line) {
    if (line.empty())
        endEntry();
    else if (line[0] == '"')
        addQuoted(line);
    else if (line[0] != '#')
        readCommand(line);
}

void PoReader::endEntry() {
    if (state == State::Id)
        fail("Expected msgstr");
    if (!id.empty())
        callback.addText(id.c_str(), message.c_str());
    id.clear();
    message.clear();
    state = State::Nothing;
}

void PoReader::readCommand(std::string_view line) {
    const size_t blank = line.find(' ');
    if (blank == std::string_view::npos || state == State::Text)
        fail("Bad command or string");
    const char* const wanted = state == State::Nothing ? "msgid" : "msgstr";
    if (line.substr(0, blank) != wanted)
        throw plat::ExceptionFmt("Expected %s", wanted);
    state = state == State::Nothing ? State::Id : State::Text;
    addQuoted(line.substr(blank + 1));
}

void PoReader::addQuoted(std::string_view text) {
    const char* const problem = unquote(text, state == State::Id ? id : message);
    if (problem)
        fail(problem);
}

} // namespace loc

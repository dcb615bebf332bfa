#include "PoFile.h"

#include "loc/quotedText.h"

#include <fstream>
#include <iostream>
#include <string_view>

int problems = 0;

void problem(const std::string& where, const std::string& what) {
    std::cerr << where << ": " << what << "\n";
    ++problems;
}

namespace {

// RFC 3629, and no noncharacters: the rule by which a running program checks texts.
bool isValidUtf8(std::string_view text) {
    size_t i = 0;
    while (i < text.size()) {
        const auto first = static_cast<unsigned char>(text[i++]);
        if (first < 0x80)
            continue;
        const int more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
        if (first < 0xc2 || first > 0xf4)
            return false;
        unsigned code = first & (0x3fU >> more);
        for (int n = 0; n < more; ++n, ++i) {
            if (i >= text.size() || (text[i] & 0xc0) != 0x80)
                return false;
            code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3fU);
        }
        const unsigned least = more == 3 ? 0x10000 : more == 2 ? 0x800 : 0x80;
        if (code < least || code > 0x10ffff || (code >= 0xd800 && code < 0xe000))
            return false;
        if ((code >= 0xfdd0 && code <= 0xfdef) || (code & 0xfffe) == 0xfffe)
            return false;
    }
    return true;
}

// One PO file, read line by line.
class Reader {
public:
    Reader(std::string poPath, Catalog& target) : path(std::move(poPath)), catalog(target) {}

    void read(std::istream& in) {
        std::string text;
        while (std::getline(in, text)) {
            ++lineNo;
            if (!text.empty() && text.back() == '\r')
                text.pop_back();
            readLine(text);
        }
        ++lineNo;
        endEntry();
    }

private:
    enum class State { Nothing, Id, Text };

    std::string where() const { return path + ":" + std::to_string(lineNo); }

    void readLine(const std::string& text) {
        if (!isValidUtf8(text))
            return problem(where(), "Bad UTF-8");
        if (text.empty())
            return endEntry();
        if (text[0] == '#')
            return;
        if (text[0] == '"') {
            if (state == State::Nothing)
                return problem(where(), "String without msgid");
            return addQuoted(text);
        }
        const size_t blank = text.find(' ');
        const char* const wanted = state == State::Nothing ? "msgid" : "msgstr";
        if (blank == std::string::npos || state == State::Text)
            return problem(where(), "Bad command or string (an empty line must end an entry)");
        if (text.compare(0, blank, wanted) != 0)
            return problem(where(), std::string("Expected ") + wanted);
        state = state == State::Nothing ? State::Id : State::Text;
        if (state == State::Id)
            idLine = lineNo;
        addQuoted(text.substr(blank + 1));
    }

    void endEntry() {
        if (state == State::Id)
            problem(where(), "Expected msgstr");
        if (state == State::Text && !id.empty() && !catalog.try_emplace(id, Entry{message, idLine}).second)
            problem(path + ":" + std::to_string(idLine), "Duplicate key " + id);
        state = State::Nothing;
        id.clear();
        message.clear();
    }

    void addQuoted(std::string_view text) {
        const char* const wrong = loc::unquote(text, state == State::Id ? id : message);
        if (wrong)
            problem(where(), wrong);
    }

    std::string path;
    Catalog& catalog;
    State state = State::Nothing;
    int lineNo = 0;
    int idLine = 0;
    std::string id;
    std::string message;
};

} // namespace

bool readCatalog(const std::string& dir, const char* language, Catalog& catalog) {
    const std::string path = dir + "/" + language + ".po";
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    Reader(path, catalog).read(in);
    return true;
}

// Directives of translated texts; also for the compiler of catalogs, so it stands on nothing.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string_view>
#include <utility>

namespace loc {

/// One directive of a translated text: "%", any of "+", "." and a limit, a position and "$", in any order, a letter.
struct Directive {
    bool plus = false; ///< show the sign
    int limit = 0;     ///< bytes of a string; 0: none
    int position = 0;  ///< of the argument, from 1; 0: none
    char letter = '\0';

    /// Reads what follows a "%" at the start of `text`, and takes it off. False if it is malformed or its parts don't
    /// fit its letter.
    bool read(std::string_view& text) {
        while (!letter)
            if (text.empty() || !readPart(text))
                return false;
        switch (letter) {
        case 'S':
            return !plus;
        case 'D':
            return limit == 0;
        default:
            return letter == 'X' && !plus && limit == 0;
        }
    }

private:
    bool readPart(std::string_view& text) {
        const char first = text.front();
        if (first >= '0' && first <= '9') {
            const int number = readNumber(text);
            const bool dollar = !text.empty() && text.front() == '$';
            text.remove_prefix(dollar ? 1 : 0);
            return dollar && number > 0 && std::exchange(position, number) == 0;
        }
        text.remove_prefix(1);
        if (first == '+')
            return !std::exchange(plus, true);
        if (first == '.') {
            const int number = readNumber(text);
            return number > 0 && std::exchange(limit, number) == 0;
        }
        letter = first;
        return true;
    }

    // 0 if there is none or it doesn't fit.
    static int readNumber(std::string_view& text) {
        int64_t number = 0;
        for (; !text.empty() && text.front() >= '0' && text.front() <= '9'; text.remove_prefix(1))
            number = std::min<int64_t>(number * 10 + (text.front() - '0'), int64_t{INT_MAX} + 1);
        return number > INT_MAX ? 0 : static_cast<int>(number);
    }
};

} // namespace loc

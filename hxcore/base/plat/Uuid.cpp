#include "plat/Uuid.h"

#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/encodings.h"

#include <sys/random.h>

#include <cerrno>
#include <string>

namespace plat {

Uuid::Uuid(const char* text) {
    if (!parse(text))
        throw ExceptionFmt("Invalid Uuid '%s'", text);
}

Uuid Uuid::random() {
    Uuid id;
    // 16 bytes come whole or not at all (getrandom(2)).
    while (getrandom(id.bytes.data(), id.bytes.size(), 0) < 0)
        if (errno != EINTR)
            throw SystemException("getrandom", errno);
    id.bytes[6] = static_cast<uint8_t>((id.bytes[6] & 0x0f) | 0x40);
    id.bytes[8] = static_cast<uint8_t>((id.bytes[8] & 0x3f) | 0x80);
    return id;
}

bool Uuid::parse(const char* text) {
    text = strOrEmpty(text);
    std::array<uint8_t, 16> parsed{};
    if (*text) {
        for (uint8_t& byte : parsed) {
            if (*text == '-')
                ++text;
            const char pair[] = {text[0], text[0] ? text[1] : '\0', '\0'};
            if (!hexToBin(pair, 1, &byte))
                return false;
            text += 2;
        }
        if (*text)
            return false;
    }
    bytes = parsed;
    return true;
}

String Uuid::toString(bool hyphens) const {
    String hex = binToHex(bytes.size(), bytes.data());
    if (!hyphens)
        return hex;
    const char* s = hex.c_str();
    return strFormat("%.8s-%.4s-%.4s-%.4s-%.12s", s, s + 8, s + 12, s + 16, s + 20);
}

bool UuidSet::parse(const char* text) {
    std::set<Uuid> parsed;
    const std::string_view all(strOrEmpty(text));
    for (size_t start = 0; !all.empty() && start <= all.size();) {
        const size_t end = std::min(all.find(',', start), all.size());
        const std::string item(all.substr(start, end - start));
        Uuid id;
        if (item.empty() || !id.parse(item.c_str()))
            return false;
        parsed.insert(id);
        start = end + 1;
    }
    ids.swap(parsed);
    return true;
}

String UuidSet::toString() const {
    DString text;
    for (const Uuid& id : ids)
        text.append(text.isEmpty() ? "" : ",").append(id.toString());
    return text.take();
}

} // namespace plat

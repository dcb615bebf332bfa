#include "io/endpointUri.h"

#include "loc/Localize.h"
#include "plat/encodings.h"

#include <algorithm>
#include <string>

namespace io::endpoint {
namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

plat::String decode(std::string_view text) {
    try {
        return plat::percentDecode(std::string(text).c_str());
    } catch (const plat::Exception&) {
        throw EndpointInvalid(LOC_TEXT("io_error_endpoint_badescape"));
    }
}

// `keep` stands for itself beside the plain bytes, `hide` does not.
plat::String encode(const plat::String& text, std::string_view keep, std::string_view hide = "") {
    static const std::string plain = [] {
        std::string marks = "&'()*+,-.!$;=_~ ";
        for (int c = 0x80; c <= 0xff; ++c)
            marks += static_cast<char>(c);
        return marks;
    }();
    std::string kept = plain;
    std::erase_if(kept, [hide](char c) { return hide.find(c) != std::string_view::npos; });
    return plat::percentEncode(text.c_str(), kept.append(keep).c_str());
}

// What is before the first of `marks`; `text` keeps the rest, the mark included.
std::string_view cut(std::string_view& text, const char* marks) {
    const size_t end = std::min(text.find_first_of(marks), text.size());
    const std::string_view head = text.substr(0, end);
    text.remove_prefix(end);
    return head;
}

void readScheme(std::string_view& text, Uri& uri) {
    const size_t end = text.find("://");
    if (end == std::string_view::npos || !isLetter(text.front()))
        return;
    std::string scheme(text.substr(0, end));
    for (char& c : scheme) {
        if (!isLetter(c) && !isDigit(c) && c != '+' && c != '-' && c != '.')
            return;
        if (isLetter(c))
            c = static_cast<char>(c | 0x20);
    }
    uri.scheme = scheme.c_str();
    text.remove_prefix(end + 3);
}

void readUser(std::string_view& text, Uri& uri) {
    std::string_view rest = text;
    std::string_view user = cut(rest, "/?#[]@");
    if (!rest.starts_with('@'))
        return;
    text = rest.substr(1);
    std::string_view password = user;
    user = cut(password, ":");
    uri.user = decode(user);
    if (password.empty())
        return;
    password.remove_prefix(1);
    if (password.find(':') != std::string_view::npos)
        throw EndpointInvalid(LOC_TEXT("io_error_endpoint_general"));
    uri.password = decode(password);
}

void readQuery(std::string_view text, Uri& uri) {
    for (bool more = true; more;) {
        std::string_view value = cut(text, "&;");
        const std::string_view name = cut(value, "=");
        Uri::Pair& pair = uri.query.emplace_back();
        pair.name = decode(name);
        if (!value.empty())
            pair.value = decode(value.substr(1));
        more = !text.empty();
        if (more)
            text.remove_prefix(1);
    }
}
} // namespace

Uri parseUri(const char* text, int defaultPort, int displayLimit) {
    Uri uri;
    std::string_view rest = plat::strOrEmpty(text);
    readScheme(rest, uri);
    readUser(rest, uri);
    parseOptionalPort(cut(rest, "/?#"), uri.host, uri.port, defaultPort, displayLimit);
    uri.host = decode(uri.host.view());
    uri.path = decode(cut(rest, "?#"));
    if (rest.starts_with('?')) {
        rest.remove_prefix(1);
        readQuery(cut(rest, "#"), uri);
    }
    return uri;
}

plat::String formatUri(const Uri& uri, int defaultPort, int displayLimit) {
    std::string out;
    if (!uri.scheme.isEmpty())
        out.append(uri.scheme.view()).append("://");
    if (!uri.user.isNull()) {
        out += encode(uri.user, "").view();
        if (!uri.password.isNull())
            out.append(":").append(encode(uri.password, "").view());
        out += '@';
    }
    out += format(encode(uri.host, ":").c_str(), uri.port, defaultPort, displayLimit).view();
    if (!uri.path.isEmpty() && *uri.path.get() != '/')
        out += '/';
    out += encode(uri.path, "/").view();
    char separator = '?';
    for (const Uri::Pair& pair : uri.query) { // its own marks would read as further pairs
        out.append(1, separator).append(encode(pair.name, "", "&;=").view());
        if (!pair.value.isNull())
            out.append("=").append(encode(pair.value, "", "&;").view());
        separator = '&';
    }
    return out.c_str();
}

} // namespace io::endpoint

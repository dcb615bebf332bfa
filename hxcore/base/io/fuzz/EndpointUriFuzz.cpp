// URIs: what is read prints, and reads back as the same record.
#include "io/endpointUri.h"
#include "io/fuzz/quietEnglish.h"

#include <cstdlib>
#include <string>

namespace {

bool same(const plat::String& a, const plat::String& b) { return a.isNull() == b.isNull() && a == b; }

bool same(const io::endpoint::Uri& a, const io::endpoint::Uri& b) {
    if (!same(a.scheme, b.scheme) || !same(a.user, b.user) || !same(a.password, b.password) || !same(a.host, b.host) ||
        a.port != b.port || !same(a.path, b.path) || a.query.size() != b.query.size())
        return false;
    for (size_t i = 0; i < a.query.size(); ++i)
        if (!same(a.query[i].name, b.query[i].name) || !same(a.query[i].value, b.query[i].value))
            return false;
    return true;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    io::endpoint::Uri uri;
    bool accepted = false;
    try {
        uri = io::endpoint::parseUri(text.c_str());
        accepted = true;
        const plat::String printed = io::endpoint::formatUri(uri);
        if (!same(io::endpoint::parseUri(printed.c_str()), uri))
            std::abort();
    } catch (const io::EndpointInvalid&) {
        if (accepted)
            std::abort();
    }
    return 0;
}

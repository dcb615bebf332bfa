#include "plat/path.h"

#include "plat/DString.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace plat::path {
namespace {

std::string_view withoutEndSlashes(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    return path;
}

} // namespace

bool isAbsolute(const char* path) { return startsWith(path, "/"); }

String normalize(const char* path) {
    const bool absolute = isAbsolute(path);
    std::vector<std::string_view> parts;
    const std::string_view all(strOrEmpty(path));
    for (size_t start = 0; start < all.size();) {
        const size_t end = std::min(all.find('/', start), all.size());
        const std::string_view part = all.substr(start, end - start);
        start = end + 1;
        if (part.empty() || part == ".")
            continue;
        if (part == ".." && !parts.empty() && parts.back() != "..")
            parts.pop_back();
        else if (part != ".." || !absolute) // above the root is the root
            parts.push_back(part);
    }
    DString result(absolute ? "/" : "");
    for (size_t i = 0; i < parts.size(); ++i)
        result.append(i ? "/" : "").append(parts[i].data(), static_cast<int>(parts[i].size()));
    return result.isEmpty() ? String(".") : result.take();
}

String dirName(const char* path) {
    const std::string_view all = withoutEndSlashes(strOrEmpty(path));
    const size_t slash = all.rfind('/');
    if (slash == std::string_view::npos)
        return ".";
    return String(withoutEndSlashes(all.substr(0, slash + 1)));
}

String baseName(const char* path, const char* suffix) {
    std::string_view name = withoutEndSlashes(strOrEmpty(path));
    if (name != "/")
        name.remove_prefix(name.rfind('/') + 1); // npos + 1 is 0
    const std::string_view end(strOrEmpty(suffix));
    if (name != end && name.ends_with(end))
        name.remove_suffix(end.size());
    return String(name);
}

String join(const char* first, const char* second) {
    first = strOrEmpty(first);
    second = strOrEmpty(second);
    return endsWith(first, "/") ? strFormat("%s%s", first, second) : strFormat("%s%c%s", first, '/', second);
}

String sanitiseName(const char* name, char replacement) {
    String result(strOrEmpty(name));
    for (char* s = result.get(); *s; ++s) {
        const auto byte = static_cast<unsigned char>(*s);
        if (byte < 32 || byte == '/' || byte == 127)
            *s = replacement;
    }
    return result;
}

} // namespace plat::path

#include "tx/Property.h"

#include "plat/SecureString.h"
#include "tx/TX.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tx {

Property::Property(Atom type, int format, unsigned long count_, unsigned char* data_, bool truncated_)
    : type_(type), format_(format), truncated(truncated_), count(count_), data(data_) {}

Property::~Property() { release(); }

Property::Property(Property&& other) noexcept { *this = std::move(other); }

Property& Property::operator=(Property&& other) noexcept {
    if (this == &other)
        return *this;
    release();
    type_ = std::exchange(other.type_, none);
    format_ = std::exchange(other.format_, 0);
    truncated = std::exchange(other.truncated, false);
    count = std::exchange(other.count, 0);
    data = std::exchange(other.data, nullptr);
    return *this;
}

Property Property::fromText(Atom type, std::span<const char> text) {
    // XFree is free(3): a copy made here is released as one of Xlib's.
    auto* copy = static_cast<unsigned char*>(std::malloc(text.size() + 1));
    if (!copy)
        return {};
    std::copy(text.begin(), text.end(), copy);
    copy[text.size()] = 0;
    return {type, 8, text.size(), copy, /*truncated=*/false};
}

std::span<const char> Property::bytes() const {
    if (format_ != 8 || !data)
        return {};
    return {reinterpret_cast<const char*>(data), count};
}

std::span<const unsigned long> Property::longs() const {
    if (format_ != 32 || !data)
        return {};
    return {reinterpret_cast<const unsigned long*>(data), count};
}

void Property::wipe() {
    if (format_ == 8 && data)
        plat::secureWipe(data, count);
}

void Property::release() {
    if (data)
        XFree(data);
    data = nullptr;
}

Property getWindowProperty(Window window, Atom property, Atom type, bool remove, std::size_t limitBytes) {
    Atom actualType = none;
    int format = 0;
    unsigned long count = 0;
    unsigned long bytesAfter = 0;
    unsigned char* data = nullptr;
    const int failed =
        XGetWindowProperty(dpy, window, property, 0, static_cast<long>((limitBytes + 3) / 4), remove ? True : False,
                           type, &actualType, &format, &count, &bytesAfter, &data);
    Property value(actualType, format, count, data, bytesAfter != 0);
    if (failed || actualType == none)
        return {};
    // The server deletes only what was read to its end, and only of the type asked for.
    const bool wrongType = type != AnyPropertyType && actualType != type;
    if (remove && (wrongType || bytesAfter != 0))
        XDeleteProperty(dpy, window, property);
    if (wrongType)
        return {};
    return value;
}

bool getCardinalProperty(Window window, Atom property, Atom type, unsigned long* out) {
    const Property value = getWindowProperty(window, property, type, /*remove=*/false, sizeof(uint32_t));
    if (value.longs().empty())
        return false;
    *out = value.longs()[0] & 0xffffffffUL; // Xlib extends the sign
    return true;
}

} // namespace tx

// The value of a window property, as far as it can be trusted.
#pragma once

#include "tx/xlib.h"

#include <cstddef>
#include <span>

namespace tx {

/// Owns what XGetWindowProperty returned.
///
/// Anyone may write any bytes into a property, so nothing here trusts its type, format or length: an accessor gives an
/// empty span where the value isn't of its form.
class Property {
public:
    Property() = default; ///< no such property
    Property(Atom type, int format, unsigned long count, unsigned char* data, bool truncated);
    ~Property();
    Property(Property&& other) noexcept;
    Property& operator=(Property&& other) noexcept;
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;

    /// A value of 8-bit format made from `text`, which is copied.
    static Property fromText(Atom type, std::span<const char> text);

    bool exists() const { return type_ != none; }
    bool isTruncated() const { return truncated; } ///< longer than what was asked for
    Atom type() const { return type_; }
    int format() const { return format_; }

    std::span<const char> bytes() const;          ///< of format 8
    std::span<const unsigned long> longs() const; ///< of format 32: 32 significant bits each, as Xlib hands them out

    void wipe(); ///< zeroes the value, for text that may be a secret

private:
    void release();

    Atom type_ = none;
    int format_ = 0;
    bool truncated = false;
    unsigned long count = 0;
    unsigned char* data = nullptr; // from Xlib, freed with XFree; terminated by a NUL
};

constexpr std::size_t propertyLimit = 64UL * 1024;         ///< bytes read of an ordinary property
constexpr std::size_t selectionLimit = 64UL * 1024 * 1024; ///< bytes read of a selection

/// Reads a property of any window. `type` may be AnyPropertyType (0); a property of another type
/// counts as absent. With `remove` it is deleted also when it is longer than `limitBytes`. A window that is gone is an
/// absent property: callers wrap foreign windows in an ErrorCatcher.
Property getWindowProperty(Window window, Atom property, Atom type, bool remove = false,
                           std::size_t limitBytes = propertyLimit);

/// The first item of a property of format 32; false, with `out` untouched, when there is none.
bool getCardinalProperty(Window window, Atom property, Atom type, unsigned long* out);

} // namespace tx

// Lookup in the desktop's icon theme.
#pragma once

#include "plat/String.h"
#include "ui/gtkwrap/ctypes.h"

namespace gtkwrap {

/// A name with its more general forms behind it: "text-x-script" falls to "text-x", to "text".
class ThemedIcon {
public:
    static bool available();
    explicit ThemedIcon(const char* name);
    c::Object* get() const { return icon.get(); }

private:
    Ref icon;
};

/// What a lookup found.
class IconInfo {
public:
    static bool available();
    explicit IconInfo(c::IconInfo* found) : info(found) {} ///< takes over; null for nothing found
    IconInfo(IconInfo&& other) noexcept : info(other.info) { other.info = nullptr; }
    IconInfo(const IconInfo&) = delete;
    IconInfo& operator=(const IconInfo&) = delete;
    ~IconInfo();

    bool isFound() const { return info != nullptr; }
    plat::String fileName() const; ///< empty where there is no file

private:
    c::IconInfo* info;
};

/// The theme of the default screen. GTK must have been started.
class IconTheme {
public:
    static bool available();
    static bool hasIcon(const char* name);
    static IconInfo find(const char* name, int sizePx);
    static IconInfo find(const ThemedIcon& icon, int sizePx);
};

} // namespace gtkwrap

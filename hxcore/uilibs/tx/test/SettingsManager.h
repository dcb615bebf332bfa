// A program that tells all others how the desktop shall look (XSETTINGS 0.5).
#pragma once

#include "XTest.h"

#include <string>

namespace txtest {

inline void writeTheme(Client& client, Window manager, const std::string& theme) {
    std::string bytes("\0\0\0\0\1\0\0\0\1\0\0\0\1\0\15\0Net/ThemeName\0\0\0\1\0\0\0", 36);
    bytes += static_cast<char>(theme.size());
    bytes += std::string(3, '\0') + theme + std::string((4 - theme.size() % 4) % 4, '\0');
    client.setProperty(manager, "_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", 8, bytes.data(),
                       static_cast<int>(bytes.size()));
}

/// It takes the place of an older one, and says so.
inline Window startSettingsManager(Client& client, const std::string& theme) {
    const Window window = client.makeWindow();
    writeTheme(client, window, theme);
    XSetSelectionOwner(client.display, client.atom("_XSETTINGS_S0"), window, tx::currentTime);
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = client.root();
    event.xclient.message_type = client.atom("MANAGER");
    event.xclient.format = 32;
    event.xclient.data.l[1] = static_cast<long>(client.atom("_XSETTINGS_S0"));
    XSendEvent(client.display, client.root(), False, StructureNotifyMask, &event);
    client.sync();
    return window;
}

} // namespace txtest

// Hands web addresses and folders to the desktop's opener, xdg-open.
#pragma once

namespace os {

/// Opens an http, https or mailto address; false if it is none of these, or the opener can't be started.
///
/// The opener gets it as one argument, runs in a session of its own and inherits none of our descriptors. It is not
/// started as root. That it failed later is logged.
bool openUrl(const char* url);

/// Opens a folder in the desktop's file manager; `path` must be absolute. False as for openUrl.
bool openFolder(const char* path);

} // namespace os

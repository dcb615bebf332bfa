// Hands web addresses and folders to the desktop's opener, xdg-open.
#pragma once

namespace os {

/// Opens an http, https or mailto address; false if it is none of these, or the opener can't be started.
///
/// The opener runs on its own: it is no child of this process, and inherits none of its descriptors.
bool openUrl(const char* url);

/// Opens a folder in the desktop's file manager; `path` must be absolute. False as for openUrl.
bool openFolder(const char* path);

} // namespace os

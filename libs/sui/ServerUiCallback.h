// What the core of the server UI asks of the desktop it runs on.
#pragma once

#include "sui/DisplayInfoStr.h"

namespace sui {

/// The platform half of the UI; defaults do nothing.
class ServerUiCallback {
public:
    virtual void refreshIcon() {}  ///< severity, privacy or state are others
    virtual void refreshAll() {}   ///< the icon and what the menus offer
    virtual void dialogOpened() {} ///< the status dialog was asked for
    virtual const char* desktopName() { return ""; }
    virtual DisplayInfo displayInfo() { return {}; } ///< without the name of the desktop
    virtual ~ServerUiCallback() = default;

    /// The status dialog was closed by its user. True lets it hide; false if it went elsewhere within reach.
    virtual bool mayHideDialog() { return true; }
};

} // namespace sui

// The version texts, in the user's language.
#pragma once

#include "plat/String.h"

namespace product {

/// Made anew whenever the language changes; the About texts when they are next asked for.
struct VersionInfo {
    plat::String displayVersion;
    plat::String dottedVersion;
    plat::String buildLine;

    void rebuild(const char* applicationName);
    const plat::String& aboutMarkup();
    const plat::String& aboutText();

private:
    plat::String markup; // null until it is made
    plat::String text;   // null until it is made

    plat::String acknowledgementsUri() const;
    plat::String makeMarkup() const;
    plat::String makeText() const;
};

VersionInfo& versionInfo(); ///< of the process

} // namespace product

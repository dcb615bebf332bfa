// Start-up of every program of the product: who it is, where its files lie, how it logs.
#pragma once

#include "plat/String.h"

namespace product {

/// What a program says of itself.
struct InitArgs {
    const char* programPath;               ///< argv[0]
    const char* applicationName = nullptr; ///< null: the executable's base name
    const char* displayNameKey = nullptr;  ///< catalog key
    const char* logSpec = nullptr;         ///< overrides the parameter Log
    bool fileLogging = false;              ///< switch the log file on
    bool readStores = false;               ///< load the configuration files; the log file waits for that
};

/// Stores the versions, such as "7.18.0 (r14)" and "7.18.0.14", unless they are the same already; null or empty ones
/// fall back: "0.1", and the dotted version to the display version.
void setVersion(const char* display, const char* dotted);

/// Identity, directories, catalogs, version texts, log defaults, stores, in this order. Once.
///
/// Throws plat::Exception if the executable or the home directory can't be found, or a directory can't be made.
void init(const InitArgs& args);

bool isLogReady(); ///< init has come as far as the log defaults

plat::String displayVersion();
plat::String dottedVersion();
const char* buildLine();   ///< application, version, machine, build date
const char* aboutMarkup(); ///< in the user's language, for Markup
const char* aboutText();   ///< the same as eight lines of ASCII signs, wrapped at 79 columns

} // namespace product

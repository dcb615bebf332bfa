// The levels of encryption that a server offers.
#pragma once

#include "plat/String.h"

namespace plat {
class Configuration;
}

namespace svr {

/// The values of the parameter Encryption.
enum EncryptionLevel {
    EncryptAlwaysMaximum,
    EncryptAlwaysOn,
    EncryptPreferOn,
    EncryptPreferOff,
    EncryptAlwaysOff,
    EncryptUnknown ///< another text, or SecurityTypes says more than Encryption does
};

/// The level of an Encryption value, in any case of its letters.
int encryptionLevel(const char* value);
const char* encryptionValue(int level); ///< null for EncryptUnknown
int encryptionFromConfig(const plat::Configuration& cfg);

/// The level among choices, in the user's language.
plat::String encryptionLabel(int level);
/// The level as a fact, on its own line: "256-bit AES" for the maximum, say.
plat::String encryptionDisplay(int level);

} // namespace svr

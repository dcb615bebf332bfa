// The numbers and names of the security types of RFB connections (RFC 6143 7.1.2 and 7.2).
#pragma once

#include "plat/String.h"

#include <vector>

namespace rfb {

enum SecType : int {
    secTypeInvalid = 0,
    secTypeNone = 1,
    secTypeZefAuth = 2,
};

/// In any case of its letters; secTypeInvalid for what is no name.
int secTypeNumber(const char* name);

/// "[unknown secType N]" for a number without a name.
plat::String secTypeName(int type);

/// Bits of encryption: 256, 128 or 0.
int secTypeKeySize(int type);

/// The encryption in the user's language: "128-bit AES", say.
plat::String secTypeEncryptionName(int type);

/// Appends what a comma-separated list names and `result` lacks, in the order of the list.
///
/// An item is the name of a type, or a family and ":" and the bits of encryption, or more with "+" behind them: "RA2",
/// "RA2:256", "RA2:128+". Items that are neither are left out.
void parseSecTypes(const char* text, std::vector<int>& result);

} // namespace rfb

// The mode in which the product runs.
#pragma once

namespace score {

enum class ProductMode { User, Service, Virtual };

ProductMode productMode(); ///< of the process; User until set
void setProductMode(ProductMode mode);

const char* productModeName(ProductMode mode);  ///< "user", "service", "virtual"
const char* productModeText(ProductMode mode);  ///< in the user's language
bool isProductModeName(const char* name);       ///< in any case
ProductMode parseProductMode(const char* name); ///< in any case; throws plat::Exception "Bad mode name"

} // namespace score

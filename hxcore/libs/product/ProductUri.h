// Addresses of the product's web pages.
#pragma once

#include "plat/String.h"

namespace product {

void registerProductUri();                      ///< enters the hidden parameter _ProductUri; start-up calls it once
void setProductUri(const char* uri);            ///< as the core tells it; empty brings back the default
plat::String productUri(const char* path = ""); ///< the product's address and `path`, which begins with "/"

constexpr const char* supportUri = "https://support.velthar.example";

} // namespace product

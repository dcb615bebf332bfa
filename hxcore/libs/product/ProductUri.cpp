#include "product/ProductUri.h"

#include "plat/ConfigParameter.h"
#include "plat/DString.h"

#include <memory>

namespace product {
namespace {
constexpr const char* defaultUri = "https://www.velthar.example";

std::unique_ptr<plat::StringParameter>& parameter() {
    static std::unique_ptr<plat::StringParameter> uri;
    return uri;
}
} // namespace

void registerProductUri() {
    if (!parameter())
        parameter() =
            std::make_unique<plat::StringParameter>("_ProductUri", "Address of the product's web pages", defaultUri);
}

void setProductUri(const char* uri) {
    registerProductUri();
    if (uri && *uri)
        parameter()->setParam(uri, plat::PriorityPreference);
    else
        parameter()->unset(plat::PriorityPreference);
}

plat::String productUri(const char* path) {
    plat::DString uri(parameter() ? parameter()->c_str() : defaultUri);
    // One slash only where the two meet.
    while (uri.len() > 0 && uri[uri.len() - 1] == '/')
        uri.truncate(uri.len() - 1);
    return uri.append(path).take();
}

} // namespace product

// Values of Authentication: what is read prints, and reads back strictly as the same flows.
#include "loc/Localize.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "svr/SAuthentication.h"
#include "svr/SEncryption.h"

#include <cstdlib>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

size_t noneFlows(const hxauth::SAuthFlows& flows) {
    size_t count = 0;
    for (const hxauth::AuthFlow& flow : flows)
        count += flow.empty() ? 1 : 0;
    return count;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    loc::Localize::instance().init();
    svr::SAuthentication::registerScheme("ZefAuth", svr::SchemePassword);
    svr::SAuthentication::registerScheme("SystemAuth", svr::SchemePassword);
    svr::SAuthentication::registerScheme("Radius", svr::SchemeInteractive);
    svr::SAuthentication::registerScheme("SingleSignOn", svr::SchemeSingleSignOn);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const hxauth::SAuthFlows flows = svr::parseAuthentication(text.c_str(), /*strict=*/false);
    const plat::String printed = svr::serialiseAuthentication(flows);
    const hxauth::SAuthFlows again = svr::parseAuthentication(printed.c_str(), /*strict=*/true);
    require(svr::serialiseAuthentication(again) == printed && again.size() == flows.size());
    // Nothing but the word itself lets everybody in.
    require(noneFlows(flows) == 0 || text.find("None") != std::string::npos);
    require(svr::containsScheme("Radius", printed.c_str(), nullptr) == flows.hasSchemeName("Radius"));
    try {
        svr::parseAuthentication(text.c_str(), /*strict=*/true);
    } catch (const plat::Exception&) {
    }
    svr::passwordSchemes(text.c_str());
    const int preset = svr::authenticationPreset(text.c_str());
    require(preset == svr::AuthCustom || plat::strEqualsNoCase(svr::authenticationValue(preset), text.c_str()));
    const int level = svr::encryptionLevel(text.c_str());
    require(level == svr::EncryptUnknown || plat::strEqualsNoCase(svr::encryptionValue(level), text.c_str()));

    plat::Configuration cfg("fuzz");
    plat::StringParameter authentication("Authentication", "", "", /*isAdvanced=*/false, &cfg);
    plat::StringParameter encryption("Encryption", "", "", /*isAdvanced=*/false, &cfg);
    try {
        authentication.setParam(text.c_str());
    } catch (const plat::Exception&) {
        return 0; // not UTF-8
    }
    require(svr::presetFromConfig(cfg) == preset);
    require(svr::hasUserPasswordScheme(cfg) == flows.hasScheme(svr::SchemePassword));
    for (int each = 0; each <= svr::EncryptUnknown; ++each) {
        encryption.setParam(plat::strOrEmpty(svr::encryptionValue(each)));
        require(svr::encryptionFromConfig(cfg) == each);
        std::vector<int> types;
        svr::deriveSecTypes(cfg, types);
        require(types.size() <= 16);
    }
    plat::StringParameter secTypes("SecurityTypes", "", text.c_str(), /*isAdvanced=*/false, &cfg);
    std::vector<int> types;
    svr::deriveSecTypes(cfg, types);
    return 0;
}

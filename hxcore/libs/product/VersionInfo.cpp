#include "product/VersionInfo.h"

#include "loc/Localize.h"
#include "loc/format.h"
#include "plat/DString.h"
#include "product/ProductUri.h"

#include <cstring>
#include <fstream>
#include <string>
#include <sys/utsname.h>

namespace product {
namespace {
constexpr const char* machineWord = "x64";
constexpr const char* builtAt = __DATE__ " " __TIME__;
constexpr int textColumns = 79;

constexpr const char* legalKeys[] = {"product_info_legal_copyright", "product_info_legal_trademarks",
                                     "product_info_legal_warranty"};

plat::String processorText() {
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.rfind("model name", 0) == 0) {
            const size_t colon = line.find(": ");
            if (colon != std::string::npos)
                return plat::String(std::string_view(line).substr(colon + 2));
        }
    return "unknown processor";
}

plat::String osLine() {
    utsname names{};
    const bool known = uname(&names) == 0;
    const plat::String machine =
        plat::strFormat("%s, %s", known ? names.machine : machineWord, processorText().c_str());
    return plat::strFormat("OS: %s, %s", known ? names.sysname : "Linux", machine.c_str());
}
} // namespace

VersionInfo& versionInfo() {
    static VersionInfo info;
    return info;
}

plat::String VersionInfo::acknowledgementsUri() const {
    const char* version = dottedVersion.c_str();
    const plat::String major(std::string_view(version, strcspn(version, ".")));
    return productUri(plat::strFormat("/docs/%s/foss.html", major.c_str()).c_str());
}

plat::String VersionInfo::makeMarkup() const {
    plat::DString out;
    for (const char* key : legalKeys)
        out.format("<div>%s</div><br/>", LOC_TEXT(key));
    loc::format(out, LOC_RAW("product_info_marked_up_fmt"), {productUri(), acknowledgementsUri()});
    return out.take();
}

plat::String VersionInfo::makeText() const {
    const plat::String further = loc::formatted(LOC_RAW("product_info_further_fmt"), {productUri()});
    plat::DString out;
    out.format("%s\n%s\n%s\n%s\n%s\n%s\n%s\n%s", buildLine.c_str(), LOC_TEXT(legalKeys[0]), LOC_TEXT(legalKeys[1]),
               LOC_TEXT(legalKeys[2]), further.c_str(), LOC_TEXT("product_info_acknowledgements"),
               acknowledgementsUri().c_str(), osLine().c_str());
    out.replaceAll("®", "(R)").replaceAll("©", "(C)").replaceAll("™", "(TM)");
    out.wordWrap(textColumns);
    return out.take();
}

void VersionInfo::rebuild(const char* applicationName) {
    buildLine = plat::strFormat("%s %s %s (%s)", applicationName, displayVersion.c_str(), machineWord, builtAt);
    markup = nullptr;
    text = nullptr;
}

const plat::String& VersionInfo::aboutMarkup() {
    if (markup.isNull())
        markup = makeMarkup();
    return markup;
}

const plat::String& VersionInfo::aboutText() {
    if (text.isNull())
        text = makeText();
    return text;
}

} // namespace product

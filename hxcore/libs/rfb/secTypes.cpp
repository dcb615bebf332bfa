#include "rfb/secTypes.h"

#include "loc/Localize.h"
#include "plat/Splitter.h"
#include "plat/numbers.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace rfb {
namespace {
struct Named {
    int type;
    const char* name;
};
constexpr Named names[] = {
    {secTypeNone, "None"},
    {secTypeZefAuth, "ZefAuth"},
    {5, "RA2_128"},
    {13, "RA2r_128"},
    {6, "RA2ne_128"},
    {129, "RA2_256"},
    {133, "RA2r_256"},
    {130, "RA2ne_256"},
    {11, "SSO_128"},
    {14, "SSOr_128"},
    {12, "SSOne_128"},
    {131, "SSO_256"},
    {134, "SSOr_256"},
    {132, "SSOne_256"},
    {7, "SSPI"},
    {8, "SSPIne"},
    {9, "Ticket"},
    {10, "Ticketne"},
    {3, "S3"},
    {4, "S3ne"},
    {15, "KvmMgmt"},
    {30, "Ard"},
};

struct Family {
    const char* name;
    int members[4]; // preferred first, then 0
};
constexpr Family families[] = {
    {"RA2", {13, 133, 5, 129}},  {"RA2r", {13, 133}}, {"RA2ne", {6, 130}},
    {"SSO", {14, 134, 11, 131}}, {"SSOr", {14, 134}}, {"SSOne", {12, 132}},
};

void addOnce(std::vector<int>& result, int type) {
    if (std::find(result.begin(), result.end(), type) == result.end())
        result.push_back(type);
}

// "128", "128+"; false if it is neither.
bool parseLevel(const char* text, int& bits, bool& orMore) {
    const size_t digits = strspn(text, "0123456789");
    orMore = text[digits] == '+';
    return digits > 0 && !text[digits + (orMore ? 1 : 0)] &&
           plat::parseIntInRange(plat::String(text, static_cast<int>(digits)).c_str(), 0, INT_MAX, bits);
}

void addFamily(char* item, std::vector<int>& result) {
    int bits = 0;
    bool orMore = true;
    if (char* colon = strchr(item, ':')) {
        *colon = '\0';
        if (!parseLevel(colon + 1, bits, orMore))
            return;
    }
    for (const Family& family : families)
        if (plat::strEqualsNoCase(item, family.name))
            for (const int type : family.members)
                if (type && (secTypeKeySize(type) == bits || (orMore && secTypeKeySize(type) > bits)))
                    addOnce(result, type);
}
} // namespace

int secTypeNumber(const char* name) {
    for (const Named& each : names)
        if (plat::strEqualsNoCase(name, each.name))
            return each.type;
    return secTypeInvalid;
}

plat::String secTypeName(int type) {
    for (const Named& each : names)
        if (each.type == type)
            return each.name;
    return plat::strFormat("[unknown secType %d]", type);
}

int secTypeKeySize(int type) {
    // The even ones authenticate and then go on in the clear, but for the two of the families RA2r and SSOr.
    if (type % 2 == 0 && type != 14 && type != 134)
        return 0;
    if (type >= 3 && type <= 14)
        return 128;
    return type >= 129 && type <= 134 ? 256 : 0;
}

plat::String secTypeEncryptionName(int type) {
    switch (secTypeKeySize(type)) {
    case 256:
        return LOC_TEXT("rfb_security_256_AES");
    case 128:
        return LOC_TEXT("rfb_security_128_AES");
    default:
        return LOC_TEXT("rfb_security_no_encryption");
    }
}

void parseSecTypes(const char* text, std::vector<int>& result) {
    plat::String copy(text);
    for (char* pos = copy.get(); pos;) {
        char* item = plat::Splitter::split(&pos, ',');
        if (const int type = secTypeNumber(item))
            addOnce(result, type);
        else
            addFamily(item, result);
    }
}

} // namespace rfb

#include "score/ConnectionInfo.h"

#include "loc/Localize.h"
#include "plat/Exception.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"
#include "sysauth/SecurityPrincipal.h"

#include <algorithm>
#include <cstring>

namespace score {
namespace {
// In wire order.
constexpr plat::String ConnectionInfo::*fields[] = {&ConnectionInfo::user,        &ConnectionInfo::address,
                                                    &ConnectionInfo::idA,         &ConnectionInfo::idB,
                                                    &ConnectionInfo::permissions, &ConnectionInfo::userType};

struct TypeText {
    const char* userType;
    const char* key;
};
constexpr TypeText typeTexts[] = {
    {"Admin", "score_connectioninfo_adminuser"},         {"ViewOnly", "score_connectioninfo_viewonlyuser"},
    {"InputOnly", "score_connectioninfo_inputonlyuser"}, {"Standard", "score_connectioninfo_standarduser"},
    {"Guest", "score_connectioninfo_guestuser"},         {"Anonymous", "score_connectioninfo_anonymoususer"},
};

bool equal(const plat::String& a, const plat::String& b) { return strcmp(a.c_str(), b.c_str()) == 0; }
} // namespace

void ConnectionInfo::read(rdr::InStream& in) {
    for (const auto field : fields)
        this->*field = in.readString8(/*repairUtf8=*/true);
}

void ConnectionInfo::write(rdr::OutStream& out) const {
    for (const auto field : fields)
        out.writeString8((this->*field).c_str());
}

bool ConnectionInfo::isSameConnection(const ConnectionInfo& other) const {
    return equal(idA, other.idA) && equal(idB, other.idB);
}

plat::String ConnectionInfo::displayName() const {
    if (strcmp(userType.c_str(), "System") == 0) {
        try {
            return sysauth::SecurityPrincipal(user.c_str()).displayName();
        } catch (const plat::Exception&) {
            return user; // a name that the system could not have
        }
    }
    for (const TypeText& each : typeTexts)
        if (strcmp(userType.c_str(), each.userType) == 0)
            return plat::String(LOC_TEXT(each.key));
    return user;
}

int ConnectionInfo::removeMatching(std::vector<ConnectionInfo>& records, const ConnectionInfo& info) {
    const auto found = std::find_if(records.begin(), records.end(),
                                    [&](const ConnectionInfo& each) { return each.isSameConnection(info); });
    if (found == records.end())
        return -1;
    const auto index = static_cast<int>(found - records.begin());
    records.erase(found);
    return index;
}

} // namespace score

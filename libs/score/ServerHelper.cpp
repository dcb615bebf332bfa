#include "score/ServerHelper.h"

#include "score/Mode.h"

namespace score {
namespace {
plat::String& toldExe() {
    static plat::String path;
    return path;
}
} // namespace

void setServerExe(const char* path) { toldExe() = path; }

plat::String serverExe() {
    if (!toldExe().isEmpty())
        return toldExe();
    return plat::String(productMode() == ProductMode::Virtual ? "Xzef-core" : "zefserver-x11-core");
}

} // namespace score

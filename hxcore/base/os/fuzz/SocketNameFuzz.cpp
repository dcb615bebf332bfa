// Names of local sockets: "name line feed file line feed pid". What is made is recognized, and nothing else; a path
// never leads out of its directory, and reads back from the endpoint that shows it.
#include "os/AppInfo.h"
#include "os/PipeNameScoped.h"
#include "os/UnixIo.h"
#include "plat/Exception.h"
#include "plat/Splitter.h"
#include "plat/encodings.h"
#include "plat/numbers.h"
#include "plat/path.h"

#include <cstdlib>
#include <string>
#include <string_view>

namespace {

constexpr uid_t somebody = 12345; // whose directory isn't made

void require(bool condition) {
    if (!condition)
        std::abort();
}

bool isDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

void checkMade(const char* name, int64_t pid) {
    for (const int counter : {os::PipeNameScoped::noCounter, 0, 7}) {
        const os::PipeNameScoped made(name, pid, counter, somebody);
        const plat::String file = plat::path::baseName(made.path());
        require(plat::path::dirName(made.path()) == made.dir() && std::string_view(made.path()).size() < 108);
        require(os::PipeNameScoped::isFileOf(file.c_str(), name, pid));
        require(plat::startsWith(file.c_str(), plat::strFormat("prog%s", name).c_str()));
    }
}

void checkRecognized(const char* name, const char* file, int64_t pid) {
    if (!os::PipeNameScoped::isFileOf(file, name, pid))
        return;
    const plat::String base = plat::strFormat("prog%s", name);
    const plat::String withPid = plat::strFormat("%s.%lld", base.c_str(), static_cast<long long>(pid));
    const bool plain = plat::strEquals(file, pid == os::PipeNameScoped::noPid ? base.c_str() : withPid.c_str());
    require(plain || (plat::startsWith(file, withPid.c_str()) && file[withPid.len()] == '.' &&
                      isDigits(file + withPid.len() + 1)));
}

void checkEndpoint(const char* path) {
    const os::UnixIo io(/*fd_=*/-1, os::UnixIo::Side::Client, path);
    const std::string shown = io.getPeerEndpoint().c_str();
    require(shown.substr(0, 6) == "[unix:" && shown.back() == ']');
    require(plat::percentDecode(shown.substr(6, shown.size() - 7).c_str()) == path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    os::AppInfo::setApp("prog");
    os::AppInfo::setPathComp("zef");
    plat::String text(std::string_view(reinterpret_cast<const char*>(data), size));
    char* pos = text.get();
    const char* name = plat::Splitter::split(&pos, '\n');
    const char* file = plat::strOrEmpty(plat::Splitter::split(&pos, '\n'));
    const char* number = pos;
    int64_t pid = 0;
    if (!plat::parseS64(&number, pid) || pid < 0)
        pid = 0;
    try {
        checkMade(name, pid);
    } catch (const plat::SystemException&) {
        // Too long, or with a slash.
    }
    checkRecognized(name, file, pid);
    checkEndpoint(name);
    return 0;
}

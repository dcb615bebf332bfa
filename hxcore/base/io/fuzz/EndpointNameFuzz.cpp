// Names with the default port and the display limit that the first byte chooses: what is read prints and reads back.
#include "io/endpointName.h"
#include "io/fuzz/quietEnglish.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const int defaultPorts[] = {io::endpoint::noPort, 5900, 65500, 0};
    const int displayLimits[] = {0, 100};
    const int defaultPort = defaultPorts[data[0] % 4];
    const int displayLimit = displayLimits[data[0] / 4 % 2];
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    plat::String host, again;
    try {
        if (data[0] & 0x80) {
            io::endpoint::unbracketHost(text.c_str());
            return 0;
        }
        int port = 0;
        int portAgain = 0;
        io::endpoint::parse(text.c_str(), host, &port, defaultPort, displayLimit);
        const plat::String printed = io::endpoint::format(host.c_str(), port, defaultPort, displayLimit);
        io::endpoint::parse(printed.c_str(), again, &portAgain, defaultPort, displayLimit);
        if (port < 1 || port > 65535 || host.isEmpty() || !(again == host) || portAgain != port)
            std::abort();
    } catch (const io::EndpointInvalid&) {
        if (!host.isNull()) // what was read must not be refused when it is printed, and a failure leaves the host alone
            std::abort();
    }
    return 0;
}

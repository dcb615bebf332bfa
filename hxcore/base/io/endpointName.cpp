#include "io/endpointName.h"

#include "loc/Localize.h"
#include "plat/cstr.h"

#include <charconv>

namespace io::endpoint {
namespace {
constexpr int maxPort = 65535;

// The host, without its brackets; `rest` is the port with its colons, or empty.
std::string_view splitHost(std::string_view text, std::string_view& rest) {
    size_t split = text.find(':');
    std::string_view host = text.substr(0, split);
    if (text.starts_with('[')) {
        const size_t close = text.find(']');
        if (close == std::string_view::npos)
            throw EndpointInvalid(LOC_TEXT("io_error_endpoint_bracket"));
        if (close == 1)
            throw EndpointInvalid(LOC_TEXT("io_error_endpoint_empty"));
        host = text.substr(1, close - 1);
        split = close + 1;
    }
    rest = split < text.size() ? text.substr(split) : std::string_view();
    if (!rest.empty() && rest.front() != ':')
        throw EndpointInvalid(LOC_TEXT("io_error_endpoint_general"));
    return host;
}

// `rest` begins with a colon. Whatever is no number becomes one that is no port.
int readPort(std::string_view rest, int defaultPort, int displayLimit) {
    const bool literal = rest.starts_with("::");
    const std::string_view digits = rest.substr(literal ? 2 : 1);
    unsigned number = 0; // a sign is no digit
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || number > maxPort)
        return noPort;
    const int port = static_cast<int>(number);
    return !literal && defaultPort != noPort && port < displayLimit ? defaultPort + port : port;
}

// `port` null: none is taken. `optional`: a text without port, where there is no default, gives noPort.
void parseName(std::string_view text, plat::String& host, int* port, int defaultPort, int displayLimit, bool optional) {
    if (text.empty() && defaultPort == noPort)
        throw EndpointInvalid(LOC_TEXT("io_error_endpoint_empty"));
    std::string_view rest;
    const std::string_view name = splitHost(text, rest);
    int number = defaultPort;
    if (!rest.empty())
        number = port ? readPort(rest, defaultPort, displayLimit) : noPort;
    const bool absent = rest.empty() && (!port || (optional && number == noPort));
    if (!absent && (number < 1 || number > maxPort))
        throw EndpointInvalid(LOC_TEXT("io_error_endpoint_badport"));
    if (name.find_first_of("[]") != std::string_view::npos)
        throw EndpointInvalid(LOC_TEXT("io_error_endpoint_general"));
    host = name.empty() ? plat::String("localhost") : plat::String(name);
    if (port)
        *port = number;
}
} // namespace

void parse(const char* text, plat::String& host, int* port, int defaultPort, int displayLimit) {
    parseName(plat::strOrEmpty(text), host, port, defaultPort, displayLimit, /*optional=*/false);
}

void parseOptionalPort(std::string_view text, plat::String& host, int& port, int defaultPort, int displayLimit) {
    parseName(text, host, &port, defaultPort, displayLimit, /*optional=*/true);
}

plat::String format(const char* host, int port, int defaultPort, int displayLimit) {
    plat::String name = bracketHost(host);
    if (port == defaultPort)
        return name;
    if (displayLimit == 0)
        return plat::strFormat("%s:%d", name.c_str(), port);
    const int display = port - defaultPort;
    if (defaultPort != noPort && display >= 0 && display < displayLimit)
        return plat::strFormat("%s:%d", name.c_str(), display);
    return plat::strFormat("%s::%d", name.c_str(), port);
}

plat::String bracketHost(const char* host) {
    const bool colon = std::string_view(plat::strOrEmpty(host)).find(':') != std::string_view::npos;
    return colon ? plat::strFormat("[%s]", host) : plat::String(plat::strOrEmpty(host));
}

plat::String unbracketHost(const char* host) {
    std::string_view name = plat::strOrEmpty(host);
    if (name.starts_with('[')) {
        if (!name.ends_with(']'))
            throw EndpointInvalid(LOC_TEXT("io_error_endpoint_bracket"));
        name = name.substr(1, name.size() - 2);
    }
    if (name.find_first_of("[]") != std::string_view::npos)
        throw EndpointInvalid(LOC_TEXT("io_error_endpoint_general"));
    return plat::String(name);
}

} // namespace io::endpoint

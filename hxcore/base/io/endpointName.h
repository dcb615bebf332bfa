// Computers and ports as people type them.
#pragma once

#include "plat/Exception.h"
#include "plat/String.h"

#include <string_view>

namespace io {

/// A text that names no endpoint; the text is that of a catalog key, to be shown to whoever typed it.
class EndpointInvalid : public plat::Exception {
public:
    explicit EndpointInvalid(const char* text_) : Exception(text_, "EndpointInvalid") {}
};

/// The text form "host", "host:display", "host::port", with an IPv6 address in brackets.
///
/// Below `displayLimit` the number behind a single colon is a display: it is added to the default port. So with a
/// default of 5900 and a limit of 100, "host:1" is port 5901 and "host:100" port 100. Limit 0 makes every number a
/// port.
namespace endpoint {

constexpr int noPort = -1; ///< as a default: there is none

/// Takes `text` (null counts as "") apart; an empty host is "localhost". Throws EndpointInvalid, with `host` and
/// `*port` unchanged, also if no port is given and the default is noPort. A caller that takes no port gives null for
/// it: then any port in the text is refused.
void parse(const char* text, plat::String& host, int* port, int defaultPort, int displayLimit);

/// As parse, but a text without a port, where there is no default, gives noPort.
void parseOptionalPort(std::string_view text, plat::String& host, int& port, int defaultPort, int displayLimit);

/// The shortest text that parse reads as this host and port.
plat::String format(const char* host, int port, int defaultPort, int displayLimit);

plat::String bracketHost(const char* host); ///< "[::1]" for "::1": brackets if it holds a colon
/// The reverse; throws EndpointInvalid at a bracket without its other half or in another place.
plat::String unbracketHost(const char* host);

} // namespace endpoint
} // namespace io

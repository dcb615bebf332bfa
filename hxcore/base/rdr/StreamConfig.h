// Settings as lines of text.
#pragma once

#include "plat/Configuration.h"
#include "plat/NoCaseMap.h"
#include "plat/String.h"

namespace rdr {
class InStream;
class OutStream;
} // namespace rdr

namespace plat {

/// One "name=value" a line, or a name alone. A line feed, a carriage return and a backslash are written as \n, \r and
/// \\; white space at both ends of a line is dropped. There are no comments: what isn't a known name is ignored.
namespace StreamConfig {

/// Sets each line at `priority`, up to the end of the stream or message. Unknown names and values that don't parse are
/// ignored. Throws rdr::StringTooLongException on a line above 262144 bytes.
void read(rdr::InStream& in, Configuration& config, int priority);

/// The same into a map; a later line of the same name wins. A name in `aliases` (may be null) is replaced by what the
/// alias makes of it.
void readToMap(rdr::InStream& in, NameValueMap& map, const Configuration::AliasMap* aliases = nullptr);

void write(rdr::OutStream& out, const char* name, const char* value); ///< a null value writes the name alone
void writeMap(rdr::OutStream& out, const NameValueMap& map);

String escape(const char* value); ///< null stays null

/// Enters in `map` each parameter that exists in both and differs from the default; true if that changed the map.
bool updateFromConfig(const Configuration& config, const Configuration& defaults, NameValueMap& map);

} // namespace StreamConfig
} // namespace plat

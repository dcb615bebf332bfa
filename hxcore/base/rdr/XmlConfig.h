// A whole set of parameters as XML: their kinds, texts, bounds and values.
#pragma once

#include <cstddef>

namespace rdr {
class OutStream;
} // namespace rdr

namespace plat {

class ConfigParameter;
class Configuration;

namespace XmlConfig {

/// Chooses the parameters that are written or read.
class Filter {
public:
    virtual ~Filter() = default;

    /// False leaves the parameter out.
    virtual bool accepts(const char* name, const char* typeName, bool advanced) = 0;
};

enum class Texts {
    Keys,       ///< the catalog key where there is one, for a reader with catalogs of its own
    Translated, ///< always the text, in the current language
};

void writeHeader(rdr::OutStream& out);
void writeParam(rdr::OutStream& out, const ConfigParameter& param, Texts texts);
void writeFooter(rdr::OutStream& out);

/// Everything in the tree below `config`, sorted as in help, hidden ones only `withHidden`; `filter` may be null.
void write(rdr::OutStream& out, const Configuration& config, Texts texts, bool withHidden = false,
           Filter* filter = nullptr);

/// Clears the owned parameters of `config` and makes one of each element, with all its values.
///
/// Throws plat::ExceptionFmt "XML error %i:%i %s" with line and column, and plat::Exception "Incompatible XML config";
/// `config` then is as it was. A text that isn't UTF-8 throws plat::BadUtf8 in the middle.
void read(Configuration& config, const char* text, size_t lenBytes, Filter* filter = nullptr);
void read(Configuration& config, const char* text, Filter* filter = nullptr);

} // namespace XmlConfig
} // namespace plat

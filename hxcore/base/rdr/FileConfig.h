// Settings in files.
#pragma once

#include "rdr/StreamConfig.h"

namespace plat {

/// Files in the form of StreamConfig. Writing replaces a file all or nothing; `flags` are those of plat::FilePtr.
///
/// What can't be opened, read or written throws plat::SystemExceptionFmt.
namespace FileConfig {

void load(Configuration& config, const char* path, int priority);
void readFile(const char* path, NameValueMap& map, const Configuration::AliasMap* aliases = nullptr);
void writeFile(const char* path, const NameValueMap& map, int flags = 0);

void removeEntry(const char* path, const char* name, int flags = 0); ///< a missing file is no error, and stays missing
/// Adds the name unless it is there. A missing file is made.
void addEntry(const char* path, const char* name, const char* value, int flags = 0);
/// Writes only if the value differs or the name is absent. A missing file is made.
void setEntry(const char* path, const char* name, const char* value, int flags = 0);

/// Writes what differs from the defaults over the file's entries; the others stay. Nothing is written if nothing
/// differs. A missing file is made.
void save(const Configuration& config, const char* path, const Configuration& defaults, int flags = 0);

} // namespace FileConfig
} // namespace plat

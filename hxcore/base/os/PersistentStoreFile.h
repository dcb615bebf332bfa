// A store with a file for each blob.
#pragma once

#include "os/PersistentStore.h"
#include "plat/String.h"

namespace os {

/// Keeps blobs as files, nothing added, in a directory of the application.
///
/// A name may contain "/"; one that leads out of the directory ("..", a leading "/"), or has a part that ends in
/// ".tmp", throws plat::Exception.
class PersistentStoreFile : public PersistentStore {
public:
    /// The directory is `<user config dir>/<app>.d`, null standing for this application.
    explicit PersistentStoreFile(const char* app = nullptr);

    // os::PersistentStore
    bool load(const char* name, plat::MBuf<uint8_t>& out) override;
    void save(const char* name, std::span<const uint8_t> data) override;
    void remove(const char* name) override;

    const char* dir() const { return dir_.c_str(); }

private:
    plat::String pathOf(const char* name) const;
    void removeEmptyDirs(const char* name) const;

    plat::String dir_;
};

} // namespace os

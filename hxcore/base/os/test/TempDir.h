// A private directory for one test.
#pragma once

#include "plat/file.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace os {

/// Made with a new name, and removed with all in it.
class TempDir {
public:
    TempDir() {
        char name[] = "/tmp/ostestXXXXXX";
        if (!mkdtemp(name))
            throw std::runtime_error("mkdtemp");
        path = name;
    }
    ~TempDir() { plat::rmDir(path.c_str(), /*recursive=*/true); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    std::string operator/(const std::string& name) const { return path + "/" + name; }

    std::string path;
};

} // namespace os

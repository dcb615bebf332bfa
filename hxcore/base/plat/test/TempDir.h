// A directory of a test's own.
#pragma once

#include "plat/file.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace plat {

/// A fresh directory, removed with all in it at the end.
class TempDir {
public:
    TempDir() {
        std::string pattern = ::testing::TempDir() + "zefXXXXXX";
        EXPECT_NE(mkdtemp(pattern.data()), nullptr);
        root = pattern;
    }
    ~TempDir() { rmDir(root.c_str(), /*recursive=*/true); }

    std::string operator/(const std::string& name) const { return root + "/" + name; }

    std::string root;
};

/// Makes or replaces a file.
inline void writeTextFile(const std::string& path, const std::string& text) {
    FILE* file = std::fopen(path.c_str(), "w");
    ASSERT_NE(file, nullptr);
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

/// Makes or replaces a script of /bin/sh that all may run.
inline void writeProgram(const std::string& path, const std::string& script) {
    writeTextFile(path, "#!/bin/sh\n" + script + "\n");
    chmod(path.c_str(), 0755);
}

/// The file's text, or "<none>".
inline std::string readTextFile(const std::string& path) {
    FILE* file = std::fopen(path.c_str(), "r");
    if (!file)
        return "<none>";
    std::string text;
    for (int c; (c = std::fgetc(file)) != EOF;)
        text += static_cast<char>(c);
    std::fclose(file);
    return text;
}

} // namespace plat

// A directory of its own for a test.
#pragma once

#include "plat/test/TempDir.h"

class ScratchDir : public ::testing::Test {
protected:
    std::string contents(const char* name) const { return plat::readTextFile(temp / name); }
    void write(const char* name, const std::string& text) const { plat::writeTextFile(temp / name, text); }
    bool exists(const char* name) const { return plat::fileExists((temp / name).c_str()); }

    const plat::TempDir temp;
    const std::string dir = temp.root;
};

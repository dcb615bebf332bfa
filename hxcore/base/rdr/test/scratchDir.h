// A directory of its own for a test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

class ScratchDir : public ::testing::Test {
protected:
    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "zeftestXXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        dir = name;
    }
    ~ScratchDir() override {
        if (!dir.empty())
            std::filesystem::remove_all(dir);
    }

    std::string contents(const char* name) const {
        std::ostringstream all;
        all << std::ifstream(dir + "/" + name, std::ios::binary).rdbuf();
        return all.str();
    }
    void write(const char* name, const std::string& text) const {
        std::ofstream(dir + "/" + name, std::ios::binary) << text;
    }
    bool exists(const char* name) const { return std::filesystem::exists(dir + "/" + name); }

    std::string dir;
};

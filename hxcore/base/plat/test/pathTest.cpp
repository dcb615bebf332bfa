#include "plat/path.h"

#include "plat/Exception.h"
#include "plat/env.h"
#include "plat/test/thrown.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace plat {
namespace {

TEST(Path, Normalize) {
    const char* cases[][2] = {{"", "."},
                              {".", "."},
                              {"a/../..", ".."},
                              {"../../a/./b//c/", "../../a/b/c"},
                              {"/", "/"},
                              {"//a", "/a"},
                              {"/..", "/"},
                              {"/../a", "/a"},
                              {"a/b/../c", "a/c"},
                              {"a/..", "."},
                              {"./a", "a"},
                              {"a/.../b", "a/.../b"},
                              {"../a/../../b", "../../b"}};
    for (const auto& [path, normal] : cases) {
        EXPECT_EQ(path::normalize(path), normal) << path;
        EXPECT_EQ(path::normalize(normal), normal) << normal;
    }
    EXPECT_EQ(path::normalize(nullptr), ".");
}

TEST(Path, DirNameAndBaseName) {
    // As dirname(1) and basename(1) have them.
    const char* cases[][3] = {{"/usr/lib", "/usr", "lib"}, {"/usr/", "/", "usr"}, {"usr", ".", "usr"}, {"/", "/", "/"},
                              {"a//b//", "a", "b"},        {"", ".", ""},         {"//", "/", "/"}};
    for (const auto& [path, dir, base] : cases) {
        EXPECT_EQ(path::dirName(path), dir) << path;
        EXPECT_EQ(path::baseName(path), base) << path;
    }
    EXPECT_EQ(path::baseName("a/b.png", ".png"), "b");
    EXPECT_EQ(path::baseName("a/.png", ".png"), ".png");
    EXPECT_EQ(path::baseName("a/b.gif", ".png"), "b.gif");
}

TEST(Path, JoinAndSanitise) {
    EXPECT_EQ(path::join("a", "b"), "a/b");
    EXPECT_EQ(path::join("a/", "b"), "a/b");
    EXPECT_EQ(path::join("", "b"), "/b");
    EXPECT_EQ(path::join(nullptr, nullptr), "/");
    EXPECT_EQ(path::sanitiseName("a/b\n\x7f\x1f \xc3\xa4"), "a_b___ \xc3\xa4");
    EXPECT_EQ(path::sanitiseName("a/b", '-'), "a-b");
    EXPECT_EQ(path::sanitiseName(nullptr), "");
    EXPECT_TRUE(path::isAbsolute("/a"));
    EXPECT_FALSE(path::isAbsolute(nullptr));
}

std::string expanded(const char* text, const EnvMap* map = nullptr, bool strict = false, bool useEnv = true) {
    DString out("[");
    expandEnv(out, text, map, strict, useEnv);
    return out.c_str();
}

TEST(Env, Expands) {
    setenv("ZEF_TEST_VAR", "value", 1);
    const EnvMap map = {{"A", "1"}, {"A_2", "two"}, {"EMPTY", ""}};
    EXPECT_EQ(expanded("$A-${A_2}$EMPTY.", &map), "[1-two.");
    EXPECT_EQ(expanded("${A}_2$A_2", &map), "[1_2two");
    EXPECT_EQ(expanded("$$A$ $", &map), "[$A$ $");
    EXPECT_EQ(expanded("${}${A${A-x}$-", &map), "[${}${A${A-x}$-");
    EXPECT_EQ(expanded("$ZEF_TEST_VAR"), "[value");
    EXPECT_EQ(expanded("x$ZEF_TEST_VAR/", &map, false, /*useEnv=*/false), "[x/");
    EXPECT_EQ(expanded("$ZEF_NO_SUCH_VAR."), "[.");
    EXPECT_EQ(expanded(nullptr), "[");
    // What a value holds isn't expanded again.
    const EnvMap nested = {{"A", "$B"}, {"B", "b"}};
    EXPECT_EQ(expanded("$A", &nested), "[$B");
    EXPECT_EQ(whatOf([&] { expanded("a ${NOPE} b", &map, /*strict=*/true); }), "unknown environment variable: NOPE");
}

} // namespace
} // namespace plat

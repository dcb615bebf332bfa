#include "plat/String.h"

#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/MBuf.h"
#include "plat/SString.h"
#include "plat/SecureString.h"
#include "plat/SharedPtr.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>
#include <string>
#include <utility>

namespace plat {
namespace {

/// Looks at one block of memory at the moment when it is freed.
class FreedBlock {
public:
    template <class Call>
    static std::string contents(const void* block, size_t len, Call call) {
        watched = block;
        copied = len;
        call();
        return std::string(watched ? "not freed" : std::string(bytes, len));
    }

    static void freeing(const void* block) {
        if (!block || block != watched)
            return;
        std::memcpy(bytes, block, copied);
        watched = nullptr;
    }

private:
    static inline const void* watched = nullptr;
    static inline size_t copied = 0;
    static inline char bytes[16];
};

} // namespace
} // namespace plat

// The whole test program allocates arrays through these.
void* operator new[](size_t size) {
    if (void* block = std::malloc(size ? size : 1))
        return block;
    throw std::bad_alloc();
}
void operator delete[](void* block) noexcept {
    plat::FreedBlock::freeing(block);
    std::free(block);
}
void operator delete[](void* block, size_t) noexcept { operator delete[](block); }

namespace plat {
namespace {

TEST(String, NullStaysNullAndEqualsEmpty) {
    String null;
    EXPECT_TRUE(null.isNull());
    EXPECT_STREQ(null.c_str(), "");
    EXPECT_TRUE(null == "");
    const String copy = null;
    EXPECT_TRUE(copy.isNull());
    null = "";
    EXPECT_FALSE(null.isNull());
    EXPECT_TRUE(null.isEmpty());
}

TEST(String, AssignsFromItself) {
    String text("abcdef");
    text = text.c_str() + 3;
    EXPECT_EQ(text, "def");
    const String& same = text;
    text = same;
    EXPECT_EQ(text, "def");
    String moved = std::move(text);
    EXPECT_TRUE(text.isNull()); // NOLINT(bugprone-use-after-move)
    char* raw = moved.take();
    EXPECT_TRUE(String::adopt(raw) == "def");
    EXPECT_TRUE(String(std::string_view("ab")) < String("b", 1));
}

TEST(String, FormatsAnyLength) {
    const std::string thousand(1000, 'x');
    EXPECT_EQ(strFormat("<%s>%d", thousand.c_str(), 7).view(), "<" + thousand + ">7");
    // An argument that the C library can't print ends, with no text.
    const wchar_t bad[] = {static_cast<wchar_t>(0x7fffffff), 0};
    EXPECT_EQ(strFormat("%ls", bad), "");
}

TEST(DString, CapacityIsAPowerOfTwoAndTheEndIsNul) {
    DString text;
    EXPECT_STREQ(text.c_str(), "");
    text.append("a");
    EXPECT_EQ(text.getCapacity(), 8);
    text.append("bcdefg");
    EXPECT_EQ(text.getCapacity(), 8); // 7 bytes and the NUL
    text.append("h");
    EXPECT_EQ(text.getCapacity(), 16);
    EXPECT_STREQ(text.c_str(), "abcdefgh");
    text.reserve(17);
    EXPECT_EQ(text.getCapacity(), 32);
    EXPECT_THROW(text.reserve((1 << 30) + 1), std::bad_alloc);
    EXPECT_THROW(text.appendChars('x', 1 << 30), std::bad_alloc);
    EXPECT_STREQ(text.c_str(), "abcdefgh");
}

TEST(DString, TakesTextThatLiesInsideItself) {
    DString text("abc");
    for (int i = 0; i < 4; ++i)
        text.append(text.c_str());
    EXPECT_EQ(text.len(), 48);
    text.format("%s!", text.c_str());
    EXPECT_EQ(text.len(), 97);
    DString small("0123");
    small.insert(1, 3, small.c_str() + 2);
    EXPECT_STREQ(small.c_str(), "0233");
}

TEST(DString, InsertReplacesARangeWithinTheText) {
    DString text("hello world");
    text.insert(0, 5, "good");
    EXPECT_STREQ(text.c_str(), "good world");
    text.insert(4, 4, " old+", 4);
    EXPECT_STREQ(text.c_str(), "good old world");
    text.insert(-3, 5, nullptr);
    EXPECT_STREQ(text.c_str(), "old world");
    text.insert(50, 60, "!");
    EXPECT_STREQ(text.c_str(), "old world!");
}

TEST(DString, ReplaceAllDoesNotLookAtWhatItPutIn) {
    DString text("aXbXX");
    text.replaceAll("X", "XX");
    EXPECT_STREQ(text.c_str(), "aXXbXXXX");
    text.replaceAll("XX", nullptr);
    EXPECT_STREQ(text.c_str(), "ab");
    EXPECT_DEATH(text.replaceAll("", "x"), "Assertion 'findLen' failed");
}

TEST(DString, AppendCharsEncodes) {
    DString text;
    text.appendChars('-', 3).appendChars(0x20ac, 2).appendChars('x', 0).appendChars('y', -1);
    EXPECT_STREQ(text.c_str(), "---\xe2\x82\xac\xe2\x82\xac");
    EXPECT_THROW(text.appendChars(0x110000, 1), Exception);
}

TEST(DString, MovesAndTakesLeaveItUsable) {
    DString text("abc");
    DString moved(std::move(text));
    DString copy;
    copy = moved;
    EXPECT_EQ(moved.take(), "abc");
    EXPECT_FALSE(moved.take().isNull());
    moved.append("again");
    EXPECT_STREQ(moved.c_str(), "again");
    copy.truncate(2);
    EXPECT_STREQ(copy.c_str(), "ab");
}

TEST(DString, WordWrap) {
    const struct {
        const char* text;
        int width, indent;
        const char* wrapped;
    } cases[] = {
        {"aaa bbb ccc", 7, 0, "aaa bbb\nccc"},
        {"aaa bbb ccc", 11, 0, "aaa bbb ccc"},
        {"aaa  bbb", 6, 0, "aaa\nbbb"},
        {"one\ntwo three", 5, 2, "one\ntwo\n  three"},
        {"averylongword b", 5, 0, "averylongword\nb"},
        {"  -x  - first second", 14, 8, "  -x  - first\n        second"},
        {"\xc3\xa4\xc3\xa4\xc3\xa4 bbb", 7, 0, "\xc3\xa4\xc3\xa4\xc3\xa4 bbb"}, // 7 characters, 10 bytes
        {"end \n\n", 10, 0, "end \n\n"},
        {"", 10, 4, ""},
        {"a b", 0, -1, "a\nb"},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(DString(c.text).wordWrap(c.width, c.indent).c_str(), c.wrapped);
}

TEST(SString, CutsAtACharacter) {
    char small[6];
    EXPECT_TRUE(SString::copy(small, "abcde"));
    EXPECT_FALSE(SString::copy(small, "abcd\xc3\xa4"));
    EXPECT_STREQ(small, "abcd");
    EXPECT_FALSE(SString::format(small, sizeof(small), "%s", "ab\xf0\x9f\x98\x80"));
    EXPECT_STREQ(small, "ab");
    EXPECT_TRUE(SString::copy(small, nullptr));
    EXPECT_STREQ(small, "");
    EXPECT_TRUE(SString::append(small, "ab"));
    EXPECT_FALSE(SString::append(small, "cdef"));
    EXPECT_STREQ(small, "abcde");
    EXPECT_TRUE(SString::copy(small, sizeof(small), "xyz", 2));
    EXPECT_STREQ(small, "xy");
    char none = 'q';
    EXPECT_FALSE(SString::copy(&none, 0, "x"));
    EXPECT_FALSE(SString::format(&none, 0, "x"));
    EXPECT_EQ(none, 'q');
    const wchar_t bad[] = {static_cast<wchar_t>(0x7fffffff), 0};
    EXPECT_FALSE(SString::format(small, sizeof(small), "a%ls", bad));
    EXPECT_STREQ(small, "");
}

TEST(Secure, WipeAndCompare) {
    char bytes[] = "secret";
    secureWipe(bytes, 6);
    EXPECT_EQ(std::string(bytes, 6), std::string(6, '\0'));
    secureWipe(nullptr, 0);
    EXPECT_TRUE(secureCompare("abc", "abd", 2));
    EXPECT_FALSE(secureCompare("abc", "abd", 3));
    EXPECT_TRUE(secureCompare("x", "y", 0));
}

TEST(Secure, AStringTakesTextThatLiesInsideItself) {
    SecureString secret("pass");
    SecureString copy(secret);
    secret.set(secret.c_str() + 2);
    EXPECT_STREQ(secret.get(), "ss");
    EXPECT_STREQ(copy.get(), "pass");
    copy = secret;
    EXPECT_STREQ(copy.c_str(), "ss");
    copy = std::move(secret);
    EXPECT_TRUE(secret.isNull()); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(copy.len(), 2);
}

TEST(MBuf, KeepsWhatFitsAndZeroesTheRest) {
    const int numbers[] = {1, 2, 3};
    MBuf<int> buf(numbers, 3);
    buf.resize(5);
    EXPECT_EQ(buf[2], 3);
    EXPECT_EQ(buf[4], 0);
    buf.assign(buf.data() + 1, 2);
    EXPECT_EQ(buf.size(), 2);
    EXPECT_EQ(buf[0], 2);
    const MBuf<int> copy = buf;
    buf.clear();
    EXPECT_EQ(copy[1], 3);
    EXPECT_EQ(copy.end() - copy.begin(), 2);
    EXPECT_TRUE(buf.isEmpty());
    EXPECT_DEATH(buf[0] = 1, "i >= 0 && i < size_");
}

TEST(Secure, MemoryIsZeroWhenItIsFreed) {
    const std::string zeroes(6, '\0');
    {
        SecureString secret("secret");
        EXPECT_EQ(FreedBlock::contents(secret.get(), 6, [&] { secret.set("next"); }), zeroes);
        MBuf<char> buf("secret", 6, /*secure=*/true);
        EXPECT_EQ(FreedBlock::contents(buf.data(), 6, [&] { buf.resize(100); }), zeroes);
        EXPECT_STREQ(buf.data(), "secret");
        MBuf<char> copy(buf);
        EXPECT_EQ(FreedBlock::contents(buf.data(), 6, [&] { buf.assign("x", 1); }), zeroes);
        EXPECT_EQ(FreedBlock::contents(copy.data(), 6, [&] { copy = buf; }), zeroes);
        copy.assign("public", 6);
        copy.setSecure(false);
        EXPECT_EQ(FreedBlock::contents(copy.data(), 6, [&] { copy.clear(); }), "public");
    }
}

struct Counting {
    void operator()(int* p) const {
        ++deletions;
        delete p;
    }
    static inline int deletions = 0;
};

// GCC 12, optimising, takes each holder's end for the last one's.
#pragma GCC diagnostic push
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wuse-after-free"
#endif
TEST(SharedPtr, TheLastHolderDeletes) {
    Counting::deletions = 0;
    using Ptr = SharedPtr<int, Counting>;
    Ptr a(new int(5));
    {
        const Ptr b = a;
        a = a.get() ? a : nullptr; // itself
        EXPECT_EQ(b.useCount(), 2);
    }
    Ptr moved = std::move(a);
    EXPECT_EQ(Counting::deletions, 0);
    moved.reset(new int(6));
    EXPECT_EQ(Counting::deletions, 1);
    moved = nullptr;
    EXPECT_EQ(Counting::deletions, 2);
    EXPECT_DEATH(*moved = 1, "Assertion 'ptr' failed");
}
#pragma GCC diagnostic pop

} // namespace
} // namespace plat

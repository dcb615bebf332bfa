#include "tx/edid.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

std::vector<uint8_t> block() {
    std::vector<uint8_t> bytes(128, 0);
    const uint8_t header[] = {0, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0, 0x10, 0xac, 0x64, 0xa0};
    memcpy(bytes.data(), header, sizeof header); // D E L, product 0xa064
    return bytes;
}

void putName(std::vector<uint8_t>& bytes, size_t index, const char* text) {
    uint8_t* descriptor = bytes.data() + 54 + index * 18;
    descriptor[3] = 0xfc;
    memcpy(descriptor + 5, text, 13);
}

TEST(Edid, TheMonitorIsCalledByItsName) {
    auto bytes = block();
    EXPECT_STREQ(tx::edidMonitorName(bytes).get(), "DEL A064");
    putName(bytes, 3, "VG 27\n       ");
    EXPECT_STREQ(tx::edidMonitorName(bytes).get(), "VG 27");
    putName(bytes, 1, "ThirteenBytes"); // fills its place, the first one counts
    EXPECT_STREQ(tx::edidMonitorName(bytes).get(), "ThirteenBytes");
    putName(bytes, 1, "\x1b[2J\x80\xff*\n     ");
    EXPECT_STREQ(tx::edidMonitorName(bytes).get(), "[2J*");
    bytes[54 + 18] = 1; // a timing
    EXPECT_STREQ(tx::edidMonitorName(bytes).get(), "VG 27");
}

TEST(Edid, WhatIsNoBlockHasNoName) {
    auto bytes = block();
    EXPECT_TRUE(tx::edidMonitorName({}).isNull());
    EXPECT_TRUE(tx::edidMonitorName(std::span(bytes).first(127)).isNull());
    bytes[0] = 1;
    EXPECT_TRUE(tx::edidMonitorName(bytes).isNull());
}

} // namespace

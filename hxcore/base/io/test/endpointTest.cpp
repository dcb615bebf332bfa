#include "io/connectionErrors.h"
#include "io/endpointUri.h"
#include "loc/Localize.h"
#include "plat/Configuration.h"

#include <gtest/gtest.h>

#include <netdb.h>

#include <cerrno>
#include <string>
#include <vector>

namespace {
using io::EndpointInvalid;
using io::endpoint::noPort;

const std::string general = "Invalid endpoint";
const std::string bracket = general + ": unmatched \"[\" in host";
const std::string empty = general + ": empty host and/or port";
const std::string badPort = general + ": port not correctly specified";
const std::string badEscape = general + ": incorrect % escape";

class Endpoint : public testing::Test {
protected:
    static void SetUpTestSuite() {
        ASSERT_TRUE(plat::Configuration::global().set("Locale", "en"));
        loc::Localize::instance().init();
    }
};

template <class Body>
std::string failureOf(Body body) {
    try {
        body();
    } catch (const EndpointInvalid& e) {
        EXPECT_STREQ(e.type, "EndpointInvalid");
        return e.text;
    }
    return "no failure";
}

struct Numbers {
    int defaultPort, displayLimit;
};
constexpr Numbers rfb{5900, 100};
constexpr Numbers plain{5900, 0};
constexpr Numbers bare{noPort, 100};

TEST_F(Endpoint, NamesReadAndPrintBack) {
    const struct {
        const char* text;
        Numbers numbers;
        const char* host;
        int port;
        const char* printed;
    } cases[] = {
        {"host", rfb, "host", 5900, "host"},
        {"host:0", rfb, "host", 5900, "host"},
        {"host:1", rfb, "host", 5901, "host:1"},
        {"host:99", rfb, "host", 5999, "host:99"},
        {"host:100", rfb, "host", 100, "host::100"},
        {"host::1", rfb, "host", 1, "host::1"},
        {"host::5901", rfb, "host", 5901, "host:1"},
        {"host:6000", rfb, "host", 6000, "host::6000"},
        {"host:65535", rfb, "host", 65535, "host::65535"},
        {"host:1", plain, "host", 1, "host:1"},
        {"host::5900", plain, "host", 5900, "host"},
        {"host:1", bare, "host", 1, "host::1"},
        {"host:007", bare, "host", 7, "host::7"},
        {"", rfb, "localhost", 5900, "localhost"},
        {":5", rfb, "localhost", 5905, "localhost:5"},
        {"::5", rfb, "localhost", 5, "localhost::5"},
        {"[::1]", rfb, "::1", 5900, "[::1]"},
        {"[::1]:2", rfb, "::1", 5902, "[::1]:2"},
        {"[::1]::2", rfb, "::1", 2, "[::1]::2"},
        {"[host]:2", rfb, "host", 5902, "host:2"},
        {"b\xc3\xbcro 2:1", {65500, 100}, "b\xc3\xbcro 2", 65501, "b\xc3\xbcro 2:1"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        const auto [defaultPort, displayLimit] = each.numbers;
        plat::String host = "before";
        int port = 0;
        ASSERT_EQ(failureOf([&] { io::endpoint::parse(each.text, host, &port, defaultPort, displayLimit); }),
                  "no failure");
        EXPECT_STREQ(host.c_str(), each.host);
        EXPECT_EQ(port, each.port);
        const plat::String printed = io::endpoint::format(host.c_str(), port, defaultPort, displayLimit);
        EXPECT_STREQ(printed.c_str(), each.printed);
        io::endpoint::parse(printed.c_str(), host, &port, defaultPort, displayLimit);
        EXPECT_EQ(port, each.port);
    }
}

TEST_F(Endpoint, BadNamesAreRefusedAndChangeNothing) {
    const struct {
        Numbers numbers;
        const std::string& failure;
        std::vector<const char*> texts;
    } cases[] = {
        {bare, empty, {nullptr, ""}},
        {rfb, empty, {"[]", "[]:1"}},
        {rfb, bracket, {"[", "[::1", "[["}},
        {rfb, general, {"[::1]x", "[a[b]", "[a]]", "a[b", "a]:1"}},
        {bare, badPort, {"host", "host:0"}},
        {{65500, 100}, badPort, {"host:50"}},
        // A port is looked at before the brackets, and an address needs them.
        {rfb,
         badPort,
         {"a]:x", "fe80::1:2", "host::0", "host:", "host::", "host:::1", "host:abc", "host:1 ", "host: 1", "host:+1",
          "host:-1", "host:0x10", "host:65536", "host:4294967297", "host:99999999999999999999"}},
    };
    for (const auto& each : cases) {
        for (const char* text : each.texts) {
            SCOPED_TRACE(text ? text : "null");
            plat::String host = "before";
            int port = -7;
            const auto [defaultPort, displayLimit] = each.numbers;
            EXPECT_EQ(failureOf([&] { io::endpoint::parse(text, host, &port, defaultPort, displayLimit); }),
                      each.failure);
            EXPECT_STREQ(host.c_str(), "before");
            EXPECT_EQ(port, -7);
        }
    }
}

TEST_F(Endpoint, ACallerWithoutPortRefusesOne) {
    plat::String host;
    io::endpoint::parse("[::1]", host, nullptr, 5900, 0);
    EXPECT_STREQ(host.c_str(), "::1");
    io::endpoint::parse("host", host, nullptr, noPort, 0);
    EXPECT_STREQ(host.c_str(), "host");
    EXPECT_EQ(failureOf([&] { io::endpoint::parse("x:5", host, nullptr, 5900, 0); }), badPort);
    EXPECT_STREQ(host.c_str(), "host");
}

TEST_F(Endpoint, Brackets) {
    EXPECT_STREQ(io::endpoint::bracketHost("a.example").c_str(), "a.example");
    EXPECT_STREQ(io::endpoint::bracketHost("::1").c_str(), "[::1]");
    EXPECT_STREQ(io::endpoint::bracketHost(nullptr).c_str(), "");
    EXPECT_STREQ(io::endpoint::unbracketHost("[::1]").c_str(), "::1");
    EXPECT_STREQ(io::endpoint::unbracketHost("a.example").c_str(), "a.example");
    EXPECT_EQ(failureOf([] { io::endpoint::unbracketHost("[::1"); }), bracket);
    EXPECT_EQ(failureOf([] { io::endpoint::unbracketHost("["); }), bracket);
    EXPECT_EQ(failureOf([] { io::endpoint::unbracketHost("::1]"); }), general);
    EXPECT_EQ(failureOf([] { io::endpoint::unbracketHost("[[::1]"); }), general);
}

std::string describe(const plat::String& text) { return text.isNull() ? "-" : std::string(text.view()); }

std::string describe(const io::endpoint::Uri& uri) {
    std::string out = describe(uri.scheme) + "|" + describe(uri.user) + "|" + describe(uri.password) + "|" +
                      describe(uri.host) + "|" + std::to_string(uri.port) + "|" + describe(uri.path);
    for (const auto& pair : uri.query)
        out += "|" + describe(pair.name) + "=" + describe(pair.value);
    return out;
}

TEST_F(Endpoint, UrisReadAndPrintBack) {
    const struct {
        const char* text;
        const char* record;
        const char* printed; // null: as it was
    } cases[] = {
        {"host", "-|-|-|host|-1|", nullptr},
        {"HTTP://Host:80/", "http|-|-|Host|80|/", "http://Host:80/"},
        {"socks+v5.1-x://h", "socks+v5.1-x|-|-|h|-1|", nullptr},
        {"vnc://h::5901", "vnc|-|-|h|5901|", "vnc://h:5901"},
        {"http://[fe80::1%25eth0]:8080", "http|-|-|fe80::1%eth0|8080|", nullptr},
        {"http://:80", "http|-|-|localhost|80|", "http://localhost:80"},
        {"http://u@h", "http|u|-|h|-1|", nullptr},
        {"http://@h", "http||-|h|-1|", nullptr},
        {"http://u:@h", "http|u||h|-1|", nullptr},
        {"http://a%3ab:p%40ss%2f@h:1", "http|a:b|p@ss/|h|1|", "http://a%3Ab:p%40ss%2F@h:1"},
        {"u:p w@h/", "-|u|p w|h|-1|/", nullptr},
        {"http://u@v@h", "http|u|-|v@h|-1|", "http://u@v%40h"},
        {"http://h/a%20b/%25?x=1&y&=&z=a%26b;w=c=d", "http|-|-|h|-1|/a b/%|x=1|y=-|=|z=a&b|w=c=d",
         "http://h/a b/%25?x=1&y&=&z=a%26b&w=c=d"},
        {"http://h?", "http|-|-|h|-1||=-", nullptr},
        {"http://h?a%3d=b", "http|-|-|h|-1||a==b", "http://h?a%3D=b"},
        {"http://h/p#f?x", "http|-|-|h|-1|/p", "http://h/p"},
        {"h/a://b", "-|-|-|h|-1|/a://b", "h/a%3A//b"},
        {"b\xc3\xbcro/\xff'()*+,-.!$;=_~&", "-|-|-|b\xc3\xbcro|-1|/\xff'()*+,-.!$;=_~&", nullptr},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        io::endpoint::Uri uri;
        ASSERT_EQ(failureOf([&] { uri = io::endpoint::parseUri(each.text); }), "no failure");
        EXPECT_EQ(describe(uri), each.record);
        const plat::String printed = io::endpoint::formatUri(uri);
        EXPECT_STREQ(printed.c_str(), each.printed ? each.printed : each.text);
        EXPECT_EQ(describe(io::endpoint::parseUri(printed.c_str())), each.record);
    }
    EXPECT_EQ(io::endpoint::parseUri("http://h:1", 5900, 100).port, 5901);
    EXPECT_EQ(io::endpoint::parseUri("http://h", 5900, 100).port, 5900);
    io::endpoint::Uri byHand;
    byHand.host = "h";
    byHand.path = "no slash";
    EXPECT_STREQ(io::endpoint::formatUri(byHand).c_str(), "h/no slash");
}

TEST_F(Endpoint, BadUrisAreRefused) {
    const struct {
        const std::string& failure;
        std::vector<const char*> texts;
    } cases[] = {
        {empty, {nullptr, "", "http://", "http:///path", "http://[]"}},
        {bracket, {"http://[::1", "http://[::1/]"}}, // the host ends at the slash
        // Without both slashes there is no scheme.
        {badPort, {"http:/h", "1http://h", "http://h:port", "http://h:70000/"}},
        {general, {"http://a:b:c@h", "http://[::1]@h", "http://h[/"}},
        // %00 would hide the rest.
        {badEscape,
         {"http://h%/", "http://h/%4", "http://h/%4g", "http://h/%00", "http://u%zz@h", "http://u:%@h", "http://h?a%=b",
          "http://h?a=b%1"}},
    };
    for (const auto& each : cases)
        for (const char* text : each.texts)
            EXPECT_EQ(failureOf([&] { io::endpoint::parseUri(text); }), each.failure) << (text ? text : "null");
}

TEST_F(Endpoint, FailedConnectionsHaveTexts) {
    EXPECT_STREQ(LOC_TEXT(io::connectionErrorKey(ECONNREFUSED)), "The connection was refused by the computer");
    EXPECT_STREQ(LOC_TEXT(io::connectionErrorKey(EHOSTUNREACH)), "No route to the host is known");
    EXPECT_STREQ(LOC_TEXT(io::lookupErrorKey(EAI_NONAME)), "No such host is known");
    for (const int known : {ECONNRESET, ECONNABORTED, ETIMEDOUT, ENETUNREACH})
        EXPECT_TRUE(loc::Localize::instance().findTranslation(io::connectionErrorKey(known), /*raw=*/false)) << known;
    for (const int known : {EAI_NODATA, EAI_AGAIN})
        EXPECT_TRUE(loc::Localize::instance().findTranslation(io::lookupErrorKey(known), /*raw=*/false)) << known;
    EXPECT_EQ(io::connectionErrorKey(EPIPE), nullptr);
    EXPECT_EQ(io::lookupErrorKey(EAI_MEMORY), nullptr);
}

} // namespace

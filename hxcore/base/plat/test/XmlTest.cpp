#include "plat/Xml.h"

#include <gtest/gtest.h>

#include <string>

namespace plat {
namespace {

TEST(Xml, TheTreeIsWalkedByTagIndexAndAttribute) {
    XmlDocument document;
    ASSERT_TRUE(document.parse("<?xml version=\"1.0\"?>\n"
                               "<config a=\"1 &lt; 2 &#xfc;\" b='\"'>\n"
                               "  <!-- left out --> <?and this?>\n"
                               "  <int name=\"x\"/>text &amp; more<bool/><int name=\"y\"><value/></int>\n"
                               "</config>\n"));
    const XmlNode& root = *document.root();
    EXPECT_STREQ(root.tag(), "config");
    EXPECT_STREQ(root.attribute("a"), "1 < 2 \u00fc");
    EXPECT_STREQ(root.attribute("b"), "\"");
    EXPECT_EQ(root.attribute("A"), nullptr);
    EXPECT_EQ(root.attributeCount(), 2u);
    EXPECT_EQ(root.countChildren("int"), 2u);
    EXPECT_EQ(root.countChildren("value"), 0u);
    EXPECT_STREQ(root.child("int", 1)->attribute("name"), "y");
    EXPECT_EQ(root.child("int", 2), nullptr);
    EXPECT_EQ(root.child("Int"), nullptr);
    EXPECT_NE(root.child("int", 1)->child("value"), nullptr);
    std::string walk;
    for (const XmlNode* node = root.firstChild(); node; node = node->next())
        walk += std::string(node->tag()) + "[" + node->text() + "] ";
    EXPECT_EQ(walk, "int[] [text & more] bool[] int[] ");
    EXPECT_EQ(document.errorCode(), 0);
}

TEST(Xml, KeepingSpaceKeepsEveryNodeAsWritten) {
    XmlDocument document;
    ASSERT_TRUE(
        document.parse("<a> <b>x</b>\r\n\t<![CDATA[<&]]>&#10;<!--c--><?pi data?></a>", XmlDocument::Space::Keep));
    const XmlNode* node = document.root()->firstChild();
    EXPECT_STREQ(node->text(), " ");
    node = node->next();
    EXPECT_STREQ(node->innerText().c_str(), "x");
    node = node->next();
    EXPECT_STREQ(node->text(), "\n\t<&\n"); // in one piece, line ends as XML 1.0 2.11 has them
    EXPECT_EQ(node->next()->kind(), XmlNode::Kind::Comment);
    EXPECT_EQ(node->next()->next()->kind(), XmlNode::Kind::Instruction);
    EXPECT_EQ(node->next()->next()->next(), nullptr);
    EXPECT_STREQ(document.root()->innerText().c_str(), " \n\t<&\n");
}

TEST(Xml, FailuresTellLineAndColumn) {
    const struct {
        const char* text;
        int line, column;
        const char* message;
    } cases[] = {
        {"", 1, 1, "no element found"},
        {"<a>\n  & b</a>", 2, 4, "not well-formed (invalid token)"},
        {"<a>\n<b></a>", 2, 6, "mismatched tag"},
        {"<a/><b/>", 1, 5, "junk after document element"},
        {"<a x='1' x='2'/>", 1, 10, "duplicate attribute"},
        {"<a>&other;</a>", 1, 4, "undefined entity"},
        {"<a>\xff</a>", 1, 4, "not well-formed (invalid token)"},
        {"<a>\x01</a>", 1, 4, "not well-formed (invalid token)"},
        {"<a>&#0;</a>", 1, 4, "reference to invalid character number"},
        {"<!DOCTYPE a><a/>", 1, 0, "document type declarations are not allowed"},
        {"<!DOCTYPE a [<!ENTITY x 'y'>]><a>&x;</a>", 1, 0, "document type declarations are not allowed"},
    };
    for (const auto& c : cases) {
        XmlDocument document;
        EXPECT_FALSE(document.parse(c.text)) << c.text;
        EXPECT_EQ(document.root(), nullptr);
        EXPECT_NE(document.errorCode(), 0);
        EXPECT_EQ(document.errorLine(), c.line) << c.text;
        EXPECT_TRUE(c.column == 0 || document.errorColumn() == c.column) << c.text << document.errorColumn();
        EXPECT_STREQ(document.errorText(), c.message) << c.text;
    }
}

TEST(Xml, ADocumentMayBeParsedAgain) {
    XmlDocument document;
    ASSERT_TRUE(document.parse("<a/>"));
    EXPECT_FALSE(document.parse("<b>"));
    EXPECT_EQ(document.root(), nullptr);
    ASSERT_TRUE(document.parse("<c/>"));
    EXPECT_STREQ(document.root()->tag(), "c");
    EXPECT_EQ(document.errorCode(), 0);
    EXPECT_STREQ(document.errorText(), "");
    EXPECT_FALSE(document.parse("<a/>\0", 5)); // a NUL is no character of XML
    EXPECT_FALSE(document.parse(nullptr));
}

std::string nested(size_t depth) {
    std::string text;
    for (size_t i = 0; i < depth; ++i)
        text += "<a>";
    for (size_t i = 0; i < depth; ++i)
        text += "</a>";
    return text;
}

std::string withAttributes(size_t count) {
    std::string text = "<a";
    for (size_t i = 0; i < count; ++i)
        text += " a" + std::to_string(i) + "=''";
    return text + "/>";
}

TEST(Xml, LimitsHoldToTheLastUnit) {
    XmlDocument document;
    EXPECT_TRUE(document.parse(nested(64).c_str()));
    EXPECT_FALSE(document.parse(nested(65).c_str()));
    EXPECT_STREQ(document.errorText(), "elements nested too deep");
    EXPECT_FALSE(document.parse(nested(100000).c_str()));

    EXPECT_TRUE(document.parse(withAttributes(4096).c_str()));
    EXPECT_STREQ(document.root()->attributeAt(4095).name, "a4095");
    EXPECT_FALSE(document.parse(withAttributes(4097).c_str()));
    EXPECT_STREQ(document.errorText(), "too many attributes");

    std::string big = "<a>" + std::string(XmlDocument::maxBytes - 7, 'x') + "</a>";
    ASSERT_EQ(big.size(), XmlDocument::maxBytes);
    EXPECT_TRUE(document.parse(big.c_str(), big.size()));
    EXPECT_EQ(document.root()->innerText().len(), static_cast<int>(XmlDocument::maxBytes) - 7);
    big += "\n";
    EXPECT_FALSE(document.parse(big.c_str(), big.size()));
    EXPECT_STREQ(document.errorText(), "document too long");

    std::string many = "<a>";
    for (size_t i = 1; i < XmlDocument::maxNodes; ++i)
        many += "<b/>";
    EXPECT_TRUE(document.parse((many + "</a>").c_str()));
    EXPECT_FALSE(document.parse((many + "<b/></a>").c_str()));
    EXPECT_STREQ(document.errorText(), "too many nodes");
}

TEST(Xml, WhatIsEscapedReadsBackTheSame) {
    EXPECT_STREQ(xmlEscape("<a b=\"c\" d='e'>&\t\n\r\u00fc").c_str(),
                 "&lt;a b=&quot;c&quot; d=&apos;e&apos;&gt;&amp;&#9;&#10;&#13;\u00fc");
    EXPECT_STREQ(xmlEscape("\x01\xc3\x28\xef\xbf\xbe").c_str(), "\ufffd\ufffd(\ufffd");
    EXPECT_STREQ(xmlEscape(nullptr).c_str(), "");
    std::string all;
    for (int c = 1; c < 128; ++c)
        all += static_cast<char>(c);
    XmlDocument document;
    ASSERT_TRUE(document.parse(strFormat("<a v=\"%s\"/>", xmlEscape(all.c_str()).c_str()).c_str()));
    const std::string read = document.root()->attribute("v");
    EXPECT_EQ(read.substr(read.find(' ')), all.substr(31));
    EXPECT_NE(read.find("\t\n"), std::string::npos);
}

} // namespace
} // namespace plat

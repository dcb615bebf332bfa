#include "plat/Markup.h"

#include "plat/Exception.h"
#include "plat/Xml.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace plat {
namespace {

constexpr int boldWeight = 700;
constexpr int maxSize = 10000;
constexpr int maxWeight = 1000;
constexpr double maxPadding = 10000;
constexpr const char* bullet = "\u2022 ";

/// A number as it leads `text`; false if there is none. What is no finite number counts as 0.
bool readNumber(const std::string& text, double& number, const char** behind = nullptr) {
    char* end = nullptr;
    number = std::strtod(text.c_str(), &end);
    if (!std::isfinite(number))
        number = 0;
    if (behind)
        *behind = end;
    return end != text.c_str();
}

std::string trimmed(std::string_view text) {
    constexpr const char* blanks = " \t\r\n";
    const size_t start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos)
        return {};
    return std::string(text.substr(start, text.find_last_not_of(blanks) - start + 1));
}

/// Calls `apply(name, value)` for each "name:value" of a style attribute.
template <class Apply>
void forEachProperty(std::string_view style, Apply apply) {
    while (!style.empty()) {
        const size_t end = std::min(style.find(';'), style.size());
        const std::string_view pair = style.substr(0, end);
        style.remove_prefix(std::min(end + 1, style.size()));
        const size_t colon = pair.find(':');
        if (colon != std::string_view::npos)
            apply(trimmed(pair.substr(0, colon)), trimmed(pair.substr(colon + 1)));
    }
}

bool names(const std::string& name, const char* property) { return name.find(property) != std::string::npos; }

void setSize(Markup::Style& style, const std::string& value) {
    double number = 0;
    const char* unit = nullptr;
    if (!readNumber(value, number, &unit))
        return;
    if (trimmed(unit) == "%")
        number = number * Markup::Style::defaultSize / 100;
    style.size = static_cast<int>(std::lround(std::clamp<double>(number, 1, maxSize)));
}

void setStyleProperty(Markup::Style& style, const std::string& name, const std::string& value) {
    double number = 0;
    if (names(name, "font-style")) {
        if (value == "normal")
            style.flags = 0;
        else if (value == "italic")
            style.flags |= Markup::Italic;
    } else if (names(name, "font-size")) {
        setSize(style, value);
    } else if (names(name, "font-weight")) {
        if (readNumber(value, number))
            style.weight = static_cast<int>(std::lround(std::clamp<double>(number, 1, maxWeight)));
    } else if (names(name, "text-decoration")) {
        if (value == "underline")
            style.flags |= Markup::Underline;
    } else if (names(name, "color")) {
        style.color = value.c_str();
    }
}

Markup::Align parseAlign(const std::string& value) {
    if (value == "right")
        return Markup::Right;
    if (value == "center")
        return Markup::Center;
    return value == "justify" ? Markup::Justify : Markup::Left;
}

/// What a block takes over from the div around it.
struct BlockLook {
    Markup::Align align = Markup::Left;
    double paddingLeft = 0;
    double paddingRight = 0;
};

void setBlockProperty(BlockLook& look, const std::string& name, const std::string& value) {
    double number = 0;
    if (names(name, "text-align"))
        look.align = parseAlign(value);
    else if (names(name, "padding-left") && readNumber(value, number))
        look.paddingLeft += std::clamp<double>(number, 0, maxPadding);
    else if (names(name, "padding-right") && readNumber(value, number))
        look.paddingRight += std::clamp<double>(number, 0, maxPadding);
}

/// Turns the tree of elements into blocks of runs.
class Walker {
public:
    void walk(const XmlNode& parent, const Markup::Style& style) {
        for (const XmlNode* node = parent.firstChild(); node; node = node->next()) {
            if (node->kind() == XmlNode::Kind::Text)
                addRun(style, node->text());
            else if (node->kind() == XmlNode::Kind::Element)
                element(*node, style);
            else
                throw ExceptionFmt("Unexpected node type %d", static_cast<int>(node->kind()));
        }
    }

    void checkBody(const XmlNode& body, Markup::Style& style) { attributes(body, style, "class"); }

    std::vector<Markup::Block> blocks;

private:
    void element(const XmlNode& node, Markup::Style style) {
        if (node.isElement("div"))
            return block(node, style);
        if (node.isElement("a"))
            return link(node, style);
        if (node.isElement("br")) {
            noAttributes(node);
            addRun(style, "\n");
        } else if (node.isElement("b")) {
            noAttributes(node);
            style.weight = boldWeight;
        } else if (node.isElement("i")) {
            noAttributes(node);
            style.flags |= Markup::Italic;
        } else if (node.isElement("u")) {
            noAttributes(node);
            style.flags |= Markup::Underline;
        } else if (node.isElement("li")) {
            attributes(node, style);
            beginItem(style);
        } else if (node.isElement("span") || node.isElement("font") || node.isElement("ul")) {
            attributes(node, style);
        } else {
            throw ExceptionFmt("Unexpected tag %s", node.tag());
        }
        walk(node, style);
    }

    void block(const XmlNode& node, Markup::Style& style) {
        attributes(node, style);
        const BlockLook outer = look;
        forEachProperty(strOrEmpty(node.attribute("style")), [this](const std::string& name, const std::string& value) {
            setBlockProperty(look, name, value);
        });
        beginBlock();
        walk(node, style);
        look = outer;
        open = false;
    }

    void link(const XmlNode& node, Markup::Style& style) {
        attributes(node, style, "href");
        const char* const href = node.attribute("href");
        if (!href)
            throw ExceptionFmt("Invalid hyperlink spec!");
        style.link = href;
        const size_t before = runCount;
        walk(node, style);
        if (runCount == before)
            addRun(style, nullptr);
    }

    void beginItem(const Markup::Style& style) {
        const String* const last = lastText();
        if (last && !endsWith(last->get(), "\n"))
            addRun(style, "\n");
        addRun(style, bullet);
    }

    /// The text that ends the open block; null while the block is empty.
    const String* lastText() const {
        if (!open || blocks.back().runs.empty())
            return nullptr;
        return &blocks.back().runs.back().text;
    }

    void beginBlock() {
        blocks.push_back({look.align, look.paddingLeft, look.paddingRight, {}});
        open = true;
    }

    void addRun(const Markup::Style& style, const char* text) {
        if (!open)
            beginBlock();
        blocks.back().runs.push_back({style, text});
        ++runCount;
    }

    static void noAttributes(const XmlNode& node) {
        if (node.attributeCount() > 0)
            unexpected(node.attributeAt(0));
    }

    static void attributes(const XmlNode& node, Markup::Style& style, const char* further = nullptr) {
        for (size_t i = 0; i < node.attributeCount(); ++i) {
            const XmlNode::Attribute& attr = node.attributeAt(i);
            if (strEquals(attr.name, "style"))
                forEachProperty(attr.value, [&style](const std::string& name, const std::string& value) {
                    setStyleProperty(style, name, value);
                });
            else if (strEquals(attr.name, "color"))
                style.color = attr.value;
            else if (strEquals(attr.name, "size"))
                setSize(style, attr.value);
            else if (!further || !strEquals(attr.name, further))
                unexpected(attr);
        }
    }

    [[noreturn]] static void unexpected(const XmlNode::Attribute& attr) {
        throw ExceptionFmt("Unexpected attribute (%s = %s)", attr.name, attr.value);
    }

    BlockLook look;
    bool open = false; // the last of `blocks` takes runs
    size_t runCount = 0;
};

void tell(const Markup::Block& block, Markup::Handler& handler) {
    handler.beginBlock(block.align, block.paddingLeft, block.paddingRight);
    for (const Markup::Run& run : block.runs) {
        if (run.style.link.isNull())
            handler.addText(run.style, run.text.c_str());
        else
            handler.addLink(run.style, run.text.get(), run.style.link.c_str());
    }
    handler.endBlock();
}

} // namespace

Markup::ParserHtml& Markup::ParserHtml::instance() {
    static ParserHtml parser;
    return parser;
}

void Markup::ParserHtml::layout(const char* text, Layout* layout) { parse(text, layout); }

void Markup::ParserHtml::parse(const char* text, Handler* handler) {
    const std::string wrapped =
        std::string("<?xml version=\"1.0\"?>\n<body class=\"mui-markup\">") + strOrEmpty(text) + "</body>";
    XmlDocument document;
    if (!document.parse(wrapped.c_str(), wrapped.size(), XmlDocument::Space::Keep))
        throw ExceptionFmt("XML error %i:%i %s", document.errorLine(), document.errorColumn(), document.errorText());
    Walker walker;
    Style style;
    walker.checkBody(*document.root(), style);
    walker.walk(*document.root(), style);
    for (const Block& block : walker.blocks)
        tell(block, *handler);
}

void Markup::Stripper::addText(const Style&, const char* text) { append(text); }

void Markup::Stripper::addLink(const Style&, const char* text, const char* href) { append(text ? text : href); }

String Markup::strip(const char* text) {
    Stripper stripper;
    ParserHtml::instance().parse(text, &stripper);
    return stripper.take();
}

} // namespace plat

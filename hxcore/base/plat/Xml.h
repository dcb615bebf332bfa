// A small tree of an XML document, read strictly.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <cstddef>
#include <memory>

namespace plat {

/// A node of an XmlDocument, which owns it and its texts.
///
/// Walk the children with firstChild() and next(); those of other kinds than Element have no tag and no children.
class XmlNode {
public:
    enum class Kind { Element = 1, Text = 3, Instruction = 7, Comment = 8 }; ///< numbers of DOM Level 1

    struct Attribute {
        const char* name;
        const char* value;
    };

    Kind kind() const { return kind_; }
    bool isElement(const char* tag) const; ///< an element of exactly this tag
    const char* tag() const { return kind_ == Kind::Element ? content : ""; }
    const char* text() const { return kind_ == Kind::Text ? content : ""; }

    const char* attribute(const char* name) const; ///< null if absent
    size_t attributeCount() const { return attrCount; }
    const Attribute& attributeAt(size_t index) const { return attrs[index]; } ///< in the order of the document

    size_t countChildren(const char* tag) const;
    const XmlNode* child(const char* tag, size_t index = 0) const; ///< null if there are fewer
    const XmlNode* firstChild() const { return first; }
    const XmlNode* next() const { return sibling; }

    /// All text directly in this element, joined.
    String innerText() const;

private:
    friend class XmlBuilder;

    Kind kind_ = Kind::Element;
    const char* content = ""; // tag or text
    Attribute* attrs = nullptr;
    size_t attrCount = 0;
    XmlNode* first = nullptr;
    XmlNode* last = nullptr;
    XmlNode* sibling = nullptr;
};

/// Parses a document and owns its nodes.
///
/// Strict: well-formed XML only, no DOCTYPE, so no entities but the five of XML. Elements nest at most 64 deep, with at
/// most 4,096 attributes each; a document has at most 16 MiB and 1,048,576 nodes.
class XmlDocument : private NonCopyable {
public:
    /// What becomes of text. Drop keeps only text that isn't all white space, and neither comments nor instructions;
    /// Keep keeps every node as it was written.
    enum class Space { Drop, Keep };

    static constexpr size_t maxBytes = 16u << 20;
    static constexpr size_t maxDepth = 64;
    static constexpr size_t maxAttributes = 4096;
    static constexpr size_t maxNodes = 1u << 20;

    XmlDocument();
    ~XmlDocument();

    /// False on a failure, which the error functions then tell; there is no root then.
    bool parse(const char* text, size_t lenBytes, Space space = Space::Drop);
    bool parse(const char* text, Space space = Space::Drop);

    const XmlNode* root() const { return root_; } ///< null before a parse that succeeded

    int errorCode() const { return code; }     ///< 0 for none
    int errorLine() const { return line; }     ///< from 1
    int errorColumn() const { return column; } ///< from 1, in bytes
    const char* errorText() const { return message.c_str(); }

private:
    friend class XmlBuilder;
    struct Store;

    std::unique_ptr<Store> store;
    XmlNode* root_ = nullptr;
    int code = 0;
    int line = 0;
    int column = 0;
    String message;
};

/// `text` as it must stand in an attribute value or between tags; null gives "".
///
/// White space other than blanks is written as a reference, so that it survives. What XML can't hold (control
/// characters, invalid UTF-8) becomes U+FFFD.
String xmlEscape(const char* text);

} // namespace plat

#include "plat/Xml.h"

#include "plat/DString.h"
#include "plat/utf8.h"

#include <expat.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

namespace plat {
namespace {

constexpr size_t chunkBytes = 64UL * 1024;

/// Reasons of our own to refuse a document, numbered behind those of the parser.
enum Refusal { RefusedDoctype = 1001, RefusedSize, RefusedDepth, RefusedAttributes, RefusedNodes };

const char* refusalText(int code) {
    switch (code) {
    case RefusedDoctype:
        return "document type declarations are not allowed";
    case RefusedSize:
        return "document too long";
    case RefusedDepth:
        return "elements nested too deep";
    case RefusedAttributes:
        return "too many attributes";
    default:
        return "too many nodes";
    }
}

bool isSpace(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; });
}

} // namespace

/// Nodes and texts of a document; none moves while it grows.
struct XmlDocument::Store {
    /// Alignments are powers of two.
    char* take(size_t lenBytes, size_t alignment = 1) {
        const size_t gap = room & (alignment - 1); // a chunk ends aligned
        if (lenBytes + gap > room)
            return takeFresh(lenBytes, alignment);
        char* const taken = free + gap;
        free = taken + lenBytes;
        room -= lenBytes + gap;
        return taken;
    }
    char* takeFresh(size_t lenBytes, size_t alignment) {
        room = std::max(chunkBytes, (lenBytes + alignment - 1) & ~(alignment - 1));
        chunks.push_back(std::make_unique_for_overwrite<char[]>(room));
        free = chunks.back().get();
        return take(lenBytes, alignment);
    }
    template <class T>
    T* make(size_t count) {
        static_assert(std::is_trivially_destructible_v<T>);
        return new (take(count * sizeof(T), alignof(T))) T[count];
    }
    const char* keep(const char* text, size_t lenBytes) {
        char* const kept = take(lenBytes + 1);
        std::memcpy(kept, text, lenBytes);
        kept[lenBytes] = 0;
        return kept;
    }
    const char* keep(const char* text) { return keep(text, std::strlen(text)); }

    size_t nodes = 0;
    std::vector<std::unique_ptr<char[]>> chunks;
    char* free = nullptr;
    size_t room = 0;
};

/// One run of the parser over a document.
class XmlBuilder : private NonCopyable {
public:
    XmlBuilder(XmlDocument& target, XmlDocument::Space spaceMode)
        : document(target), store(*target.store), space(spaceMode), parser(XML_ParserCreate(nullptr)) {
        if (!parser)
            throw std::bad_alloc();
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, onStart, onEnd);
        XML_SetCharacterDataHandler(parser, onText);
        XML_SetStartDoctypeDeclHandler(parser, onDoctype);
        if (space == XmlDocument::Space::Keep) {
            XML_SetCommentHandler(parser, onComment);
            XML_SetProcessingInstructionHandler(parser, onInstruction);
        }
    }
    ~XmlBuilder() { XML_ParserFree(parser); }

    bool run(const char* text, size_t lenBytes) {
        const bool parsed = lenBytes <= XmlDocument::maxBytes &&
                            XML_Parse(parser, text, static_cast<int>(lenBytes), XML_TRUE) == XML_STATUS_OK;
        if (parsed && !refusal)
            return true;
        if (lenBytes > XmlDocument::maxBytes)
            refusal = RefusedSize;
        document.code = refusal ? refusal : static_cast<int>(XML_GetErrorCode(parser));
        document.line = static_cast<int>(XML_GetCurrentLineNumber(parser));
        document.column = static_cast<int>(XML_GetCurrentColumnNumber(parser)) + 1;
        document.message = refusal ? refusalText(refusal) : XML_ErrorString(XML_GetErrorCode(parser));
        return false;
    }

private:
    static XmlBuilder& of(void* data) { return *static_cast<XmlBuilder*>(data); }
    static void onStart(void* data, const char* tag, const char** attrs) { of(data).start(tag, attrs); }
    static void onEnd(void* data, const char*) { of(data).end(); }
    static void onText(void* data, const char* text, int lenBytes) {
        of(data).pending.append(text, static_cast<size_t>(lenBytes));
    }
    static void onDoctype(void* data, const char*, const char*, const char*, int) { of(data).refuse(RefusedDoctype); }
    static void onComment(void* data, const char* text) { of(data).addOther(XmlNode::Kind::Comment, text); }
    static void onInstruction(void* data, const char* target, const char*) {
        of(data).addOther(XmlNode::Kind::Instruction, target);
    }

    void refuse(int reason) {
        // Further handlers may still be called before the parser stops: the first reason counts.
        if (!refusal)
            refusal = reason;
        XML_StopParser(parser, XML_FALSE);
    }

    XmlNode* add(XmlNode::Kind kind, const char* content, size_t lenBytes) {
        if (refusal)
            return nullptr;
        if (store.nodes >= XmlDocument::maxNodes) {
            refuse(RefusedNodes);
            return nullptr;
        }
        ++store.nodes;
        XmlNode& node = *store.make<XmlNode>(1);
        node.kind_ = kind;
        node.content = store.keep(content, lenBytes);
        if (open.empty()) {
            document.root_ = &node;
            return &node;
        }
        XmlNode* const parent = open.back();
        (parent->last ? parent->last->sibling : parent->first) = &node;
        parent->last = &node;
        return &node;
    }

    void flushText() {
        if (!pending.empty() && !open.empty() && (space == XmlDocument::Space::Keep || !isSpace(pending)))
            add(XmlNode::Kind::Text, pending.data(), pending.size());
        pending.clear();
    }

    void start(const char* tag, const char** attrs) {
        flushText();
        if (open.size() >= XmlDocument::maxDepth)
            return refuse(RefusedDepth);
        const auto attrCount = static_cast<size_t>(XML_GetSpecifiedAttributeCount(parser)) / 2;
        if (attrCount > XmlDocument::maxAttributes)
            return refuse(RefusedAttributes);
        XmlNode* const node = add(XmlNode::Kind::Element, tag, std::strlen(tag));
        if (!node)
            return;
        open.push_back(node);
        if (attrCount == 0)
            return;
        node->attrs = store.make<XmlNode::Attribute>(attrCount);
        node->attrCount = attrCount;
        for (size_t i = 0; i < attrCount; ++i)
            node->attrs[i] = {store.keep(attrs[2 * i]), store.keep(attrs[2 * i + 1])};
    }

    void end() {
        flushText();
        if (!refusal)
            open.pop_back();
    }

    void addOther(XmlNode::Kind kind, const char* content) {
        if (open.empty())
            return; // before or behind the root
        flushText();
        add(kind, content, std::strlen(content));
    }

    XmlDocument& document;
    XmlDocument::Store& store;
    const XmlDocument::Space space;
    XML_Parser parser;
    std::vector<XmlNode*> open; // from the root down
    std::string pending;        // text arrives in pieces
    int refusal = 0;
};

bool XmlNode::isElement(const char* tag) const {
    tag = strOrEmpty(tag);
    return kind_ == Kind::Element && *content == *tag && strEquals(content, tag);
}

const char* XmlNode::attribute(const char* name) const {
    name = strOrEmpty(name);
    for (size_t i = 0; i < attrCount; ++i) {
        if (*attrs[i].name == *name && strEquals(attrs[i].name, name))
            return attrs[i].value;
    }
    return nullptr;
}

size_t XmlNode::countChildren(const char* tag) const {
    size_t count = 0;
    for (const XmlNode* node = first; node; node = node->sibling)
        count += node->isElement(tag) ? 1 : 0;
    return count;
}

const XmlNode* XmlNode::child(const char* tag, size_t index) const {
    for (const XmlNode* node = first; node; node = node->sibling) {
        if (node->isElement(tag) && index-- == 0)
            return node;
    }
    return nullptr;
}

String XmlNode::innerText() const {
    DString joined;
    for (const XmlNode* node = first; node; node = node->sibling)
        joined.append(node->text());
    return joined.take();
}

XmlDocument::XmlDocument() = default;
XmlDocument::~XmlDocument() = default;

bool XmlDocument::parse(const char* text, size_t lenBytes, Space space) {
    store = std::make_unique<Store>();
    root_ = nullptr;
    code = line = column = 0;
    message = nullptr;
    if (XmlBuilder(*this, space).run(text, lenBytes))
        return true;
    root_ = nullptr;
    store.reset();
    return false;
}

bool XmlDocument::parse(const char* text, Space space) {
    return parse(strOrEmpty(text), std::strlen(strOrEmpty(text)), space);
}

String xmlEscape(const char* text) {
    const String valid = repairUtf8(strOrEmpty(text));
    DString out;
    for (const char* pos = valid.c_str(); *pos; ++pos) {
        switch (*pos) {
        case '&':
            out.append("&amp;");
            break;
        case '<':
            out.append("&lt;");
            break;
        case '>':
            out.append("&gt;");
            break;
        case '"':
            out.append("&quot;");
            break;
        case '\'':
            out.append("&apos;");
            break;
        case '\t':
        case '\n':
        case '\r':
            out.format("&#%d;", *pos);
            break;
        default:
            if (static_cast<unsigned char>(*pos) < 32)
                out.appendChars(replacementChar, 1);
            else
                out.append(pos, 1);
        }
    }
    return out.take();
}

} // namespace plat

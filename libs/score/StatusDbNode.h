// A named node of a status tree.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace rdr {
class InStream;
class OutStream;
} // namespace rdr

namespace score {

class StatusDb;

/// Who is responsible for a node. Every writer of a tree holds one; nodes are told apart by its address.
struct StatusDbOwner {
    StatusDb* db = nullptr;
    bool autoCommit = false; ///< each of this writer's changes is a commit of its own
};

/// One node: a name among its siblings, a sort key, a map of texts, and children in ascending order.
///
/// Children are owned. Among equal `order` a later insertion comes after the earlier ones, and a name is there
/// once only. No operation recurses, so a tree may be as deep as memory allows.
class StatusDbNode : private plat::NonCopyable {
public:
    using Data = std::map<std::string, std::string, std::less<>>;

    static constexpr size_t maxChildren = 65535;     ///< a count is 16 bits on the wire
    static constexpr unsigned maxValueBytes = 10000; ///< of one text in the map
    static constexpr unsigned maxDepth = 4096;       ///< levels of one record; deeper is a read error

    StatusDbNode(const char* nodeName, uint32_t nodeOrder, const StatusDbOwner* nodeOwner);
    ~StatusDbNode();

    /// Reads one record with all below it. Throws plat::ProtocolError past maxDepth.
    static std::unique_ptr<StatusDbNode> read(rdr::InStream& in, const StatusDbOwner* nodeOwner);

    /// Writes the record that read() takes. More than 65535 entries or children is a failed assertion.
    void write(rdr::OutStream& out) const;

    /// Puts a node in its place; a child of the same name is destroyed first. Gives the node.
    StatusDbNode* insert(std::unique_ptr<StatusDbNode> child);
    std::unique_ptr<StatusDbNode> unlink(StatusDbNode* child);

    const std::string& name() const { return name_; }
    uint32_t order() const { return order_; }
    const StatusDbOwner* owner() const { return owner_; }
    void setData(const char* key, const char* value);
    const char* getData(const char* key) const; ///< null if there is none
    const Data& data() const { return data_; }

    StatusDbNode* findChild(std::string_view childName) const; ///< null if there is none
    size_t childCount() const { return count; }
    StatusDbNode* firstChild() const { return head; }
    StatusDbNode* next() const { return next_; }
    StatusDbNode* parent() const { return parent_; }

private:
    using Index = std::unordered_map<std::string_view, StatusDbNode*>;

    static std::unique_ptr<StatusDbNode> readFields(rdr::InStream& in, const StatusDbOwner* nodeOwner);
    void writeFields(rdr::OutStream& out) const;
    void link(StatusDbNode* child);

    std::string name_;
    uint32_t order_;
    const StatusDbOwner* owner_;
    Data data_;
    StatusDbNode* parent_ = nullptr;
    StatusDbNode* prev_ = nullptr;
    StatusDbNode* next_ = nullptr;
    StatusDbNode* head = nullptr;
    StatusDbNode* tail = nullptr;
    size_t count = 0;
    std::unique_ptr<Index> index; // by name, once the children are many; the names are the children's own
};

} // namespace score

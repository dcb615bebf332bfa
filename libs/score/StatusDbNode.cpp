#include "score/StatusDbNode.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "rdr/InStream.h"
#include "rdr/OutStream.h"

#include <vector>

namespace score {
namespace {
// Trees have tens of nodes, where a walk is the fastest search. Past this many siblings an index pays.
constexpr size_t indexFrom = 32;
} // namespace

StatusDbNode::StatusDbNode(const char* nodeName, uint32_t nodeOrder, const StatusDbOwner* nodeOwner)
    : name_(nodeName ? nodeName : ""), order_(nodeOrder), owner_(nodeOwner) {}

StatusDbNode::~StatusDbNode() {
    // The children of children move up into one list, so that a deep tree needs no stack.
    index.reset();
    for (StatusDbNode* node = head; node;) {
        if (node->head) {
            tail->next_ = node->head;
            tail = node->tail;
            node->head = nullptr;
        }
        StatusDbNode* following = node->next_;
        delete node;
        node = following;
    }
}

std::unique_ptr<StatusDbNode> StatusDbNode::readFields(rdr::InStream& in, const StatusDbOwner* nodeOwner) {
    const plat::String name = in.readString8(/*repairUtf8=*/true);
    const uint32_t order = in.readU32();
    auto node = std::make_unique<StatusDbNode>(name.c_str(), order, nodeOwner);
    for (unsigned left = in.readU16(); left > 0; --left) {
        const plat::String key = in.readString8(/*repairUtf8=*/true);
        const plat::String value = in.readString32(maxValueBytes, /*repairUtf8=*/true);
        node->setData(key.c_str(), value.c_str());
    }
    return node;
}

std::unique_ptr<StatusDbNode> StatusDbNode::read(rdr::InStream& in, const StatusDbOwner* nodeOwner) {
    struct Level {
        StatusDbNode* node;
        unsigned childrenLeft;
    };
    std::unique_ptr<StatusDbNode> top = readFields(in, nodeOwner);
    std::vector<Level> levels{{top.get(), in.readU16()}};
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.childrenLeft == 0) {
            levels.pop_back();
            continue;
        }
        --level.childrenLeft;
        if (levels.size() >= maxDepth)
            throw plat::ProtocolError("Status node nested too deep");
        StatusDbNode* child = level.node->insert(readFields(in, nodeOwner));
        levels.push_back({child, in.readU16()});
    }
    return top;
}

void StatusDbNode::writeFields(rdr::OutStream& out) const {
    ASSERT(data_.size() < 65536);
    ASSERT(count < 65536);
    out.writeString8(name_.c_str());
    out.writeU32(order_);
    out.writeU16(static_cast<uint16_t>(data_.size()));
    for (const auto& [key, value] : data_) {
        out.writeString8(key.c_str());
        out.writeString32(value.c_str(), maxValueBytes);
    }
    out.writeU16(static_cast<uint16_t>(count));
}

void StatusDbNode::write(rdr::OutStream& out) const {
    // In the order of the wire: a node, then its first child, and from the last child on to the parent's next.
    for (const StatusDbNode* node = this; node;) {
        node->writeFields(out);
        if (node->head) {
            node = node->head;
            continue;
        }
        while (node != this && !node->next_)
            node = node->parent_;
        node = node == this ? nullptr : node->next_;
    }
}

StatusDbNode* StatusDbNode::insert(std::unique_ptr<StatusDbNode> child) {
    if (StatusDbNode* old = findChild(child->name_))
        unlink(old);
    StatusDbNode* node = child.release();
    link(node);
    ++count;
    if (index) {
        index->emplace(node->name_, node);
    } else if (count >= indexFrom) {
        index = std::make_unique<Index>();
        for (StatusDbNode* each = head; each; each = each->next_)
            index->emplace(each->name_, each);
    }
    return node;
}

void StatusDbNode::link(StatusDbNode* child) {
    // Behind every sibling of the same or a lower order; most come in ascending order, so the search begins at the end.
    StatusDbNode* before = tail;
    while (before && before->order_ > child->order_)
        before = before->prev_;
    child->parent_ = this;
    child->prev_ = before;
    child->next_ = before ? before->next_ : head;
    (child->prev_ ? child->prev_->next_ : head) = child;
    (child->next_ ? child->next_->prev_ : tail) = child;
}

std::unique_ptr<StatusDbNode> StatusDbNode::unlink(StatusDbNode* child) {
    if (index)
        index->erase(child->name_);
    (child->prev_ ? child->prev_->next_ : head) = child->next_;
    (child->next_ ? child->next_->prev_ : tail) = child->prev_;
    child->parent_ = child->prev_ = child->next_ = nullptr;
    --count;
    return std::unique_ptr<StatusDbNode>(child);
}

void StatusDbNode::setData(const char* key, const char* value) { data_[key ? key : ""] = value ? value : ""; }

const char* StatusDbNode::getData(const char* key) const {
    const auto found = data_.find(std::string_view(key));
    return found == data_.end() ? nullptr : found->second.c_str();
}

StatusDbNode* StatusDbNode::findChild(std::string_view childName) const {
    if (index) {
        const auto found = index->find(childName);
        return found == index->end() ? nullptr : found->second;
    }
    StatusDbNode* node = head;
    while (node && node->name_ != childName)
        node = node->next_;
    return node;
}

} // namespace score

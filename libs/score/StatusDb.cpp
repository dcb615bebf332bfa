#include "score/StatusDb.h"

#include "plat/Assert.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace score {
namespace {
plat::LogSrc log("StatusDb");

// Splits at the last "/": the parent's path, and the name of the child.
std::pair<std::string, std::string> splitPath(const char* path) {
    const std::string whole(path ? path : "");
    const size_t slash = whole.rfind('/');
    if (slash == std::string::npos)
        return {"", whole};
    return {whole.substr(0, slash), whole.substr(slash + 1)};
}
} // namespace

StatusDb::StatusDb(const char* name) : rootNode(name, 1, nullptr) {}

StatusDb::~StatusDb() = default;

StatusDb::Node* StatusDb::find(const char* path) const {
    auto* node = const_cast<Node*>(&rootNode);
    std::string_view rest(path ? path : "");
    while (node && !rest.empty()) {
        const size_t slash = rest.find('/');
        const std::string_view component = rest.substr(0, slash);
        if (component.empty())
            break;
        node = node->findChild(component);
        rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash + 1);
    }
    return node;
}

StatusDbTxn StatusDb::beginWrite(const char* path, uint32_t order, const StatusDbOwner* owner, bool replace) {
    auto [parentPath, childName] = splitPath(path);
    Node* parent = find(parentPath.c_str());
    ASSERT(parent);
    Node* child = replace ? nullptr : parent->findChild(childName);
    if (!child)
        child = parent->insert(std::make_unique<Node>(childName.c_str(), order, owner ? owner : parent->owner()));
    return {this, child, std::move(parentPath)};
}

void StatusDb::remove(const char* path, const StatusDbOwner* owner) {
    if (!path || !*path) {
        for (Node* child = rootNode.firstChild(); child;) {
            Node* following = child->next();
            removeMatching(child, owner);
            child = following;
        }
    } else {
        const auto [parentPath, childName] = splitPath(path);
        Node* parent = find(parentPath.c_str());
        if (!parent)
            return;
        if (Node* child = parent->findChild(childName))
            removeMatching(child, owner);
    }
    if (!owner || owner->autoCommit)
        commit();
}

void StatusDb::removeMatching(Node* top, const StatusDbOwner* owner) {
    std::vector<Node*> toVisit{top};
    while (!toVisit.empty()) {
        Node* node = toVisit.back();
        toVisit.pop_back();
        if (node->owner() == owner) {
            const std::string path = listener ? pathOf(node) : std::string();
            node->parent()->unlink(node);
            if (listener)
                listener->nodeRemoved(this, path.c_str());
            continue;
        }
        for (Node* child = node->firstChild(); child; child = child->next())
            toVisit.push_back(child);
    }
}

std::string StatusDb::pathOf(const Node* node) {
    std::vector<const Node*> chain;
    for (; node->parent(); node = node->parent())
        chain.push_back(node);
    std::string path;
    for (auto each = chain.rbegin(); each != chain.rend(); ++each)
        path.append(path.empty() ? "" : "/").append((*each)->name());
    return path;
}

void StatusDb::commit() {
    if (batchOpen)
        return;
    if (listener)
        listener->commit(this);
    // An observer may remove itself or another one: ask again before each call.
    const std::vector<Observer*> toTell(observers.begin(), observers.end());
    for (Observer* observer : toTell)
        if (observers.count(observer) != 0)
            observer->onCommit(this);
}

void StatusDb::setUpdating(bool on) {
    if (batchOpen == on)
        return;
    batchOpen = on;
    if (!on)
        commit();
    if (listener)
        listener->updating(this, on);
}

void StatusDb::republish() {
    setUpdating(/*on=*/true);
    if (listener)
        for (Node* child = rootNode.firstChild(); child; child = child->next())
            listener->nodeChanged(this, "", *child);
    setUpdating(/*on=*/false);
}

void StatusDb::addObserver(Observer* observer, bool add) {
    if (add)
        observers.insert(observer);
    else
        observers.erase(observer);
}

void StatusDb::reportChange(const std::string& parentPath, Node* node) {
    if (listener)
        listener->nodeChanged(this, parentPath.c_str(), *node);
    if (!node->owner() || node->owner()->autoCommit)
        commit();
}

StatusDbTxn::StatusDbTxn(StatusDbTxn&& other) noexcept
    : db(std::exchange(other.db, nullptr)), node_(other.node_), parentPath(std::move(other.parentPath)) {}

StatusDbTxn::~StatusDbTxn() {
    if (!db)
        return;
    try {
        db->reportChange(parentPath, node_);
    } catch (const plat::Exception& e) {
        log.error("Commit failed: %s", e.what());
    }
}

StatusObserver::StatusObserver(StatusDb* first, StatusDb* second) : dbs{first, second} {
    for (StatusDb* db : dbs)
        if (db)
            db->addObserver(this, /*add=*/true);
}

StatusObserver::~StatusObserver() {
    for (StatusDb* db : dbs)
        if (db)
            db->addObserver(this, /*add=*/false);
}

} // namespace score

// The mirrored status tree: named nodes that one side writes and views read on commit.
#pragma once

#include "score/StatusDbNode.h"

#include <set>
#include <string>
#include <string_view>

namespace score {

class StatusDbTxn;

/// A tree of nodes under a root that bears the database's name.
///
/// Paths are node names joined with "/"; null and "" are the root. Writers change nodes; observers learn of it once,
/// at the next commit, when the whole batch has been applied. Observers must not change the tree.
class StatusDb : private plat::NonCopyable {
public:
    using Node = StatusDbNode;

    /// A view. It bears removal, its own too, while a commit is being told.
    class Observer {
    public:
        virtual ~Observer() = default;
        virtual void onCommit(StatusDb* db) = 0;
    };

    /// Passes every single change on, as the owner of the truth must. At most one, absent in a mirror.
    class Listener {
    public:
        virtual ~Listener() = default;
        virtual void nodeChanged(StatusDb*, const char* parentPath, const Node&) { (void)parentPath; }
        virtual void nodeRemoved(StatusDb*, const char* fullPath) { (void)fullPath; }
        virtual void commit(StatusDb*) {}
        virtual void updating(StatusDb*, bool on) { (void)on; }
    };

    explicit StatusDb(const char* name);
    virtual ~StatusDb();

    Node* find(const char* path) const; ///< null if there is none; an empty component ends the walk

    /// The child that the path's last component names, made if it isn't there; with `replace` it is made afresh.
    /// The parent must exist. A null owner inherits the parent's.
    StatusDbTxn beginWrite(const char* path, uint32_t order, const StatusDbOwner* owner, bool replace);

    /// Removes the owner's nodes at or below `path`, sparing nodes of others; from the root for a null or empty path.
    void remove(const char* path, const StatusDbOwner* owner);

    void commit();                                        ///< tells observers, unless a batch is open
    void setUpdating(bool on);                            ///< opens a batch; closing it commits
    void republish();                                     ///< tells the listener every child of the root again
    void addObserver(Observer* observer, bool add);       ///< borrowed
    void setListener(Listener* sink) { listener = sink; } ///< borrowed, may be null

    const std::string& name() const { return rootNode.name(); }
    bool isUpdating() const { return batchOpen; }
    Node& root() { return rootNode; }
    const Node& root() const { return rootNode; }

private:
    friend class StatusDbTxn;

    void reportChange(const std::string& parentPath, Node* node);
    void removeMatching(Node* top, const StatusDbOwner* owner);
    static std::string pathOf(const Node* node);

    Listener* listener = nullptr;
    std::set<Observer*> observers;
    bool batchOpen = false;
    Node rootNode;
};

/// A node being written. Its end reports the change, and commits if the node's owner wants that.
class StatusDbTxn {
public:
    StatusDbTxn(StatusDb* statusDb, StatusDb::Node* written, std::string parent)
        : db(statusDb), node_(written), parentPath(std::move(parent)) {}
    StatusDbTxn(StatusDbTxn&& other) noexcept;
    StatusDbTxn& operator=(StatusDbTxn&&) = delete;
    StatusDbTxn(const StatusDbTxn&) = delete;
    StatusDbTxn& operator=(const StatusDbTxn&) = delete;
    ~StatusDbTxn(); ///< a failure of an observer is logged

    StatusDb::Node* node() const { return node_; }
    StatusDb::Node* operator->() const { return node_; }

private:
    StatusDb* db; // null once moved from
    StatusDb::Node* node_;
    std::string parentPath;
};

/// An observer of one or two databases that joins and leaves by itself.
class StatusObserver : public StatusDb::Observer, private plat::NonCopyable {
public:
    explicit StatusObserver(StatusDb* first, StatusDb* second = nullptr);
    ~StatusObserver() override;

private:
    StatusDb* dbs[2];
};

} // namespace score

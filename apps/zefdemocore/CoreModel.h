// What the stand-in core knows: the nodes that it wrote, the events, the connections.
#pragma once

#include "zefdemocore/CoreLink.h"

#include <map>
#include <string>
#include <vector>

namespace democore {

/// Keeps a small model and tells the UI each change, parents first, then a commit unless a batch is open.
class CoreModel {
public:
    explicit CoreModel(CoreLink* coreLink) : link(coreLink) {} ///< borrowed

    void set(const std::string& path, const std::map<std::string, std::string>& data, uint32_t order = 0);
    void setText(const std::string& path, const std::string& text); ///< under the key "text"
    void remove(const std::string& path);
    void begin();
    void end();
    void commit();

    void setEvent(const std::string& id, uint32_t severity, const std::map<std::string, std::string>& data);
    void removeEvent(const std::string& id);

    void connect(const std::string& user, const std::string& address, const std::string& userType,
                 const std::string& permissions);
    bool disconnect(const std::string& user);                        ///< the first of that name; false if there is none
    void disconnect(const std::string& idA, const std::string& idB); ///< both empty: all

    void sendAll(); ///< both databases again, as an answer to updateStatus

private:
    struct Node {
        uint32_t order = 0;
        std::map<std::string, std::string> data;
    };
    void addParents(const std::string& path);
    void commitUnlessBatch(const char* db);

    CoreLink* link;
    std::map<std::string, Node> nodes; // by path: parents sort first
    std::map<std::string, Node> events;
    std::vector<Connection> connections;
    unsigned nextId = 1;
    bool inBatch = false;
};

} // namespace democore

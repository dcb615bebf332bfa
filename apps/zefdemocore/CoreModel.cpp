#include "zefdemocore/CoreModel.h"

#include <algorithm>

namespace democore {
namespace {
constexpr const char* infoDb = "Info";
constexpr const char* eventDb = "Event";
} // namespace

void CoreModel::addParents(const std::string& path) {
    for (size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        const std::string parent = path.substr(0, slash);
        if (nodes.emplace(parent, Node()).second)
            link->setNode(infoDb, parent, 0, {});
    }
}

void CoreModel::set(const std::string& path, const std::map<std::string, std::string>& data, uint32_t order) {
    addParents(path);
    nodes[path] = {order, data};
    link->setNode(infoDb, path, order, data);
    // A node that is written anew comes without its children.
    for (auto below = nodes.upper_bound(path); below != nodes.end() && below->first.rfind(path + "/", 0) == 0; ++below)
        link->setNode(infoDb, below->first, below->second.order, below->second.data);
    commitUnlessBatch(infoDb);
}

void CoreModel::setText(const std::string& path, const std::string& text) { set(path, {{"text", text}}); }

void CoreModel::remove(const std::string& path) {
    for (auto node = nodes.lower_bound(path); node != nodes.end();) {
        const bool isBelow = node->first == path || node->first.rfind(path + "/", 0) == 0;
        node = isBelow ? nodes.erase(node) : std::next(node);
    }
    link->removeNode(infoDb, path);
    commitUnlessBatch(infoDb);
}

void CoreModel::begin() {
    inBatch = true;
    for (const char* db : {infoDb, eventDb})
        link->setUpdating(db, /*on=*/true);
}

void CoreModel::end() {
    inBatch = false;
    for (const char* db : {infoDb, eventDb})
        link->setUpdating(db, /*on=*/false);
}

void CoreModel::commit() { link->commit(infoDb); }

void CoreModel::commitUnlessBatch(const char* db) {
    if (!inBatch)
        link->commit(db);
}

void CoreModel::setEvent(const std::string& id, uint32_t severity, const std::map<std::string, std::string>& data) {
    events[id] = {severity, data};
    link->setNode(eventDb, id, severity, data);
    commitUnlessBatch(eventDb);
}

void CoreModel::removeEvent(const std::string& id) {
    events.erase(id);
    link->removeNode(eventDb, id);
    commitUnlessBatch(eventDb);
}

void CoreModel::connect(const std::string& user, const std::string& address, const std::string& userType,
                        const std::string& permissions) {
    connections.push_back({user, address, std::to_string(nextId++), "demo", permissions, userType});
    link->addRemConn(connections.back(), /*add=*/true);
}

bool CoreModel::disconnect(const std::string& user) {
    const auto found =
        std::find_if(connections.begin(), connections.end(), [&](const Connection& each) { return each.user == user; });
    if (found == connections.end())
        return false;
    link->addRemConn(*found, /*add=*/false);
    connections.erase(found);
    return true;
}

void CoreModel::disconnect(const std::string& idA, const std::string& idB) {
    std::erase_if(connections, [&](const Connection& each) {
        const bool meant = (idA.empty() && idB.empty()) || (each.idA == idA && each.idB == idB);
        if (meant)
            link->addRemConn(each, /*add=*/false);
        return meant;
    });
}

void CoreModel::sendAll() {
    link->setUpdating(infoDb, /*on=*/true);
    for (const auto& [path, node] : nodes)
        link->setNode(infoDb, path, node.order, node.data);
    if (!inBatch)
        link->setUpdating(infoDb, /*on=*/false);
    link->setUpdating(eventDb, /*on=*/true);
    for (const auto& [id, node] : events)
        link->setNode(eventDb, id, node.order, node.data);
    link->setUpdating(eventDb, /*on=*/false);
}

} // namespace democore

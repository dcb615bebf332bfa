#include "score/StatusEvent.h"

#include "plat/Assert.h"
#include "plat/DString.h"
#include "plat/Exception.h"
#include "plat/numbers.h"
#include "score/Mode.h"

namespace score {
namespace {
constexpr const char* severityNames[] = {"Info", "Warning", "Error"};

// A value from the core; `otherwise` for what is no plain number.
uint32_t numberOf(const char* text, uint32_t otherwise) {
    unsigned value = 0;
    const char* pos = text;
    return pos && plat::parseUInt(&pos, value, 10) && !*pos ? value : otherwise;
}

[[noreturn]] void refuse(const char* expr, int line, const char* format, uint32_t value) {
    plat::DString more;
    more.format(format, static_cast<int>(value));
    throw plat::AssertionFail(expr, __FILE__, line, more.c_str());
}
} // namespace

StatusEvent::StatusEvent(const StatusDbNode& node)
    : id(node.name().c_str()), title(node.getData("title")), description(node.getData("description")),
      solution(node.getData("solution")) {
    if (isValidSeverity(node.order()))
        severity = node.order();
    const char* code = node.getData("recovery");
    if (!code)
        return;
    setRecovery(numberOf(code, /*otherwise=*/UINT32_MAX), node.getData("resolver"),
                numberOf(node.getData("recFlags"), /*otherwise=*/0));
}

const char* StatusEvent::severityName(uint32_t severity) {
    return severity < std::size(severityNames) ? severityNames[severity] : "Invalid";
}

bool StatusEvent::isValidSeverity(uint32_t sev) {
    if (sev > Error)
        refuse("sev <= 2", __LINE__, "Out of range severity value %d", sev);
    return true;
}

bool StatusEvent::isValidRecovery(uint32_t rec) {
    if (rec > CheckUpdate)
        refuse("rec <= 5", __LINE__, "Out of range recovery value %d", rec);
    return true;
}

void StatusEvent::setRecovery(uint32_t code, const char* resolverName, uint32_t flags) {
    isValidRecovery(code);
    const bool named = resolverName && *resolverName;
    if ((code == Resolver1 || code == Resolver2) && !named)
        throw plat::AssertionFail("resolver", __FILE__, __LINE__);
    recovery = code;
    resolver = resolverName;
    recFlags = flags;
    if (code == NeedsOptions)
        recFlags |= productMode() == ProductMode::Service ? ShowsElevation | FollowsOptionsItem : FollowsOptionsItem;
}

StatusEventDb::Resolver::Resolver(StatusEventDb* eventDb, const char* resolverName) : db(eventDb), name(resolverName) {
    db->resolvers[name] = this;
}

StatusEventDb::Resolver::~Resolver() {
    const auto found = db->resolvers.find(name);
    if (found != db->resolvers.end() && found->second == this)
        db->resolvers.erase(found);
}

std::unique_ptr<StatusEvent> StatusEventDb::read(const char* id) const {
    const StatusDbNode* node = id && *id ? root().findChild(id) : nullptr;
    return node ? std::make_unique<StatusEvent>(*node) : nullptr;
}

void StatusEventDb::write(const StatusDbOwner* owner, const StatusEvent& event) {
    const auto number = [](uint32_t value) {
        plat::DString text;
        text.format("%d", static_cast<int>(value));
        return std::string(text.c_str());
    };
    StatusDbTxn txn = beginWrite(event.id.c_str(), event.severity, owner, /*replace=*/true);
    txn->setData("title", event.title.c_str());
    txn->setData("description", event.description.c_str());
    if (!event.solution.isNull())
        txn->setData("solution", event.solution.c_str());
    txn->setData("recovery", number(event.recovery).c_str());
    txn->setData("recFlags", number(event.recFlags).c_str());
    if (!event.resolver.isNull())
        txn->setData("resolver", event.resolver.c_str());
}

uint32_t StatusEventDb::maxSeverity(uint32_t& count) const {
    std::map<uint32_t, uint32_t> counts;
    for (const StatusDbNode* node = root().firstChild(); node; node = node->next())
        if (StatusEvent::isValidSeverity(node->order()))
            ++counts[node->order()];
    count = counts.empty() ? 0 : counts.rbegin()->second;
    return counts.empty() ? 0 : counts.rbegin()->first;
}

std::deque<StatusEvent> StatusEventDb::list() const {
    std::deque<StatusEvent> events;
    for (const StatusDbNode* node = root().firstChild(); node; node = node->next())
        events.emplace_back(*node);
    return events;
}

bool StatusEventDb::hasResolver(const char* name) const { return name && resolvers.find(name) != resolvers.end(); }

void StatusEventDb::resolve(const StatusEvent& event) {
    const auto found = resolvers.find(event.resolver.c_str());
    if (found != resolvers.end())
        found->second->resolve(event.id.c_str());
}

} // namespace score

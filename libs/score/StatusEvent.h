// Events: what the user should know about, each a child of the root of the event database.
#pragma once

#include "plat/String.h"
#include "score/StatusDb.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>

namespace score {

/// One thing the user should know about, as a value.
///
/// Severity and recovery are checked: out of range throws plat::AssertionFail, which the caller may catch.
class StatusEvent {
public:
    enum Severity : uint32_t { Info, Warning, Error };
    enum Recovery : uint32_t { NoRecovery, Resolver1, Resolver2, NeedsOptions, OpenUrl, CheckUpdate };
    enum RecFlag : uint32_t {
        ShowsElevation = 1,    ///< the button bears the elevation mark
        FollowsOptionsItem = 2 ///< the button is off whenever the Options item is
    };

    StatusEvent() = default;
    explicit StatusEvent(const StatusDbNode& node);

    static const char* severityName(uint32_t severity); ///< "Invalid" when out of range
    static bool isValidSeverity(uint32_t severity);     ///< true, or throws plat::AssertionFail
    static bool isValidRecovery(uint32_t recovery);     ///< true, or throws plat::AssertionFail

    /// Throws plat::AssertionFail if the code is out of range, or needs a resolver that isn't given.
    void setRecovery(uint32_t code, const char* resolverName, uint32_t flags);

    plat::String id;
    plat::String title;
    plat::String description;
    plat::String solution; ///< may be null
    uint32_t severity = Info;
    uint32_t recovery = NoRecovery;
    plat::String resolver; ///< may be null
    uint32_t recFlags = 0;
};

/// The database named "Event", with the resolvers that modules enter.
class StatusEventDb : public StatusDb {
public:
    /// Serves "Resolve" for events that name it. Replaces an earlier one of that name.
    class Resolver {
    public:
        Resolver(StatusEventDb* eventDb, const char* resolverName);
        virtual ~Resolver();
        virtual void resolve(const char* id) = 0;

    private:
        StatusEventDb* db;
        std::string name;
    };

    StatusEventDb() : StatusDb("Event") {}

    std::unique_ptr<StatusEvent> read(const char* id) const; ///< null if there is none
    void write(const StatusDbOwner* owner, const StatusEvent& event);

    /// The highest severity present, and how many events have it; 0 and 0 for an empty database.
    uint32_t maxSeverity(uint32_t& count) const;

    std::deque<StatusEvent> list() const; ///< ascending severity
    bool hasResolver(const char* name) const;
    void resolve(const StatusEvent& event); ///< nothing if no resolver of that name is there

private:
    std::map<std::string, Resolver*, std::less<>> resolvers;
};

} // namespace score

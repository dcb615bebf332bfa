#include "sui/Diagnostics.h"

#include "plat/DString.h"
#include "score/StatusDb.h"
#include "score/StatusEvent.h"
#include "sui/TextStyle.h"

namespace sui {
namespace {
constexpr const char* root = "Dgn";
constexpr const char* ruler = "-----------------------------------------------";

const char* textOf(const score::StatusDbNode* node) { return node->getData("text"); }

void appendServer(plat::DString& out, const score::StatusDb& info) {
    const score::StatusDbNode* top = info.find(root);
    if (!top) {
        out.append("No diagnostics available from server\n\n");
        return;
    }
    for (const score::StatusDbNode* section = top->firstChild(); section; section = section->next()) {
        if (!textOf(section) || !section->firstChild())
            continue;
        out.format("%s\n%s\n", textOf(section), ruler);
        for (const score::StatusDbNode* line = section->firstChild(); line; line = line->next()) {
            const plat::String text = textOf(line) ? textOf(line) : "";
            out.append(text.c_str());
            if (text.view().empty() || text.view().back() != '\n')
                out.append("\n");
        }
        out.append("\n");
    }
}

void appendEvents(plat::DString& out, const score::StatusEventDb& events) {
    const auto list = events.list();
    if (list.empty())
        return;
    out.format("\nIssues\n%s", ruler);
    for (const score::StatusEvent& event : list) {
        out.format("\n## %s ##\n%s\n", score::StatusEvent::severityName(event.severity), event.title.c_str());
        out.format("\n%s\n", event.description.c_str());
        if (!event.solution.isEmpty())
            out.format("\n%s", event.solution.c_str());
        out.append("\n");
    }
}
} // namespace

plat::String Diagnostics::report(const score::StatusDb& info, const score::StatusEventDb& events,
                                 const char* displays) {
    plat::DString out;
    appendServer(out, info);
    out.format("Display\n%s\n", ruler);
    out.append(displays);
    out.append("\n");
    appendEvents(out, events);
    return literalText(out.c_str());
}

} // namespace sui

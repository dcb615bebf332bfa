#include "tx/ComposeSequences.h"

#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "tx/dynTextInput.h"

#include <X11/keysym.h>

#include <cstdlib>
#include <cstring>

namespace tx {
namespace {

plat::LogSrc log("ComposeSequences");

/// The locale whose Compose file counts (Compose(5)); the plain one has no sequences.
const char* composeLocale() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value)
            return std::strcmp(value, "C") == 0 || std::strcmp(value, "POSIX") == 0 ? "en_US.UTF-8" : value;
    }
    return "en_US.UTF-8";
}

bool begins(uint32_t keysym) { return keysym == XK_Multi_key || (keysym >= XK_dead_grave && keysym <= XK_dead_greek); }

bool hasOwnTable() {
    const plat::ConfigParameter* file = plat::Configuration::global().find("DeadKeyFile", /*inChildren=*/true);
    return file && !file->getValueStr().isEmpty();
}

} // namespace

ComposeSequences& ComposeSequences::instance() {
    static ComposeSequences sequences;
    return sequences;
}

bool ComposeSequences::load() {
    if (loaded)
        return state != nullptr;
    loaded = true;
    try {
        xkb_context* context = dynTextInput::xkb_context_new(XKB_CONTEXT_NO_FLAGS);
        xkb_compose_table* table = nullptr;
        if (context)
            table =
                dynTextInput::xkb_compose_table_new_from_locale(context, composeLocale(), XKB_COMPOSE_COMPILE_NO_FLAGS);
        if (context && !table) // a locale that the system doesn't know
            table =
                dynTextInput::xkb_compose_table_new_from_locale(context, "en_US.UTF-8", XKB_COMPOSE_COMPILE_NO_FLAGS);
        if (table)
            state = dynTextInput::xkb_compose_state_new(table, XKB_COMPOSE_STATE_NO_FLAGS);
    } catch (const plat::DynamicFnLoadFailed& e) {
        log.info("no compose sequences: %s", e.what());
    }
    return state != nullptr;
}

ComposeSequences::Result ComposeSequences::feed(uint32_t keysym, plat::String* text) {
    // The Compose files begin every sequence with one of these.
    if ((!composing && !begins(keysym)) || hasOwnTable() || !load())
        return Result::Ordinary;
    if (dynTextInput::xkb_compose_state_feed(state, keysym) == XKB_COMPOSE_FEED_IGNORED)
        return Result::Ordinary; // Shift, say
    char utf8[64] = "";
    switch (dynTextInput::xkb_compose_state_get_status(state)) {
    case XKB_COMPOSE_COMPOSING:
        composing = true;
        return Result::Swallowed;
    case XKB_COMPOSE_COMPOSED:
        dynTextInput::xkb_compose_state_get_utf8(state, static_cast<char*>(utf8), sizeof(utf8));
        *text = utf8;
        reset();
        return Result::Text;
    case XKB_COMPOSE_CANCELLED:
        reset();
        return Result::Swallowed;
    default:
        reset();
        return Result::Ordinary;
    }
}

void ComposeSequences::reset() {
    composing = false;
    if (state)
        dynTextInput::xkb_compose_state_reset(state);
}

} // namespace tx

// The library of compose sequences, loaded when it is first needed.
#pragma once

#include "plat/DynamicFn.h"

#include <xkbcommon/xkbcommon-compose.h>

namespace tx::dynTextInput {

/// One entry per function; calling one that is missing throws plat::DynamicFnLoadFailed.
template <class T>
using Fn = plat::DynamicFn<T>;

constexpr const char* xkbcommon = "xkbcommon[0]";
inline const Fn<decltype(::xkb_context_new)> xkb_context_new{xkbcommon, "xkb_context_new"};
inline const Fn<decltype(::xkb_compose_table_new_from_locale)> xkb_compose_table_new_from_locale{
    xkbcommon, "xkb_compose_table_new_from_locale"};
inline const Fn<decltype(::xkb_compose_state_new)> xkb_compose_state_new{xkbcommon, "xkb_compose_state_new"};
inline const Fn<decltype(::xkb_compose_state_feed)> xkb_compose_state_feed{xkbcommon, "xkb_compose_state_feed"};
inline const Fn<decltype(::xkb_compose_state_reset)> xkb_compose_state_reset{xkbcommon, "xkb_compose_state_reset"};
inline const Fn<decltype(::xkb_compose_state_get_status)> xkb_compose_state_get_status{xkbcommon,
                                                                                       "xkb_compose_state_get_status"};
inline const Fn<decltype(::xkb_compose_state_get_utf8)> xkb_compose_state_get_utf8{xkbcommon,
                                                                                   "xkb_compose_state_get_utf8"};
inline const Fn<decltype(::xkb_compose_state_get_one_sym)> xkb_compose_state_get_one_sym{
    xkbcommon, "xkb_compose_state_get_one_sym"};

} // namespace tx::dynTextInput

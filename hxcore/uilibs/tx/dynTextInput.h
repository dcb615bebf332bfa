// The client libraries for text input, loaded when they are first needed.
#pragma once

#include "plat/DynamicFn.h"
#include "tx/xlib.h"

#include <X11/Xlib-xcb.h>
#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imclient.h>
#include <xkbcommon/xkbcommon-compose.h>

namespace tx::dynTextInput {

/// One entry per function; calling one that is missing throws plat::DynamicFnLoadFailed.
template <class T>
using Fn = plat::DynamicFn<T>;

// Compose sequences.
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

// Input methods that speak XIM. Nothing here waits for one.
constexpr const char* imdkit = "xcb-imdkit[1]";
inline const Fn<decltype(::XGetXCBConnection)> XGetXCBConnection{"X11-xcb[1]", "XGetXCBConnection"};
inline const Fn<decltype(::xcb_flush)> xcb_flush{"xcb[1]", "xcb_flush"};
inline const Fn<decltype(::xcb_compound_text_init)> xcb_compound_text_init{imdkit, "xcb_compound_text_init"};
inline const Fn<decltype(::xcb_compound_text_to_utf8)> xcb_compound_text_to_utf8{imdkit, "xcb_compound_text_to_utf8"};
inline const Fn<decltype(::xcb_xim_create)> xcb_xim_create{imdkit, "xcb_xim_create"};
inline const Fn<decltype(::xcb_xim_destroy)> xcb_xim_destroy{imdkit, "xcb_xim_destroy"};
inline const Fn<decltype(::xcb_xim_close)> xcb_xim_close{imdkit, "xcb_xim_close"};
inline const Fn<decltype(::xcb_xim_open)> xcb_xim_open{imdkit, "xcb_xim_open"};
inline const Fn<decltype(::xcb_xim_set_im_callback)> xcb_xim_set_im_callback{imdkit, "xcb_xim_set_im_callback"};
inline const Fn<decltype(::xcb_xim_set_use_utf8_string)> xcb_xim_set_use_utf8_string{imdkit,
                                                                                     "xcb_xim_set_use_utf8_string"};
inline const Fn<decltype(::xcb_xim_get_encoding)> xcb_xim_get_encoding{imdkit, "xcb_xim_get_encoding"};
inline const Fn<decltype(::xcb_xim_filter_event)> xcb_xim_filter_event{imdkit, "xcb_xim_filter_event"};
inline const Fn<decltype(::xcb_xim_create_nested_list)> xcb_xim_create_nested_list{imdkit,
                                                                                   "xcb_xim_create_nested_list"};
inline const Fn<decltype(::xcb_xim_create_ic)> xcb_xim_create_ic{imdkit, "xcb_xim_create_ic"};
inline const Fn<decltype(::xcb_xim_destroy_ic)> xcb_xim_destroy_ic{imdkit, "xcb_xim_destroy_ic"};
inline const Fn<decltype(::xcb_xim_set_ic_values)> xcb_xim_set_ic_values{imdkit, "xcb_xim_set_ic_values"};
inline const Fn<decltype(::xcb_xim_set_ic_focus)> xcb_xim_set_ic_focus{imdkit, "xcb_xim_set_ic_focus"};
inline const Fn<decltype(::xcb_xim_forward_event)> xcb_xim_forward_event{imdkit, "xcb_xim_forward_event"};

} // namespace tx::dynTextInput

// The library for the Unicode bidirectional algorithm, loaded at the first character that is written right to left.
#pragma once

#include "plat/DynamicFn.h"

#include <fribidi/fribidi.h>

namespace hxutil::dynFribidi {

/// One entry per function; calling one that is missing throws plat::DynamicFnLoadFailed.
template <class T>
using Fn = plat::DynamicFn<T>;

constexpr const char* library = "fribidi[0]";
inline const Fn<decltype(::fribidi_get_bidi_types)> get_bidi_types{library, "fribidi_get_bidi_types"};
inline const Fn<decltype(::fribidi_get_bracket_types)> get_bracket_types{library, "fribidi_get_bracket_types"};
// Newer than the rest: a library that has it has all.
inline const Fn<FriBidiLevel(const FriBidiCharType*, const FriBidiBracketType*, FriBidiStrIndex, FriBidiParType*,
                             FriBidiLevel*)>
    get_par_embedding_levels_ex{library, "fribidi_get_par_embedding_levels_ex"};
inline const Fn<decltype(::fribidi_get_joining_types)> get_joining_types{library, "fribidi_get_joining_types"};
inline const Fn<decltype(::fribidi_join_arabic)> join_arabic{library, "fribidi_join_arabic"};
inline const Fn<decltype(::fribidi_shape)> shape{library, "fribidi_shape"};

} // namespace hxutil::dynFribidi

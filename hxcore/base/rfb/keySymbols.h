// Keys by their X keysym numbers, without X headers.
#pragma once

#include <cstdint>

namespace rfb {

// Numbers as X.Org's keysymdef.h gives them.
namespace key {
constexpr uint32_t BackSpace = 0xff08;
constexpr uint32_t Tab = 0xff09;
constexpr uint32_t Linefeed = 0xff0a;
constexpr uint32_t Return = 0xff0d;
constexpr uint32_t Escape = 0xff1b;
constexpr uint32_t MultiKey = 0xff20;
constexpr uint32_t Home = 0xff50;
constexpr uint32_t Left = 0xff51;
constexpr uint32_t Up = 0xff52;
constexpr uint32_t Right = 0xff53;
constexpr uint32_t Down = 0xff54;
constexpr uint32_t PageUp = 0xff55;
constexpr uint32_t PageDown = 0xff56;
constexpr uint32_t End = 0xff57;
constexpr uint32_t Insert = 0xff63;
constexpr uint32_t Menu = 0xff67;
constexpr uint32_t KPEnter = 0xff8d;
constexpr uint32_t F1 = 0xffbe; // F2 to F35 follow
constexpr uint32_t F4 = 0xffc1;
constexpr uint32_t F5 = 0xffc2;
constexpr uint32_t F10 = 0xffc7;
constexpr uint32_t F12 = 0xffc9;
constexpr uint32_t ShiftL = 0xffe1;
constexpr uint32_t ShiftR = 0xffe2;
constexpr uint32_t ControlL = 0xffe3;
constexpr uint32_t ControlR = 0xffe4;
constexpr uint32_t CapsLock = 0xffe5;
constexpr uint32_t MetaL = 0xffe7;
constexpr uint32_t MetaR = 0xffe8;
constexpr uint32_t AltL = 0xffe9;
constexpr uint32_t AltR = 0xffea;
constexpr uint32_t SuperL = 0xffeb;
constexpr uint32_t SuperR = 0xffec;
constexpr uint32_t Delete = 0xffff;
constexpr uint32_t IsoLeftTab = 0xfe20;
constexpr uint32_t Space = 0x20;
} // namespace key

/// One number for keys that mean the same: a Unicode keysym (0x01000000 and up) becomes its older keysym where there is
/// one, and the keypad's keys and left tab become the ordinary ones.
uint32_t canonicalKeysym(uint32_t keysym);

/// The character that a key types, or 0: control keys, modifiers and dead keys type none.
uint32_t unicodeFromKeysym(uint32_t keysym);

/// The keysym of a character: the older one where there is one, else 0x01000000 plus the code.
uint32_t keysymFromUnicode(uint32_t codepoint);

} // namespace rfb

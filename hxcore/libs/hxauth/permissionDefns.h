// What the letters of permissions mean: one list for the whole process.
#pragma once

#include "plat/NonCopyable.h"
#include "plat/String.h"

#include <list>
#include <vector>

namespace hxauth {

constexpr char minCode = 'a';
constexpr int nCodes = 26;

// The letters that more than one library names.
constexpr char codeListen = 'l';
constexpr char codeNoQuery = 'q';
constexpr char codeCutText = 'c';
constexpr char codePtrEvents = 'p';
constexpr char codeKeyEvents = 'k';
constexpr char codeView = 's';

/// What one letter means.
struct PermissionDefn {
    char code;
    plat::String desc;                ///< in the user's language at the time of registration
    std::vector<plat::String> params; ///< names of the parameters that it switches
};

/// Enters a letter, before that of codeNoQuery. Each letter of `groups` (null for none) becomes a group that contains
/// it; `params` is a comma-separated list or null. Asserts that the letter is one, is free, and is no group.
void addPermissionDefn(char code, plat::String desc, const char* groups, const char* params);

/// Null if the letter has no meaning.
const PermissionDefn* lookupPermissionDefn(char code);

/// All, in the order that they are shown in.
const std::list<PermissionDefn>& getPermissionDefns();

/// Takes a letter back, also out of its groups; one that is not there is no error.
void removePermissionDefn(char code);

/// The members of a group as 26 bytes, 1 for each that belongs to it; null if the letter is no group.
const unsigned char* permissionGroup(char group);

/// A letter for as long as this lives: for a static of the function that brings the feature.
class PermissionDeclaration : private plat::NonCopyable {
public:
    PermissionDeclaration(char code_, const char* desc, const char* groups, const char* params) : code(code_) {
        addPermissionDefn(code, desc, groups, params);
    }
    ~PermissionDeclaration() { removePermissionDefn(code); }

private:
    char code;
};

} // namespace hxauth

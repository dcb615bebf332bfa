// What the languages of a catalog must have in common, and the typography of each.
#pragma once

#include <string>
#include <vector>

/// Checks the catalogs of several directories: every language has every key with the same arguments, markup and
/// mnemonics, and a key belongs to one directory. Tells all problems, and gives an exit status.
int checkCatalogs(const std::vector<std::string>& dirs);

#pragma once
// Accounts of the user database, by name.

#include <string>

namespace korva {

/// Whether the user database knows an account called `name`.
bool AccountExists(const std::string& name);

} // namespace korva

#pragma once
// Who runs this process, and where that user's files go.

#include <string>

namespace korva {

/// The real user id of this process.
unsigned int UserId();
/// The user's login name from the user database; empty when it has no entry.
std::string UserName();
/// The user id of the login name `name` in the user database; false when it has no entry.
bool UserIdOfName(const std::string& name, unsigned int& uid);
/// The user's home folder: $HOME when set, else the user database's entry;
/// empty when neither tells one.
std::string HomeFolder();
/// The folder of the user's settings: $XDG_CONFIG_HOME when it is absolute (a
/// relative one is ignored), else ".config" in the home folder; empty without a home folder.
std::string UserConfigFolder();

} // namespace korva

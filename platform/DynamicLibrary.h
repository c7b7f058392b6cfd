#pragma once
// Libraries loaded at run time, by an opaque handle.

#include <string>

namespace korva {

/// Loads the library `path` with every symbol resolved at once and kept local
/// to it; a bare name is looked for where the dynamic loader looks. Null when
/// it cannot be loaded, with the loader's text in `error` (empty when it gave none).
void* OpenDynamicLibrary(const char* path, std::string* error = nullptr);
/// Lets go of a handle of OpenDynamicLibrary; false when the loader refused.
bool CloseDynamicLibrary(void* handle);
/// The address of the symbol `name` in the library, or null when it has none.
void* FindDynamicSymbol(void* handle, const char* name);
/// The file of the loaded library or program that holds `address`, as the
/// loader opened it; empty when no loaded file holds it.
std::string GetModulePath(const void* address);

} // namespace korva

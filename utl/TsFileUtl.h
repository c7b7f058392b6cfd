#pragma once
// File and path helpers. Paths use "/" as separator.

#include <string>

/// Creates the folder `path` with every missing folder above it; true when it exists afterwards.
bool CreateFolder(const char* path);
/// 0 when nothing is at `path`, 1 for a folder, 2 for a file (or anything else that is not a folder).
int FileExist(const char* path);
/// `directory` and `name` joined with exactly one "/"; a leading "/" of `name`
/// does not make it absolute. Either part may be empty.
std::string TsPathAppend(const char* directory, const char* name);
/// The folder part of `path`: everything before its last "/" ("/" itself for a
/// file in the root folder, empty when there is no "/").
std::string TsGetDirectory(const char* path);
/// The part of `path` after its last "/".
std::string TsGetFileName(const char* path);
/// The extension of the file name of `path`, without the dot ("tart" for
/// "a/b.tart"); empty when there is none. A leading dot (".profile") starts no extension.
std::string TsGetFileExtension(const char* path);
/// Copies `source` to `target` through a temporary file renamed into place, so
/// `target` is never left half-written. With `failIfExists`, an existing target
/// is kept and the result is false. Permission bits are copied.
bool TsCopyFile(const char* source, const char* target, bool failIfExists);
/// The folder of the running executable.
std::string TsGetExecutableDirectory();
/// The folder this library (libKORVAutl) was loaded from. Installed companions
/// are found relative to it, so an installed tree can be moved as a whole.
std::string TsGetLibraryDirectory();
/// Where the library's companion program `name` (breakwin) lives: beside the
/// running executable when it is there (the build tree, or programs installed
/// with their own copy), else in the installed tree's program folder for
/// companions, relative to the library.
std::string TsGetCompanionProgramPath(const char* name);
/// The installed tree's data folder of the library (the shipped art
/// collections), relative to the library.
std::string TsGetLibraryDataDirectory();
/// A number that is unique with high probability (random, time and a counter).
unsigned long long GetNearUniqueID();

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
/// A number that is unique with high probability (random, time and a counter).
unsigned long long GetNearUniqueID();

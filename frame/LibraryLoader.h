#pragma once
/// \class LibraryLoader
/// A dynamic library loaded at run time (dlopen), for plug-ins and optional
/// system libraries. The object frees what it holds when it ends.

class LibraryLoader
{
public:
    /// Holds nothing.
    LibraryLoader();
    /// Takes over `handle` (from dlopen), which this object frees.
    explicit LibraryLoader(void* handle);
    /// Loads the library `path` at once (all symbols resolved, RTLD_NOW); see Open.
    /// Throws Exception when it cannot be loaded.
    explicit LibraryLoader(const char* path);
    /// Frees a held library.
    ~LibraryLoader();

    LibraryLoader(const LibraryLoader&) = delete;
    /// Frees a different library held here, then copies the handle of `other`.
    /// Both objects then hold the same handle but only one reference to it:
    /// exactly one of them may free it, the other must let go with Detach().
    LibraryLoader& operator=(const LibraryLoader& other);

    /// Frees a held library, then loads `path`. A bare name (no "/") is looked
    /// for in the executable's folder first, then where dlopen looks; a library's
    /// own dependencies are found through its run path ($ORIGIN), so its own
    /// folder comes first for them. False when the held library could not be
    /// freed. Throws Exception "The file %s does not exist." for a missing file,
    /// and an Exception with the system's text and the path when the file
    /// cannot be loaded (not a library, missing dependency, unresolved symbol).
    bool Open(const char* path);
    /// Frees the held library; true when nothing is held afterwards, false when
    /// the system refused (the handle is then still held).
    bool Close();
    /// The address of the symbol `name`, or null when the library has none.
    /// Throws Exception with the system's text for EBADF ("Bad file descriptor")
    /// when no library is held.
    void* GetFunction(const char* name) const;

    /// The held handle, or null.
    void* GetHandle() const { return mHandle; }
    /// Gives up the held handle without freeing it and returns it.
    void* Detach();

private:
    void* mHandle;
};

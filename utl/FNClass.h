#pragma once
/// \class FNClass
/// A path taken apart into folder, name and extension, to be changed and merged again.
///   "/data/run/model.tart" -> directory "/data/run/", name "model", extension ".tart"
/// The directory keeps its trailing "/", the extension its leading ".", so that
/// Merge() is simply their concatenation.

#include <string>

class FNClass
{
public:
    FNClass() = default;
    explicit FNClass(const char* path) { Split(path); }

    /// Takes `path` apart, replacing the parts held.
    void Split(const char* path);
    /// The parts put together again.
    std::string Merge() const;

    /// "name.ext".
    std::string GetNameAndExt() const;
    /// Replaces name and extension from "name.ext".
    void SetNameAndExt(const char* nameAndExt);

    const std::string& GetDirectory() const { return mDirectory; }
    const std::string& GetName() const { return mName; }
    const std::string& GetExtension() const { return mExtension; }
    /// A directory without a trailing "/" gets one.
    void SetDirectory(const char* directory);
    void SetName(const char* name) { mName = name ? name : ""; }
    /// An extension without a leading "." gets one; empty removes it.
    void SetExtension(const char* extension);

private:
    std::string mDirectory;
    std::string mName;
    std::string mExtension;
};

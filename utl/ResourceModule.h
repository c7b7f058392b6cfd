#pragma once
/// \class korva::ResourceModule
/// A language resource module: a string table by numeric id, and further
/// resources (HTML pages, XML defaults, pictures) by id and type. The English
/// module is compiled into KORVAutl; others can be read from a directory laid
/// out like resources/ of the source tree.

#include <cstddef>
#include <map>
#include <string>
#include <utility>

namespace korva {

/// One text of a module's string table, by its id.
struct StringEntry
{
    unsigned int id;
    const char* text;
};

/// One further resource of a module (HTML page, XML, picture), by id and type.
struct ResourceEntry
{
    unsigned int id;
    const char* type;   // "HTML", "XML", "PNG" ...
    const char* data;   // followed by a terminating null that `size` does not count
    unsigned int size;
};

class ResourceModule
{
public:
    /// A module over static tables (the compiled-in English module).
    ResourceModule(const char* name, const StringEntry* strings, std::size_t stringCount,
                   const ResourceEntry* resources, std::size_t resourceCount);
    /// Reads a module from a directory with strings.txt and resources.txt, as in
    /// the source tree's resources/. Throws Exception when the directory cannot be read.
    static const ResourceModule* LoadFromDirectory(const std::string& directory);

    ResourceModule(const ResourceModule&) = delete;
    ResourceModule& operator=(const ResourceModule&) = delete;

    const std::string& Name() const { return mName; }
    /// The text of string `id`, or null when the module has none.
    const char* FindString(unsigned int id) const;
    /// The bytes of resource `id` of `type`, or null; `size` receives their count.
    const char* FindResource(unsigned int id, const char* type, std::size_t* size = nullptr) const;

private:
    ResourceModule() = default;
    std::string mName;
    std::map<unsigned int, std::string> mStrings;
    std::map<std::pair<std::string, unsigned int>, std::string> mResources;
};

/// The English module compiled into KORVAutl.
const ResourceModule& EnglishResourceModule();

} // namespace korva

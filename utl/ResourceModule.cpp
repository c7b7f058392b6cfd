#include <KORVAutl/ResourceModule.h>

#include <KORVAutl/Exception.h>

#include <fstream>
#include <memory>
#include <mutex>
#include <sstream>
#include <vector>

namespace korva {

ResourceModule::ResourceModule(const char* name, const StringEntry* strings, std::size_t stringCount,
                               const ResourceEntry* resources, std::size_t resourceCount)
    : mName(name)
{
    for (std::size_t i = 0; i < stringCount; ++i)
        mStrings.emplace(strings[i].id, strings[i].text);
    for (std::size_t i = 0; i < resourceCount; ++i)
        mResources.emplace(std::make_pair(std::string(resources[i].type), resources[i].id),
                           std::string(resources[i].data, resources[i].size));
}

namespace {

// Undoes the escapes of strings.txt: \n, \t, \\ and \".
std::string Unescape(const std::string& text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            const char next = text[++i];
            result += next == 'n' ? '\n' : next == 't' ? '\t' : next;
        } else {
            result += text[i];
        }
    }
    return result;
}

bool ReadFile(const std::string& path, std::string& content)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream buffer;
    buffer << in.rdbuf();
    content = buffer.str();
    return true;
}

std::vector<std::string> Lines(const std::string& content)
{
    std::vector<std::string> lines;
    std::istringstream in(content);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && line[0] != '#')
            lines.push_back(line);
    }
    return lines;
}

} // namespace

const ResourceModule* ResourceModule::LoadFromDirectory(const std::string& directory)
{
    std::string content;
    if (!ReadFile(directory + "/strings.txt", content))
        throw Exception("The language module in " + directory + " has no readable strings.txt.");

    auto owned = std::unique_ptr<ResourceModule>(new ResourceModule());
    ResourceModule* module = owned.get();
    module->mName = directory;
    for (const std::string& line : Lines(content)) {
        const auto tab = line.find('\t');
        unsigned long id = 0;
        try {
            id = std::stoul(line.substr(0, tab));
        } catch (const std::exception&) {
            throw Exception("The language module in " + directory + " has a bad line: " + line);
        }
        module->mStrings[static_cast<unsigned int>(id)] =
            tab == std::string::npos ? std::string() : Unescape(line.substr(tab + 1));
    }

    if (ReadFile(directory + "/resources.txt", content)) {
        for (const std::string& line : Lines(content)) {
            std::istringstream fields(line);
            unsigned int id = 0;
            std::string type, file, data;
            if (!(fields >> id >> type >> file) || !ReadFile(directory + "/" + file, data))
                throw Exception("The language module in " + directory + " has a bad resource: " + line);
            module->mResources[{type, id}] = data;
        }
    }
    // Modules live to the end of the process, static destruction included, so
    // the texts they hand out stay valid; the list only keeps them reachable.
    static std::mutex loadedMutex;
    static auto* loaded = new std::vector<std::unique_ptr<ResourceModule>>();
    std::lock_guard<std::mutex> lock(loadedMutex);
    loaded->push_back(std::move(owned));
    return module;
}

const char* ResourceModule::FindString(unsigned int id) const
{
    const auto it = mStrings.find(id);
    return it == mStrings.end() ? nullptr : it->second.c_str();
}

const char* ResourceModule::FindResource(unsigned int id, const char* type, std::size_t* size) const
{
    const auto it = mResources.find({type ? type : "", id});
    if (it == mResources.end())
        return nullptr;
    if (size)
        *size = it->second.size();
    return it->second.c_str();
}

} // namespace korva

#pragma once
// A ConfigurationSection over a map, with no own typed operations, so that the base class's text
// bodies are exercised exactly as a text-only back-end uses them; and a key reader for every back-end.

#include <KORVAutl/ConfigurationSection.h>

#include <map>
#include <string>

class MemorySection : public ConfigurationSection
{
public:
    using ConfigurationSection::ReadKey;
    using ConfigurationSection::WriteKey;

    std::map<std::string, std::string> keys;

    ConfigurationSection* Copy() const override { return new MemorySection(*this); }
    void ChangeSection(const char*) override {}
    bool ChangeSubSection(const char*, int) override { return false; }
    bool ChangeSubSection(const char*) override { return false; }
    ConfigurationSection* CreateSubSection(const char*, int) const override { return nullptr; }
    ConfigurationSection* CreateSubSection(const char*) const override { return nullptr; }
    bool SupportsSubSections() const override { return false; }
    bool DeleteKey(const char* key) override { return keys.erase(key) > 0; }
    bool DeleteSection() override { keys.clear(); return true; }
    bool Flush() const override { return true; }
    bool IsEmpty() const override { return keys.empty(); }
    bool HasSection(const char*, int) const override { return false; }
    bool HasKey(const char* key) const override { return keys.count(key) > 0; }
    bool ReadKey(const char* key, std::string& value) const override
    {
        const auto it = keys.find(key);
        return it != keys.end() && (value = it->second, true);
    }
    bool WriteKey(const char* key, const char* value) override { return value && (keys[key] = value, true); }
    bool WriteToSection(ConfigurationSection* target) const override
    {
        for (const auto& [key, value] : keys)
            if (!target->WriteKey(key.c_str(), value.c_str()))
                return false;
        return true;
    }
    std::vector<std::string> GetSectionNames() const override { return {}; }
};

/// The text of `key` in any section, or "<missing>".
inline std::string Key(const ConfigurationSection& section, const char* key)
{
    std::string value;
    return section.ReadKey(key, value) ? value : "<missing>";
}

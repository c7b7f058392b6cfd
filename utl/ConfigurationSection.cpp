#include <KORVAutl/ConfigurationSection.h>

#include <KORVAutl/TsString.h>
#include <KORVAutlwin/platform/TsUnicode.h>

#include <cstring>
#include <cwchar>

namespace {

constexpr char kVectorSeparator = ';';

bool ParseBool(const std::string& text, bool& value)
{
    if (text == "1" || strcasecmp(text.c_str(), "true") == 0) {
        value = true;
        return true;
    }
    if (text == "0" || strcasecmp(text.c_str(), "false") == 0) {
        value = false;
        return true;
    }
    return false;
}

// Reads the key's text and converts every element; false, and `values`
// untouched, when the key is missing or any element is bad.
template <typename T, typename Convert>
bool ReadVector(const ConfigurationSection& section, const char* key, std::vector<T>& values, Convert convert)
{
    std::string text;
    if (!section.ReadKey(key, text))
        return false;
    std::vector<std::string> parts;
    TsString::SplitString(text, kVectorSeparator, parts);
    std::vector<T> result;
    result.reserve(parts.size());
    for (const std::string& part : parts) {
        T value{};
        if (!convert(part, value))
            return false;
        result.push_back(value);
    }
    values = std::move(result);
    return true;
}

template <typename T, typename Format>
std::string JoinVector(const T* values, std::size_t count, Format format, char separator = kVectorSeparator)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        if (i)
            text += separator;
        text += format(values[i]);
    }
    return text;
}

template <typename T>
int CopyOut(const std::vector<T>& read, T* values, int count)
{
    if (!values || count <= 0)
        return 0;
    const int n = std::min<int>(count, static_cast<int>(read.size()));
    std::copy(read.begin(), read.begin() + n, values);
    return n;
}

bool ToFloatValue(const std::string& text, float& value) { return TsString::ToFloat(text.c_str(), value); }
bool ToDoubleValue(const std::string& text, double& value) { return TsString::ToFloat(text.c_str(), value); }
bool ToIntValue(const std::string& text, int& value) { return TsString::ToInt(text.c_str(), value); }

} // namespace

ConfigurationSection::~ConfigurationSection() = default;

ConfigurationSection* ConfigurationSection::CopyAndChangeSection(const char* name) const
{
    ConfigurationSection* copy = Copy();
    if (copy)
        copy->ChangeSection(name);
    return copy;
}

ConfigurationSection* ConfigurationSection::CopyAndChangeSubSection(const char* name, int index) const
{
    ConfigurationSection* copy = Copy();
    if (copy && !copy->ChangeSubSection(name, index)) {
        delete copy;
        return nullptr;
    }
    return copy;
}

ConfigurationSection* ConfigurationSection::CopyAndChangeSubSection(const char* name) const
{
    ConfigurationSection* copy = Copy();
    if (copy && !copy->ChangeSubSection(name)) {
        delete copy;
        return nullptr;
    }
    return copy;
}

std::vector<std::shared_ptr<ConfigurationSection>>* ConfigurationSection::GetAllSubSections(const char* name) const
{
    auto* sections = new std::vector<std::shared_ptr<ConfigurationSection>>();
    for (int index = 1;; ++index) {
        ConfigurationSection* child = CopyAndChangeSubSection(name, index);
        if (!child)
            break;
        sections->emplace_back(child);
    }
    return sections;
}

int ConfigurationSection::NumSubSections(const char* name) const
{
    int count = 0;
    while (std::unique_ptr<ConfigurationSection>(CopyAndChangeSubSection(name, count + 1)))
        ++count;
    return count;
}

bool ConfigurationSection::ReadBool(const char* key, bool& value) const
{
    std::string text;
    return ReadKey(key, text) && ParseBool(text, value);
}

bool ConfigurationSection::ReadBoolVector(const char* key, std::vector<bool>& values) const
{
    std::vector<char> read;
    if (!ReadVector(*this, key, read, [](const std::string& text, char& value) {
            bool flag = false;
            if (!ParseBool(text, flag))
                return false;
            value = flag;
            return true;
        }))
        return false;
    values.assign(read.begin(), read.end());
    return true;
}

bool ConfigurationSection::ReadFloat(const char* key, float& value) const
{
    std::string text;
    return ReadKey(key, text) && TsString::ToFloat(text.c_str(), value);
}

bool ConfigurationSection::ReadFloatVector(const char* key, std::vector<float>& values) const
{
    return ReadVector(*this, key, values, ToFloatValue);
}

int ConfigurationSection::ReadFloatVector(const char* key, float* values, int count) const
{
    std::vector<float> read;
    return ReadVector(*this, key, read, ToFloatValue) ? CopyOut(read, values, count) : 0;
}

bool ConfigurationSection::ReadDouble(const char* key, double& value) const
{
    std::string text;
    return ReadKey(key, text) && TsString::ToFloat(text.c_str(), value);
}

int ConfigurationSection::ReadDoubleVector(const char* key, double* values, int count) const
{
    std::vector<double> read;
    return ReadVector(*this, key, read, ToDoubleValue) ? CopyOut(read, values, count) : 0;
}

bool ConfigurationSection::ReadInt(const char* key, int& value) const
{
    std::string text;
    return ReadKey(key, text) && TsString::ToInt(text.c_str(), value);
}

bool ConfigurationSection::ReadIntVector(const char* key, std::vector<int>& values) const
{
    return ReadVector(*this, key, values, ToIntValue);
}

bool ConfigurationSection::ReadKey(const char* key, wchar_t* buffer, unsigned int count) const
{
    std::wstring text;
    if (!buffer || !ReadKey(key, text) || text.size() + 1 > count)
        return false;
    std::wmemcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

bool ConfigurationSection::ReadKey(const char* key, char* buffer, unsigned int count) const
{
    std::string text;
    if (!buffer || !ReadKey(key, text) || text.size() + 1 > count)
        return false;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

bool ConfigurationSection::ReadKey(const char* key, std::wstring& value) const
{
    std::string text;
    if (!ReadKey(key, text))
        return false;
    value = korva::Utf8ToWide(text);
    return true;
}

int ConfigurationSection::ReadStringVector(const char* key, std::vector<std::string>& values, char separator) const
{
    std::string text;
    if (!ReadKey(key, text))
        return 0;
    return TsString::SplitString(text, separator, values);
}

bool ConfigurationSection::WriteBool(const char* key, bool value)
{
    return WriteKey(key, value ? "1" : "0");
}

void ConfigurationSection::WriteBoolVector(const char* key, const std::vector<bool>& values)
{
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i)
            text += kVectorSeparator;
        text += values[i] ? '1' : '0';
    }
    WriteKey(key, text);
}

bool ConfigurationSection::WriteFloat(const char* key, double value)
{
    return WriteKey(key, TsString::ToString(value));
}

void ConfigurationSection::WriteDoubleVector(const char* key, const double* values, unsigned int count)
{
    WriteKey(key, JoinVector(values, values ? count : 0, [](double v) { return TsString::ToString(v); }));
}

void ConfigurationSection::WriteFloatVector(const char* key, const std::vector<float>& values)
{
    WriteFloatVector(key, values.data(), static_cast<unsigned int>(values.size()));
}

void ConfigurationSection::WriteFloatVector(const char* key, const float* values, unsigned int count)
{
    WriteKey(key, JoinVector(values, values ? count : 0, [](float v) { return TsString::ToString(v); }));
}

bool ConfigurationSection::WriteInt(const char* key, int value)
{
    return WriteKey(key, std::to_string(value));
}

void ConfigurationSection::WriteIntVector(const char* key, const std::vector<int>& values)
{
    WriteKey(key, JoinVector(values.data(), values.size(), [](int v) { return std::to_string(v); }));
}

bool ConfigurationSection::WriteStringVector(const char* key, const std::vector<std::string>& values, char separator)
{
    for (const std::string& value : values)
        if (value.find(separator) != std::string::npos)
            return false;
    return WriteKey(key, JoinVector(values.data(), values.size(), [](const std::string& v) { return v; }, separator));
}

bool ConfigurationSection::WriteKey(const char* key, const std::wstring& value)
{
    return WriteKey(key, value.c_str());
}

bool ConfigurationSection::WriteKey(const char* key, const std::string& value)
{
    return WriteKey(key, value.c_str());
}

bool ConfigurationSection::WriteKey(const char* key, const wchar_t* value)
{
    return value && WriteKey(key, korva::WideToUtf8(value));
}

std::vector<std::string> ConfigurationSection::GetKeyNames() const
{
    return {};
}

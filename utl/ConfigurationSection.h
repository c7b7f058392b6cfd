#pragma once
/// \class ConfigurationSection
/// The abstract settings node: typed keys and sub-sections. Back-ends are
/// RegistrySection, XMLSection and IniFileSection.
///
/// Every read returns false and leaves the value alone when the key is missing
/// or cannot be read, so a caller sets the default first and then reads. Every
/// creating or copying operation hands a new object to the caller, who deletes it.
///
/// The bodies given here store floats, doubles, vectors and booleans as text
/// through the section's own string operations (ReadKey/WriteKey), so that any
/// back-end that stores text round-trips them exactly:
///  - numbers in the shortest text that reads back to the same value, always
///    with "." as decimal point ("0.1", "1e+300", "nan", "inf", "-inf");
///  - booleans as "1" and "0"; reading also accepts "true"/"false" in any case;
///  - vectors as their elements joined by ";" (string vectors by the separator
///    the caller names); an empty vector is stored as an empty text.
///
/// Derived classes that override one overload of a name should bring the others
/// into scope with a using-declaration (using ConfigurationSection::ReadKey;).

#include <memory>
#include <string>
#include <vector>

class ConfigurationSection
{
public:
    virtual ~ConfigurationSection();

    /// A new section on the same node; the caller owns it.
    virtual ConfigurationSection* Copy() const = 0;
    /// Moves to the sibling node `name`.
    virtual void ChangeSection(const char* name) = 0;
    /// Moves to the indexed child of `name` ("name N" or the N-th child of that name).
    virtual bool ChangeSubSection(const char* name, int index) = 0;
    /// Moves to the child `name`; false, and no move, when it does not exist.
    virtual bool ChangeSubSection(const char* name) = 0;
    /// Copy() followed by ChangeSection(name).
    virtual ConfigurationSection* CopyAndChangeSection(const char* name) const;
    /// Copy() followed by ChangeSubSection(name, index); null when there is no such child.
    virtual ConfigurationSection* CopyAndChangeSubSection(const char* name, int index) const;
    /// Copy() followed by ChangeSubSection(name); null when there is no such child.
    virtual ConfigurationSection* CopyAndChangeSubSection(const char* name) const;
    /// Creates or opens the indexed child as a new section object.
    virtual ConfigurationSection* CreateSubSection(const char* name, int index) const = 0;
    /// Creates or opens the child as a new section object.
    virtual ConfigurationSection* CreateSubSection(const char* name) const = 0;
    /// All children of that name: the indexed children 1, 2, ... up to the first
    /// missing index. The caller owns the vector.
    virtual std::vector<std::shared_ptr<ConfigurationSection>>* GetAllSubSections(const char* name) const;
    /// How many indexed children of that name exist, counted from 1 up to the first missing one.
    virtual int NumSubSections(const char* name) const;
    virtual bool SupportsSubSections() const = 0;
    /// Deletes one key.
    virtual bool DeleteKey(const char* key) = 0;
    /// Deletes this node with everything below it.
    virtual bool DeleteSection() = 0;
    /// Writes the section to its medium.
    virtual bool Flush() const = 0;
    virtual bool IsEmpty() const = 0;
    /// Does the child exist; callers pass -1 for no index.
    virtual bool HasSection(const char* name, int index) const = 0;
    virtual bool HasKey(const char* key) const = 0;

    virtual bool ReadBool(const char* key, bool& value) const;
    virtual bool ReadBoolVector(const char* key, std::vector<bool>& values) const;
    virtual bool ReadFloat(const char* key, float& value) const;
    virtual bool ReadFloatVector(const char* key, std::vector<float>& values) const;
    /// Reads at most `count` values into `values`; the number read, 0 when the key is missing or bad.
    virtual int ReadFloatVector(const char* key, float* values, int count) const;
    virtual bool ReadDouble(const char* key, double& value) const;
    /// Reads at most `count` values into `values`; the number read, 0 when the key is missing or bad.
    virtual int ReadDoubleVector(const char* key, double* values, int count) const;
    virtual bool ReadInt(const char* key, int& value) const;
    virtual bool ReadIntVector(const char* key, std::vector<int>& values) const;
    /// Wide text into a caller's buffer of `count` characters, terminator included;
    /// false when it does not fit.
    virtual bool ReadKey(const char* key, wchar_t* buffer, unsigned int count) const;
    /// Narrow text into a caller's buffer of `count` bytes, terminator included;
    /// false when it does not fit.
    virtual bool ReadKey(const char* key, char* buffer, unsigned int count) const;
    /// Wide text; the base body converts from the UTF-8 text.
    virtual bool ReadKey(const char* key, std::wstring& value) const;
    /// Narrow (UTF-8) text. CString and std::string are one type here, so one overload serves.
    virtual bool ReadKey(const char* key, std::string& value) const = 0;
    /// The text of one key split at `separator`; the number of texts, 0 when the key is missing.
    virtual int ReadStringVector(const char* key, std::vector<std::string>& values, char separator) const;

    virtual bool WriteBool(const char* key, bool value);
    virtual void WriteBoolVector(const char* key, const std::vector<bool>& values);
    virtual bool WriteFloat(const char* key, double value);
    virtual void WriteDoubleVector(const char* key, const double* values, unsigned int count);
    virtual void WriteFloatVector(const char* key, const std::vector<float>& values);
    virtual void WriteFloatVector(const char* key, const float* values, unsigned int count);
    virtual bool WriteInt(const char* key, int value);
    virtual void WriteIntVector(const char* key, const std::vector<int>& values);
    /// Joins the texts with `separator` into one key. False, and nothing written,
    /// when a text contains the separator, since it would not read back.
    virtual bool WriteStringVector(const char* key, const std::vector<std::string>& values, char separator);
    virtual bool WriteKey(const char* key, const std::wstring& value);
    virtual bool WriteKey(const char* key, const std::string& value);
    /// Wide text; the base body stores it as UTF-8.
    virtual bool WriteKey(const char* key, const wchar_t* value);
    virtual bool WriteKey(const char* key, const char* value) = 0;
    /// Copies all keys and children of this section into `target`.
    virtual bool WriteToSection(ConfigurationSection* target) const = 0;
    /// The names of the children.
    virtual std::vector<std::string> GetSectionNames() const = 0;

    /// The key names of this section, where the back-end can list them (empty otherwise).
    virtual std::vector<std::string> GetKeyNames() const;

protected:
    ConfigurationSection() = default;
    ConfigurationSection(const ConfigurationSection&) = default;
    ConfigurationSection& operator=(const ConfigurationSection&) = default;
};

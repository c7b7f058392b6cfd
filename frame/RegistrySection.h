#pragma once
/// \class RegistrySection
/// A settings section on a registry key, and the registry helpers of the library.
///
/// Texts are REG_SZ with their terminator; integers and booleans REG_DWORD of
/// 4 bytes; floats, doubles and vectors are texts written by the base class.
/// Indexed children are keys named "<name> <index>".
///
/// Long-standing behaviour that callers rely on (do not "fix"):
/// - ChangeSection joins the new name directly to the parent path ("a\\b" with
///   "c" becomes "ac") and opens `name` itself below the root.
/// - IsEmpty is true when the key HOLDS at least one value (children do not count).
/// - HasSection ignores the index; ChangeSubSection(name, index) does not.
/// - DeleteSection skips every second child, so with two or more children it
///   leaves some behind and returns false; TsDeleteRegKey removes everything.
/// - WriteKey(key, const wchar_t*) stores the text as UTF-16 but only
///   length + 1 bytes of it (four characters store five bytes).
/// - The copy constructor and operator= share the key handle: both objects
///   close it. Copy() gives an independent section.

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutlwin/platform/Registry.h>

#include <cstdint>
#include <string>
#include <vector>

class RegistrySection : public ConfigurationSection
{
public:
    /// No key open; root and path empty, read access. Follow with Open.
    RegistrySection();
    /// Opens `path` below `root` with `access`; creates it if that fails and
    /// `create` is set. Throws Exception with language string 13274 when creating
    /// failed, 13275 when opening failed and `create` was not set.
    RegistrySection(HKEY root, const char* path, unsigned long access, bool create);
    /// Copies root, handle, access and path: both objects share (and close) one handle.
    RegistrySection(const RegistrySection& other) = default;
    /// Copies member by member; the handle held before is not closed.
    RegistrySection& operator=(const RegistrySection& other) = default;
    /// Closes the key of the section; never the root.
    ~RegistrySection() override;

    /// As the opening constructor, without the exception: true on success. A key
    /// that the object already holds is not closed.
    bool Open(HKEY root, const char* path, unsigned long access, bool create);

    using ConfigurationSection::ChangeSubSection;
    using ConfigurationSection::CreateSubSection;
    using ConfigurationSection::ReadKey;
    using ConfigurationSection::WriteKey;

    /// A new section on the same key: root is this section's key, path empty.
    /// It needs this section's key to stay open while it uses ChangeSection or DeleteSection.
    ConfigurationSection* Copy() const override;
    /// Replaces the last path component by `name` (see above); unchanged on failure.
    void ChangeSection(const char* name) override;
    /// Moves to the child "<name> <index>".
    bool ChangeSubSection(const char* name, int index) override;
    /// Moves to the child `name`; false, and no move, when it cannot be opened.
    bool ChangeSubSection(const char* name) override;
    /// Creates or opens the child "<name> <index>" as a new section; throws as the constructor.
    ConfigurationSection* CreateSubSection(const char* name, int index) const override;
    /// Creates or opens the child `name` as a new section; throws as the constructor.
    ConfigurationSection* CreateSubSection(const char* name) const override;
    /// True.
    bool SupportsSubSections() const override;
    bool DeleteKey(const char* key) override;
    /// Deletes the children (every second one, see above), then the key itself.
    bool DeleteSection() override;
    /// True: every write is on disk when it returns; flushing makes the writes
    /// so far survive a power cut too (RegFlushKey).
    bool Flush() const override;
    /// True when the key holds at least one value (the reverse of the name).
    bool IsEmpty() const override;
    /// Whether the child `name` can be opened; `index` is ignored.
    bool HasSection(const char* name, int index) const override;
    bool HasKey(const char* key) const override;

    /// Any non-zero REG_DWORD is true.
    bool ReadBool(const char* key, bool& value) const override;
    /// Only a REG_DWORD value reads.
    bool ReadInt(const char* key, int& value) const override;
    /// Wide text (UTF-16 in the store) into `buffer` of `count` characters with
    /// the terminator; false when it does not fit.
    bool ReadKey(const char* key, wchar_t* buffer, unsigned int count) const override;
    /// Wide text (UTF-16 in the store), up to its first null character.
    bool ReadKey(const char* key, std::wstring& value) const override;
    /// The value's bytes up to the first null, whatever its type.
    bool ReadKey(const char* key, std::string& value) const override;

    /// REG_DWORD 0 or 1.
    bool WriteBool(const char* key, bool value) override;
    /// REG_DWORD.
    bool WriteInt(const char* key, int value) override;
    /// UTF-16, length + 1 bytes (see above).
    bool WriteKey(const char* key, const wchar_t* value) override;
    /// REG_SZ with the terminator.
    bool WriteKey(const char* key, const char* value) override;
    /// False: a registry section is never the source of a copy.
    bool WriteToSection(ConfigurationSection* target) const override;
    /// The names of the children, in enumeration order.
    std::vector<std::string> GetSectionNames() const override;
    /// The names of the values, in enumeration order.
    std::vector<std::string> GetKeyNames() const override;

    HKEY GetRoot() const { return root; }
    HKEY GetCurrent() const { return current; }
    std::uint32_t GetAccess() const { return access; }
    const std::string& GetPath() const { return path; }

protected:
    HKEY root;              // what `path` is relative to; not owned
    HKEY current;           // the open key of the section; owned
    std::uint32_t access;   // the rights of every open and create
    std::string path;       // below `root`, components separated by "\\"
};

/// "SOFTWARE\\<company>\\<profile>" with the words of the current WinApp; without
/// one, "SOFTWARE\\Tessmark\\<application name>\\<version, format 2>". The text
/// lives in one static buffer until the next call: not for two threads at once.
const char* GetRegistryBaseKeyName();

/// With `valueName` null, sets the default value of `subKey`; otherwise creates
/// `subKey` and writes `value` as REG_SZ under `valueName`. True on success.
bool TsSetRegKey(HKEY root, const char* subKey, const char* value, const char* valueName);
/// Deletes `subKey` below `root` with everything below it; a Win32 result code
/// (ERROR_BADKEY for a null or empty `subKey`).
int TsDeleteRegKey(HKEY root, const char* subKey);
/// Deletes one value. True if it was deleted, and also when `subKey` cannot be opened.
bool TsDeleteRegValue(HKEY root, const char* subKey, const char* valueName);
/// The value as text (REG_DWORD as a decimal number), or `defaultValue` when it cannot be read.
std::string TsGetRegKey(HKEY root, const char* subKey, const char* valueName, const char* defaultValue);
/// Appends the names of the children of `subKey` to `names`; false when it cannot be opened.
bool TsGetRegSubKeys(HKEY root, const char* subKey, std::vector<std::string>& names);

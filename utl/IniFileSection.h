#pragma once
/// \class IniFileSection
/// One section of an INI file: "[Section]" lines followed by "key = value"
/// lines, as people write them by hand. The file keeps its order and its
/// comments (lines starting with ";" or "#") when it is written back; only the
/// layout of a line may change ("key=value" becomes "key = value", blank lines
/// are normalised).
///
/// Names
///  - Section and key names are compared without regard to ASCII case, as INI
///    files always were; the file's own spelling is kept.
///  - Keys that stand before the first "[Section]" line belong to the section "".
///  - There are no sub-sections.
///
/// Values
///  - A value that starts or ends with blanks, or holds line breaks, is written
///    as a block:  key = <<<END_OF_TEXT / the lines / END_OF_TEXT.
///  - WriteKey refuses (false) what would not read back the same: a key that
///    is empty, holds "=" or a line break, starts with "[", ";", "#" or a UTF-8
///    signature, or starts or ends with a blank; a value that holds a carriage
///    return, starts with "<<<" (unless it is written as a block), or has a
///    line that reads END_OF_TEXT (in any case, blanks after it ignored); a
///    section name that holds "]" or a line break or starts or ends with a blank.
///
/// Writing
///  - Every change (WriteKey, DeleteKey, DeleteSection) is written to the file
///    at once, safely (SafeFileWriter): the file is replaced whole or not at
///    all. A value that is already stored is not written again. With
///    SetAutoSave(false) changes wait in memory for Flush.
///  - Before a change, a file that someone else changed since it was read is
///    read again, so that their edits are not overwritten.
///  - A missing file is created by the first change; its folder must exist.
///
/// Bad input
///  The file is read as far as it can be, and every readable key is available.
///  Lines that would be lost by writing the file back are kept by refusing to
///  write: while the file holds such lines, every change returns false and the
///  file stays exactly as it is (IsWritable, GetUnreadableLines). Such lines are
///  text that is neither a comment, a "[Section]" line nor a "key = value" line;
///  text after the "]" of a section line; a key given twice in one section; a
///  comment before a section line that repeats an earlier section; a value
///  block that never ends, is empty, or holds what would not read back once
///  written (see Values); a key that starts with the bytes of a UTF-8
///  signature, or a second signature; a NUL byte. A comment at the very end of
///  the file is no such line: it is kept at the end. A file that cannot be
///  read at all (other than missing) gives an empty section that refuses
///  every change.
///
/// Sections made by Copy share the file's content with this one; a section
/// and its copies belong to one thread at a time.

#include <KORVAutl/ConfigurationSection.h>

#include <memory>
#include <string>
#include <vector>

namespace korva { struct IniDocument; }

class IniFileSection : public ConfigurationSection
{
public:
    /// The section `section` of the INI file `file`. Never throws for the
    /// file's sake: see the header comment for missing and bad files.
    IniFileSection(const char* file, const char* section);
    ~IniFileSection() override;

    /// False when changes are refused because the file could not be read or
    /// holds lines that writing would lose.
    bool IsWritable() const;
    /// The numbers (from 1) of the lines that stop writing, in file order.
    std::vector<int> GetUnreadableLines() const;
    /// With true (the default) every change is written at once; with false
    /// changes are kept in memory until Flush. Applies to all copies.
    void SetAutoSave(bool autoSave);
    /// The INI file.
    const std::string& GetFilePath() const;
    /// The name of the current section.
    const std::string& GetSectionName() const { return mSection; }

    ConfigurationSection* Copy() const override;
    /// Moves to the section `name`. The file gets the section with its first key.
    void ChangeSection(const char* name) override;
    /// False: an INI file has no sub-sections.
    bool ChangeSubSection(const char* name, int index) override;
    bool ChangeSubSection(const char* name) override;
    /// Null: an INI file has no sub-sections.
    ConfigurationSection* CreateSubSection(const char* name, int index) const override;
    ConfigurationSection* CreateSubSection(const char* name) const override;
    bool SupportsSubSections() const override { return false; }
    /// False when the key is missing or the change cannot be written.
    bool DeleteKey(const char* key) override;
    /// Removes the section with its keys from the file; false when it is missing.
    bool DeleteSection() override;
    /// Writes changes that wait in memory (SetAutoSave(false)); true when
    /// nothing waits or the file was written.
    bool Flush() const override;
    /// True when the section has no keys (or does not exist).
    bool IsEmpty() const override;
    /// False: an INI file has no sub-sections.
    bool HasSection(const char* name, int index) const override;
    bool HasKey(const char* key) const override;
    using ConfigurationSection::ReadKey;
    /// The value of `key`; false for a missing key.
    bool ReadKey(const char* key, std::string& value) const override;
    using ConfigurationSection::WriteKey;
    bool WriteKey(const char* key, const char* value) override;
    /// Copies the keys of this section into `target`; false when one could not be written.
    bool WriteToSection(ConfigurationSection* target) const override;
    /// The names of all sections of the file, in file order.
    std::vector<std::string> GetSectionNames() const override;
    /// The key names of the current section, in file order.
    std::vector<std::string> GetKeyNames() const override;

private:
    IniFileSection(std::shared_ptr<korva::IniDocument> document, std::string section);

    std::shared_ptr<korva::IniDocument> mDocument;
    std::string mSection;
};

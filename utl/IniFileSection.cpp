#include <KORVAutl/IniFileSection.h>

#include <KORVAutl/Log.h>
#include <KORVAutl/SafeFileWriter.h>

// Narrow UTF-8 text in and out, no conversion, and the implementation
// compiled here (Debian's header keeps it behind SI_IMPLEMENTATION): nothing
// to link, neither libsimpleini with its ICU nor ConvertUTF.
#define SI_NO_CONVERSION
#define SI_IMPLEMENTATION
#include <SimpleIni.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>
#include <unordered_set>

namespace {

constexpr const char* kBlockTag = "END_OF_TEXT";
constexpr std::string_view kSignature = "\xEF\xBB\xBF";

// The character classes of SimpleIni's reader.
bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool IsComment(char c) { return c == ';' || c == '#'; }

char Lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

std::string Lower(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        c = Lower(c);
    return lower;
}

bool EqualNoCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (Lower(a[i]) != Lower(b[i]))
            return false;
    return true;
}

// Does `line` end a value block with `tag`? SimpleIni ignores blanks after
// the tag (but always keeps a line's first character) and ignores case.
bool IsTagLine(std::string_view line, std::string_view tag)
{
    std::size_t end = line.size();
    while (end > 1 && IsSpace(line[end - 1]))
        --end;
    return EqualNoCase(line.substr(0, end), tag);
}

// Would SimpleIni read `value` back exactly as it writes it?
bool IsStorableValue(std::string_view text)
{
    if (text.find('\r') != std::string_view::npos)
        return false;
    const bool block = !text.empty() &&
                       (IsSpace(text.front()) || IsSpace(text.back()) || text.find('\n') != std::string_view::npos);
    if (!block)
        return text.substr(0, std::min<std::size_t>(3, text.size())) != "<<<";
    for (std::size_t start = 0;;) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        if (IsTagLine(text.substr(start, end - start), kBlockTag))
            return false;
        if (end >= text.size())
            return true;
        start = end + 1;
    }
}

// What SimpleIni would make of a text, as far as it matters for writing the
// text back: which lines it would drop or misread, and the comment at the end
// that it would drop (which this class writes back itself).
struct Scan
{
    std::vector<int> badLines;
    std::string trailingComment;
    bool blankBeforeTrailing = false;
    std::size_t keyLines = 0;
};

// Mirrors SimpleIni's reader (LoadData, FindFileComment, FindEntry,
// LoadMultiLineText) on a text whose lines end in "\n" alone. With
// `findDuplicates` it also names keys given twice in a section, which costs
// a set of all keys and so is only done when the counts say there are some.
class Scanner
{
public:
    Scanner(std::string_view text, bool findDuplicates) : mText(text), mFindDuplicates(findDuplicates) {}

    Scan Run()
    {
        SkipFileComment();
        std::size_t pendingComment = std::string_view::npos;
        while (mPos < mText.size()) {
            while (mPos < mText.size() && IsSpace(mText[mPos]))
                ++mPos;
            if (mPos >= mText.size())
                break;
            const char c = mText[mPos];
            if (IsComment(c)) {
                if (pendingComment != std::string_view::npos)
                    Bad(pendingComment);   // replaced by this one before it found its entry
                pendingComment = mPos;
                SkipComment();
                continue;
            }
            const std::size_t start = mPos;
            bool entry = false;
            if (c == '[')
                entry = Section(start, pendingComment != std::string_view::npos);
            else
                entry = Key(start);
            if (mStop)
                return std::move(mScan);
            if (entry)
                pendingComment = std::string_view::npos;
        }
        if (pendingComment != std::string_view::npos) {
            std::size_t end = mText.size();
            while (end > pendingComment && IsSpace(mText[end - 1]))
                --end;
            mScan.trailingComment = std::string(mText.substr(pendingComment, end - pendingComment));
            std::size_t before = pendingComment;
            int breaks = 0;
            while (before > 0 && IsSpace(mText[before - 1]))
                breaks += mText[--before] == '\n';
            mScan.blankBeforeTrailing = breaks >= 2;
        }
        return std::move(mScan);
    }

private:
    std::size_t LineEnd(std::size_t from) const
    {
        const std::size_t end = mText.find('\n', from);
        return end == std::string_view::npos ? mText.size() : end;
    }

    int LineOf(std::size_t pos)
    {
        // Positions mostly grow, so the count is carried along.
        if (pos < mCountedTo) {
            mCountedTo = 0;
            mLine = 1;
        }
        while (mCountedTo < pos && mCountedTo < mText.size())
            mLine += mText[mCountedTo++] == '\n';
        return mLine;
    }

    void Bad(std::size_t pos)
    {
        const int line = LineOf(pos);
        if (mScan.badLines.empty() || mScan.badLines.back() != line)
            mScan.badLines.push_back(line);
    }

    // The comment lines at the very start of the text, up to the first line
    // that is not one.
    void SkipFileComment()
    {
        while (mPos < mText.size() && IsComment(mText[mPos])) {
            const std::size_t end = LineEnd(mPos);
            mPos = end < mText.size() ? end + 1 : end;
        }
    }

    // A comment block: comment lines, with blank lines inside it when another
    // comment line follows them.
    void SkipComment()
    {
        for (;;) {
            if (mPos >= mText.size())
                return;
            if (!IsComment(mText[mPos])) {
                std::size_t ahead = mPos;
                while (ahead < mText.size() && IsSpace(mText[ahead]))
                    ++ahead;
                if (ahead < mText.size() && IsComment(mText[ahead])) {
                    mPos = ahead;
                    continue;
                }
                return;
            }
            const std::size_t end = LineEnd(mPos);
            if (end >= mText.size()) {
                mPos = end;
                return;
            }
            mPos = end + 1;
        }
    }

    bool Section(std::size_t start, bool hasComment)
    {
        ++mPos;
        while (mPos < mText.size() && IsSpace(mText[mPos]))
            ++mPos;
        const std::size_t nameStart = mPos;
        while (mPos < mText.size() && mText[mPos] != ']' && mText[mPos] != '\n')
            ++mPos;
        if (mPos >= mText.size() || mText[mPos] != ']') {
            Bad(start);
            return false;
        }
        std::size_t nameEnd = mPos;
        while (nameEnd > nameStart && IsSpace(mText[nameEnd - 1]))
            --nameEnd;
        ++mPos;
        const std::size_t end = LineEnd(mPos);
        for (std::size_t i = mPos; i < end; ++i)
            if (!IsSpace(mText[i])) {
                Bad(i);   // text after "]" is dropped
                break;
            }
        mPos = end;
        mSection = Lower(mText.substr(nameStart, nameEnd - nameStart));
        if (!mSections.insert(mSection).second && hasComment)
            Bad(start);   // a repeated section keeps the first one's comment only
        return true;
    }

    bool Key(std::size_t start)
    {
        while (mPos < mText.size() && mText[mPos] != '=' && mText[mPos] != '\n')
            ++mPos;
        if (mPos >= mText.size() || mText[mPos] != '=') {
            Bad(start);   // neither comment, section nor key
            return false;
        }
        if (mPos == start) {
            Bad(start);   // no key before "="
            mPos = LineEnd(mPos);
            return false;
        }
        std::size_t keyEnd = mPos;
        while (keyEnd > start && IsSpace(mText[keyEnd - 1]))
            --keyEnd;
        ++mPos;
        while (mPos < mText.size() && mText[mPos] != '\n' && IsSpace(mText[mPos]))
            ++mPos;
        const std::size_t valueStart = mPos;
        std::size_t valueEnd = LineEnd(mPos);
        mPos = valueEnd < mText.size() ? valueEnd + 1 : valueEnd;
        while (valueEnd > valueStart && IsSpace(mText[valueEnd - 1]))
            --valueEnd;
        const std::string_view value = mText.substr(valueStart, valueEnd - valueStart);

        mSections.insert(mSection);
        ++mScan.keyLines;
        // Written first in the file, such a key would read as a signature.
        if (mText.substr(start, kSignature.size()) == kSignature)
            Bad(start);
        if (mFindDuplicates) {
            std::string id = mSection;
            id += '\n';
            id += Lower(mText.substr(start, keyEnd - start));
            if (!mKeys.insert(std::move(id)).second)
                Bad(start);   // only the last value of a key survives
        }
        if (value.size() >= 3 && value.substr(0, 3) == "<<<")
            return Block(start, value.substr(3));
        return true;
    }

    bool Block(std::size_t keyStart, std::string_view tag)
    {
        const std::size_t first = mPos;
        for (;;) {
            const std::size_t end = LineEnd(mPos);
            if (IsTagLine(mText.substr(mPos, end - mPos), tag)) {
                if (end == first) {
                    // SimpleIni stops reading the file here.
                    Bad(keyStart);
                    mStop = true;
                    return false;
                }
                if (mPos == first)
                    Bad(keyStart);   // an empty block reads as its own tag
                else if (!IsStorableValue(mText.substr(first, mPos - 1 - first)))
                    Bad(keyStart);   // it would be written in a form that reads otherwise
                mPos = end < mText.size() ? end + 1 : end;
                return true;
            }
            if (end >= mText.size()) {
                Bad(keyStart);   // a block without end swallows the rest of the file
                mPos = end;
                return true;
            }
            mPos = end + 1;
        }
    }

    std::string_view mText;
    bool mFindDuplicates;
    std::size_t mPos = 0;
    std::size_t mCountedTo = 0;
    int mLine = 1;
    bool mStop = false;
    std::string mSection;
    std::unordered_set<std::string> mSections;
    std::unordered_set<std::string> mKeys;
    Scan mScan;
};

bool SameFile(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec &&
           a.st_ctim.tv_sec == b.st_ctim.tv_sec && a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

bool IsValidSectionName(const std::string& name)
{
    if (name.find_first_of("]\r\n") != std::string::npos)
        return false;
    return name.empty() || (!IsSpace(name.front()) && !IsSpace(name.back()));
}

bool IsValidKeyName(const char* key)
{
    const std::size_t length = std::strlen(key);
    if (length == 0 || std::strpbrk(key, "=\r\n") || key[0] == '[' || IsComment(key[0]) ||
        std::string_view(key).substr(0, kSignature.size()) == kSignature)
        return false;
    return !IsSpace(key[0]) && !IsSpace(key[length - 1]);
}

} // namespace

namespace korva {

struct IniDocument
{
    std::string path;
    CSimpleIniA ini{true, false, true};
    bool readable = true;            // false: the file is there but could not be read
    std::vector<int> badLines;
    std::string trailingComment;
    bool blankBeforeTrailing = false;
    bool hadSignature = false;
    bool autoSave = true;
    bool unsaved = false;            // changes that wait for Flush
    bool exists = false;             // the file existed when last read or written
    struct stat identity{};

    explicit IniDocument(std::string file) : path(std::move(file)) { Load(); }

    void Load()
    {
        ini.Reset();
        badLines.clear();
        trailingComment.clear();
        blankBeforeTrailing = false;
        hadSignature = false;
        readable = true;
        exists = false;
        unsaved = false;
        if (path.empty()) {
            readable = false;
            return;
        }
        std::string raw;
        const int error = ReadWholeFile(path.c_str(), raw, &identity);
        if (error == ENOENT)
            return;
        if (error != 0) {
            readable = false;
            Log::WriteMessage("IniFileSection", "Load",
                              ("Cannot read " + path + ": " + std::strerror(error)).c_str(), Log::eSystemCallFailed);
            return;
        }
        exists = true;

        // SimpleIni's own handling, made explicit: the signature goes, and
        // every line end becomes "\n" (which is also what it writes).
        std::string_view data(raw);
        if (data.substr(0, 3) == kSignature) {
            hadSignature = true;
            data.remove_prefix(3);
        }
        std::string text;
        text.reserve(data.size());
        for (std::size_t i = 0; i < data.size(); ++i) {
            if (data[i] == '\r') {
                text += '\n';
                if (i + 1 < data.size() && data[i + 1] == '\n')
                    ++i;
            } else {
                text += data[i];
            }
        }
        // SimpleIni takes a signature off the text it is given, so a second
        // one goes as well, and could not be written back.
        std::vector<int> extraBad;
        if (text.compare(0, 3, kSignature) == 0) {
            text.erase(0, 3);
            extraBad.push_back(1);
        }
        // SimpleIni reads up to a NUL byte and not beyond.
        if (const std::size_t nul = text.find('\0'); nul != std::string::npos) {
            extraBad.push_back(1 + static_cast<int>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(nul), '\n')));
            text.resize(nul);
        }

        Scan scan = Scanner(text, false).Run();
        if (ini.LoadData(text.data(), text.size()) < 0) {
            readable = false;
            return;
        }
        std::size_t stored = 0;
        CSimpleIniA::TNamesDepend sections;
        ini.GetAllSections(sections);
        for (const auto& section : sections)
            stored += static_cast<std::size_t>(std::max(0, ini.GetSectionSize(section.pItem)));
        if (stored != scan.keyLines)
            scan = Scanner(text, true).Run();

        badLines = std::move(scan.badLines);
        badLines.insert(badLines.end(), extraBad.begin(), extraBad.end());
        std::sort(badLines.begin(), badLines.end());
        badLines.erase(std::unique(badLines.begin(), badLines.end()), badLines.end());
        trailingComment = std::move(scan.trailingComment);
        blankBeforeTrailing = scan.blankBeforeTrailing;
    }

    bool Writable() const { return readable && badLines.empty() && !path.empty(); }

    bool ChangedOnDisk() const
    {
        struct stat now;
        if (stat(path.c_str(), &now) != 0)
            return exists;
        return !exists || !SameFile(now, identity);
    }

    // Before a change: take in what someone else wrote meanwhile, unless our
    // own changes wait in memory. True when the change may go ahead.
    bool PrepareChange()
    {
        if (!path.empty() && !unsaved && ChangedOnDisk())
            Load();
        return Writable();
    }

    bool Commit()
    {
        unsaved = true;
        return autoSave ? Save() : true;
    }

    bool Save()
    {
        if (!Writable())
            return false;
        std::string text;
        if (ini.Save(text, hadSignature) < 0)
            return false;
        if (!trailingComment.empty()) {
            if (blankBeforeTrailing && !text.empty())
                text += '\n';
            text += trailingComment;
            text += '\n';
        }
        std::string error;
        if (!SafeFileWriter::Write(path, text, &error)) {
            Log::WriteMessage("IniFileSection", "Save", error.c_str(), Log::eSystemCallFailed);
            // Memory follows the file: what could not be written is undone.
            if (autoSave)
                Load();
            return false;
        }
        struct stat now;
        exists = stat(path.c_str(), &now) == 0;
        if (exists)
            identity = now;
        unsaved = false;
        return true;
    }
};

} // namespace korva

IniFileSection::IniFileSection(const char* file, const char* section)
    : mDocument(std::make_shared<korva::IniDocument>(file ? file : "")), mSection(section ? section : "")
{
}

IniFileSection::IniFileSection(std::shared_ptr<korva::IniDocument> document, std::string section)
    : mDocument(std::move(document)), mSection(std::move(section))
{
}

IniFileSection::~IniFileSection() = default;

bool IniFileSection::IsWritable() const
{
    return mDocument->Writable();
}

std::vector<int> IniFileSection::GetUnreadableLines() const
{
    return mDocument->badLines;
}

void IniFileSection::SetAutoSave(bool autoSave)
{
    mDocument->autoSave = autoSave;
}

const std::string& IniFileSection::GetFilePath() const
{
    return mDocument->path;
}

ConfigurationSection* IniFileSection::Copy() const
{
    return new IniFileSection(mDocument, mSection);
}

void IniFileSection::ChangeSection(const char* name)
{
    mSection = name ? name : "";
}

bool IniFileSection::ChangeSubSection(const char*, int)
{
    return false;
}

bool IniFileSection::ChangeSubSection(const char*)
{
    return false;
}

ConfigurationSection* IniFileSection::CreateSubSection(const char*, int) const
{
    return nullptr;
}

ConfigurationSection* IniFileSection::CreateSubSection(const char*) const
{
    return nullptr;
}

bool IniFileSection::DeleteKey(const char* key)
{
    if (!key || !mDocument->PrepareChange())
        return false;
    if (!mDocument->ini.Delete(mSection.c_str(), key, false))
        return false;
    return mDocument->Commit();
}

bool IniFileSection::DeleteSection()
{
    if (!mDocument->PrepareChange())
        return false;
    if (!mDocument->ini.Delete(mSection.c_str(), nullptr))
        return false;
    return mDocument->Commit();
}

bool IniFileSection::Flush() const
{
    return !mDocument->unsaved || mDocument->Save();
}

bool IniFileSection::IsEmpty() const
{
    return mDocument->ini.GetSectionSize(mSection.c_str()) <= 0;
}

bool IniFileSection::HasSection(const char*, int) const
{
    return false;
}

bool IniFileSection::HasKey(const char* key) const
{
    return key && mDocument->ini.GetValue(mSection.c_str(), key, nullptr);
}

bool IniFileSection::ReadKey(const char* key, std::string& value) const
{
    if (!key)
        return false;
    const char* stored = mDocument->ini.GetValue(mSection.c_str(), key, nullptr);
    if (!stored)
        return false;
    value = stored;
    return true;
}

bool IniFileSection::WriteKey(const char* key, const char* value)
{
    if (!key || !value || !IsValidKeyName(key) || !IsStorableValue(value) || !IsValidSectionName(mSection))
        return false;
    if (!mDocument->PrepareChange())
        return false;
    CSimpleIniA& ini = mDocument->ini;
    const char* stored = ini.GetValue(mSection.c_str(), key, nullptr);
    if (stored && std::strcmp(stored, value) == 0)
        return true;
    if (ini.SetValue(mSection.c_str(), key, value) < 0)
        return false;
    return mDocument->Commit();
}

bool IniFileSection::WriteToSection(ConfigurationSection* target) const
{
    if (!target)
        return false;
    bool complete = true;
    for (const std::string& key : GetKeyNames()) {
        std::string value;
        complete &= ReadKey(key.c_str(), value) && target->WriteKey(key.c_str(), value.c_str());
    }
    return complete;
}

std::vector<std::string> IniFileSection::GetSectionNames() const
{
    CSimpleIniA::TNamesDepend sections;
    mDocument->ini.GetAllSections(sections);
    sections.sort(CSimpleIniA::Entry::LoadOrder());
    std::vector<std::string> names;
    names.reserve(sections.size());
    for (const auto& section : sections) {
        // The keys before the first section line come first in the file.
        if (!*section.pItem)
            names.insert(names.begin(), std::string());
        else
            names.emplace_back(section.pItem);
    }
    return names;
}

std::vector<std::string> IniFileSection::GetKeyNames() const
{
    CSimpleIniA::TNamesDepend keys;
    mDocument->ini.GetAllKeys(mSection.c_str(), keys);
    keys.sort(CSimpleIniA::Entry::LoadOrder());
    std::vector<std::string> names;
    names.reserve(keys.size());
    for (const auto& key : keys)
        names.emplace_back(key.pItem);
    return names;
}

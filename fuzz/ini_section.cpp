// INI files such as SysLog.ini are edited by people. Whatever IniFileSection
// reads it must be able to write back without losing a value or a comment;
// a file it cannot write back that way must stay exactly as it was.

#include <KORVAutl/IniFileSection.h>

#include "FuzzCheck.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

// A folder in memory where possible: the section synchronises every write.
const std::string& Folder()
{
    static const std::string folder = [] {
        std::string pattern = (access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + std::string("/ini-fuzz-XXXXXX");
        if (!mkdtemp(pattern.data()))
            std::abort();
        return pattern;
    }();
    return folder;
}

using Content = std::map<std::string, std::map<std::string, std::string>>;

Content Read(const std::string& path)
{
    Content content;
    IniFileSection section(path.c_str(), "");
    for (const std::string& name : section.GetSectionNames()) {
        section.ChangeSection(name.c_str());
        for (const std::string& key : section.GetKeyNames()) {
            std::string value;
            Check(section.ReadKey(key.c_str(), value));
            content[name][key] = value;
        }
    }
    return content;
}

// The lines of a text without a leading byte order mark; "\r\n", "\r" and
// "\n" each end a line, as they do for the parser.
std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines(1);
    const std::size_t start = text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    for (std::size_t i = start; i < text.size(); ++i) {
        if (text[i] == '\r' || text[i] == '\n') {
            if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
            lines.emplace_back();
        } else {
            lines.back() += text[i];
        }
    }
    return lines;
}

// The comment lines of a text (trimmed), in order.
std::vector<std::string> Comments(const std::string& text)
{
    std::vector<std::string> comments;
    for (const std::string& line : Lines(text)) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string::npos || (line[start] != ';' && line[start] != '#'))
            continue;
        const std::size_t end = line.find_last_not_of(" \t");
        comments.push_back(line.substr(start, end - start + 1));
    }
    std::sort(comments.begin(), comments.end());
    return comments;
}

bool HasOpenBracketLine(const std::string& text)
{
    for (const std::string& line : Lines(text)) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start != std::string::npos && line[start] == '[' && line.find(']', start) == std::string::npos)
            return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string path = Folder() + "/fuzz.ini";
    const std::string original(reinterpret_cast<const char*>(data), size);
    {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << original;
    }
    IniFileSection section(path.c_str(), "");
    const std::vector<std::string> sections = section.GetSectionNames();
    const std::string target = sections.empty() ? std::string() : sections.back();
    section.ChangeSection(target.c_str());

    if (!section.IsWritable()) {
        Check(!section.GetUnreadableLines().empty());
        Check(!section.WriteKey("fuzz_key", "fuzz value"));
        Check(!section.DeleteSection());
        Check(ReadFile(path) == original);
        return 0;
    }
    Check(section.GetUnreadableLines().empty());

    Content before = Read(path);
    for (auto it = before[target].begin(); it != before[target].end();) {
        std::string lower = it->first;
        std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
        it = lower == "fuzz_key" ? before[target].erase(it) : std::next(it);
    }
    Check(section.WriteKey("fuzz_key", " fuzz\nvalue "));
    // The new key lands in a section that may have used another case.
    std::string stored;
    Check(section.ReadKey("FUZZ_KEY", stored) && stored == " fuzz\nvalue ");

    IniFileSection reread(path.c_str(), target.c_str());
    Check(reread.IsWritable());
    Content after = Read(path);
    for (const auto& [name, keys] : before)
        for (const auto& [key, value] : keys)
            Check(after[name].count(key) && after[name][key] == value);

    // Comments come back too. Two constructs make lines look like comments
    // that are none, and files with them are only held to their values: a
    // value block may end with such a line (replaced by the block end written
    // here), and a section name may start lines below its "[" (written back
    // on one line).
    if (original.find("<<<") == std::string::npos && !HasOpenBracketLine(original))
        Check(Comments(original) == Comments(ReadFile(path)));
    return 0;
}

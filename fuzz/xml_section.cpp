// Settings files, favourites files and option descriptions reach XMLSection
// from outside. Whatever it accepts it must show consistently (every listed
// key readable, every listed child reachable), write out and read back the
// same, and copy through the settings contract without loss. What it refuses
// it refuses with an Exception.

#include <KORVAutl/Exception.h>
#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include "FuzzCheck.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using Section = std::unique_ptr<ConfigurationSection>;

// Walks both trees side by side through the contract alone. With `merged`,
// `b` is a copy made by WriteToSection, in which keys that appear twice under
// one name in `a` (possible with hand-written names) were written once.
void Compare(const ConfigurationSection& a, const ConfigurationSection& b, bool merged, int& budget)
{
    struct Pair
    {
        Section a, b;
    };
    std::vector<Pair> pending;
    pending.push_back({Section(a.Copy()), Section(b.Copy())});
    while (!pending.empty() && budget-- > 0) {
        Pair pair = std::move(pending.back());
        pending.pop_back();
        std::vector<std::string> keysA = pair.a->GetKeyNames();
        std::vector<std::string> keysB = pair.b->GetKeyNames();
        if (merged) {
            std::set<std::string> seen;
            std::vector<std::string> unique;
            for (const std::string& key : keysA)
                if (seen.insert(key).second)
                    unique.push_back(key);
            keysA = unique;
        }
        Check(keysA == keysB);
        for (const std::string& key : keysA) {
            std::string valueA, valueB;
            Check(pair.a->HasKey(key.c_str()));
            Check(pair.a->ReadKey(key.c_str(), valueA));
            Check(pair.b->ReadKey(key.c_str(), valueB));
            Check(valueA == valueB);
        }
        const std::vector<std::string> sections = pair.a->GetSectionNames();
        Check(sections == pair.b->GetSectionNames());
        Check(pair.a->IsEmpty() == (keysA.empty() && sections.empty()));
        std::map<std::string, int> seen;
        for (const std::string& name : sections) {
            const int index = ++seen[name];
            Section childA(pair.a->CopyAndChangeSubSection(name.c_str(), index));
            Section childB(pair.b->CopyAndChangeSubSection(name.c_str(), index));
            Check(childA && childB);
            Check(pair.a->HasSection(name.c_str(), index));
            pending.push_back({std::move(childA), std::move(childB)});
        }
        for (const auto& [name, count] : seen)
            Check(pair.a->NumSubSections(name.c_str()) == count);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::unique_ptr<XMLSection> section;
    try {
        XMLStringInputStream stream(reinterpret_cast<const char*>(data), size, "fuzz");
        section = std::make_unique<XMLSection>(&stream, false);
    } catch (const Exception&) {
        return 0;
    }

    // Written out and read back, the document shows the same.
    const bool indent = size > 0 && (data[0] & 1);
    std::string text;
    Check(section->Flush(text, indent));
    std::unique_ptr<XMLSection> reread;
    try {
        XMLStringInputStream stream(text, "rendered");
        reread = std::make_unique<XMLSection>(&stream, false);
    } catch (const Exception&) {
        Check(false);
    }
    int budget = 2000;
    Compare(*section, *reread, false, budget);

    // Copied through the contract into a new document, too.
    XMLSection copy;
    section->WriteToSection(&copy);
    budget = 2000;
    Compare(*section, copy, true, budget);

    // Writing a key and a child into the document keeps it well-formed.
    Check(section->WriteKey("fuzz key", text.c_str()));
    Section child(section->CreateSubSection("fuzz child", 2));
    Check(child && child->WriteKey("k", "<&>\"'"));
    Check(section->Flush(text, !indent));
    try {
        XMLStringInputStream stream(text, "rendered");
        XMLSection again(&stream, false);
        Check(again.HasSection("fuzz child", 2));
        Check(again.NumSubSections("fuzz child") >= 2);
    } catch (const Exception&) {
        Check(false);
    }
    return 0;
}

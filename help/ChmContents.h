#pragma once
/// \class ChmContents
/// The table of contents of a compiled help file, for the help window: the
/// entries of its contents file (".hhc", a site map of "Name" and "Local"
/// parameters) with their depth, or, without one, every page with its title.
/// Also the popup texts of a context help file (".topic <id>" sections).

#include <string>
#include <vector>

class ChmStorage;

class ChmContents
{
public:
    /// One line of the contents.
    struct Entry
    {
        std::string name;
        std::string local;   ///< topic path inside the help file, without leading "/"
        int depth = 0;
    };

    /// The contents of `storage`, in the file's order.
    static std::vector<Entry> Read(const ChmStorage& storage);
    /// The entries of a site map text.
    static std::vector<Entry> ParseSiteMap(const std::string& text);
    /// The title of an HTML page; empty without one.
    static std::string TitleOf(const std::string& page);
    /// The entries of `contents` whose page text (without its tags) holds `word`, compared without case.
    static std::vector<Entry> Search(const ChmStorage& storage, const std::vector<Entry>& contents,
                                     const std::string& word);
    /// The text of ".topic `id`" in a popup file: the lines up to the next ".topic"; empty when none.
    static std::string PopupText(const std::string& file, unsigned long id);
};

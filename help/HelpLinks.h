#pragma once
/// \class HelpLinks
/// The URL rules of the help pane: topic URLs "its:<file>::<topic>" and their
/// parts, home strings that are URLs (those with ":"), and links with the scheme
/// "app:" (in any case) that name commands of the application.

#include <map>
#include <string>

class HelpLinks
{
public:
    /// "its:<helpFile>::<topic>", with "/" put before a topic that has none.
    static std::string TopicUrl(const std::string& helpFile, const std::string& topic);
    /// Splits an "its:" URL into the help file and the topic path (with its leading
    /// "/" added when missing, and without a "#..." or "?..." part); false when
    /// `url` is no such URL.
    static bool SplitTopicUrl(const std::string& url, std::string& helpFile, std::string& topic);
    /// A home string with ":" is a URL, not a topic of the help file.
    static bool IsUrlHome(const std::string& home);
    /// True for an "app:" link (scheme compared without case), with the rest of it in `name`.
    static bool IsAppLink(const std::string& url, std::string& name);
    /// The command that `name` is mapped to, compared with case; false when there is none.
    static bool FindCommand(const std::map<std::string, unsigned int>& map, const std::string& name,
                            unsigned int& id);
    /// The MIME type under which a file of the help is served, by its extension.
    static std::string MimeTypeOf(const std::string& topic);
};

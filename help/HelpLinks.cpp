#include <KORVAutlwin/help/HelpLinks.h>

#include <algorithm>
#include <cctype>

std::string HelpLinks::TopicUrl(const std::string& helpFile, const std::string& topic)
{
    // A topic is a path from the root of the file, so that relative links of its page resolve inside the file.
    return "its:" + helpFile + "::" + (topic.starts_with('/') ? "" : "/") + topic;
}

bool HelpLinks::SplitTopicUrl(const std::string& url, std::string& helpFile, std::string& topic)
{
    if (url.size() < 4 || !std::equal(url.begin(), url.begin() + 4, "its:", [](char a, char b) {
            return std::tolower(static_cast<unsigned char>(a)) == b;
        }))
        return false;
    const std::size_t separator = url.find("::", 4);
    if (separator == std::string::npos)
        return false;
    helpFile = url.substr(4, separator - 4);
    const std::string rest = url.substr(separator + 2);
    const std::string path = rest.substr(0, rest.find_first_of("#?"));
    topic = path.starts_with('/') ? path : "/" + path;
    return !helpFile.empty();
}

bool HelpLinks::IsUrlHome(const std::string& home)
{
    return home.find(':') != std::string::npos;
}

bool HelpLinks::IsAppLink(const std::string& url, std::string& name)
{
    static const char scheme[] = "app:";
    if (url.size() < 4 || !std::equal(url.begin(), url.begin() + 4, scheme, [](char a, char b) {
            return std::tolower(static_cast<unsigned char>(a)) == b;
        }))
        return false;
    name = url.substr(4);
    return true;
}

bool HelpLinks::FindCommand(const std::map<std::string, unsigned int>& map, const std::string& name,
                            unsigned int& id)
{
    const auto found = map.find(name);
    if (found == map.end())
        return false;
    id = found->second;
    return true;
}

std::string HelpLinks::MimeTypeOf(const std::string& topic)
{
    std::string extension = topic.substr(topic.find_last_of('.') + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    static const std::map<std::string, std::string> types = {
        {"htm", "text/html"}, {"html", "text/html"}, {"css", "text/css"},       {"js", "text/javascript"},
        {"png", "image/png"}, {"gif", "image/gif"},  {"jpg", "image/jpeg"},     {"jpeg", "image/jpeg"},
        {"svg", "image/svg+xml"}, {"txt", "text/plain"}, {"xml", "text/xml"}};
    const auto found = types.find(extension);
    return found == types.end() ? "application/octet-stream" : found->second;
}

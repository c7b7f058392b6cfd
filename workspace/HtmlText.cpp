#include <KORVAutlwin/workspace/HtmlText.h>

#include <KORVAutl/TsString.h>

#include <algorithm>
#include <cctype>

namespace HtmlText {

bool IsAppCommand(const std::string& url)
{
    static const char prefix[] = "app:";
    if (url.size() < 4)
        return false;
    for (int i = 0; i < 4; ++i)
        if (std::tolower(static_cast<unsigned char>(url[i])) != prefix[i])
            return false;
    return true;
}

std::string FindStyleInBody(const std::string& body)
{
    std::string lower = body;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    const auto end = lower.find("</style>");
    const auto start = lower.find("<style");
    if (end == std::string::npos || start == std::string::npos || start + 6 > end)
        return {};
    const std::string inside = lower.substr(start + 6, end - start - 6);
    // The ">" closing the start tag stays in front: the style parser skips it.
    const auto bracket = inside.find('>');
    return bracket == std::string::npos ? std::string() : inside.substr(bracket);
}

std::string Trim(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::map<std::string, std::string> ParseRules(const std::string& cssText)
{
    std::map<std::string, std::string> rules;
    std::size_t position = 0;
    for (;;) {
        const auto open = cssText.find('{', position);
        if (open == std::string::npos)
            break;
        const auto close = cssText.find('}', open);
        if (close == std::string::npos)
            break;
        // Up to one character before the brace: style text here is written "p {".
        const std::string selector = Trim(cssText.substr(position, open > position ? open - 1 - position : 0));
        const std::string style = Trim(cssText.substr(open + 1, close - open - 1));
        if (selector.find('@') == std::string::npos)
            rules[selector] = style;
        position = close + 1;
    }
    return rules;
}

std::string ComposeSavedPage(const std::string& title, const std::string& css, const std::string& html)
{
    if (html.find("<HTML>") != std::string::npos)
        return html;
    return "<!DOCTYPE html PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\">" +
           TsString::Format("<html><head><title>%s</title><style type=\"text/css\"><!--%s--></style></head>%s</html>",
                            title.c_str(), css.c_str(), html.c_str());
}

} // namespace HtmlText

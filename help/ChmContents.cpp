#include <KORVAutlwin/help/ChmContents.h>

#include <KORVAutlwin/help/ChmStorage.h>

#include <QRegularExpression>
#include <QString>

#include <algorithm>
#include <cstdlib>
#include <sstream>

std::vector<ChmContents::Entry> ChmContents::ParseSiteMap(const std::string& text)
{
    std::vector<Entry> entries;
    // Tags in order: lists open and close levels, objects carry the parameters.
    static const QRegularExpression tags(
        R"re(<\s*(/?)\s*(ul|object)\b|<\s*param\s+name\s*=\s*"([^"]*)"\s+value\s*=\s*"([^"]*)")re",
        QRegularExpression::CaseInsensitiveOption);
    int depth = -1;
    Entry current;
    bool inObject = false;
    auto it = tags.globalMatch(QString::fromStdString(text));
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        const QString tag = match.captured(2).toLower();
        const bool closing = !match.captured(1).isEmpty();
        if (tag == "ul") {
            depth += closing ? -1 : 1;
        } else if (tag == "object") {
            if (closing && inObject && !current.name.empty())
                entries.push_back(current);
            inObject = !closing;
            current = Entry{{}, {}, std::max(depth, 0)};
        } else if (inObject) {
            const QString name = match.captured(3).toLower();
            if (name == "name")
                current.name = match.captured(4).toStdString();
            else if (name == "local")
                current.local = match.captured(4).toStdString();
        }
    }
    return entries;
}

std::string ChmContents::TitleOf(const std::string& page)
{
    static const QRegularExpression title("<title>([^<]*)</title>", QRegularExpression::CaseInsensitiveOption);
    return title.match(QString::fromStdString(page)).captured(1).trimmed().toStdString();
}

std::vector<ChmContents::Entry> ChmContents::Read(const ChmStorage& storage)
{
    const std::vector<std::string> names = storage.GetFileNames();
    for (const std::string& name : names) {
        std::string text;
        if (name.ends_with(".hhc") && storage.ReadStream(name, text))
            return ParseSiteMap(text);
    }
    std::vector<Entry> entries;
    for (const std::string& name : names) {
        std::string page;
        if ((name.ends_with(".htm") || name.ends_with(".html")) && storage.ReadStream(name, page)) {
            const std::string title = TitleOf(page);
            entries.push_back({title.empty() ? name : title, name, 0});
        }
    }
    return entries;
}

std::string ChmContents::PopupText(const std::string& file, unsigned long id)
{
    std::istringstream lines(file);
    std::string line, text;
    bool inside = false;
    while (std::getline(lines, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.starts_with(".topic")) {
            if (inside)
                break;
            inside = std::strtoul(line.c_str() + 6, nullptr, 10) == id;
            continue;
        }
        if (inside)
            text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

std::vector<ChmContents::Entry> ChmContents::Search(const ChmStorage& storage, const std::vector<Entry>& contents,
                                                    const std::string& word)
{
    static const QRegularExpression tag("<[^>]*>");
    std::vector<Entry> found;
    const QString wanted = QString::fromStdString(word).trimmed();
    if (wanted.isEmpty())
        return found;
    for (const Entry& entry : contents) {
        std::string page;
        if (!storage.ReadStream(entry.local, page))
            continue;
        if (QString::fromStdString(page).remove(tag).contains(wanted, Qt::CaseInsensitive))
            found.push_back(entry);
    }
    return found;
}

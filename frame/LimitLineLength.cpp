#include <KORVAutlwin/frame/LimitLineLength.h>

#include <QFontMetrics>
#include <QList>
#include <QRect>
#include <QString>

#include <functional>

namespace {

bool IsBlank(char32_t c)
{
    return c == U' ' || c == U'\t';
}

// Breaks every line of `text` where `fits(line, count)` says that the first
// `count` characters of `line` no longer fit; the test is monotonic in `count`.
void Wrap(std::string& text, const std::function<bool(const std::u32string&, std::size_t)>& fits)
{
    const QList<uint> ucs4 = QString::fromStdString(text).toUcs4();
    const std::u32string input(ucs4.begin(), ucs4.end());
    std::u32string output;
    output.reserve(input.size() + input.size() / 16);

    std::size_t lineStart = 0;
    while (lineStart <= input.size()) {
        std::size_t lineEnd = input.find(U'\n', lineStart);
        const bool last = lineEnd == std::u32string::npos;
        if (last)
            lineEnd = input.size();
        std::u32string line = input.substr(lineStart, lineEnd - lineStart);

        while (!fits(line, line.size())) {
            // The longest prefix that fits, at least one character.
            std::size_t count = 1;
            while (count < line.size() && fits(line, count + 1))
                ++count;
            // A blank directly behind the prefix is as good a break as one inside it.
            std::size_t cut = std::u32string::npos;
            for (std::size_t i = count + 1; i-- > 1;)
                if (i < line.size() && IsBlank(line[i]) && !IsBlank(line[i - 1])) {
                    cut = i;
                    break;
                }
            std::size_t resume;
            if (cut == std::u32string::npos) {
                cut = count;
                resume = count;
            } else {
                resume = cut;
                while (resume < line.size() && IsBlank(line[resume]))
                    ++resume;
                if (resume == line.size()) {
                    // Only blanks were too many: drop them rather than end in an empty line.
                    line.erase(cut);
                    break;
                }
            }
            output.append(line, 0, cut);
            output.push_back(U'\n');
            line.erase(0, resume);
        }
        output += line;
        if (last)
            break;
        output.push_back(U'\n');
        lineStart = lineEnd + 1;
    }
    text = QString::fromUcs4(output.data(), static_cast<qsizetype>(output.size())).toStdString();
}

} // namespace

void LimitLineLength::ByCharacters(std::string& text, unsigned int maxCharacters)
{
    if (maxCharacters == 0)
        return;
    Wrap(text, [maxCharacters](const std::u32string&, std::size_t count) { return count <= maxCharacters; });
}

void LimitLineLength::ByPixels(std::string& text, const QFontMetrics& metrics, int width)
{
    if (width <= 0)
        return;
    Wrap(text, [&metrics, width](const std::u32string& line, std::size_t count) {
        if (count <= 1)
            return true;
        const QString prefix = QString::fromUcs4(line.data(), static_cast<qsizetype>(count));
        return metrics.horizontalAdvance(prefix) <= width;
    });
}

QRect LimitLineLength::GetBoundsRect(const QFontMetrics& metrics, const std::string& text)
{
    const QRect bounds = metrics.boundingRect(QRect(0, 0, 0, 0), Qt::AlignLeft | Qt::AlignTop | Qt::TextExpandTabs,
                                              QString::fromStdString(text));
    return QRect(0, 0, bounds.width(), bounds.height());
}

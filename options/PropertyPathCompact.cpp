#include <KORVAutlwin/options/PropertyPathCompact.h>

#include <QFontMetrics>

namespace {

constexpr size_t kPathBuffer = 260;
const QString kEllipsis = QStringLiteral("...");

// Cuts `text` to at most `bytes` bytes without splitting a UTF-8 character.
std::string CutUtf8(const std::string& text, size_t bytes)
{
    if (text.size() <= bytes)
        return text;
    size_t end = bytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

} // namespace

std::string PathCompactPath(const QFontMetrics& metrics, const std::string& path, int width)
{
    const QString full = QString::fromStdString(CutUtf8(path, kPathBuffer - 1));
    if (metrics.horizontalAdvance(full) <= width)
        return full.toStdString();

    const qsizetype slash = full.lastIndexOf(QLatin1Char('/'));
    const QString file = slash >= 0 ? full.mid(slash) : full; // with its slash
    const QString folders = slash >= 0 ? full.left(slash) : QString();
    for (qsizetype keep = folders.size() - 1; keep >= 0 && slash >= 0; --keep) {
        const QString candidate = folders.left(keep) + kEllipsis + file;
        if (metrics.horizontalAdvance(candidate) <= width)
            return candidate.toStdString();
    }
    // Not even the file name fits: keep as much of its start as does.
    const QString prefix = slash >= 0 ? kEllipsis : QString();
    for (qsizetype keep = file.size() - 1; keep > 0; --keep) {
        const QString candidate = prefix + file.left(keep) + kEllipsis;
        if (metrics.horizontalAdvance(candidate) <= width)
            return candidate.toStdString();
    }
    return kEllipsis.toStdString();
}

#include <KORVAutlwin/controls/ListClipboard.h>

#include <cstdio>
#include <cstring>

namespace {

// Characters, not bytes: an underline is as long as the text looks.
size_t CharacterCount(const std::string& text)
{
    size_t count = 0;
    for (unsigned char c : text)
        if ((c & 0xC0) != 0x80)
            ++count;
    return count;
}

bool ShowsHead(const ClipboardTable& table, const ListFormatter& formatter)
{
    return formatter.GetWithHeader() && table.HasColumnHeader();
}

// Overwrites the eight zeros behind `field` with the offset; the field's line
// feed, which the terminator of the formatting hits, is put back.
void PutOffset(std::string& block, const char* field, size_t offset)
{
    const size_t at = block.find(field) + std::strlen(field);
    char digits[16];
    std::snprintf(digits, sizeof digits, "%08u", static_cast<unsigned>(offset));
    block.replace(at, 8, digits, 8);
    block[at + 8] = '\n';
}

} // namespace

std::string ListClipboard::ToString(const ClipboardTable& table, const ListFormatter& formatter)
{
    std::string text;
    const std::string& caption = formatter.GetCaption();
    if (!caption.empty()) {
        text += caption;
        text += kLineEnd;
        text.append(CharacterCount(caption), '=');
        text += kLineEnd;
    }
    const int columns = table.GetColumnCount();
    if (ShowsHead(table, formatter)) {
        std::string dashes;
        for (int col = 0; col < columns; ++col) {
            const std::string title = table.GetColumnText(col);
            if (col > 0) {
                text += kSeparator;
                dashes += kSeparator;
            }
            text += title;
            dashes.append(CharacterCount(title), '-');
        }
        text += kLineEnd;
        text += dashes;
        text += kLineEnd;
    }
    const int count = formatter.ItemCount();
    for (int i = 0; i < count; ++i) {
        const int row = formatter.ItemAt(i);
        for (int col = 0; col < columns; ++col) {
            if (col > 0)
                text += kSeparator;
            text += table.GetClipboardItemText(row, col);
        }
        text += kLineEnd;
    }
    return text;
}

std::string ListClipboard::ToHTML(const ClipboardTable& table, const ListFormatter& formatter)
{
    std::string html = "<table>";
    const std::string& caption = formatter.GetCaption();
    if (!caption.empty())
        html += "<caption>" + caption + "</caption>";
    const int columns = table.GetColumnCount();
    if (ShowsHead(table, formatter)) {
        html += "<thead><tr>";
        for (int col = 0; col < columns; ++col)
            html += "<th>" + table.GetColumnText(col) + "</th>";
        html += "</tr></thead>";
    }
    html += "<tbody>";
    const int count = formatter.ItemCount();
    for (int i = 0; i < count; ++i) {
        const int row = formatter.ItemAt(i);
        html += "<tr>";
        for (int col = 0; col < columns; ++col) {
            html += "<td>";
            html += table.GetClipboardItemText(row, col);
            html += "</td>";
        }
        html += "</tr>";
    }
    html += "</tbody></table>";
    return html;
}

std::string ListClipboard::MakeHTMLClipStringFromText(const std::string& text)
{
    static const char kHead[] = "Version:0.9\n"
                                "StartHTML:00000000\n"
                                "EndHTML:00000000\n"
                                "StartFragment:00000000\n"
                                "EndFragment:00000000\n"
                                "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0 Transitional//EN\">\n"
                                "<html><head><title></title></head>\n"
                                "<body>\n"
                                "<!--StartFragment -->\n";
    static_assert(sizeof kHead - 1 == kHeadLength);
    std::string block;
    block.reserve(kHeadLength + text.size() + 40);
    block += kHead;
    block += text;
    block += '\n';
    block += "<!--EndFragment-->\n</body>\n</html>";
    // Each search takes the first match, so a fragment that holds a marker moves its offset.
    PutOffset(block, "StartHTML:", block.find("<html>"));
    PutOffset(block, "EndHTML:", block.size());
    PutOffset(block, "StartFragment:", block.find("<!--StartFrag") + 22);
    PutOffset(block, "EndFragment:", block.find("<!--EndFrag"));
    return block;
}

std::string ListClipboard::MakeClipboardBlock(const std::string& descriptor)
{
    std::string block = descriptor;
    block.append(1 + kBlockSpare, '\0');
    return block;
}

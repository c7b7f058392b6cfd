#pragma once
// The clipboard forms of a table: tab-separated text and an "HTML Format"
// fragment in its descriptor. Lists and tree lists emit the same bytes.

#include <KORVAutlwin/controls/ListFormatter.h>

#include <string>

/// What the clipboard forms read from a table with columns.
class ClipboardTable
{
public:
    virtual ~ClipboardTable() = default;
    virtual int GetColumnCount() const = 0;
    virtual std::string GetColumnText(int col) const = 0;
    /// False when the table hides its column titles (LVS_NOCOLUMNHEADER).
    virtual bool HasColumnHeader() const = 0;
    /// The text of a cell as it goes out.
    virtual std::string GetClipboardItemText(int row, int col) const = 0;
};

/// The clipboard forms of a table: tab text, the HTML fragment and its "HTML Format" descriptor.
class ListClipboard
{
public:
    /// Line end and cell separator of the text form.
    static constexpr const char* kLineEnd = "\r\n";
    static constexpr const char* kSeparator = "\t";
    /// The name under which the fragment is registered.
    static constexpr const char* kHtmlFormatName = "HTML Format";
    /// Length of the descriptor's fixed head, before the fragment.
    static constexpr size_t kHeadLength = 219;

    /// The text form: caption and underline, titles and dashes, then the rows.
    /// Nothing is quoted or escaped.
    static std::string ToString(const ClipboardTable& table, const ListFormatter& formatter);
    /// The HTML table of the same rows, texts unescaped, no line breaks.
    static std::string ToHTML(const ClipboardTable& table, const ListFormatter& formatter);
    /// The "HTML Format" descriptor around `text`: the fixed head, the text and
    /// a line feed, the tail, with the four offsets filled in as "%08u" byte
    /// offsets. The platform block adds the NUL and 3 spare bytes.
    static std::string MakeHTMLClipStringFromText(const std::string& text);
    /// Spare bytes of the clipboard block behind the descriptor's NUL.
    static constexpr size_t kBlockSpare = 3;
    /// The clipboard block of a descriptor: its bytes, the terminating NUL and
    /// the spare bytes (zeros), as the "HTML Format" data holds them.
    static std::string MakeClipboardBlock(const std::string& descriptor);
};

#pragma once
// Which rows of a list go out to the clipboard, and with what head.

#include <string>
#include <vector>

/// Says which rows go out, in which order, and whether a caption and the
/// column titles head them.
class ListFormatter
{
public:
    ListFormatter(std::string caption, bool withHeader) : mCaption(std::move(caption)), mWithHeader(withHeader) {}
    virtual ~ListFormatter() = default;
    /// The number of output rows.
    virtual int ItemCount() const = 0;
    /// The row number of the i-th output row.
    virtual int ItemAt(int i) const = 0;

    const std::string& GetCaption() const { return mCaption; }
    bool GetWithHeader() const { return mWithHeader; }

private:
    std::string mCaption;
    bool mWithHeader;
};

/// Rows 0 to count - 1, with the caption and the column titles.
class AllItemsFormatter : public ListFormatter
{
public:
    AllItemsFormatter(const char* caption, int count) : ListFormatter(caption ? caption : "", true), mCount(count) {}
    int ItemCount() const override { return mCount; }
    int ItemAt(int i) const override { return i; }

private:
    int mCount;
};

/// The given rows, no caption, no titles. The vector stays the caller's and
/// must outlive the formatter.
class SelectedItemsFormatter : public ListFormatter
{
public:
    explicit SelectedItemsFormatter(const std::vector<int>& rows) : ListFormatter(std::string(), false), mRows(rows) {}
    int ItemCount() const override { return static_cast<int>(mRows.size()); }
    int ItemAt(int i) const override { return mRows[static_cast<size_t>(i)]; }

private:
    const std::vector<int>& mRows;
};

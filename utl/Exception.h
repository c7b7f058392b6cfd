#pragma once
/// \class Exception
/// The one exception class of the suite: it carries a finished, user-readable
/// text and, optionally, the exceptions that caused it.

#include <memory>
#include <string>

class Exception
{
public:
    /// An exception with an empty text.
    Exception();
    /// An exception with the finished text `text`.
    explicit Exception(const std::string& text);
    explicit Exception(const char* text);
    /// An exception with the text `text`, caused by `cause` (copied).
    Exception(const std::string& text, const Exception& cause);

    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    virtual ~Exception();

    /// The exception's own text.
    const char* Why() const { return mText.c_str(); }
    /// The text followed by the texts of its causes, one per line, outermost first.
    std::string RecursiveWhy() const;
    /// The exception that caused this one, or null.
    const Exception* Cause() const { return mCause.get(); }

private:
    std::string mText;
    std::shared_ptr<const Exception> mCause;
};

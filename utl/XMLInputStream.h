#pragma once
/// \class XMLInputStream
/// The source of an XML document that is neither a file nor a resource: the
/// clipboard, a network reply, a member of an archive. XMLSection reads such a
/// stream once, to its end, in its constructor.

#include <cstddef>
#include <string>

class XMLInputStream
{
public:
    virtual ~XMLInputStream();

    /// Reads at most `size` bytes into `buffer` and returns how many were read.
    /// 0 means the end of the stream, a negative result a failure (the reader
    /// then stops and reports that the stream could not be read). A stream may
    /// return fewer bytes than asked for at any time; it is called again.
    virtual long Read(char* buffer, std::size_t size) = 0;

    /// A short text that names the stream in messages, such as a file or
    /// member name. The default is "(stream)".
    virtual std::string GetName() const;

protected:
    XMLInputStream() = default;
    XMLInputStream(const XMLInputStream&) = default;
    XMLInputStream& operator=(const XMLInputStream&) = default;
};

/// A stream over text held in memory. The text is copied.
class XMLStringInputStream : public XMLInputStream
{
public:
    explicit XMLStringInputStream(std::string text, std::string name = "(text)");
    XMLStringInputStream(const char* data, std::size_t size, std::string name = "(text)");

    long Read(char* buffer, std::size_t size) override;
    std::string GetName() const override;

private:
    std::string mText;
    std::string mName;
    std::size_t mPosition = 0;
};

#include <KORVAutl/XMLInputStream.h>

#include <algorithm>
#include <climits>
#include <cstring>

XMLInputStream::~XMLInputStream() = default;

std::string XMLInputStream::GetName() const
{
    return "(stream)";
}

XMLStringInputStream::XMLStringInputStream(std::string text, std::string name)
    : mText(std::move(text)), mName(std::move(name))
{
}

XMLStringInputStream::XMLStringInputStream(const char* data, std::size_t size, std::string name)
    : mText(data ? std::string(data, size) : std::string()), mName(std::move(name))
{
}

long XMLStringInputStream::Read(char* buffer, std::size_t size)
{
    if (!buffer)
        return -1;
    const std::size_t count = std::min({size, mText.size() - mPosition, static_cast<std::size_t>(LONG_MAX)});
    std::memcpy(buffer, mText.data() + mPosition, count);
    mPosition += count;
    return static_cast<long>(count);
}

std::string XMLStringInputStream::GetName() const
{
    return mName;
}

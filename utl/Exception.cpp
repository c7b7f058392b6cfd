#include <KORVAutl/Exception.h>

Exception::Exception() = default;

Exception::Exception(const std::string& text) : mText(text) {}

Exception::Exception(const char* text) : mText(text ? text : "") {}

Exception::Exception(const std::string& text, const Exception& cause)
    : mText(text), mCause(std::make_shared<const Exception>(cause))
{
}

Exception::~Exception() = default;

std::string Exception::RecursiveWhy() const
{
    std::string result = mText;
    for (const Exception* cause = mCause.get(); cause; cause = cause->mCause.get()) {
        if (!result.empty())
            result += '\n';
        result += cause->mText;
    }
    return result;
}

#include <KORVAutlwin/frame/CExceptionHelper.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/TsString.h>

#include <cstring>

namespace {

const char* const kUnknownError = "Unknown error";

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

std::string TrimRight(const char* text)
{
    std::string result = text ? text : "";
    std::size_t end = result.size();
    while (end > 0 && IsBlank(result[end - 1]))
        --end;
    result.erase(end);
    return result;
}

std::string MessageOrUnknown(const char* text)
{
    std::string message = TrimRight(text);
    return message.empty() ? std::string(kUnknownError) : message;
}

} // namespace

std::string CExceptionHelper::GetErrorMessage(const Exception* exception)
{
    return MessageOrUnknown(exception ? exception->Why() : nullptr);
}

std::string CExceptionHelper::GetErrorMessage(const std::exception* exception)
{
    return MessageOrUnknown(exception ? exception->what() : nullptr);
}

std::string CExceptionHelper::GetErrorText(unsigned long code)
{
    char buffer[256] = {};
    const int number = code > 0x7FFFFFFFUL ? -1 : static_cast<int>(code);
    // The GNU strerror_r: the text may or may not be in the buffer.
    const char* system = strerror_r(number, buffer, sizeof(buffer));
    std::string text = TrimRight(system);
    // glibc invents "Unknown error <n>" for numbers it does not know.
    if (text.empty() || text.rfind(kUnknownError, 0) == 0)
        text = "Unknown error.";
    return text + TsString::Format(" (%lu)", code);
}

#pragma once
/// \class CExceptionHelper
/// Texts of errors for messages and logs.

#include <exception>
#include <string>

class Exception;

class CExceptionHelper
{
public:
    /// The text of `exception` (its own text, without its causes) with trailing
    /// white space cut; "Unknown error" when it has none or `exception` is null.
    static std::string GetErrorMessage(const Exception* exception);
    /// what() of `exception` with trailing white space cut; "Unknown error" when
    /// it is empty or `exception` is null.
    static std::string GetErrorMessage(const std::exception* exception);

    /// The system's text for the error number `code` (an errno value), trimmed,
    /// followed by " (<code>)"; "Unknown error." with the same tail when the
    /// system has no text for it.
    static std::string GetErrorText(unsigned long code);
};
